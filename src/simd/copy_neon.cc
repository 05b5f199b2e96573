// Copying bytes on Arm.
#include "simd/copy.h"

#if ZELM_HIGHWAY && defined(__ARM_NEON)
#include "simd/neon.h"

namespace zelm {

// The prefetch stands behind the loads and stores: in front of them GCC for 32-bit Arm
// keeps a second copy of both addresses.
void copyBytes(uint8_t* to, const uint8_t* from, size_t bytes, bool) {
  size_t left = bytes;
  for (; left >= 128; left -= 128) {
    for (int i = 0; i < 2; ++i) {
      const uint8x16x2_t a = take32(from), b = take32(from);
      put32(to, a);
      put32(to, b);
      __builtin_prefetch(from + 192);
    }
  }
  if (left > 0) std::memcpy(to, from, left);
}

}  // namespace zelm
#endif
