// Chroma pairs exchanged or split on Arm. Included by semi_planar.cc in each of its
// passes.
#include "simd/vector-inl.h"

#if ZELM_NEON

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

template <bool kStream>
HWY_INLINE size_t swapPairsInBlocks(uint8_t* to, const uint8_t* from, size_t bytes) {
  return inMovingBlocks(
      bytes, 128,
      [&]() HWY_ATTR {
        for (int k = 0; k < 4; ++k) {
          uint8x16x2_t v = take32(from);
          for (uint8x16_t& pairs : v.val) pairs = vrev16q_u8(pairs);
          put32(to, v);
        }
      },
      [&](size_t n) HWY_ATTR { from -= n, to -= n; });
}

template <bool kStream>
HWY_INLINE size_t splitPairsInBlocks(uint8_t* first, uint8_t* second,
                                     const uint8_t* from, size_t pairs) {
  return inMovingBlocks(
      pairs, 64,
      [&]() HWY_ATTR {
        for (int k = 0; k < 4; ++k) {
          const uint8x16x2_t split = takePairs(from);
          put16(first, split.val[0]);
          put16(second, split.val[1]);
        }
      },
      [&](size_t n) HWY_ATTR { from -= 2 * n, first -= n, second -= n; });
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // ZELM_NEON
