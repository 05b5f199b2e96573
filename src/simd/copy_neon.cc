// Copying bytes on Arm.
#include "simd/copy.h"

#if ZELM_HIGHWAY && defined(__ARM_NEON)
#include "simd/neon.h"

namespace zelm {

void copyBytes(uint8_t* to, const uint8_t* from, size_t bytes) {
  const size_t done = inMovingBlocks(
      bytes, 128,
      [&] {
        for (int i = 0; i < 2; ++i) {
          __builtin_prefetch(from + 256);
          const uint8x16x2_t a = take32(from), b = take32(from);
          put32(to, a);
          put32(to, b);
        }
      },
      [&](size_t n) { from -= n, to -= n; });
  if (done == 0) std::memcpy(to, from, bytes);
}

}  // namespace zelm
#endif
