// YUV to packed RGB on Arm. Included by yuv_to_rgb.cc, which says
// what is computed, in each of its passes.
#include <algorithm>
#include <cstring>
#include <type_traits>

#include "convert/pixel_formats.h"
#include "convert/yuv_to_rgb.h"
#include "simd/vector-inl.h"

#if ZELM_NEON

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// 16 pixels, in order; b comes before r where blue comes first.
struct RgbBytes {
  uint8x16_t r, g, b;
};

// What the pixels of 8 pairs have as 16-bit lanes in the channel of the lone byte, in
// that of the mixed one, and in G: left pixels, then right ones.
struct Channels {
  int16x8_t lone[2], mixed[2], g[2];
};

// The weights of a description of colour, and what they make of chroma and luma. With s
// = byte - 128, l[0] is 2 s of the lone byte and l[1] is s + s[next]; m holds the same
// of the other byte, summed over two rows. So the rule's differences are 2 l and m.
//   channels(l, m, y)        of 8 pairs with the luma of left and right pixels, or
//   without finish(y, left, right)   their bytes, with luma if it was left out
template <bool kIsBt601Full>
class Weights;

// Luma is added at the end.
template <>
class Weights<true> {
 public:
  HWY_INLINE Weights(const YuvToRgb& c, bool loneIsU) {
    const int lone = loneIsU ? c.bu / 2 : c.rv / 2,
              mixed = loneIsU ? c.rv / 2 : c.bu / 2;
    const int loneG = loneIsU ? -c.gu : -c.gv, mixedG = loneIsU ? -c.gv : -c.gu;
    const int16_t weights[4] = {
        static_cast<int16_t>(2 * lone), static_cast<int16_t>(mixed),
        static_cast<int16_t>(2 * loneG), static_cast<int16_t>(mixedG)};
    weights_ = vld1_s16(weights);
  }

  HWY_INLINE Channels channels(const int16x8_t (&l)[2], const int16x8_t (&m)[2],
                               const uint8x8_t (&)[2]) const {
    return {
        {vqrdmulhq_lane_s16(l[0], weights_, 0), vqrdmulhq_lane_s16(l[1], weights_, 0)},
        {vqrdmulhq_lane_s16(m[0], weights_, 1), vqrdmulhq_lane_s16(m[1], weights_, 1)},
        {green(l[0], m[0]), green(l[1], m[1])}};
  }

  static HWY_INLINE int16x8_t withLuma(int16x8_t channel, uint8x8_t y) {
    return vreinterpretq_s16_u16(vaddw_u8(vreinterpretq_u16_s16(channel), y));
  }

 private:
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

  // The weights of the lone and of the other byte for R or B, then for G. They share
  // one register, because only eight of them can be used by lane on 32-bit Arm.
  int16x4_t weights_;
};

// Luma has a weight of its own, and all channels are sums of 32 bits. A weight of B
// that is no int16 is halved, and its difference doubled.
template <>
class Weights<false> {
 public:
  HWY_INLINE Weights(const YuvToRgb& c, bool loneIsU) {
    const int factor = c.bu > INT16_MAX ? 2 : 1, bu = c.bu / factor;
    const int16_t first[4] = {static_cast<int16_t>(c.y),
                              static_cast<int16_t>(loneIsU ? bu : c.rv),
                              static_cast<int16_t>(loneIsU ? c.rv : bu), 0};
    const int16_t second[4] = {static_cast<int16_t>(loneIsU ? -2 * c.gu : -2 * c.gv),
                               static_cast<int16_t>(loneIsU ? -c.gv : -c.gu),
                               static_cast<int16_t>(loneIsU ? 2 * factor : 2),
                               static_cast<int16_t>(loneIsU ? 1 : factor)};
    weights_ = vld1_s16(first);
    greenAndFactors_ = vld1_s16(second);
    offset_ = static_cast<int16_t>(4 * c.offset);
  }

  HWY_INLINE Channels channels(const int16x8_t (&l)[2], const int16x8_t (&m)[2],
                               const uint8x8_t (&y)[2]) const {
    Channels c;
    for (int i = 0; i < 2; ++i) {
      const int16x8_t y4 =
          vsubq_s16(vreinterpretq_s16_u16(vshll_n_u8(y[i], 2)), vdupq_n_s16(offset_));
      const int32x4_t low = vmull_lane_s16(vget_low_s16(y4), weights_, 0);
      const int32x4_t high = vmull_lane_s16(vget_high_s16(y4), weights_, 0);
      c.lone[i] = add<1>(low, high, vmulq_lane_s16(l[i], greenAndFactors_, 2));
      c.mixed[i] = add<2>(low, high, vmulq_lane_s16(m[i], greenAndFactors_, 3));
      c.g[i] = upperHalves(addGreen(low, vget_low_s16(l[i]), vget_low_s16(m[i])),
                           addGreen(high, vget_high_s16(l[i]), vget_high_s16(m[i])));
    }
    return c;
  }

  static HWY_INLINE int16x8_t withLuma(int16x8_t channel, uint8x8_t) { return channel; }

 private:
  template <int kWeight>
  HWY_INLINE int16x8_t add(int32x4_t low, int32x4_t high, int16x8_t differences) const {
    return upperHalves(
        vmlal_lane_s16(low, vget_low_s16(differences), weights_, kWeight),
        vmlal_lane_s16(high, vget_high_s16(differences), weights_, kWeight));
  }
  HWY_INLINE int32x4_t addGreen(int32x4_t sum, int16x4_t lone, int16x4_t mixed) const {
    return vmlal_lane_s16(vmlal_lane_s16(sum, lone, greenAndFactors_, 0), mixed,
                          greenAndFactors_, 1);
  }
  static HWY_INLINE int16x8_t upperHalves(int32x4_t low, int32x4_t high) {
    return vreinterpretq_s16_u16(
        narrowUpper(vreinterpretq_u32_s32(low), vreinterpretq_u32_s32(high)));
  }

  int16x4_t weights_;          // of luma, of the lone byte and of the other one
  int16x4_t greenAndFactors_;  // theirs for G, and what their differences are times
  int16_t offset_;
};

constexpr bool kPutsFirstPair = true;

// The registers of 32-bit Arm hold eight pairs at a time, those of AArch64 twice as
// many.
constexpr size_t kHalves = HWY_ARCH_ARM_A64 ? 2 : 1;
constexpr size_t kBlockPairs = 8 * kHalves;

// The first and the second bytes of a block's pairs, or the luma of left and of right
// pixels, eight at a time.
struct Split {
  uint8x8_t of[2][kHalves];
};

#if HWY_ARCH_ARM_A64
HWY_INLINE Split takeBlock(const uint8_t*& from, uint8_t flipped) {
  uint8x16x2_t pairs = takePairs(from);
  Split split;
  for (int i = 0; i < 2; ++i) {
    if (flipped != 0) pairs.val[i] = veorq_u8(pairs.val[i], vdupq_n_u8(flipped));
    split.of[i][0] = vget_low_u8(pairs.val[i]);
    split.of[i][1] = vget_high_u8(pairs.val[i]);
  }
  return split;
}
#else
HWY_INLINE Split takeBlock(const uint8_t*& from, uint8_t flipped) {
  uint8x16_t pairs = takeEightPairs(from);
  if (flipped != 0) pairs = veorq_u8(pairs, vdupq_n_u8(flipped));
  return {{{vget_low_u8(pairs)}, {vget_high_u8(pairs)}}};
}
#endif

// The bytes of a block's pixels in order, 16 at a time. lanes(i, half) are those of
// left pixels, then of right ones.
template <class Lanes>
HWY_INLINE void bytesInOrder(const Lanes& lanes, uint8x16_t (&bytes)[kHalves]) {
#if HWY_ARCH_ARM_A64
  const uint8x16_t left = narrowSaturating(lanes(0, 0), lanes(0, 1));
  const uint8x16_t right = narrowSaturating(lanes(1, 0), lanes(1, 1));
  bytes[0] = vzip1q_u8(left, right);
  bytes[1] = vzip2q_u8(left, right);
#else
  bytes[0] = halvesInTurn(narrowSaturating(lanes(0, 0), lanes(1, 0)));
#endif
}

// Where a row's blocks are read and written: their pairs, the pairs behind those of
// their pixels, luma and pixels.
struct Places {
  const uint8_t *own, *ownNext, *other, *otherNext;
  const uint8_t* luma;
  uint8_t* to;
};

// The pairs behind those of an outer block. `behind` is the last of them. The right
// pixel of a row's first pair is not interpolated.
class OuterPairs {
 public:
  HWY_INLINE const uint8_t* of(const uint8_t* from, const uint8_t* behind,
                               bool isFirst) {
    for (size_t h = 0; h < kHalves; ++h) {
      vst1q_u8(bytes_ + 16 * h, vld1q_u8(from + 16 * h));
    }
    memcpy(bytes_ + 2 * kBlockPairs, behind, 2);
    if (isFirst) memcpy(bytes_ + 2, from, 2);
    return bytes_ + 2;
  }

 private:
  uint8_t bytes_[2 * kBlockPairs + 2];
};

HWY_INLINE void putPixels(Rgba8888, uint8_t*& to, const RgbBytes& c) {
  putFours(to, c.r, c.g, c.b, vdupq_n_u8(255));
}

HWY_INLINE void putPixels(Rgb888, uint8_t*& to, const RgbBytes& c) {
  putThrees(to, c.r, c.g, c.b);
}

HWY_INLINE void putPixels(Rgb565, uint8_t*& to, const RgbBytes& c) {
  // A word holds the upper bits of B, those of G below them and those of R below those.
  const uint8x16_t low = vsliq_n_u8(vshrq_n_u8(c.r, 3), vshrq_n_u8(c.g, 2), 5);
  putPairs(to, {{low, vsriq_n_u8(c.b, c.g, 5)}});
}

// Keeps first and second chroma bytes, and left and right pixels, in registers of their
// own. The channel of the lone byte is the first one of a pixel, or the third.
template <class Weights, bool kLoneFirst, bool kLoneToFirst>
class RgbKernel {
 public:
  explicit HWY_INLINE RgbKernel(const Weights& weights) : weights_(weights) {}

  // Makes a block.
  template <class Format>
  HWY_INLINE void put(Format, Places& b) const {
    const Split own = takeBlock(b.own, 128), next = takeBlock(b.ownNext, 128);
    const Split other = takeBlock(b.other, 128),
                otherNext = takeBlock(b.otherNext, 128);
    const Split y = takeBlock(b.luma, 0);
    Channels c[kHalves];
    for (size_t h = 0; h < kHalves; ++h) {
      const auto s = [h](const Split& pairs, int byte)
                         HWY_ATTR { return vreinterpret_s8_u8(pairs.of[byte][h]); };
      const int16x8_t l[2] = {vshll_n_s8(s(own, kLone), 1),
                              vaddl_s8(s(own, kLone), s(next, kLone))};
      const int16x8_t sum = vaddl_s8(s(own, kMixed), s(other, kMixed));
      const int16x8_t m[2] = {
          vshlq_n_s16(sum, 1),
          vaddw_s8(vaddw_s8(sum, s(next, kMixed)), s(otherNext, kMixed))};
      c[h] = weights_.channels(l, m, {y.of[0][h], y.of[1][h]});
    }
    const auto bytes = [&](int16x8_t(Channels::*channel)[2],
                           uint8x16_t(&to)[kHalves]) HWY_ATTR {
      bytesInOrder(
          [&](size_t i, size_t h)
              HWY_ATTR { return Weights::withLuma((c[h].*channel)[i], y.of[i][h]); },
          to);
    };
    uint8x16_t lone[kHalves], mixed[kHalves], g[kHalves];
    bytes(&Channels::lone, lone);
    bytes(&Channels::mixed, mixed);
    bytes(&Channels::g, g);
    for (size_t h = 0; h < kHalves; ++h) {
      putPixels(Format(), b.to,
                kLoneToFirst ? RgbBytes{lone[h], g[h], mixed[h]}
                             : RgbBytes{mixed[h], g[h], lone[h]});
    }
  }

 private:
  static constexpr int kLone = kLoneFirst ? 0 : 1, kMixed = 1 - kLone;

  const Weights weights_;
};

// The last block ends with the row.
template <class Format, bool kLoneFirst, bool kLoneToFirst, class Weights>
HWY_INLINE void convertRowOfBlocks(uint8_t* to, const uint8_t* luma,
                                   const ChromaRows& chroma, size_t pixels,
                                   const Weights& weights) {
  const RgbKernel<Weights, kLoneFirst, kLoneToFirst> kernel(weights);
  const size_t pairs = pixels / 2, last = (pixels + 1) / 2 - 1;
  Places b = {chroma.own, nullptr, chroma.other, nullptr, luma, to};
  OuterPairs own, other;
  for (size_t done = 0;;) {
    size_t count = 1;
    if (done == 0 || done + kBlockPairs >= pairs) {
      const size_t behind = 2 * std::min(done + kBlockPairs, last);
      b.ownNext = own.of(b.own, chroma.own + behind, done == 0);
      b.otherNext = other.of(b.other, chroma.other + behind, done == 0);
    } else {
      count = (pairs - 1 - done) / kBlockPairs;
      b.ownNext = b.own + 2;
      b.otherNext = b.other + 2;
    }
    done += count * kBlockPairs;
    for (; count > 0; --count) kernel.put(Format(), b);
    if (done >= pairs) return;
    if (done + kBlockPairs > pairs) {
      const size_t back = 2 * (done + kBlockPairs - pairs);
      done = pairs - kBlockPairs;
      b.own -= back, b.other -= back, b.luma -= back;
      b.to -= back * Format::kPixelBytes;
    }
  }
}

template <class Format, bool kIsBt601Full>
HWY_INLINE size_t convertBlocks(uint8_t* to, const uint8_t* luma,
                                const ChromaRows& chroma, size_t pixels,
                                const YuvToRgb& colour, bool blueFirst) {
  if (pixels / 2 < kBlockPairs) return 0;
  const bool loneIsU = chroma.uFirst == chroma.loneFirst;
  const Weights<kIsBt601Full> weights(colour, loneIsU);
  const auto convert = [&](auto loneFirst, auto loneToFirst) HWY_ATTR {
    convertRowOfBlocks<Format, loneFirst, loneToFirst>(to, luma, chroma, pixels,
                                                       weights);
  };
  constexpr std::true_type yes;
  constexpr std::false_type no;
  if (loneIsU == blueFirst) {
    chroma.loneFirst ? convert(yes, yes) : convert(no, yes);
  } else {
    chroma.loneFirst ? convert(yes, no) : convert(no, no);
  }
  return pixels / 2;
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // ZELM_NEON
