// Parses the texts in the program's options and the headers of Y4M streams: the result
// is a value or one kind of exception.
#include <stdint.h>
#include <string.h>

#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "commands/edit.h"
#include "failure.h"
#include "finding.h"
#include "frame/colour.h"
#include "frame/formats.h"
#include "frame/geometry.h"
#include "frame/y4m.h"
#include "input.h"
#include "input/foreign.h"
#include "output/target.h"

namespace {

using fuzz::check;
using fuzz::Input;
using zelm_tool::Ratio;
using zelm_tool::Size;

constexpr uint64_t kMostSide = 65535;
constexpr uint64_t kMostTerm = 1000000000;

template <class Value>
std::string written(const Value& value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

bool isFrameSize(Size size) {
  return size.width - 1 < kMostSide && size.height - 1 < kMostSide;
}

bool isInside(const zelm_tool::Region& r, Size frame) {
  return uint64_t{r.x} + r.size.width <= frame.width &&
         uint64_t{r.y} + r.size.height <= frame.height;
}

Size anySize(Input* input) {
  return {1 + input->word() % uint32_t{kMostSide},
          1 + input->word() % uint32_t{kMostSide}};
}

// A text that is understood has the same value after it is written and parsed again.
void checkSize(const std::string& text) {
  const Size size = zelm_tool::parseSize("--size", text);
  check(zelm_tool::parseSize("--size", written(size)) == size, "another size");
  zelm_tool::requireFrameSize("--size", size);
  check(isFrameSize(size), "an impossible size");
}

void checkRegion(const std::string& text) {
  const zelm_tool::Region r = zelm_tool::parseRegion("--crop", text);
  check(zelm_tool::parseRegion("--crop", written(r)) == r, "another region");
  zelm_tool::requireInside("--crop", r, {1280, 720});
  check(isInside(r, {1280, 720}) && isFrameSize(r.size), "a region outside");
}

void checkResize(Size size, const std::string& text) {
  const Size result = zelm_tool::parseResize("--resize", text, size);
  check(isFrameSize(result), "an impossible size");
  if (!zelm_tool::isFit(text)) return;
  const Size box = zelm_tool::parseSize("fit", text.substr(4));
  check(result.width <= box.width && result.height <= box.height, "does not fit");
  check(result.width == box.width || result.height == box.height, "not the largest");
}

void checkRatio(const std::string& text, uint64_t a, uint64_t b) {
  Ratio ratio, again;
  if (!zelm_tool::parseRatio(text, &ratio)) return;
  check(ratio.over - 1 < kMostTerm && ratio.under - 1 < kMostTerm, "a term too large");
  check(zelm_tool::parseRatio(formatRatio(ratio), &again) && ratio.over == again.over &&
            ratio.under == again.under,
        "another ratio");
  const Ratio product = scaled(ratio, a, b);
  check(product.over - 1 < kMostTerm && product.under - 1 < kMostTerm,
        "no ratio after scaling");
}

void checkColour(const std::string& range, const std::string& matrix) {
  const zelm_tool::ColourRequest asked = zelm_tool::parseColour("--", {range, matrix});
  const zelm_tool::InputColour colour = zelm_tool::chooseInputColour(
      asked, {}, zelm_tool::Range::kLimited, zelm_tool::Matrix::kBt2020);
  check(colour.colour <= ZELM_BT2020_LIMITED, "an unknown colour");
  check(colour.rangeAssumed != asked.range.has_value(), "a range assumed wrongly");
  check(colour.matrixAssumed != asked.matrix.has_value(), "a matrix assumed wrongly");
  check(!asked.range || zelm_tool::rangeOf(colour.colour) == *asked.range,
        "another range");
  check(!asked.matrix || zelm_tool::matrixOf(colour.colour) == *asked.matrix,
        "another matrix");
}

void checkNames(const std::string& text) {
  const std::string suffix = zelm_tool::suffixOf(text);
  check(suffix.size() <= text.size() &&
            zelm_tool::lowerCase(text.substr(text.size() - suffix.size())) == suffix,
        "a suffix from elsewhere");
  check(suffix.find_first_of("/.") == suffix.npos, "more than a suffix");
  const zelm_tool::Format& format = zelm_tool::formatNamed(text);
  check(zelm_tool::findFormat(format.name) == &format, "another format");
}

// A header is the same after it is written and read, also after it was changed.
void checkHeader(const std::string& line, uint32_t colour, Size size) {
  zelm_tool::Y4mHeader header("input", line);
  check(isFrameSize(header.size()), "an impossible size");
  check(fitsY4m(header.format()), "an impossible format");
  check(zelm_tool::Y4mHeader("again", header.line()) == header, "another header");
  zelm_tool::FrameKind kind;
  kind.format = &zelm_tool::formatOf(colour % 3 == 0   ? ZELM_I420
                                     : colour % 3 == 1 ? ZELM_I422
                                                       : ZELM_GRAY8);
  kind.size = size;
  kind.colour = colour % 6;
  header.setFrames(kind);
  header.setRate({30000, 1001});
  if (header.aspect().over != 0) header.setAspect(scaled(header.aspect(), 3, 4));
  const zelm_tool::Y4mHeader again("again", header.line());
  check(again == header && again.size() == size, "another header after changes");
  check(&again.format() == kind.format, "another format");
  check(again.rate().over == 30000 && again.rate().under == 1001, "another rate");
  const zelm_tool::InputColour read = zelm_tool::chooseInputColour(
      {}, again.colour(), zelm_tool::Range::kLimited, zelm_tool::usualMatrix(size));
  check(!read.rangeAssumed &&
            zelm_tool::rangeOf(read.colour) == zelm_tool::rangeOf(kind.colour),
        "another range");
  check(kind.format->code == ZELM_GRAY8 || read.colour == kind.colour,
        "another colour");
}

void checkEdit(const std::vector<std::string>& lines, Size source) {
  zelm_tool::EditOptions options;
  std::string* const texts[] = {&options.crop, &options.resize, &options.canvas,
                                &options.at,   &options.rotate, &options.filter};
  for (size_t i = 0; i < lines.size() && i < std::size(texts); ++i)
    *texts[i] = lines[i];
  options.mirror = source.width % 2 == 1;
  const zelm_tool::Edit edit = zelm_tool::chooseEdit(options, source);
  check(isInside(edit.crop, source), "a region outside of the source");
  check(isFrameSize(edit.canvas) && isFrameSize(edit.picture), "an impossible size");
  check(isInside({edit.at.x, edit.at.y, edit.picture}, edit.canvas),
        "a picture outside of the canvas");
  check(edit.edit.turn % 90 == 0 && edit.edit.turn < 360, "an unknown turn");
  check(edit.edit.lumaFilter <= ZELM_CUBIC && edit.edit.chromaFilter <= ZELM_CUBIC,
        "an unknown filter");
  const Ratio aspect = edit.aspect({4, 3});
  check(aspect.over - 1 < kMostTerm && aspect.under - 1 < kMostTerm, "no aspect");
}

void checkTarget(const std::vector<std::string>& lines, uint64_t number) {
  zelm_tool::OutputOptions options;
  options.path = lines[0];
  if (lines.size() > 1) options.to = lines[1];
  if (lines.size() > 2) options.fps = lines[2];
  const zelm_tool::Target target = zelm_tool::chooseTarget(options, {});
  check(target.format != nullptr, "no format");
  if (target.numbered) {
    const std::string name = zelm_tool::numberedName(target, number);
    check(name.find(std::to_string(number)) != name.npos, "a name without its number");
    check(name.size() < target.path.size() + 100, "a name too long");
  }
  zelm_tool::FrameKind kind;
  kind.format = target.format;
  kind.size = {8, 4};
  describeY4m({}, options, target, kind);
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines(1);
  for (char c : text) {
    if (c == '\n') {
      lines.emplace_back();
    } else {
      lines.back() += c;
    }
  }
  return lines;
}

constexpr int kHeader = 2, kStart = 9;

void checkText(int kind, Input* input) {
  // Two sizes first; what follows is text.
  const Size size = kind < 5 ? anySize(input) : Size{};
  std::string text(reinterpret_cast<const char*>(input->rest()), input->left());
  // Those of files may hold zeros, those of the command line end there.
  if (kind != kHeader && kind != kStart) text.resize(strlen(text.c_str()));
  switch (kind) {
    case 0:
      return checkResize(size, text);
    case 1:
      return checkEdit(linesOf(text), size);
    case kHeader:
      return checkHeader(text, size.height, size);
    case 3:
      return checkTarget(linesOf(text), size.width);
    case 4:
      return checkRatio(text, uint64_t{size.width} * size.height, size.width);
    case 5:
      return checkSize(text);
    case 6:
      return checkRegion(text);
    case 7:
      zelm_tool::parsePoint("--at", text);
      return;
    case 8: {
      const std::vector<std::string> lines = linesOf(text);
      return checkColour(lines.front(), lines.back());
    }
    case kStart:
      return zelm_tool::refuseForeign("input", text);
    default:
      return checkNames(text);
  }
}

}  // namespace

// The first byte says what the text should be.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  Input input(bytes, size);
  try {
    checkText(input.below(11), &input);
  } catch (const zelm_tool::Failure& failure) {
    check(failure.what()[0] != '\0', "an empty message");
  }
  return 0;
}
