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
#include "simd/each_target.h"  // before all others

#include "plane.h"
#include "simd/dispatch.h"
#include "simd/vector-inl.h"
#include "zelm_imageutil.h"

#ifndef ZELM_SRC_CONVERT_YUV420SP_TO_RGB_CHROMA_ROWS
#define ZELM_SRC_CONVERT_YUV420SP_TO_RGB_CHROMA_ROWS
namespace zelm {
namespace {

// The chroma of one luma row. One byte of the pairs, the lone one, is taken from the
// row itself, the other is averaged with that of the `other` row.
struct ChromaRows {
  const uint8_t* own;
  const uint8_t* other;
  bool uFirst;     // pairs are U, V
  bool loneFirst;  // the lone byte is the first one
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

#if ZELM_NEON
// 16 pixels in order.
struct RgbBytes {
  Vec<U8> r, g, b;
};

// First and second chroma bytes, and left and right pixels, in registers of their own.
// With s = byte - 128, a left pixel sees 2 times the sum over two rows, a right one the
// sum over two rows and two pairs; of the lone byte 4 s and 2 (s + s[next]). Factors of
// 2 are left to the coefficients.
template <bool kUFirst, bool kLoneFirst>
class RgbKernel {
 public:
  static constexpr size_t kPairs = 16;

  HWY_INLINE explicit RgbKernel(const ChromaRows& chroma) : chroma_(chroma) {
    constexpr int16_t kU = 14516, kV = 11485, kGreenU = -5638, kGreenV = -11700;
    constexpr int16_t kLoneRb = kLoneIsU ? kU : kV, kMixedRb = kLoneIsU ? kV : kU;
    constexpr int16_t kLoneG = kLoneIsU ? kGreenU : kGreenV;
    constexpr int16_t kMixedG = kLoneIsU ? kGreenV : kGreenU;
    const int16_t weights[4] = {2 * kLoneRb, kMixedRb, 2 * kLoneG, kMixedG};
    weights_ = vld1_s16(weights);
  }

  // Reads one pair further.
  HWY_INLINE void pixels(const uint8_t* luma, size_t at, RgbBytes (&out)[2]) const {
    const Pairs own = centred(chroma_.own + at), next = centred(chroma_.own + at + 2);
    const int8x16_t other = centred(chroma_.other + at).val[kMixed];
    const int8x16_t otherNext = centred(chroma_.other + at + 2).val[kMixed];
    const Differences low =
        differences(vget_low_s8(own.val[kLone]), vget_low_s8(next.val[kLone]),
                    vget_low_s8(own.val[kMixed]), vget_low_s8(next.val[kMixed]),
                    vget_low_s8(other), vget_low_s8(otherNext));
    const Differences high =
        differences(vget_high_s8(own.val[kLone]), vget_high_s8(next.val[kLone]),
                    vget_high_s8(own.val[kMixed]), vget_high_s8(next.val[kMixed]),
                    vget_high_s8(other), vget_high_s8(otherNext));
    const uint8x16x2_t y = vld2q_u8(luma + at);
    const uint8x16x2_t lone = inTurn(plus(y.val[0], low.lone[0], high.lone[0]),
                                     plus(y.val[1], low.lone[1], high.lone[1]));
    const uint8x16x2_t mixed = inTurn(plus(y.val[0], low.mixed[0], high.mixed[0]),
                                      plus(y.val[1], low.mixed[1], high.mixed[1]));
    const uint8x16x2_t g = inTurn(plus(y.val[0], low.g[0], high.g[0]),
                                  plus(y.val[1], low.g[1], high.g[1]));
    const uint8x16x2_t& r = kUFirst == kLoneFirst ? mixed : lone;
    const uint8x16x2_t& b = kUFirst == kLoneFirst ? lone : mixed;
    for (int i = 0; i < 2; ++i) {
      out[i] = {Vec<U8>{r.val[i]}, Vec<U8>{g.val[i]}, Vec<U8>{b.val[i]}};
    }
  }

 private:
  static constexpr int kLone = kLoneFirst ? 0 : 1, kMixed = 1 - kLone;
  static constexpr bool kLoneIsU = kUFirst == kLoneFirst;

  struct Pairs {
    int8x16_t val[2];
  };
  // Of 8 pairs: for left and for right pixels.
  struct Differences {
    int16x8_t lone[2], mixed[2], g[2];
  };

  static HWY_INLINE Pairs centred(const uint8_t* from) {
    const uint8x16x2_t pairs = vld2q_u8(from);
    const uint8x16_t middle = vdupq_n_u8(128);
    return {{vreinterpretq_s8_u8(veorq_u8(pairs.val[0], middle)),
             vreinterpretq_s8_u8(veorq_u8(pairs.val[1], middle))}};
  }

  HWY_INLINE Differences differences(int8x8_t lone, int8x8_t loneNext, int8x8_t mixed,
                                     int8x8_t mixedNext, int8x8_t other,
                                     int8x8_t otherNext) const {
    const int16x8_t l[2] = {vshll_n_s8(lone, 1), vaddl_s8(lone, loneNext)};
    const int16x8_t sum = vaddl_s8(mixed, other);
    const int16x8_t m[2] = {vshlq_n_s16(sum, 1),
                            vaddw_s8(vaddw_s8(sum, mixedNext), otherNext)};
    return {
        {vqrdmulhq_lane_s16(l[0], weights_, 0), vqrdmulhq_lane_s16(l[1], weights_, 0)},
        {vqrdmulhq_lane_s16(m[0], weights_, 1), vqrdmulhq_lane_s16(m[1], weights_, 1)},
        {green(l[0], m[0]), green(l[1], m[1])}};
  }
  HWY_INLINE int16x8_t green(int16x8_t lone, int16x8_t mixed) const {
    const int32x4_t low =
        vmlal_lane_s16(vmull_lane_s16(vget_low_s16(lone), weights_, 2),
                       vget_low_s16(mixed), weights_, 3);
    const int32x4_t high =
        vmlal_lane_s16(vmull_lane_s16(vget_high_s16(lone), weights_, 2),
                       vget_high_s16(mixed), weights_, 3);
    const Vec<I32> l{low}, h{high};
    return asI16(roundedUpperHalves(hn::BitCast(u32, l), hn::BitCast(u32, h))).raw;
  }

  static HWY_INLINE uint8x16_t plus(uint8x16_t y, int16x8_t low, int16x8_t high) {
    const uint16x8_t l = vaddw_u8(vreinterpretq_u16_s16(low), vget_low_u8(y));
    const uint16x8_t h = vaddw_u8(vreinterpretq_u16_s16(high), vget_high_u8(y));
    return packInBlocks(Vec<I16>{vreinterpretq_s16_u16(l)},
                        Vec<I16>{vreinterpretq_s16_u16(h)})
        .raw;
  }
  static HWY_INLINE uint8x16x2_t inTurn(uint8x16_t left, uint8x16_t right) {
    return vzipq_u8(left, right);
  }

  const ChromaRows chroma_;  // a copy, which no store can change
  // Of the lone and of the other byte: for R or B, then for G. One register, as only
  // eight can be used by lane on 32-bit Arm.
  int16x4_t weights_;
};
#elif ZELM_VECTORS
// kBytes pixels: G in order, R and B as pairs of left and of right pixels.
struct RgbBytes {
  Vec<U8> rbLeft, rbRight, g;
};

// In 16-bit lanes that hold first and second chroma bytes in turn, as 32-bit lanes
// hold pairs. With S = sums of two rows, left pixels see 2 S - 512 and right ones
// S + S[next] - 512; the factor 2 is left to the coefficients.
class RgbKernel {
 public:
  HWY_INLINE explicit RgbKernel(const ChromaRows& chroma)
      : chroma_(chroma),
        rowWeights_(
            hn::BitCast(i8, hn::Set(u32, chroma.loneFirst ? 0x01010002 : 0x00020101))),
        rb_(chroma.uFirst ? alternate(14516, 11485) : alternate(11485, 14516)),
        g_(chroma.uFirst ? alternate(-5638, -11700) : alternate(-11700, -5638)) {}

  // Reads one pair further.
  HWY_INLINE RgbBytes pixels(const uint8_t* luma, size_t at) const {
    const Vec<U8> own = load(chroma_.own + at), other = load(chroma_.other + at);
    const Vec<U8> ownNext = load(chroma_.own + at + 2);
    const Vec<U8> otherNext = load(chroma_.other + at + 2);
    const Vec<U8> y = load(luma + at), zero = hn::Zero(u8);
    const Channels lower =
        channels(hn::InterleaveLower(u8, own, other),
                 hn::InterleaveLower(u8, ownNext, otherNext),
                 asI16(hn::InterleaveLower(u8, y, zero)), twice<0>(y), twice<1>(y));
    const Channels upper =
        channels(hn::InterleaveUpper(u8, own, other),
                 hn::InterleaveUpper(u8, ownNext, otherNext),
                 asI16(hn::InterleaveUpper(u8, y, zero)), twice<8>(y), twice<9>(y));
    RgbBytes bytes = {packInBlocks(lower.rbLeft, upper.rbLeft),
                      packInBlocks(lower.rbRight, upper.rbRight),
                      packInBlocks(lower.g, upper.g)};
    if (chroma_.uFirst) {
      bytes.rbLeft = swapPairs(bytes.rbLeft);
      bytes.rbRight = swapPairs(bytes.rbRight);
    }
    return bytes;
  }

 private:
  struct Channels {
    Vec<I16> rbLeft, rbRight, g;
  };

  // Bytes kFirst, kFirst + 2, ... in two 16-bit lanes each.
  template <uint8_t kFirst>
  static HWY_INLINE Vec<I16> twice(Vec<U8> y) {
    constexpr uint8_t k0 = kFirst, k1 = k0 + 2, k2 = k0 + 4, k3 = k0 + 6;
    alignas(16) static constexpr uint8_t kPicks[16] = {
        k0, 128, k0, 128, k1, 128, k1, 128, k2, 128, k2, 128, k3, 128, k3, 128};
    return asI16(pickInBlocks(y, everyBlock(kPicks)));
  }

  // Half a vector. Chroma rows come interleaved, of the pairs and of the next ones.
  HWY_INLINE Channels channels(Vec<U8> rows, Vec<U8> nextRows, Vec<I16> y,
                               Vec<I16> yLeft, Vec<I16> yRight) const {
    const Vec<I16> middle = hn::Set(i16, 256);
    const Vec<I16> left = hn::Sub(pairProducts8(rows, rowWeights_), middle);
    const Vec<I16> right =
        hn::Add(hn::Sub(left, middle), pairProducts8(nextRows, rowWeights_));
    const Vec<I16> rb2 = hn::Add(rb_, rb_), g2 = hn::Add(g_, g_);
    const Vec<I32> half = hn::Set(i32, 1 << 15);
    return {hn::Add(yLeft, hn::MulFixedPoint15(left, rb2)),
            hn::Add(yRight, hn::MulFixedPoint15(right, rb_)),
            hn::Add(y, upperHalves(addPairProducts(half, left, g2),
                                   addPairProducts(half, right, g_)))};
  }

  const ChromaRows& chroma_;
  Vec<I8> rowWeights_;
  Vec<I16> rb_, g_;  // coefficients of right pixels
};
#endif

#if ZELM_VBMI
// Where the bytes of pixels, made of channels R, G, B, A (255) and 0, come from.
template <char... kChannels>
struct PixelPlaces {
  static constexpr size_t kPixelBytes = sizeof...(kChannels);
  alignas(64) uint8_t rb[kPixelBytes * kBytes];  // left pixels', then right pixels'
  alignas(64) uint8_t g[kPixelBytes * kBytes];
  uint64_t isRb[kPixelBytes], isG[kPixelBytes];

  constexpr PixelPlaces() : rb(), g(), isRb(), isG() {
    constexpr char kNames[] = {kChannels...};
    for (size_t i = 0; i < kPixelBytes * kBytes; ++i) {
      const size_t pixel = i / kPixelBytes;
      const char name = kNames[i % kPixelBytes];
      const size_t left = pixel / 2 * 2 + (name == 'B' ? 1 : 0);
      const bool rOrB = name == 'R' || name == 'B';
      rb[i] = static_cast<uint8_t>(rOrB          ? left + pixel % 2 * kBytes
                                   : name == 'A' ? 255
                                                 : 0);
      g[i] = static_cast<uint8_t>(pixel);
      isRb[i / kBytes] |= static_cast<uint64_t>(rOrB) << (i % kBytes);
      isG[i / kBytes] |= static_cast<uint64_t>(name == 'G') << (i % kBytes);
    }
  }
};

// Vector v of such bytes, in one permutation of R and B and one of G.
template <char... kChannels>
HWY_INLINE Vec<U8> pixelBytes(const RgbBytes& c, size_t v) {
  static constexpr PixelPlaces<kChannels...> kPlaces;
  // Where the mask is 0 the index itself is kept.
  const __m512i rb = _mm512_mask2_permutex2var_epi8(
      c.rbLeft.raw, load(kPlaces.rb + v * kBytes).raw, kPlaces.isRb[v], c.rbRight.raw);
  return Vec<U8>{_mm512_mask_permutexvar_epi8(
      rb, kPlaces.isG[v], load(kPlaces.g + v * kBytes).raw, c.g.raw)};
}
#endif

#if ZELM_VBMI
constexpr size_t kAhead = 3072;  // how far bytes to be written are asked for
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
#if ZELM_VBMI
    for (size_t v = 0; v < 4; ++v) {
      prefetchForWriting(to + v * kBytes + kAhead);
      store(pixelBytes<'R', 'G', 'B', 'A'>(c, v), to + v * kBytes);
    }
#elif ZELM_NEON
#if HWY_ARCH_ARM_A64
    hn::StoreInterleaved4(c.r, c.g, c.b, hn::Set(u8, 255), u8, to);
#else
    // The compiler would pass the four registers through memory.
    const uint8x16x2_t rg = vzipq_u8(c.r.raw, c.g.raw);
    const uint8x16x2_t ba = vzipq_u8(c.b.raw, vdupq_n_u8(255));
    for (int i = 0; i < 2; ++i) {
      const uint16x8x2_t rgba =
          vzipq_u16(vreinterpretq_u16_u8(rg.val[i]), vreinterpretq_u16_u8(ba.val[i]));
      vst1q_u8(to + 32 * i, vreinterpretq_u8_u16(rgba.val[0]));
      vst1q_u8(to + 32 * i + 16, vreinterpretq_u8_u16(rgba.val[1]));
    }
#endif
#else
    const Vec<U8> alpha = hn::Set(u8, 255), g = splitTwice(c.g);
    const Vec<U16> left = asU16(splitTwice(c.rbLeft));
    const Vec<U16> right = asU16(splitTwice(c.rbRight));
    const Vec<U8> rb0 = asU8(hn::InterleaveLower(u16, left, right));
    const Vec<U8> rb1 = asU8(hn::InterleaveUpper(u16, left, right));
    const Vec<U8> ga0 = hn::InterleaveLower(u8, g, alpha);
    const Vec<U8> ga1 = hn::InterleaveUpper(u8, g, alpha);
    store(hn::InterleaveLower(u8, rb0, ga0), to);
    store(hn::InterleaveUpper(u8, rb0, ga0), to + kBytes);
    store(hn::InterleaveLower(u8, rb1, ga1), to + 2 * kBytes);
    store(hn::InterleaveUpper(u8, rb1, ga1), to + 3 * kBytes);
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
#if ZELM_VBMI
    for (size_t v = 0; v < 3; ++v) {
      prefetchForWriting(to + v * kBytes + kAhead);
      store(pixelBytes<'R', 'G', 'B'>(c, v), to + v * kBytes);
    }
#elif ZELM_NEON
    hn::StoreInterleaved3(c.r, c.g, c.b, u8, to);
#else
    // Each of three blocks takes R and B of some left and some right pixels, and G.
    constexpr uint8_t z = 128;
    alignas(16) static constexpr uint8_t kLeft[3][16] = {
        {0, z, 1, z, z, z, 2, z, 3, z, z, z, 4, z, 5, z},
        {z, z, 6, z, 7, z, z, z, 8, z, 9, z, z, z, 10, z},
        {11, z, z, z, 12, z, 13, z, z, z, 14, z, 15, z, z, z}};
    alignas(16) static constexpr uint8_t kRight[3][16] = {
        {z, z, z, 0, z, 1, z, z, z, 2, z, 3, z, z, z, 4},
        {z, 5, z, z, z, 6, z, 7, z, z, z, 8, z, 9, z, z},
        {z, 10, z, 11, z, z, z, 12, z, 13, z, z, z, 14, z, 15}};
    alignas(16) static constexpr uint8_t kGreen[3][16] = {
        {z, 0, z, z, 1, z, z, 2, z, z, 3, z, z, 4, z, z},
        {5, z, z, 6, z, z, 7, z, z, 8, z, z, 9, z, z, 10},
        {z, z, 11, z, z, 12, z, z, 13, z, z, 14, z, z, 15, z}};
    const auto block = [&](size_t i) HWY_ATTR {
      return hn::Or3(pickInBlocks(c.rbLeft, everyBlock(kLeft[i])),
                     pickInBlocks(c.rbRight, everyBlock(kRight[i])),
                     pickInBlocks(c.g, everyBlock(kGreen[i])));
    };
    storeBlocksInTurn(block(0), block(1), block(2), to);
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
#if ZELM_NEON
    // The upper bits of B, of G below it and of R below that.
    const uint8x16_t r = vshrq_n_u8(c.r.raw, 3);
    const Vec<U8> low{vsliq_n_u8(r, vshrq_n_u8(c.g.raw, 2), 5)};
    const Vec<U8> high{vsriq_n_u8(c.b.raw, c.g.raw, 5)};
    hn::StoreInterleaved2(low, high, u8, to);
#else
    // R in the lower, B in the upper byte; G in the upper byte of another word.
    const auto words = [&](Vec<U8> rb, Vec<U8> g0) HWY_ATTR {
      const Vec<U16> r = hn::And(hn::ShiftRight<3>(asU16(rb)), hn::Set(u16, 0x001F));
      const Vec<U16> g = hn::And(hn::ShiftRight<5>(asU16(g0)), hn::Set(u16, 0x07E0));
      return asU8(hn::Or3(r, g, hn::And(asU16(rb), hn::Set(u16, 0xF800))));
    };
#if ZELM_VBMI
    for (size_t v = 0; v < 2; ++v) {
      store(words(pixelBytes<'R', 'B'>(c, v), pixelBytes<'0', 'G'>(c, v)),
            to + v * kBytes);
    }
#else
    const Vec<U8> g = splitBlocks(c.g), zero = hn::Zero(u8);
    const Vec<U16> left = asU16(splitBlocks(c.rbLeft));
    const Vec<U16> right = asU16(splitBlocks(c.rbRight));
    store(words(asU8(hn::InterleaveLower(u16, left, right)),
                hn::InterleaveLower(u8, zero, g)),
          to);
    store(words(asU8(hn::InterleaveUpper(u16, left, right)),
                hn::InterleaveUpper(u8, zero, g)),
          to + kBytes);
#endif
#endif
  }
#endif
};

// Pixel x; `other` is the pair that its own is averaged with.
template <class Format>
HWY_INLINE void putPixel(uint8_t* to, const uint8_t* luma, const ChromaRows& chroma,
                         size_t x, size_t other) {
  const size_t own = x / 2;
  const auto sum = [&](bool lone, size_t byte) HWY_ATTR {
    const uint8_t* row = lone ? chroma.own : chroma.other;
    return chroma.own[2 * own + byte] + row[2 * own + byte] +
           chroma.own[2 * other + byte] + row[2 * other + byte] - 512;
  };
  const int first = sum(chroma.loneFirst, 0), second = sum(!chroma.loneFirst, 1);
  const int u = chroma.uFirst ? first : second, v = chroma.uFirst ? second : first;
  const int y = luma[x];
  Format::put(to + x * Format::kPixelBytes,
              clampToByte(y + ((11485 * v + (1 << 14)) >> 15)),
              clampToByte(y + ((-2819 * u - 5850 * v + (1 << 14)) >> 15)),
              clampToByte(y + ((14516 * u + (1 << 14)) >> 15)));
}

#if ZELM_NEON
template <class Format, bool kUFirst, bool kLoneFirst>
HWY_INLINE size_t convertBlocks(uint8_t* to, const uint8_t* luma,
                                const ChromaRows& chroma, size_t pairs) {
  const RgbKernel<kUFirst, kLoneFirst> kernel(chroma);
  return inBlocks(
      pairs, kernel.kPairs, [&](size_t j) HWY_ATTR __attribute__((always_inline)) {
        RgbBytes bytes[2];
        kernel.pixels(luma, 2 * j, bytes);
        Format::putAll(to + 2 * j * Format::kPixelBytes, bytes[0]);
        Format::putAll(to + (2 * j + 16) * Format::kPixelBytes, bytes[1]);
      });
}

template <class Format>
HWY_INLINE size_t convertBlocks(uint8_t* to, const uint8_t* luma,
                                const ChromaRows& chroma, size_t pairs) {
  if (chroma.uFirst) {
    return chroma.loneFirst
               ? convertBlocks<Format, true, true>(to, luma, chroma, pairs)
               : convertBlocks<Format, true, false>(to, luma, chroma, pairs);
  }
  return chroma.loneFirst
             ? convertBlocks<Format, false, true>(to, luma, chroma, pairs)
             : convertBlocks<Format, false, false>(to, luma, chroma, pairs);
}
#elif ZELM_VECTORS
template <class Format>
HWY_INLINE size_t convertBlocks(uint8_t* to, const uint8_t* luma,
                                const ChromaRows& chroma, size_t pairs) {
  const RgbKernel kernel(chroma);
  return inBlocks(pairs, kBytes / 2, [&](size_t j) HWY_ATTR {
    Format::putAll(to + 2 * j * Format::kPixelBytes, kernel.pixels(luma, 2 * j));
  });
}
#endif

template <class Format>
HWY_INLINE void convertRow(uint8_t* to, const uint8_t* luma, const ChromaRows& chroma,
                           size_t pairs) {
  const size_t last = pairs - 1;
  size_t done = 0;
#if ZELM_VECTORS
  done = convertBlocks<Format>(to, luma, chroma, last);
  // The right pixel of the first pair was taken for an inner one.
  if (done > 0) putPixel<Format>(to, luma, chroma, 1, 0);
#endif
  for (size_t j = done; j < pairs; ++j) {
    putPixel<Format>(to, luma, chroma, 2 * j, j);
    putPixel<Format>(to, luma, chroma, 2 * j + 1, j == 0 || j == last ? j : j + 1);
  }
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

#include "simd/vbmi_pass.h"

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
    // The upper row takes V from above as well, the lower one U from below.
    convert(to.row(2 * k), luma.row(2 * k), {own, above, uFirst, uFirst},
            chroma.columns);
    convert(to.row(2 * k + 1), luma.row(2 * k + 1), {own, below, uFirst, !uFirst},
            chroma.columns);
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
