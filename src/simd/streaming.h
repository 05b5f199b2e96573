// When to store past the caches. It is worth it for stages that do little with a byte
// and write frames that no cache holds, because a cache reads every line before it is
// written. In smaller frames it loses: what is written is read soon, and would then
// come from memory.
#ifndef ZELM_SRC_SIMD_STREAMING_H_
#define ZELM_SRC_SIMD_STREAMING_H_

#include <cstddef>

#if ZELM_HIGHWAY
#include "hwy/cache_control.h"
#endif

namespace zelm {

// Tells whether it is worth it for a stage that reads and writes so many bytes in all.
inline bool worthStreaming([[maybe_unused]] size_t bytes) {
#if ZELM_HIGHWAY && defined(__x86_64__)
  return bytes >= size_t{15} << 20;  // from measurements with 32 MiB of shared cache
#else
  return false;
#endif
}

// Comes after the last of such stores, which other threads may otherwise see later than
// ordinary ones that follow.
inline void finishStreaming() {
#if ZELM_HIGHWAY
  hwy::FlushStream();
#endif
}

}  // namespace zelm

#endif  // ZELM_SRC_SIMD_STREAMING_H_
