// Stores that go past the caches. They are worth it for stages that do little with a
// byte and write frames that no cache holds, as caches would read every line before it
// is written. Below that they lose: what is written is read soon, and then from memory.
#ifndef ZELM_SRC_SIMD_STREAMING_H_
#define ZELM_SRC_SIMD_STREAMING_H_

#include <cstddef>

#if ZELM_HIGHWAY
#include "hwy/cache_control.h"
#endif

namespace zelm {

// For a stage that reads and writes so many bytes in all.
inline bool worthStreaming([[maybe_unused]] size_t bytes) {
#if ZELM_HIGHWAY && defined(__x86_64__)
  return bytes >= size_t{20} << 20;  // from measurements with 32 MiB of shared cache
#else
  return false;
#endif
}

// After the last of such stores: other threads may see them later than ordinary ones.
inline void finishStreaming() {
#if ZELM_HIGHWAY
  hwy::FlushStream();
#endif
}

}  // namespace zelm

#endif  // ZELM_SRC_SIMD_STREAMING_H_
