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
  switch (options.command) {
    case Command::kNone:
      break;
    case Command::kConvert:
      zelm_tool::runConvert(options.convert);
      break;
    case Command::kTestcard:
      zelm_tool::runTestcard(options.testcard);
      break;
    case Command::kFormats:
      zelm_tool::runFormats(options.formats);
      break;
    case Command::kInfo:
      zelm_tool::runInfo(options.info);
      break;
    case Command::kCompare:
      return zelm_tool::runCompare(options.compare) ? 0 : kExitDifferent;
  }
  return 0;
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
