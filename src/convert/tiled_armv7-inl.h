// A whole tile moved on 32-bit Arm. Included by tiled.cc in each of its passes.
#include "simd/vector-inl.h"

#if ZELM_ARMV7

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// Moves row by row: the two halves of a register are the halves of a row, and each is
// loaded or stored by itself.
template <bool kToTiled, bool kSwap, size_t kRows>
HWY_INLINE void moveTile(uint8_t* linear, size_t stride, uint8_t* tile) {
  uint8_t *left = tile, *right = tile + 8 * kRows;
  const uint8_t *fromLinear = linear, *fromLeft = left, *fromRight = right;
  for (size_t y = 0; y < kRows; ++y) {
    uint8x16_t row =
        kToTiled ? take16(fromLinear, stride) : takeHalves(fromLeft, fromRight);
    if (kSwap) row = swapPairs(Vec<U8>{row}).raw;
    if (kToTiled) {
      putHalves(left, right, row);
    } else {
      put16(linear, stride, row);
    }
  }
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // ZELM_ARMV7
