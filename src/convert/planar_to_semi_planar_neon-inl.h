// Chroma planes interleaved on Arm. Included by planar_to_semi_planar.cc in each of its
// passes.
#include "simd/vector-inl.h"

#if ZELM_NEON

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

template <bool kStream>
HWY_INLINE size_t joinPairsInBlocks(uint8_t* to, const uint8_t* first,
                                    const uint8_t* second, size_t pairs) {
  return inMovingBlocks(
      pairs, 64,
      [&]() HWY_ATTR {
        for (int k = 0; k < 4; ++k) {
          const uint8x16_t a = take16(first), b = take16(second);
          putPairs(to, {{a, b}});
        }
      },
      [&](size_t n) HWY_ATTR { first -= n, second -= n, to -= 2 * n; });
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // ZELM_NEON
