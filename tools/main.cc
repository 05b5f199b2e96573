// zelm-imageutil: converts, scales and turns frames in files and pipes.
#include <cctype>
#include <cstdio>
#include <new>

#include "commands/commands.h"
#include "failure.h"
#include "output/output_file.h"

namespace {

constexpr int kExitDifferent = 1;
constexpr int kExitFailure = 2;

// Returns the exit status.
int run(const zelm_tool::Options& options) {
  using zelm_tool::Command;
  const Command command = options.command;
  if (command == Command::kConvert) runConvert(options.convert);
  if (command == Command::kTestcard) runTestcard(options.testcard);
  if (command == Command::kFormats) runFormats(options.formats);
  if (command == Command::kInfo) runInfo(options.info);
  if (command != Command::kCompare || runCompare(options.compare)) return 0;
  return kExitDifferent;
}

// One line, whatever the texts in it hold.
int report(std::string text) {
  for (char& c : text) {
    if (iscntrl(static_cast<unsigned char>(c))) c = ' ';
  }
  fprintf(stderr, "zelm-imageutil: %s\n", text.c_str());
  return kExitFailure;
}

}  // namespace

int main(int argc, char** argv) {
  zelm_tool::installSignalHandlers();
  try {
    const int status = run(zelm_tool::parseOptions(argc, argv));
    zelm_tool::finishStandardOutput();
    return status;
  } catch (const std::bad_alloc&) {
    return report("not enough memory for frames of this size; a smaller one would do");
  } catch (const std::length_error&) {
    return report("frames of this size do not fit into memory; a smaller one would do");
  } catch (const std::exception& error) {
    return report(error.what());
  }
}
