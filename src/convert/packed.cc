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
#include "simd/each_target.h"
#include "plane.h"
#include "simd/dispatch.h"
#include "simd/vector-inl.h"
#include "zelm_imageutil.h"

HWY_BEFORE_NAMESPACE();
namespace zelm {
namespace {
namespace HWY_NAMESPACE {

void uyvyLumaRow(uint8_t* luma, const uint8_t* from, size_t groups) {
  size_t done = 0;
#if ZELM_VECTORS
  done = inBlocks(groups, kBytes / 2, [&](size_t j) HWY_ATTR {
    store(loadPairs(from + 4 * j).second, luma + 2 * j);
  });
#endif
  for (size_t j = done; j < groups; ++j) {
    luma[2 * j] = from[4 * j + 1];
    luma[2 * j + 1] = from[4 * j + 3];
  }
}

void uyvyRow(uint8_t* luma, uint8_t* chroma, const uint8_t* from, size_t groups) {
  size_t done = 0;
#if ZELM_VECTORS
  done = inBlocks(groups, kBytes / 2, [&](size_t j) HWY_ATTR {
    const SplitPairs split = loadPairs(from + 4 * j);
    store(split.second, luma + 2 * j);
    store(swapPairs(split.first), chroma + 2 * j);
  });
#endif
  for (size_t j = done; j < groups; ++j) {
    luma[2 * j] = from[4 * j + 1];
    luma[2 * j + 1] = from[4 * j + 3];
    chroma[2 * j] = from[4 * j + 2];
    chroma[2 * j + 1] = from[4 * j];
  }
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

#if ZELM_VECTORS
struct RgbLanes {
  Vec<U16> r, g, b;
};

HWY_INLINE RgbLanes unpack565(Vec<U16> word) {
  const Vec<U16> low5 = hn::Set(u16, 0x1F), low6 = hn::Set(u16, 0x3F);
  const Vec<U16> r = hn::ShiftRight<11>(word);
  const Vec<U16> g = hn::And(hn::ShiftRight<5>(word), low6);
  const Vec<U16> b = hn::And(word, low5);
  return {hn::Or(hn::ShiftLeft<3>(r), hn::ShiftRight<2>(r)),
          hn::Or(hn::ShiftLeft<2>(g), hn::ShiftRight<4>(g)),
          hn::Or(hn::ShiftLeft<3>(b), hn::ShiftRight<2>(b))};
}

// 16-bit products do not hold the sums, so lanes are paired with each other and
// multiplied into 32 bits: (r, g) and (b, 1), the 1 for the rounding.
HWY_INLINE Vec<U16> lumaOf(const RgbLanes& c) {
  const Vec<I16> rgWeights = alternate(4897, 9611), bWeights = alternate(1876, 2048);
  const Vec<U16> one = hn::Set(u16, 1);
  const auto sum = [&](Vec<U16> rg, Vec<U16> b1) HWY_ATTR {
    return hn::ShiftRight<14>(hn::Add(pairProducts(asI16(rg), rgWeights),
                                      pairProducts(asI16(b1), bWeights)));
  };
  return asU16(
      narrowInBlocks(sum(hn::InterleaveLower(u16, c.r, c.g),
                         hn::InterleaveLower(u16, c.b, one)),
                     sum(hn::InterleaveUpper(u16, c.r, c.g),
                         hn::InterleaveUpper(u16, c.b, one))));
}

// 128 +- ((|c| + 2048) >> 14)
HWY_INLINE Vec<I32> centred(Vec<I32> c) {
  const Vec<I32> sign = hn::BroadcastSignBit(c);
  const Vec<I32> rounded =
      hn::ShiftRight<14>(hn::Add(hn::Abs(c), hn::Set(i32, 2048)));
  return hn::Add(hn::Sub(hn::Xor(rounded, sign), sign), hn::Set(i32, 128));
}

// Chroma of the even lanes: in each 32 bits V, U.
HWY_INLINE Vec<U16> chromaOf(const RgbLanes& c) {
  const Vec<U32> evenLanes = hn::Set(u32, 0xFFFF);
  const Vec<U32> r = hn::And(hn::BitCast(u32, c.r), evenLanes);
  const Vec<U32> g = hn::BitCast(u32, c.g);
  const Vec<U32> b = hn::And(hn::BitCast(u32, c.b), evenLanes);
  const Vec<I16> rg = asI16(hn::Or(r, hn::ShiftLeft<16>(g)));
  const Vec<I16> b0 = asI16(b);
  const Vec<I32> v = hn::Add(pairProducts(rg, alternate(8192, -6860)),
                             pairProducts(b0, alternate(-1332, 0)));
  const Vec<I32> u = hn::Add(pairProducts(rg, alternate(-2765, -5427)),
                             pairProducts(b0, alternate(8192, 0)));
  return asU16(hn::Or(centred(v), hn::ShiftLeft<16>(centred(u))));
}

HWY_INLINE RgbLanes load565(const uint8_t* from) {
  return unpack565(asU16(load(from)));
}
#endif  // ZELM_VECTORS

void rgb565LumaRow(uint8_t* luma, const uint8_t* from, size_t pixels) {
  size_t done = 0;
#if ZELM_VECTORS
  done = inBlocks(pixels, kBytes, [&](size_t x) HWY_ATTR {
    store(pack(lumaOf(load565(from + 2 * x)), lumaOf(load565(from + 2 * x + kBytes))),
          luma + x);
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
           store(pack(lumaOf(a), lumaOf(b)), luma + 2 * j);
           store(pack(chromaOf(a), chromaOf(b)), chroma + 2 * j);
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
  for (size_t k = 0; k < from.rows / 2; ++k) {
    convertRow(luma.row(2 * k), chroma.row(k), from.row(2 * k), groups);
    convertLumaRow(luma.row(2 * k + 1), from.row(2 * k + 1), groups);
  }
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
