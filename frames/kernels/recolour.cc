// Rows of luma and of chroma pairs from one colour description to another:
//   Y' = clamp((yy (Y - o) + yu (U - 128) + yv (V - 128) + o' * 2^14 + 2^13) >> 14)
//   U' = clamp((uu (U - 128) + uv (V - 128) + 128 * 2^14 + 2^13) >> 14), V' alike
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "frames/kernels/recolour.cc"
#include "simd/each_target.h"  // before all others

#include "frames/kernels/recolour.h"
#include "simd/dispatch.h"
#include "simd/vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

HWY_INLINE uint8_t rounded(int sum, int offset) {
  const int value = (sum + (offset * 2 + 1) * (1 << 13)) >> 14;
  return static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
}

void recolourLumaRow(uint8_t* to, const uint8_t* luma, const uint8_t* pairs,
                     bool uFirst, size_t pixels, const YuvToYuv& weights) {
  const int first = uFirst ? weights.yu : weights.yv;
  const int second = uFirst ? weights.yv : weights.yu;
  for (size_t x = 0; x < pixels; ++x) {
    int sum = weights.yy * (luma[x] - weights.fromOffset);
    if (pairs != nullptr) {
      const uint8_t* pair = pairs + x / 2 * 2;
      sum += first * (pair[0] - 128) + second * (pair[1] - 128);
    }
    to[x] = rounded(sum, weights.toOffset);
  }
}

void recolourPairsRow(uint8_t* to, const uint8_t* pairs, bool uFirst, size_t count,
                      const YuvToYuv& weights) {
  const int own[2] = {uFirst ? weights.uu : weights.vv,
                      uFirst ? weights.vv : weights.uu};
  const int other[2] = {uFirst ? weights.uv : weights.vu,
                        uFirst ? weights.vu : weights.uv};
  for (size_t i = 0; i < 2 * count; i += 2) {
    const int first = pairs[i] - 128, second = pairs[i + 1] - 128;
    to[i] = rounded(own[0] * first + other[0] * second, 128);
    to[i + 1] = rounded(own[1] * second + other[1] * first, 128);
  }
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zelm {

RecolourLuma* recolourLumaKernel() { return ZELM_KERNEL(recolourLumaRow); }
RecolourPairs* recolourPairsKernel() { return ZELM_KERNEL(recolourPairsRow); }

}  // namespace zelm
#endif  // HWY_ONCE
