// Reads and checks the sizes and regions of options.
#include "geometry.h"

#include <algorithm>
#include <cctype>

#include "failure.h"

namespace zelm_tool {
namespace {

constexpr uint32_t kMaxSide = 65534;

// Reads numbers with the separators between them; false unless all of `text` is
// used. Six digits are more than any side or position needs.
bool scan(const std::string& text, const std::string& separators, uint32_t* numbers) {
  size_t at = 0;
  for (size_t i = 0; i <= separators.size(); ++i) {
    const size_t start = at;
    numbers[i] = 0;
    while (at < text.size() && isdigit(static_cast<unsigned char>(text[at]))) {
      numbers[i] = numbers[i] * 10 + static_cast<uint32_t>(text[at++] - '0');
      if (at - start > 6) return false;
    }
    if (at == start) return false;
    if (i < separators.size()) {
      if (at == text.size() || tolower(text[at]) != separators[i]) return false;
      ++at;
    }
  }
  return at == text.size();
}

uint32_t evenSide(uint32_t side) {
  return std::clamp(side & ~1u, uint32_t{2}, kMaxSide);
}

bool isOdd(uint32_t value) { return value % 2 != 0; }

}  // namespace

std::ostream& operator<<(std::ostream& out, Size size) {
  return out << size.width << 'x' << size.height;
}

std::ostream& operator<<(std::ostream& out, const Region& region) {
  return out << region.x << ',' << region.y << ',' << region.size;
}

Size parseSize(const std::string& option, const std::string& text) {
  uint32_t n[2];
  if (!scan(text, "x", n)) {
    fail(option, " ", text, ": expected WIDTHxHEIGHT, for example 640x480");
  }
  return {n[0], n[1]};
}

Region parseRegion(const std::string& option, const std::string& text) {
  uint32_t n[4];
  if (!scan(text, ",,x", n)) {
    fail(option, " ", text, ": expected X,Y,WIDTHxHEIGHT, for example 16,8,320x240");
  }
  return {n[0], n[1], {n[2], n[3]}};
}

Region parsePoint(const std::string& option, const std::string& text) {
  uint32_t n[2];
  if (!scan(text, ",", n)) fail(option, " ", text, ": expected X,Y, for example 16,8");
  return {n[0], n[1], {}};
}

void requireFrameSize(const std::string& what, Size size) {
  const Size good = {evenSide(size.width), evenSide(size.height)};
  if (size != good) {
    fail(what, " ", size, ": width and height must be even and from 2 to ", kMaxSide,
         " (a chroma sample serves 2x2 pixels); ", good, " would do");
  }
}

void requireInside(const std::string& what, const Region& region, Size frame) {
  if (isOdd(region.x) || isOdd(region.y) || isOdd(region.size.width) ||
      isOdd(region.size.height) || region.size.width == 0 || region.size.height == 0) {
    const Region good = {region.x & ~1u,
                         region.y & ~1u,
                         {evenSide(region.size.width), evenSide(region.size.height)}};
    fail(what, " ", region, ": position and size must be even, the size not 0; ", good,
         " would do");
  }
  if (uint64_t{region.x} + region.size.width > frame.width ||
      uint64_t{region.y} + region.size.height > frame.height) {
    fail(what, " ", region, " does not lie inside the frame of ", frame);
  }
}

}  // namespace zelm_tool
