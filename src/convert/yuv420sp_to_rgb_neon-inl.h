// Semi-planar 4:2:0 to packed RGB on Arm. Included by yuv420sp_to_rgb.cc, which says
// what is computed, in each of its passes.
#include "convert/yuv420sp_to_rgb.h"
#include "simd/vector-inl.h"

#if ZELM_NEON

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// 16 pixels, in order.
struct RgbBytes {
  Vec<U8> r, g, b;
};

// Keeps first and second chroma bytes, and left and right pixels, in registers of their
// own. With s = byte - 128, a left pixel sees 2 times the sum over two rows, a right
// one the sum over two rows and two pairs; of the lone byte they see 4 s and 2 (s +
// s[next]). The factors of 2 are left to the coefficients.
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

  // Converts two times 16 pixels, and reads one pair further.
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
  // What chroma adds to the luma of 8 pairs: to left and to right pixels.
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
  // The coefficients of the lone and of the other byte for R or B, then for G. They
  // share one register, because only eight of them can be used by lane on 32-bit Arm.
  int16x4_t weights_;
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

template <class Format, bool kUFirst, bool kLoneFirst>
HWY_INLINE size_t convertBlocks(uint8_t* to, const uint8_t* luma,
                                const ChromaRows& chroma, size_t pairs) {
  const RgbKernel<kUFirst, kLoneFirst> kernel(chroma);
  return inBlocks(
      pairs, kernel.kPairs, [&](size_t j) HWY_ATTR __attribute__((always_inline)) {
        RgbBytes bytes[2];
        kernel.pixels(luma, 2 * j, bytes);
        storePixels(Format(), to + 2 * j * Format::kPixelBytes, bytes[0]);
        storePixels(Format(), to + (2 * j + 16) * Format::kPixelBytes, bytes[1]);
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

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // ZELM_NEON
