// Arithmetic of bilinear scaling with NEON. Included by bilinear.cc after scaler-inl.h,
// once per pass.
//
// Products of unsigned bytes have 16 bits (vmull, vmlal), so filtered rows are kept as
// H itself. The samples and the weights of a half lie in registers like this:
//   bytes    0..7              8..15
//            left of lane i    right of lane i - 8
#if ZELM_NEON

#include "simd/neon.h"
#include "simd/vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

constexpr size_t kRightPlace = 8;
HWY_INLINE size_t leftPlace(size_t lane) { return lane; }

HWY_INLINE Vec<U16> filterSamples(Vec<U8> picked, const uint8_t* weightBytes) {
  const uint8x16_t samples = picked.raw, weights = vld1q_u8(weightBytes);
  const uint16x8_t left = vmull_u8(vget_low_u8(samples), vget_low_u8(weights));
  return Vec<U16>{vmlal_u8(left, vget_high_u8(samples), vget_high_u8(weights))};
}

HWY_INLINE Vec<U16> lanes(uint8x16_t bytes) { return asU16(Vec<U8>{bytes}); }

// Returns the weight of the upper row in lane 0 and that of the lower one in lane 1.
HWY_INLINE uint16x4_t rowWeights(unsigned weight) {
  return vset_lane_u16(static_cast<uint16_t>(256 - weight),
                       vdup_n_u16(static_cast<uint16_t>(weight)), 0);
}

HWY_INLINE Vec<I16> blend(Vec<U16> upper, Vec<U16> lower, uint16x4_t weights) {
  const uint16x8_t a = upper.raw, b = lower.raw;
  const uint32x4_t first = vmlal_lane_u16(vmull_lane_u16(vget_low_u16(a), weights, 0),
                                          vget_low_u16(b), weights, 1);
  const uint32x4_t second = vmlal_lane_u16(vmull_lane_u16(vget_high_u16(a), weights, 0),
                                           vget_high_u16(b), weights, 1);
  return asI16(roundedUpperHalves(Vec<U32>{first}, Vec<U32>{second}));
}

// Loads and stores move the addresses on, which saves a third of the instructions.
HWY_INLINE void blendKeptRows(uint8_t* to, const int16_t* upper, const int16_t* lower,
                              unsigned weight, size_t bytes) {
  auto a = reinterpret_cast<const uint8_t*>(upper);
  auto b = reinterpret_cast<const uint8_t*>(lower);
  const auto moveBack = [&](size_t n) { to -= n; };
  if (weight == 0) {
    inMovingBlocks(
        bytes, kBytes,
        [&]() HWY_ATTR {
          const uint8x16x2_t row = take32(a);
          put16(to, roundedUpperBytes(lanes(row.val[0]), lanes(row.val[1])).raw);
        },
        moveBack);
    return;
  }
  const uint16x4_t weights = rowWeights(weight);
  inMovingBlocks(
      bytes, kBytes,
      [&]() HWY_ATTR {
        const uint8x16x2_t above = take32(a), below = take32(b);
        const auto half = [&](int h) HWY_ATTR {
          return blend(lanes(above.val[h]), lanes(below.val[h]), weights);
        };
        put16(to, packInBlocks(half(0), half(1)).raw);
      },
      moveBack);
}

// filterBoth(u) are the two filtered rows of unit u, filterUpper(u) is the first of
// them.
template <class FilterUpper, class FilterBoth>
HWY_INLINE void blendUnits(uint8_t* to, unsigned weight, size_t bytes,
                           const FilterUpper& filterUpper,
                           const FilterBoth& filterBoth) {
  const size_t vectors = vectorsFor(bytes);
  if (weight == 0) {
    for (size_t v = 0; v < vectors; ++v) {
      const Vec<U16> first = filterUpper(2 * v), second = filterUpper(2 * v + 1);
      store(roundedUpperBytes(first, second), to + vectorStart(v, bytes));
    }
    return;
  }
  const uint16x4_t weights = rowWeights(weight);
  for (size_t v = 0; v < vectors; ++v) {
    Vec<I16> half[2];
    for (size_t h = 0; h < 2; ++h) {
      const auto rows = filterBoth(2 * v + h);
      half[h] = blend(rows.first, rows.second, weights);
    }
    store(packInBlocks(half[0], half[1]), to + vectorStart(v, bytes));
  }
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // ZELM_NEON
