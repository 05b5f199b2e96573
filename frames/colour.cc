// The weights of colour conversions, computed from the matrices' constants. The numbers
// to be rounded lie far enough from halves for any order of computation.
#include "frames/colour.h"

namespace zelm {
namespace {

struct Description {
  double kr, kg, kb;    // what R, G and B are of luma
  int offset;           // of luma
  double luma, chroma;  // what a step of luma (chroma) is of one in full range
};

// Kr and Kb of ITU-R BT.601, BT.709 and BT.2020.
constexpr double kConstants[3][2] = {
    {0.299, 0.114}, {0.2126, 0.0722}, {0.2627, 0.0593}};

constexpr Description describe(uint32_t colour) {
  const double kr = kConstants[colour / 2][0], kb = kConstants[colour / 2][1];
  const bool limited = colour % 2 != 0;
  return {kr,
          1 - kr - kb,
          kb,
          limited ? 16 : 0,
          limited ? 255.0 / 219 : 1,
          limited ? 255.0 / 224 : 1};
}

constexpr int rounded(double value) {
  const double scaled = value * (1 << 14);
  return scaled < 0 ? -static_cast<int>(0.5 - scaled) : static_cast<int>(scaled + 0.5);
}

// The factors of U and V in R, G and B.
struct Factors {
  double rv, gu, gv, bu;
};

constexpr Factors factorsOf(const Description& d) {
  const double rv = 2 * (1 - d.kr), bu = 2 * (1 - d.kb);
  return {rv, bu * d.kb / d.kg, rv * d.kr / d.kg, bu};
}

constexpr YuvToRgb yuvToRgbOf(const Description& d, bool bt601Full) {
  const Factors f = factorsOf(d);
  const int bu = rounded(d.chroma * f.bu);
  return {d.offset, rounded(d.luma), rounded(d.chroma * f.rv), rounded(d.chroma * f.gu),
          rounded(d.chroma * f.gv),
          // A weight above 16 bits is even, so that half of it can be used.
          bu < 1 << 15 ? bu : 2 * rounded(d.chroma * f.bu / 2), bt601Full};
}

constexpr RgbToYuv rgbToYuvOf(const Description& d) {
  const int sum = rounded(1 / d.luma), r = rounded(d.kr / d.luma),
            b = rounded(d.kb / d.luma), half = rounded(0.5 / d.chroma);
  const int ur = rounded(-0.5 / d.chroma * d.kr / (1 - d.kb));
  const int vb = rounded(-0.5 / d.chroma * d.kb / (1 - d.kr));
  return {
      d.offset, {r, sum - r - b, b}, {ur, -ur - half, half}, {half, -half - vb, vb}};
}

constexpr YuvToYuv yuvToYuvOf(const Description& s, const Description& t) {
  const Factors f = factorsOf(s), g = factorsOf(t);
  // The luma of the destination that a step of the source's U or V makes.
  const double u = t.kb * f.bu - t.kg * f.gu, v = t.kr * f.rv - t.kg * f.gv;
  const double luma = s.chroma / t.luma, chroma = s.chroma / t.chroma;
  return {s.offset,
          t.offset,
          rounded(s.luma / t.luma),
          rounded(luma * u),
          rounded(luma * v),
          rounded(chroma * (f.bu - u) / g.bu),
          rounded(-chroma * v / g.bu),
          rounded(-chroma * u / g.rv),
          rounded(chroma * (f.rv - v) / g.rv)};
}

constexpr YuvToRgb kCore = yuvToRgbOf(describe(ZELM_BT601_FULL), true);
static_assert(kCore.y == 1 << 14 && kCore.rv == 2 * 11485 && kCore.gu == 2 * 2819 &&
                  kCore.gv == 2 * 5850 && kCore.bu == 2 * 14516,
              "the weights of the other library");

}  // namespace

YuvToRgb yuvToRgb(uint32_t colour) {
  return yuvToRgbOf(describe(colour), colour == ZELM_BT601_FULL);
}

RgbToYuv rgbToYuv(uint32_t colour) { return rgbToYuvOf(describe(colour)); }

YuvToYuv yuvToYuv(uint32_t from, uint32_t to) {
  return yuvToYuvOf(describe(from), describe(to));
}

}  // namespace zelm
