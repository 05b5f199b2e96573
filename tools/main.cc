// zelm-imageutil: converts, scales and turns frames in files and pipes.
#include <cctype>
#include <cstdio>
#include <new>

#include "commands.h"
#include "failure.h"
#include "output_file.h"

namespace {

constexpr int kExitFailure = 2;

void run(const zelm_tool::Options& options) {
  using zelm_tool::Command;
  switch (options.command) {
    case Command::kNone:
      return;
    case Command::kConvert:
      return zelm_tool::runConvert(options.convert);
    case Command::kRotate:
      return zelm_tool::runRotate(options.rotate);
    case Command::kTestcard:
      return zelm_tool::runTestcard(options.testcard);
    case Command::kFormats:
      return zelm_tool::runFormats(options.formats);
  }
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
    run(zelm_tool::parseOptions(argc, argv));
    zelm_tool::finishStandardOutput();
    return 0;
  } catch (const std::bad_alloc&) {
    return report("not enough memory for frames of this size; a smaller one would do");
  } catch (const std::length_error&) {
    return report("frames of this size do not fit into memory; a smaller one would do");
  } catch (const std::exception& error) {
    return report(error.what());
  }
}
