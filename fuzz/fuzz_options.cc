// Parses command lines of the program: the result is options or one kind of exception.
#include <stdint.h>
#include <stdio.h>

#include <string>
#include <vector>

#include "failure.h"
#include "finding.h"
#include "options/options.h"

namespace {

using fuzz::check;
using zelm_tool::Command;
using zelm_tool::Options;

void checkOptions(const Options& options, const std::vector<std::string>& arguments) {
  bool asked = false;  // for help or the version
  for (const std::string& argument : arguments) asked |= argument[0] == '-';
  switch (options.command) {
    case Command::kNone:
      check(asked, "nothing was asked for");
      break;
    case Command::kConvert:
      check(arguments.size() >= 3, "no input");
      check(options.convert.out.threads <= 1024, "too many threads");
      check(!options.convert.rotateCommand || asked, "no angle");
      break;
    case Command::kTestcard:
      check(options.testcard.frames > 0, "no frame");
      break;
    case Command::kFormats:
    case Command::kInfo:
      break;
    case Command::kCompare:
      check(arguments.size() >= 4, "nothing to compare with");
      break;
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  return freopen("/dev/null", "w", stdout) == nullptr;  // help and version are printed
}

// Each argument ends with a newline or a zero.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  std::vector<std::string> arguments = {"zelm-imageutil", ""};
  for (size_t i = 0; i < size; ++i) {
    const char c = static_cast<char>(bytes[i]);
    if (c == '\n' || c == '\0') {
      if (arguments.size() == 40) break;
      arguments.emplace_back();
    } else {
      arguments.back().push_back(c);
    }
  }
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  try {
    checkOptions(
        zelm_tool::parseOptions(static_cast<int>(arguments.size()), pointers.data()),
        arguments);
  } catch (const zelm_tool::Failure& failure) {
    check(failure.what()[0] != '\0', "an empty message");
  }
  return 0;
}
