// Reads and checks the sizes and regions of options.
#include "frame/geometry.h"

#include <algorithm>
#include <cctype>
#include <numeric>

#include "failure.h"

namespace zelm_tool {
namespace {

constexpr uint32_t kMaxSide = 65535;
constexpr char kFit[] = "fit:";
constexpr uint64_t kMaxTerm = 1000000000;  // of ratios

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

// over * side / under, rounded to the nearest even number that a side can have.
uint32_t evenSide(uint64_t over, uint64_t side, uint64_t under) {
  const uint64_t half = (over * side + under) / (2 * under);
  return static_cast<uint32_t>(std::clamp<uint64_t>(half, 1, kMaxSide / 2) * 2);
}

Size withWidth(uint32_t width, Size size) {
  return {width, evenSide(width, size.height, size.width)};
}

Size withHeight(uint32_t height, Size size) {
  return {evenSide(height, size.width, size.height), height};
}

Size largestInside(Size box, Size size) {
  const bool wide =
      uint64_t{size.width} * box.height >= uint64_t{size.height} * box.width;
  const Size fitted = wide ? withWidth(box.width, size) : withHeight(box.height, size);
  return {std::min(fitted.width, box.width), std::min(fitted.height, box.height)};
}

bool scanDecimal(const std::string& text, uint64_t* number) {
  *number = 0;
  for (char c : text) {
    if (!isdigit(static_cast<unsigned char>(c)) || *number > kMaxTerm) return false;
    *number = *number * 10 + static_cast<uint64_t>(c - '0');
  }
  return !text.empty() && *number <= kMaxTerm;
}

Ratio reduced(uint64_t over, uint64_t under) {
  const uint64_t common = std::gcd(over, under);
  Ratio ratio = {over / common, under / common};
  while (ratio.over > kMaxTerm || ratio.under > kMaxTerm) {
    ratio = {(ratio.over + 1) / 2, (ratio.under + 1) / 2};
  }
  return ratio;
}

// Names of rates that players write with decimals, but mean as fractions.
Ratio broadcastRate(Ratio decimal) {
  for (uint64_t rate : {24u, 30u, 48u, 60u, 120u}) {
    const uint64_t over = rate * 1000, under = 1001;
    const uint64_t a = decimal.over * under, b = over * decimal.under;
    const uint64_t difference = a > b ? a - b : b - a;
    if (difference * 10000 < b) return {over, under};
  }
  return decimal;
}

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

Point parsePoint(const std::string& option, const std::string& text) {
  uint32_t n[2];
  if (!scan(text, ",", n)) fail(option, " ", text, ": expected X,Y, for example 16,8");
  return {n[0], n[1]};
}

bool isFit(const std::string& resize) { return resize.rfind(kFit, 0) == 0; }

Size parseResize(const std::string& option, const std::string& text, Size size) {
  uint32_t n[2] = {};
  Size result;
  if (scan(text, "x", n)) {
    result = {n[0], n[1]};
  } else if (isFit(text) && scan(text.substr(sizeof kFit - 1), "x", n)) {
    requireFrameSize(option, {n[0], n[1]});
    result = largestInside({n[0], n[1]}, size);
  } else if (!text.empty() && text.back() == '%' &&
             scan(text.substr(0, text.size() - 1), "", n)) {
    result = {evenSide(n[0], size.width, 100), evenSide(n[0], size.height, 100)};
  } else if (!text.empty() && tolower(text.back()) == 'x' &&
             scan(text.substr(0, text.size() - 1), "", n)) {
    result = withWidth(n[0], size);
  } else if (!text.empty() && tolower(text.front()) == 'x' &&
             scan(text.substr(1), "", n)) {
    result = withHeight(n[0], size);
  } else {
    fail(option, " ", text, ": expected 640x360, 640x, x360, 50% or fit:640x640");
  }
  const bool exact = result.width == n[0] && result.height == n[1];
  if (n[0] == 0 && !exact) fail(option, " ", text, ": nothing would be left");
  requireFrameSize(option, result);
  return result;
}

void requireFrameSize(const std::string& what, Size size) {
  const Size good = {std::clamp(size.width, 1u, kMaxSide),
                     std::clamp(size.height, 1u, kMaxSide)};
  if (size != good) {
    fail(what, " ", size, ": width and height must be from 1 to ", kMaxSide, "; ", good,
         " would do");
  }
}

void requireInside(const std::string& what, const Region& region, Size frame) {
  requireFrameSize(what, region.size);
  if (uint64_t{region.x} + region.size.width > frame.width ||
      uint64_t{region.y} + region.size.height > frame.height) {
    fail(what, " ", region, " does not lie inside the frame of ", frame);
  }
}

bool parseRatio(const std::string& text, Ratio* ratio) {
  const size_t separator = text.find_first_of(":/");
  const size_t point = text.find('.');
  uint64_t over, under = 1;
  if (separator != std::string::npos) {
    if (!scanDecimal(text.substr(0, separator), &over) ||
        !scanDecimal(text.substr(separator + 1), &under)) {
      return false;
    }
    if (over == 0 || under == 0) return false;
    *ratio = {over, under};
    return true;
  }
  std::string digits = text;
  if (point != std::string::npos) {
    digits.erase(point, 1);
    for (size_t i = point + 1; i < text.size(); ++i) {
      if (under > kMaxTerm / 10) return false;
      under *= 10;
    }
  }
  if (!scanDecimal(digits, &over) || over == 0) return false;
  *ratio = reduced(over, under);
  if (under > 1) *ratio = broadcastRate(*ratio);
  return true;
}

std::string formatRatio(Ratio ratio) {
  return std::to_string(ratio.over) + ':' + std::to_string(ratio.under);
}

Ratio scaled(Ratio ratio, uint64_t a, uint64_t b) {
  if (ratio.over == 0 || ratio.under == 0) return {};
  return reduced(ratio.over * a, ratio.under * b);
}

}  // namespace zelm_tool
