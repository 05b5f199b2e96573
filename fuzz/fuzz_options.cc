// The program's command line: options or one kind of exception, and the texts in them.
#include <stdio.h>
#include <stdlib.h>

#include <sstream>
#include <vector>

#include "compare.h"
#include "failure.h"
#include "formats.h"
#include "options.h"

namespace {

using zelm_tool::Command;

void check(bool holds, const char* what) {
  if (holds) return;
  fprintf(stderr, "FINDING in options: %s\n", what);
  abort();
}

template <class Value>
std::string text(const Value& value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

// What is understood, written and read again is the same.
void checkTexts(const std::vector<std::string>& arguments) {
  zelm_tool::Size size;
  for (const std::string& argument : arguments) {
    try {
      size = zelm_tool::parseSize("--size", argument);
      check(zelm_tool::parseSize("--size", text(size)) == size, "another size");
      zelm_tool::requireFrameSize("--size", size);
      check(size.width % 2 == 0 && size.height % 2 == 0, "an odd size");
      check(size.width - 2 <= 65532 && size.height - 2 <= 65532, "an impossible size");
    } catch (const zelm_tool::Failure&) {
    }
    try {
      zelm_tool::parsePoint("--at", argument);
    } catch (const zelm_tool::Failure&) {
    }
    try {
      const zelm_tool::Region r = zelm_tool::parseRegion("--crop", argument);
      check(zelm_tool::parseRegion("--crop", text(r)) == r, "another region");
      zelm_tool::requireInside("--crop", r, size);
      check(uint64_t{r.x} + r.size.width <= size.width &&
                uint64_t{r.y} + r.size.height <= size.height,
            "a region outside");
    } catch (const zelm_tool::Failure&) {
    }
    try {
      const auto& format = zelm_tool::formatNamed(argument);
      check(zelm_tool::findFormat(format.name) == &format, "another format");
    } catch (const zelm_tool::Failure&) {
    }
    zelm_tool::suffixOf(argument);
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  return freopen("/dev/null", "w", stdout) == nullptr;  // help and version
}

// Arguments end with a newline or a zero.
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
    const zelm_tool::Options options =
        zelm_tool::parseOptions(static_cast<int>(arguments.size()), pointers.data());
    if (options.command == Command::kTestcard) {
      check(options.testcard.frames > 0, "no frame");
    }
    bool asked = false;  // for help or the version
    for (const std::string& argument : arguments) asked |= argument[0] == '-';
    check(options.command != Command::kNone || asked, "nothing was asked for");
  } catch (const zelm_tool::Failure& failure) {
    check(failure.what()[0] != '\0', "an empty message");
  }
  checkTexts(arguments);
  return 0;
}
