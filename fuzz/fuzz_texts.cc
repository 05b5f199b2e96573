// Parses the texts in the program's options: the result is a value or one kind of
// exception.
#include <stdint.h>

#include <sstream>
#include <string>
#include <string_view>

#include "failure.h"
#include "finding.h"
#include "formats.h"
#include "geometry.h"

namespace {

using fuzz::check;

template <class Value>
std::string written(const Value& value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

// A text that is understood has the same value after it is written and parsed again.
void checkSize(const std::string& text) {
  const zelm_tool::Size size = zelm_tool::parseSize("--size", text);
  check(zelm_tool::parseSize("--size", written(size)) == size, "another size");
  zelm_tool::requireFrameSize("--size", size);
  check(size.width % 2 == 0 && size.height % 2 == 0, "an odd size");
  check(size.width - 2 <= 65532 && size.height - 2 <= 65532, "an impossible size");
}

void checkRegion(const std::string& text, const zelm_tool::Size& frame) {
  const zelm_tool::Region r = zelm_tool::parseRegion("--crop", text);
  check(zelm_tool::parseRegion("--crop", written(r)) == r, "another region");
  zelm_tool::requireInside("--crop", r, frame);
  check(uint64_t{r.x} + r.size.width <= frame.width &&
            uint64_t{r.y} + r.size.height <= frame.height,
        "a region outside");
}

}  // namespace

// The first byte says what the text should be.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  if (size == 0) return 0;
  const std::string text(reinterpret_cast<const char*>(bytes) + 1, size - 1);
  try {
    switch (bytes[0] % 4) {
      case 0:
        checkSize(text);
        break;
      case 1:
        checkRegion(text, {1280, 720});
        break;
      case 2:
        zelm_tool::parsePoint("--at", text);
        break;
      default: {
        const std::string_view suffix = zelm_tool::suffixOf(text);
        check(suffix.empty() ||
                  suffix.data() + suffix.size() == text.data() + text.size(),
              "a suffix from elsewhere");
        check(suffix.find('/') == suffix.npos && suffix.find('.') == suffix.npos,
              "more than a suffix");
        const zelm_tool::Format& format = zelm_tool::formatNamed(text);
        check(zelm_tool::findFormat(format.name) == &format, "another format");
      }
    }
  } catch (const zelm_tool::Failure& failure) {
    check(failure.what()[0] != '\0', "an empty message");
  }
  return 0;
}
