// Helpers on the registers of Arm's vector instructions: loads and stores that move
// their address on by themselves (post-increment), narrowing of two registers into one,
// and table lookups.
//
// GCC for 32-bit Arm names a register of 16 bytes as two halves but fills it by
// computing the halves elsewhere and moving them, has no intrinsics for 32 bytes at a
// time, and likes to compute addresses anew. There the same helpers are assembly.
#ifndef ZELM_SRC_SIMD_NEON_H_
#define ZELM_SRC_SIMD_NEON_H_

#include <arm_neon.h>

#include <cstddef>
#include <cstdint>

#if defined(__arm__) && !defined(__clang__)
#include "simd/neon_armv7_asm.h"
#else
#include "simd/neon_intrinsics.h"
#endif

namespace zelm {

// Calls body() for blocks of `block` items; it moves its addresses on. Before the last
// block moveBack(n) takes them back by so many items that it ends at `count`. Returns
// the number of items done: all, or 0 if there is no whole block.
template <class Body, class MoveBack>
[[gnu::always_inline]] inline size_t inMovingBlocks(size_t count, size_t block,
                                                    const Body& body,
                                                    const MoveBack& moveBack) {
  if (count < block) return 0;
  size_t left = count;
  for (; left >= block; left -= block) body();
  if (left > 0) {
    moveBack(block - left);
    body();
  }
  return count;
}

}  // namespace zelm

#endif  // ZELM_SRC_SIMD_NEON_H_
