// UYVY and RGB565 to semi-planar 4:2:0 with pairs V, U.
//
// UYVY: bytes are copied; chroma is that of the upper row of every two.
// RGB565 (red in the high bits): full-range BT.601 with 14 fraction bits. Y is
// computed for every pixel, chroma for the upper left of every 2 x 2. Both round
// with one eighth, 2048 / 2^14, not one half; chroma symmetrically about zero:
//   Y  = (4897 R + 9611 G + 1876 B + 2048) >> 14
//   Cr = 8192 R - 6860 G - 1332 B,  Cb = 8192 B - 5427 G - 2765 R
//   V, U = 128 +- ((|C| + 2048) >> 14)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "convert/packed.cc"
#include "simd/each_target.h"  // before all others

#include "plane.h"
#include "simd/dispatch.h"
#include "simd/streaming.h"
#include "simd/vector-inl.h"
#include "zelm_imageutil.h"

HWY_BEFORE_NAMESPACE();
namespace zelm {
namespace {
namespace HWY_NAMESPACE {

template <bool kStream>
HWY_INLINE void splitLumaRow(uint8_t* luma, const uint8_t* from, size_t groups) {
  size_t done = 0;
#if ZELM_VECTORS
  done = inBlocks(groups, kBytes / 2, [&](size_t j) HWY_ATTR {
    store<kStream>(loadPairs(from + 4 * j).second, luma + 2 * j);
  });
#endif
  for (size_t j = done; j < groups; ++j) {
    luma[2 * j] = from[4 * j + 1];
    luma[2 * j + 1] = from[4 * j + 3];
  }
}

template <bool kStream>
HWY_INLINE void splitRow(uint8_t* luma, uint8_t* chroma, const uint8_t* from,
                         size_t groups) {
  size_t done = 0;
#if ZELM_VECTORS
  done = inBlocks(groups, kBytes / 2, [&](size_t j) HWY_ATTR {
    const SplitPairs split = loadPairs(from + 4 * j);
    store<kStream>(split.second, luma + 2 * j);
    store<kStream>(swapPairs(split.first), chroma + 2 * j);
  });
#endif
  for (size_t j = done; j < groups; ++j) {
    luma[2 * j] = from[4 * j + 1];
    luma[2 * j + 1] = from[4 * j + 3];
    chroma[2 * j] = from[4 * j + 2];
    chroma[2 * j + 1] = from[4 * j];
  }
}

void uyvyLumaRow(uint8_t* luma, const uint8_t* from, size_t groups, bool stream) {
  (stream ? splitLumaRow<true> : splitLumaRow<false>)(luma, from, groups);
}
void uyvyRow(uint8_t* luma, uint8_t* chroma, const uint8_t* from, size_t groups,
             bool stream) {
  (stream ? splitRow<true> : splitRow<false>)(luma, chroma, from, groups);
}

struct Rgb {
  int r, g, b;
};

// The fields of a word, widened to 8 bits by repeating their top bits.
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

// Sums of products are kept as 256 h + l with both in 16 bits; l carries into h once,
// rounded down: Y = (h + l / 256) / 64. Factors in that form:
//   Y: 4897 = 19 * 256 + 33, 9611 = 38 * 256 - 117, 1876 = 7 * 256 + 84
//   V: 8192 = 32 * 256, -6860 = -27 * 256 + 52, -1332 = -5 * 256 - 52
//   U: -2765 = -11 * 256 + 51, -5427 = -21 * 256 - 51, 8192 = 32 * 256
// and 2048 = 8 * 256. Rounding chroma away from zero is (C + 2048) >> 14 for positive
// and (C - 1 + 2048 + 48 * 256) >> 14 for negative sums; 128 and the 2048 are 8200 in
// h.
#if ZELM_NEON
// 8 pixels.
struct RgbLanes {
  uint8x8_t r, g, b;
};

// Each field is moved to the top of a byte, and its top bits are put in below it.
HWY_INLINE RgbLanes load565(const uint8_t* from) {
  const uint16x8_t word = vreinterpretq_u16_u8(vld1q_u8(from));
  const uint8x8_t r = vshrn_n_u16(word, 8), g = vshrn_n_u16(word, 3);
  const uint8x8_t b = vmovn_u16(vshlq_n_u16(word, 3));
  return {vsri_n_u8(r, r, 5), vsri_n_u8(g, g, 6), vsri_n_u8(b, b, 5)};
}

HWY_INLINE int16x8_t product(uint8x8_t a, uint8_t factor) {
  return vreinterpretq_s16_u16(vmull_u8(a, vdup_n_u8(factor)));
}
HWY_INLINE int16x8_t plusProduct(int16x8_t sum, uint8x8_t a, uint8_t factor) {
  return vreinterpretq_s16_u16(
      vmlal_u8(vreinterpretq_u16_s16(sum), a, vdup_n_u8(factor)));
}
HWY_INLINE int16x8_t minusProduct(int16x8_t sum, uint8x8_t a, uint8_t factor) {
  return vreinterpretq_s16_u16(
      vmlsl_u8(vreinterpretq_u16_s16(sum), a, vdup_n_u8(factor)));
}

HWY_INLINE uint8x8_t lumaOf(const RgbLanes& c) {
  int16x8_t high = vdupq_n_s16(8);
  high = plusProduct(plusProduct(plusProduct(high, c.r, 19), c.g, 38), c.b, 7);
  const int16x8_t low = minusProduct(plusProduct(product(c.r, 33), c.b, 84), c.g, 117);
  return vreinterpret_u8_s8(vshrn_n_s16(vsraq_n_s16(high, low, 8), 6));
}

// C = 256 high + low, with 8200 in high.
HWY_INLINE uint8x8_t centred(int16x8_t high, int16x8_t low) {
  const int16x8_t sum = vsraq_n_s16(high, low, 8);
  const int16x8_t negative = vreinterpretq_s16_u16(vcltq_s16(sum, vdupq_n_s16(8200)));
  const int16x8_t lower = vsraq_n_s16(high, vaddq_s16(low, negative), 8);
  return vreinterpret_u8_s8(
      vshrn_n_s16(vaddq_s16(lower, vandq_s16(negative, vdupq_n_s16(48))), 6));
}

HWY_INLINE void putLuma(uint8_t* luma, const RgbLanes& a, const RgbLanes& b) {
  vst1_u8(luma, lumaOf(a));
  vst1_u8(luma + 8, lumaOf(b));
}

// Of the first pixel of each two.
HWY_INLINE void putChroma(uint8_t* chroma, const RgbLanes& a, const RgbLanes& b) {
  const uint8x8_t red = vuzp_u8(a.r, b.r).val[0], green = vuzp_u8(a.g, b.g).val[0];
  const uint8x8_t blue = vuzp_u8(a.b, b.b).val[0];
  const auto difference = [](uint8x8_t x, uint8x8_t y) HWY_ATTR {
    return vreinterpretq_s16_u16(vsubl_u8(x, y));
  };
  const int16x8_t middle = vdupq_n_s16(8200);
  const int16x8_t v =
      minusProduct(minusProduct(plusProduct(middle, red, 32), green, 27), blue, 5);
  const int16x8_t u =
      minusProduct(minusProduct(plusProduct(middle, blue, 32), red, 11), green, 21);
  const uint8x8x2_t vu = {{centred(v, vmulq_n_s16(difference(green, blue), 52)),
                           centred(u, vmulq_n_s16(difference(red, green), 51))}};
  vst2_u8(chroma, vu);
}
#elif ZELM_VECTORS
// Two 8-bit values per 16-bit lane: R below G, and B below a constant factor.
struct RgbLanes {
  Vec<U8> rg, b1;
};
constexpr uint8_t kConstant = 200;

// A field is shifted to the top of its lane and multiplied: the high half of
// (field << 11) * 264 is field * 33 / 4, which repeats the top bits of 5 bits, and that
// of (field << 5) * 8320 is field * 65 / 16, which does so for 6.
HWY_INLINE RgbLanes load565(const uint8_t* from) {
  const Vec<U16> word = asU16(load(from)), by5 = hn::Set(u16, 264);
  const Vec<U16> r = hn::MulHigh(hn::And(word, hn::Set(u16, 0xF800)), by5);
  const Vec<U16> g =
      hn::MulHigh(hn::And(word, hn::Set(u16, 0x07E0)), hn::Set(u16, 8320));
  const Vec<U16> b = hn::MulHigh(hn::ShiftLeft<11>(word), by5);
  return {asU8(hn::Or(r, hn::ShiftLeft<8>(g))),
          asU8(hn::Or(b, hn::Set(u16, kConstant << 8)))};
}

// Weights for a pair of bytes in every lane, or in lanes of even and odd place.
HWY_INLINE Vec<I8> weights(int first, int second) {
  const int pair = (first & 0xFF) | second * 256;
  return hn::BitCast(i8, hn::Set(i16, static_cast<int16_t>(pair)));
}
HWY_INLINE Vec<I8> weights(int evenFirst, int evenSecond, int oddFirst, int oddSecond) {
  return hn::BitCast(i8, hn::OddEven(asI16(weights(oddFirst, oddSecond)),
                                     asI16(weights(evenFirst, evenSecond))));
}

HWY_INLINE Vec<U16> lumaOf(const RgbLanes& c) {
  const Vec<I16> high =
      hn::Add(pairProducts8(c.rg, weights(19, 38)), pairProducts8(c.b1, weights(7, 0)));
  const Vec<I16> low = hn::Add(pairProducts8(c.rg, weights(33, -117)),
                               pairProducts8(c.b1, weights(84, 0)));
  const Vec<I16> rounded = hn::Add(high, hn::Set(i16, 8));
  return asU16(hn::ShiftRight<6>(hn::Add(rounded, hn::ShiftRight<8>(low))));
}

// Chroma of the even lanes: V in even lanes, U in odd ones.
HWY_INLINE Vec<U16> chromaOf(const RgbLanes& c) {
  alignas(16) static constexpr uint8_t kEvenLanes[16] = {0, 1, 0, 1, 4,  5,  4,  5,
                                                         8, 9, 8, 9, 12, 13, 12, 13};
  const Vec<U8> rg = pickInBlocks(c.rg, everyBlock(kEvenLanes));
  const Vec<U8> b1 = pickInBlocks(c.b1, everyBlock(kEvenLanes));
  constexpr int kOffset = 41;
  static_assert(kConstant * kOffset == 128 * 64 + 8, "offset and rounding");
  const Vec<I16> high = hn::Add(pairProducts8(rg, weights(32, -27, -11, -21)),
                                pairProducts8(b1, weights(-5, kOffset, 32, kOffset)));
  const Vec<I16> low = hn::Add(pairProducts8(rg, weights(0, 52, 51, -51)),
                               pairProducts8(b1, weights(-52, 0, 0, 0)));
  const Vec<I16> sum = hn::Add(high, hn::ShiftRight<8>(low));
  const Vec<I16> negative =
      hn::VecFromMask(i16, hn::Lt(sum, hn::Set(i16, kConstant * kOffset)));
  const Vec<I16> lower = hn::Add(high, hn::ShiftRight<8>(hn::Add(low, negative)));
  return asU16(hn::ShiftRight<6>(hn::Add(lower, hn::And(negative, hn::Set(i16, 48)))));
}

HWY_INLINE void putLuma(uint8_t* luma, const RgbLanes& a, const RgbLanes& b) {
  store(pack(lumaOf(a), lumaOf(b)), luma);
}
HWY_INLINE void putChroma(uint8_t* chroma, const RgbLanes& a, const RgbLanes& b) {
  store(pack(chromaOf(a), chromaOf(b)), chroma);
}
#endif  // ZELM_VECTORS

void rgb565LumaRow(uint8_t* luma, const uint8_t* from, size_t pixels) {
  size_t done = 0;
#if ZELM_VECTORS
  done = inBlocks(pixels, kBytes, [&](size_t x) HWY_ATTR {
    putLuma(luma + x, load565(from + 2 * x), load565(from + 2 * x + kBytes));
  });
#endif
  for (size_t x = done; x < pixels; ++x) luma[x] = lumaOf(unpack565(from + 2 * x));
}

// An odd last pixel forms a pair with itself; its luma is not stored here.
void rgb565Row(uint8_t* luma, uint8_t* chroma, const uint8_t* from, size_t pixels) {
  size_t done = 0;
#if ZELM_VECTORS
  done = 2 * inBlocks(pixels / 2, kBytes / 2, [&](size_t j) HWY_ATTR {
           const RgbLanes a = load565(from + 4 * j), b = load565(from + 4 * j + kBytes);
           putLuma(luma + 2 * j, a, b);
           putChroma(chroma + 2 * j, a, b);
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

}  // namespace HWY_NAMESPACE
}  // namespace
}  // namespace zelm
HWY_AFTER_NAMESPACE();

#include "simd/vbmi_pass.h"

#if HWY_ONCE
namespace zelm {
namespace {

// The chroma plane follows a luma plane of width x height, wherever uvOffset says.
Region chromaBehindLuma(const ImageStruct& dst) {
  return chromaRegionAt(dst, static_cast<size_t>(lumaBytes(dst)));
}

}  // namespace
}  // namespace zelm

extern "C" void convYUV422IUYVY_YUV420SPVU(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  const Region from = packedRegion(*src, 2);
  const Region luma = lumaRegion(*dst), chroma = chromaBehindLuma(*dst);
  const auto convertRow = ZELM_KERNEL(uyvyRow);
  const auto convertLumaRow = ZELM_KERNEL(uyvyLumaRow);
  const size_t groups = from.columns / 2;
  const bool stream = worthStreaming(7 * from.rows * groups);
  for (size_t k = 0; k < from.rows / 2; ++k) {
    convertRow(luma.row(2 * k), chroma.row(k), from.row(2 * k), groups, stream);
    convertLumaRow(luma.row(2 * k + 1), from.row(2 * k + 1), groups, stream);
  }
  if (stream) finishStreaming();
}

extern "C" void convRGB565_YUV420SPVU(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  const Region from = packedRegion(*src, 2);
  const Region luma = lumaRegion(*dst), chroma = chromaBehindLuma(*dst);
  const auto convertRow = ZELM_KERNEL(rgb565Row);
  const auto convertLumaRow = ZELM_KERNEL(rgb565LumaRow);
  const size_t pixels = from.columns;
  for (size_t y = 0; y < from.rows; ++y) {
    if (y % 2 == 0) {
      convertRow(luma.row(y), chroma.row(y / 2), from.row(y), pixels);
    } else {
      convertLumaRow(luma.row(y), from.row(y), pixels);
    }
    // An odd last column is written twice.
    if (pixels % 2 != 0) luma.row(y)[pixels] = luma.row(y)[pixels - 1];
  }
}
#endif  // HWY_ONCE
