// RGB565 (red in the high bits) to semi-planar 4:2:0 with pairs V, U: full-range BT.601
// with 14 fraction bits. Y is computed for every pixel, chroma for the upper left one
// of every 2 x 2. Both round with one eighth, 2048 / 2^14, not one half; chroma
// symmetrically about zero:
//   Y  = (4897 R + 9611 G + 1876 B + 2048) >> 14
//   Cr = 8192 R - 6860 G - 1332 B,  Cb = 8192 B - 5427 G - 2765 R
//   V, U = 128 +- ((|C| + 2048) >> 14)
//
// In vectors sums of products are kept as 256 h + l with both in 16 bits; l carries
// into h once, rounded down: Y = (h + l / 256) / 64. Factors in that form:
//   Y: 4897 = 19 * 256 + 33, 9611 = 38 * 256 - 117, 1876 = 7 * 256 + 84
//   V: 8192 = 32 * 256, -6860 = -27 * 256 + 52, -1332 = -5 * 256 - 52
//   U: -2765 = -11 * 256 + 51, -5427 = -21 * 256 - 51, 8192 = 32 * 256
// and 2048 = 8 * 256. With 2048 added, a sum of chroma that is negative gets 48 * 256
// more before it is rounded down, which rounds it away from zero.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "convert/rgb565_in.cc"
#include "simd/each_target.h"  // before all others

#include "convert/rgb565_in_neon-inl.h"
#include "convert/rgb565_in_x86-inl.h"
#include "plane.h"
#include "simd/dispatch.h"
#include "simd/streaming.h"
#include "simd/vector-inl.h"
#include "zelm_imageutil.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

struct Rgb {
  int r, g, b;
};

// Unpacks the fields of a word and widens them to 8 bits by repeating their top bits.
Rgb unpack565(const uint8_t* from) {
  const int word = from[0] | from[1] << 8;
  const int r = word >> 11, g = word >> 5 & 63, b = word & 31;
  return {r << 3 | r >> 2, g << 2 | g >> 4, b << 3 | b >> 2};
}

uint8_t lumaOf(Rgb c) {
  return static_cast<uint8_t>((4897 * c.r + 9611 * c.g + 1876 * c.b + 2048) >> 14);
}

uint8_t centred(int c) {
  return static_cast<uint8_t>(c >= 0 ? 128 + ((c + 2048) >> 14)
                                     : 128 - ((-c + 2048) >> 14));
}

template <bool kStream>
void rgb565LumaRow(uint8_t* luma, const uint8_t* from, size_t pixels) {
  size_t done = 0;
#if ZELM_VECTORS
  done = inBlocks(pixels, kBytes, [&](size_t x) HWY_ATTR {
    putLuma<kStream>(luma + x, load565(from + 2 * x), load565(from + 2 * x + kBytes));
  });
#endif
  for (size_t x = done; x < pixels; ++x) luma[x] = lumaOf(unpack565(from + 2 * x));
}

// An odd last pixel forms a pair with itself, whose second luma is not stored here.
template <bool kStream>
void rgb565Row(uint8_t* luma, uint8_t* chroma, const uint8_t* from, size_t pixels) {
  size_t done = 0;
#if ZELM_VECTORS
  done = 2 * inBlocks(pixels / 2, kBytes / 2, [&](size_t j) HWY_ATTR {
           const RgbLanes a = load565(from + 4 * j), b = load565(from + 4 * j + kBytes);
           putLuma<kStream>(luma + 2 * j, a, b);
           putChroma<kStream>(chroma + 2 * j, a, b);
         });
#endif
  for (size_t x = done; x < pixels; ++x) {
    const Rgb c = unpack565(from + 2 * x);
    luma[x] = lumaOf(c);
    if (x % 2 != 0) continue;
    chroma[x] = centred(8192 * c.r - 6860 * c.g - 1332 * c.b);
    chroma[x + 1] = centred(8192 * c.b - 5427 * c.g - 2765 * c.r);
  }
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#include "simd/vbmi_pass.h"

#if HWY_ONCE
extern "C" void convRGB565_YUV420SPVU(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  const Region from = packedRegion(*src, 2);
  const Region luma = lumaRegion(*dst), chroma = chromaRegionBehindLuma(*dst);
  const size_t pixels = from.columns;
  const bool stream = worthStreaming(7 * from.rows * pixels / 2);
  const auto convertRow = stream ? ZELM_KERNEL_FOR(rgb565Row<true>, pixels)
                                 : ZELM_KERNEL_FOR(rgb565Row<false>, pixels);
  const auto convertLumaRow = stream ? ZELM_KERNEL_FOR(rgb565LumaRow<true>, pixels)
                                     : ZELM_KERNEL_FOR(rgb565LumaRow<false>, pixels);
  for (size_t y = 0; y < from.rows; ++y) {
    if (y % 2 == 0) {
      convertRow(luma.row(y), chroma.row(y / 2), from.row(y), pixels);
    } else {
      convertLumaRow(luma.row(y), from.row(y), pixels);
    }
    // An odd last column is written twice.
    if (pixels % 2 != 0) luma.row(y)[pixels] = luma.row(y)[pixels - 1];
  }
  if (stream) finishStreaming();
}
#endif  // HWY_ONCE
