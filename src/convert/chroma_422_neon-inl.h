// Chroma of 4:2:0 to 4:2:2 on Arm. Included by chroma_422.cc in each of its passes.
#include "simd/vector-inl.h"

#if ZELM_NEON

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

template <bool kSwap, bool kStream>
HWY_INLINE size_t expandBlocks(uint8_t* even, uint8_t* odd, const uint8_t* row,
                               const uint8_t* next, size_t bytes) {
  return inMovingBlocks(
      bytes, 64,
      [&]() HWY_ATTR {
        for (int k = 0; k < 2; ++k) {
          uint8x16x2_t a = take32(row), b = take32(next);
          for (int j = 0; j < 2; ++j) {
            if (kSwap) {
              a.val[j] = vrev16q_u8(a.val[j]);
              b.val[j] = vrev16q_u8(b.val[j]);
            }
            b.val[j] = vhaddq_u8(a.val[j], b.val[j]);
          }
          put32(even, a);
          put32(odd, b);
        }
      },
      [&](size_t n) HWY_ATTR { row -= n, next -= n, even -= n, odd -= n; });
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // ZELM_NEON
