// What the box averages need of 32-bit Arm's assembly: two instructions that write both
// halves of a register in place. With intrinsics the compiler computes the halves
// elsewhere and moves them. AArch64 has an intrinsic for each.
#include "simd/vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm {
namespace {
namespace HWY_NAMESPACE {

// Shifts the lanes of a, and then those of b, to the right and narrows them to bytes.
template <int kShift>
HWY_INLINE uint8x16_t shiftAndNarrow(uint16x8_t a, uint16x8_t b) {
#if HWY_ARCH_ARM_V7
  uint8x16_t both;
  asm("vshrn.i16 %e0, %q1, %3\n\tvshrn.i16 %f0, %q2, %3"
      : "=&w"(both)
      : "w"(a), "w"(b), "i"(kShift));
  return both;
#else
  return vshrn_high_n_u16(vshrn_n_u16(a, kShift), b, kShift);
#endif
}

// Adds neighbouring lanes of a, and then of b.
HWY_INLINE uint16x8_t addNeighbours(uint16x8_t a, uint16x8_t b) {
#if HWY_ARCH_ARM_V7
  uint16x8_t both;
  asm("vpadd.i16 %e0, %e1, %f1\n\tvpadd.i16 %f0, %e2, %f2"
      : "=&w"(both)
      : "w"(a), "w"(b));
  return both;
#else
  return vpaddq_u16(a, b);
#endif
}

// Adds neighbouring bytes of two rows: each lane is the sum of 2 x 2 bytes.
HWY_INLINE uint16x8_t addPairsOfTwoRows(uint8x16_t a, uint8x16_t b) {
#if HWY_ARCH_ARM_V7
  uint16x8_t sums;
  asm("vpaddl.u8 %q0, %q1\n\tvpadal.u8 %q0, %q2" : "=&w"(sums) : "w"(a), "w"(b));
  return sums;
#else
  return vpadalq_u8(vpaddlq_u8(a), b);
#endif
}

}  // namespace HWY_NAMESPACE
}  // namespace
}  // namespace zelm
HWY_AFTER_NAMESPACE();
