// RGB565 to luma and chroma on Arm. Included by rgb565_in.cc, which says what is
// computed, in each of its passes.
#include "simd/vector-inl.h"

#if ZELM_NEON

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// The channels of 8 pixels.
struct RgbLanes {
  uint8x8_t r, g, b;
};

// Moves each field to the top of a byte and repeats its top bits below it.
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

// Rounds C = 256 high + low, with 128 and the rounding, 8200, in high, to a chroma
// byte.
HWY_INLINE uint8x8_t centred(int16x8_t high, int16x8_t low) {
  const int16x8_t sum = vsraq_n_s16(high, low, 8);
  const int16x8_t negative = vreinterpretq_s16_u16(vcltq_s16(sum, vdupq_n_s16(8200)));
  return vreinterpret_u8_s8(
      vshrn_n_s16(vaddq_s16(sum, vandq_s16(negative, vdupq_n_s16(48))), 6));
}

template <bool kStream>
HWY_INLINE void putLuma(uint8_t* luma, const RgbLanes& a, const RgbLanes& b) {
  vst1_u8(luma, lumaOf(a));
  vst1_u8(luma + 8, lumaOf(b));
}

// Stores the chroma of the first pixel of each two.
template <bool kStream>
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
}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // ZELM_NEON
