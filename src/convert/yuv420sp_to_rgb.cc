// Semi-planar 4:2:0 to packed RGB, full-range BT.601.
//
// With SU and SV the sums of four chroma samples (a sample that stands alone or in
// a pair is repeated), u = SU - 512 and v = SV - 512, the rule is
//   R = clamp(Y + ((11485 v + 2^14) >> 15))             1.402
//   G = clamp(Y + ((-2819 u - 5850 v + 2^14) >> 15))    0.344, 0.714
//   B = clamp(Y + ((14516 u + 2^14) >> 15))             1.772
// Chroma is interpolated in opposite directions: the upper luma row of a chroma row
// takes V between it and the row above, the lower one U between it and the row
// below; the right pixel of a pair takes both between it and the next pair. The
// region's first and last chroma row and pair stand without a partner.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "convert/yuv420sp_to_rgb.cc"
#include "simd/each_target.h"
#include "plane.h"
#include "simd/dispatch.h"
#include "simd/vector-inl.h"
#include "zelm_imageutil.h"

#ifndef ZELM_SRC_CONVERT_YUV420SP_TO_RGB_CHROMA_ROWS
#define ZELM_SRC_CONVERT_YUV420SP_TO_RGB_CHROMA_ROWS
namespace zelm {
namespace {

// The chroma of one luma row: the first bytes of the pairs are averaged with those of
// `firstPartner`, the second ones with those of `secondPartner`.
struct ChromaRows {
  const uint8_t* own;
  const uint8_t* firstPartner;
  const uint8_t* secondPartner;
  bool uFirst;
};

}  // namespace
}  // namespace zelm
#endif

HWY_BEFORE_NAMESPACE();
namespace zelm {
namespace {
namespace HWY_NAMESPACE {

HWY_INLINE uint8_t clampToByte(int value) {
  return static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
}

#if ZELM_VECTORS
// The addend of each channel for 16-bit lanes of u and v. The roundings of R and B
// are those of the multiplication. For G the coefficients are split, 256 h + l, and
// with 64 = 2^14 / 256 everything stays in 16 bits.
struct Addends {
  Vec<I16> r, g, b;
};
HWY_INLINE Addends addends(Vec<I16> u, Vec<I16> v) {
  const auto times = [](Vec<I16> a, int16_t factor) HWY_ATTR {
    return hn::Mul(a, hn::Set(i16, factor));
  };
  const Vec<I16> high =
      hn::Sub(hn::Set(i16, 64), hn::Add(times(u, 11), times(v, 23)));
  const Vec<I16> low = hn::Sub(times(v, 38), times(u, 3));
  return {hn::MulFixedPoint15(v, hn::Set(i16, 11485)),
          hn::ShiftRight<7>(hn::Add(high, hn::ShiftRight<8>(low))),
          hn::MulFixedPoint15(u, hn::Set(i16, 14516))};
}

// Sums of two chroma rows less 256, of a vector's pairs.
struct PairLanes {
  Vec<I16> first, second;
};
HWY_INLINE PairLanes sumRows(const ChromaRows& chroma, size_t at) {
  const Vec<U8> own = load(chroma.own + at);
  const Vec<U16> middle = hn::Set(u16, 256);
  const auto sum = [&](Vec<U16> a, Vec<U16> b) HWY_ATTR {
    return asI16(hn::Sub(hn::Add(a, b), middle));
  };
  return {sum(lowBytes(own), lowBytes(load(chroma.firstPartner + at))),
          sum(highBytes(own), highBytes(load(chroma.secondPartner + at)))};
}

struct RgbBytes {
  Vec<U8> r, g, b;
};

// kBytes pixels, in order. Reads one pair further.
template <bool kUFirst>
HWY_INLINE RgbBytes rgbPixels(const uint8_t* luma, const ChromaRows& chroma,
                              size_t at) {
  const PairLanes here = sumRows(chroma, at), next = sumRows(chroma, at + 2);

  const Vec<I16> first[2] = {hn::Add(here.first, here.first),
                             hn::Add(here.first, next.first)};
  const Vec<I16> second[2] = {hn::Add(here.second, here.second),
                              hn::Add(here.second, next.second)};
  const Addends left =
      kUFirst ? addends(first[0], second[0]) : addends(second[0], first[0]);
  const Addends right =
      kUFirst ? addends(first[1], second[1]) : addends(second[1], first[1]);

  const Vec<U8> y = load(luma + at);
  const Vec<I16> yLower = asI16(hn::InterleaveLower(u8, y, hn::Zero(u8)));
  const Vec<I16> yUpper = asI16(hn::InterleaveUpper(u8, y, hn::Zero(u8)));
  const auto channel = [&](Vec<I16> l, Vec<I16> r) HWY_ATTR {
    return packInBlocks(hn::Add(yLower, hn::InterleaveLower(i16, l, r)),
                        hn::Add(yUpper, hn::InterleaveUpper(i16, l, r)));
  };
  return {channel(left.r, right.r), channel(left.g, right.g),
          channel(left.b, right.b)};
}
#endif

struct Rgba8888 {
  static constexpr size_t kPixelBytes = 4;
  static HWY_INLINE void put(uint8_t* to, uint8_t r, uint8_t g, uint8_t b) {
    to[0] = r;
    to[1] = g;
    to[2] = b;
    to[3] = 255;
  }
#if ZELM_VECTORS
  static HWY_INLINE void putAll(uint8_t* to, const RgbBytes& c) {
    const Vec<U8> alpha = hn::Set(u8, 255);
#if HWY_TARGET == HWY_NEON
    hn::StoreInterleaved4(c.r, c.g, c.b, alpha, u8, to);
#else
    const Vec<U8> r = splitTwice(c.r), g = splitTwice(c.g), b = splitTwice(c.b);
    const auto rg0 = asU16(hn::InterleaveLower(u8, r, g));
    const auto rg1 = asU16(hn::InterleaveUpper(u8, r, g));
    const auto ba0 = asU16(hn::InterleaveLower(u8, b, alpha));
    const auto ba1 = asU16(hn::InterleaveUpper(u8, b, alpha));
    store(asU8(hn::InterleaveLower(u16, rg0, ba0)), to);
    store(asU8(hn::InterleaveUpper(u16, rg0, ba0)), to + kBytes);
    store(asU8(hn::InterleaveLower(u16, rg1, ba1)), to + 2 * kBytes);
    store(asU8(hn::InterleaveUpper(u16, rg1, ba1)), to + 3 * kBytes);
#endif
  }
#endif
};

struct Rgb888 {
  static constexpr size_t kPixelBytes = 3;
  static HWY_INLINE void put(uint8_t* to, uint8_t r, uint8_t g, uint8_t b) {
    to[0] = r;
    to[1] = g;
    to[2] = b;
  }
#if ZELM_VECTORS
  static HWY_INLINE void putAll(uint8_t* to, const RgbBytes& c) {
#if HWY_TARGET == HWY_NEON
    hn::StoreInterleaved3(c.r, c.g, c.b, u8, to);
#else
    // Byte 3 k + channel of 48 goes to its place modulo 16: one shuffle per channel,
    // for all three blocks of the result. Which channel a place belongs to turns by
    // one from block to block.
    alignas(16) static constexpr uint8_t kR[16] = {0, 11, 6, 1, 12, 7,  2, 13,
                                                   8, 3,  14, 9, 4, 15, 10, 5};
    alignas(16) static constexpr uint8_t kG[16] = {5,  0, 11, 6, 1,  12, 7,  2,
                                                   13, 8, 3,  14, 9, 4,  15, 10};
    alignas(16) static constexpr uint8_t kB[16] = {10, 5,  0, 11, 6,  1, 12, 7,
                                                   2,  13, 8, 3,  14, 9, 4,  15};
    alignas(16) static constexpr uint8_t k0[16] = {255, 0, 0, 255, 0, 0, 255, 0,
                                                   0, 255, 0, 0, 255, 0, 0, 255};
    alignas(16) static constexpr uint8_t k1[16] = {0, 255, 0, 0, 255, 0, 0, 255,
                                                   0, 0, 255, 0, 0, 255, 0, 0};
    const Vec<U8> r = pickInBlocks(c.r, everyBlock(kR));
    const Vec<U8> g = pickInBlocks(c.g, everyBlock(kG));
    const Vec<U8> b = pickInBlocks(c.b, everyBlock(kB));
    const Vec<U8> m0 = everyBlock(k0), m1 = everyBlock(k1);
    const auto choose = [&](Vec<U8> at0, Vec<U8> at1, Vec<U8> at2) HWY_ATTR {
      return hn::IfVecThenElse(m0, at0, hn::IfVecThenElse(m1, at1, at2));
    };
    storeBlocksInTurn(choose(r, g, b), choose(g, b, r), choose(b, r, g), to);
#endif
  }
#endif
};

// Red lies in the low bits.
struct Rgb565 {
  static constexpr size_t kPixelBytes = 2;
  static HWY_INLINE void put(uint8_t* to, uint8_t r, uint8_t g, uint8_t b) {
    const unsigned word = (r >> 3) | (g >> 2) << 5 | (b >> 3) << 11;
    to[0] = static_cast<uint8_t>(word);
    to[1] = static_cast<uint8_t>(word >> 8);
  }
#if ZELM_VECTORS
  static HWY_INLINE void putAll(uint8_t* to, const RgbBytes& c) {
    // Shifts are of 16 bits; masks drop what comes from the neighbouring byte.
    const auto masked = [](Vec<U16> v, uint8_t mask) HWY_ATTR {
      return hn::And(asU8(v), hn::Set(u8, mask));
    };
    const Vec<U8> low = hn::Or(masked(hn::ShiftRight<3>(asU16(c.r)), 0x1F),
                               masked(hn::ShiftLeft<3>(asU16(c.g)), 0xE0));
    const Vec<U8> high = hn::Or(masked(hn::ShiftRight<5>(asU16(c.g)), 0x07),
                                masked(asU16(c.b), 0xF8));
#if HWY_TARGET == HWY_NEON
    hn::StoreInterleaved2(low, high, u8, to);
#else
    const Vec<U8> l = splitBlocks(low), h = splitBlocks(high);
    store(hn::InterleaveLower(u8, l, h), to);
    store(hn::InterleaveUpper(u8, l, h), to + kBytes);
#endif
  }
#endif
};

// The pixels of pair j. `next` is the pair that its right pixel lies before.
template <class Format>
HWY_INLINE void putPair(uint8_t* to, const uint8_t* luma, const ChromaRows& chroma,
                        size_t j, size_t next) {
  const auto put = [&](size_t x, size_t other) HWY_ATTR {
    const auto sum = [&](const uint8_t* partner, size_t byte) HWY_ATTR {
      return chroma.own[2 * j + byte] + partner[2 * j + byte] +
             chroma.own[2 * other + byte] + partner[2 * other + byte] - 512;
    };
    const int first = sum(chroma.firstPartner, 0), second = sum(chroma.secondPartner, 1);
    const int u = chroma.uFirst ? first : second, v = chroma.uFirst ? second : first;
    const int y = luma[x];
    Format::put(to + x * Format::kPixelBytes,
                clampToByte(y + ((11485 * v + (1 << 14)) >> 15)),
                clampToByte(y + ((-2819 * u - 5850 * v + (1 << 14)) >> 15)),
                clampToByte(y + ((14516 * u + (1 << 14)) >> 15)));
  };
  put(2 * j, j);
  put(2 * j + 1, next);
}

template <class Format, bool kUFirst>
HWY_INLINE size_t convertBlocks(uint8_t* to, const uint8_t* luma,
                                const ChromaRows& chroma, size_t pairs) {
#if ZELM_VECTORS
  return inBlocks(pairs, kBytes / 2, [&](size_t j) HWY_ATTR {
    Format::putAll(to + 2 * j * Format::kPixelBytes,
                   rgbPixels<kUFirst>(luma, chroma, 2 * j));
  });
#else
  (void)to, (void)luma, (void)chroma, (void)pairs;
  return 0;
#endif
}

template <class Format>
HWY_INLINE void convertRow(uint8_t* to, const uint8_t* luma, const ChromaRows& chroma,
                           size_t pairs) {
  // Blocks take the first pair for an inner one; it is mended afterwards.
  const size_t last = pairs - 1;
  size_t j = chroma.uFirst ? convertBlocks<Format, true>(to, luma, chroma, last)
                           : convertBlocks<Format, false>(to, luma, chroma, last);
  putPair<Format>(to, luma, chroma, 0, 0);
  if (j == 0) j = 1;
  for (; j < last; ++j) putPair<Format>(to, luma, chroma, j, j + 1);
  if (last > 0) putPair<Format>(to, luma, chroma, last, last);
}

void rgba8888Row(uint8_t* to, const uint8_t* luma, const ChromaRows& chroma,
                 size_t pairs) {
  convertRow<Rgba8888>(to, luma, chroma, pairs);
}
void rgb888Row(uint8_t* to, const uint8_t* luma, const ChromaRows& chroma,
               size_t pairs) {
  convertRow<Rgb888>(to, luma, chroma, pairs);
}
void rgb565Row(uint8_t* to, const uint8_t* luma, const ChromaRows& chroma,
               size_t pairs) {
  convertRow<Rgb565>(to, luma, chroma, pairs);
}

}  // namespace HWY_NAMESPACE
}  // namespace
}  // namespace zelm
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zelm {
namespace {

using ConvertRow = void(uint8_t* to, const uint8_t* luma, const ChromaRows& chroma,
                        size_t pairs);

void convertRegion(const ImageStruct& dst, const ImageStruct& src, ConvertRow* convert,
                   size_t pixelBytes) {
  const Region to = packedRegion(dst, pixelBytes);
  const Region luma = lumaRegion(src);
  const Region chroma = chromaRegion(src);
  if (chroma.empty()) return;
  const bool uFirst = src.format == FORMAT_YUV420SP;

  for (size_t k = 0; k < chroma.rows; ++k) {
    const bool partners = k > 0 && k + 1 < chroma.rows;
    const uint8_t* own = chroma.row(k);
    const uint8_t* above = partners ? chroma.row(k - 1) : own;
    const uint8_t* below = partners ? chroma.row(k + 1) : own;
    // The upper row takes V from above, the lower one U from below.
    convert(to.row(2 * k), luma.row(2 * k),
            {own, uFirst ? own : above, uFirst ? above : own, uFirst}, chroma.columns);
    convert(to.row(2 * k + 1), luma.row(2 * k + 1),
            {own, uFirst ? below : own, uFirst ? own : below, uFirst}, chroma.columns);
  }
}

}  // namespace
}  // namespace zelm

extern "C" void convYUV420SP_RGBA8888(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  convertRegion(*dst, *src, ZELM_KERNEL(rgba8888Row), 4);
}

extern "C" void convYUV420SP_RGB888(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  convertRegion(*dst, *src, ZELM_KERNEL(rgb888Row), 3);
}

extern "C" void convYUV420SP_RGB565(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  convertRegion(*dst, *src, ZELM_KERNEL(rgb565Row), 2);
}
#endif  // HWY_ONCE
