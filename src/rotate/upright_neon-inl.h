// A row of bytes reversed on Arm. Included by upright.cc in each of its passes.
#include "simd/vector-inl.h"

#if ZELM_NEON

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

HWY_INLINE size_t reverseBytes(uint8_t* to, const uint8_t* from, size_t bytes) {
  const uint8_t* last = from + bytes - 64;
  return inMovingBlocks(
      bytes, 64, [&]() HWY_ATTR { reverse64(to, last); },
      [&](size_t n) HWY_ATTR { to -= n, last += n; });
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // ZELM_NEON
