// YUV to packed RGB on Arm. Included by yuv_to_rgb.cc, which says
// what is computed, in each of its passes.
#include "convert/pixel_formats.h"
#include "convert/yuv_to_rgb.h"
#include "simd/vector-inl.h"

#if ZELM_NEON

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// 16 pixels, in order; b comes before r where blue comes first.
struct RgbBytes {
  Vec<U8> r, g, b;
};

// What the pixels of 8 pairs have as 16-bit lanes in the channel of the lone byte, in
// that of the mixed one, and in G: left pixels, then right ones.
struct Channels {
  int16x8_t lone[2], mixed[2], g[2];
};

// The weights of a description of colour, and what they make of chroma and luma. With s
// = byte - 128, l[0] is 2 s of the lone byte and l[1] is s + s[next]; m holds the same
// of the other byte, summed over two rows. So the rule's differences are 2 l and m.
//   channels(l, m, luma)    for the 8 pairs whose luma is there, or without it
//   finish(y, low, high)    bytes of two such lanes, with luma y if it was left out
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
                               const uint8_t*) const {
    return {
        {vqrdmulhq_lane_s16(l[0], weights_, 0), vqrdmulhq_lane_s16(l[1], weights_, 0)},
        {vqrdmulhq_lane_s16(m[0], weights_, 1), vqrdmulhq_lane_s16(m[1], weights_, 1)},
        {green(l[0], m[0]), green(l[1], m[1])}};
  }

  static HWY_INLINE uint8x16_t finish(uint8x16_t y, int16x8_t low, int16x8_t high) {
    const uint16x8_t l = vaddw_u8(vreinterpretq_u16_s16(low), vget_low_u8(y));
    const uint16x8_t h = vaddw_u8(vreinterpretq_u16_s16(high), vget_high_u8(y));
    return packInBlocks(Vec<I16>{vreinterpretq_s16_u16(l)},
                        Vec<I16>{vreinterpretq_s16_u16(h)})
        .raw;
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
                               const uint8_t* luma) const {
    const uint8x8x2_t y = vld2_u8(luma);
    Channels c;
    for (int i = 0; i < 2; ++i) {
      const int16x8_t y4 = vsubq_s16(vreinterpretq_s16_u16(vshll_n_u8(y.val[i], 2)),
                                     vdupq_n_s16(offset_));
      const int32x4_t low = vmull_lane_s16(vget_low_s16(y4), weights_, 0);
      const int32x4_t high = vmull_lane_s16(vget_high_s16(y4), weights_, 0);
      c.lone[i] = add<1>(low, high, vmulq_lane_s16(l[i], greenAndFactors_, 2));
      c.mixed[i] = add<2>(low, high, vmulq_lane_s16(m[i], greenAndFactors_, 3));
      c.g[i] = upperHalves(addGreen(low, vget_low_s16(l[i]), vget_low_s16(m[i])),
                           addGreen(high, vget_high_s16(l[i]), vget_high_s16(m[i])));
    }
    return c;
  }

  static HWY_INLINE uint8x16_t finish(uint8x16_t, int16x8_t low, int16x8_t high) {
    return packInBlocks(Vec<I16>{low}, Vec<I16>{high}).raw;
  }

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

// Keeps first and second chroma bytes, and left and right pixels, in registers of their
// own. The channel of the lone byte is the first one of a pixel, or the third.
template <class Weights, bool kLoneFirst, bool kLoneToFirst>
class RgbKernel {
 public:
  static constexpr size_t kPairs = 16;

  HWY_INLINE RgbKernel(const ChromaRows& chroma, const Weights& weights)
      : chroma_(chroma), weights_(weights) {}

  // Converts two times 16 pixels, and reads one pair further.
  HWY_INLINE void pixels(const uint8_t* luma, size_t at, RgbBytes (&out)[2]) const {
    const Pairs own = centred(chroma_.own + at), next = centred(chroma_.own + at + 2);
    const int8x16_t other = centred(chroma_.other + at).val[kMixed];
    const int8x16_t otherNext = centred(chroma_.other + at + 2).val[kMixed];
    const Channels low =
        channels(vget_low_s8(own.val[kLone]), vget_low_s8(next.val[kLone]),
                 vget_low_s8(own.val[kMixed]), vget_low_s8(next.val[kMixed]),
                 vget_low_s8(other), vget_low_s8(otherNext), luma + at);
    const Channels high =
        channels(vget_high_s8(own.val[kLone]), vget_high_s8(next.val[kLone]),
                 vget_high_s8(own.val[kMixed]), vget_high_s8(next.val[kMixed]),
                 vget_high_s8(other), vget_high_s8(otherNext), luma + at + 16);
    const uint8x16x2_t y = vld2q_u8(luma + at);
    const uint8x16x2_t lone = inTurn(y, low.lone, high.lone);
    const uint8x16x2_t mixed = inTurn(y, low.mixed, high.mixed);
    const uint8x16x2_t g = inTurn(y, low.g, high.g);
    const uint8x16x2_t& r = kLoneToFirst ? lone : mixed;
    const uint8x16x2_t& b = kLoneToFirst ? mixed : lone;
    for (int i = 0; i < 2; ++i) {
      out[i] = {Vec<U8>{r.val[i]}, Vec<U8>{g.val[i]}, Vec<U8>{b.val[i]}};
    }
  }

 private:
  static constexpr int kLone = kLoneFirst ? 0 : 1, kMixed = 1 - kLone;

  struct Pairs {
    int8x16_t val[2];
  };

  static HWY_INLINE Pairs centred(const uint8_t* from) {
    const uint8x16x2_t pairs = vld2q_u8(from);
    const uint8x16_t middle = vdupq_n_u8(128);
    return {{vreinterpretq_s8_u8(veorq_u8(pairs.val[0], middle)),
             vreinterpretq_s8_u8(veorq_u8(pairs.val[1], middle))}};
  }

  HWY_INLINE Channels channels(int8x8_t lone, int8x8_t loneNext, int8x8_t mixed,
                               int8x8_t mixedNext, int8x8_t other, int8x8_t otherNext,
                               const uint8_t* luma) const {
    const int16x8_t l[2] = {vshll_n_s8(lone, 1), vaddl_s8(lone, loneNext)};
    const int16x8_t sum = vaddl_s8(mixed, other);
    const int16x8_t m[2] = {vshlq_n_s16(sum, 1),
                            vaddw_s8(vaddw_s8(sum, mixedNext), otherNext)};
    return weights_.channels(l, m, luma);
  }

  static HWY_INLINE uint8x16x2_t inTurn(const uint8x16x2_t& y,
                                        const int16x8_t (&low)[2],
                                        const int16x8_t (&high)[2]) {
    return vzipq_u8(Weights::finish(y.val[0], low[0], high[0]),
                    Weights::finish(y.val[1], low[1], high[1]));
  }

  const ChromaRows chroma_;  // a copy, which no store can change
  const Weights weights_;
};

HWY_INLINE void storePixels(Rgba8888, uint8_t* to, const RgbBytes& c) {
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
}

HWY_INLINE void storePixels(Rgb888, uint8_t* to, const RgbBytes& c) {
  hn::StoreInterleaved3(c.r, c.g, c.b, u8, to);
}

HWY_INLINE void storePixels(Rgb565, uint8_t* to, const RgbBytes& c) {
  // A word holds the upper bits of B, those of G below them and those of R below those.
  const uint8x16_t r = vshrq_n_u8(c.r.raw, 3);
  const Vec<U8> low{vsliq_n_u8(r, vshrq_n_u8(c.g.raw, 2), 5)};
  const Vec<U8> high{vsriq_n_u8(c.b.raw, c.g.raw, 5)};
  hn::StoreInterleaved2(low, high, u8, to);
}

template <class Format, bool kLoneFirst, bool kLoneToFirst, class Weights>
HWY_INLINE size_t convertBlocks(uint8_t* to, const uint8_t* luma,
                                const ChromaRows& chroma, size_t pairs,
                                const Weights& weights) {
  const RgbKernel<Weights, kLoneFirst, kLoneToFirst> kernel(chroma, weights);
  return inBlocks(
      pairs, kernel.kPairs, [&](size_t j) HWY_ATTR __attribute__((always_inline)) {
        RgbBytes bytes[2];
        kernel.pixels(luma, 2 * j, bytes);
        storePixels(Format(), to + 2 * j * Format::kPixelBytes, bytes[0]);
        storePixels(Format(), to + (2 * j + 16) * Format::kPixelBytes, bytes[1]);
      });
}

constexpr bool kPutsFirstPair = false;

template <class Format, bool kIsBt601Full>
HWY_INLINE size_t convertBlocks(uint8_t* to, const uint8_t* luma,
                                const ChromaRows& chroma, size_t pixels,
                                const YuvToRgb& colour, bool blueFirst) {
  const size_t pairs = (pixels + 1) / 2 - 1;  // those that have a pair behind them
  const bool loneIsU = chroma.uFirst == chroma.loneFirst;
  const Weights<kIsBt601Full> weights(colour, loneIsU);
  if (loneIsU == blueFirst) {
    return chroma.loneFirst
               ? convertBlocks<Format, true, true>(to, luma, chroma, pairs, weights)
               : convertBlocks<Format, false, true>(to, luma, chroma, pairs, weights);
  }
  return chroma.loneFirst
             ? convertBlocks<Format, true, false>(to, luma, chroma, pairs, weights)
             : convertBlocks<Format, false, false>(to, luma, chroma, pairs, weights);
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // ZELM_NEON
