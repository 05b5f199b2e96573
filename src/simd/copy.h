// Copying bytes.
#ifndef ZELM_SRC_SIMD_COPY_H_
#define ZELM_SRC_SIMD_COPY_H_

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zelm {

// Copies bytes. With `stream` it stores past the caches, as simd/streaming.h explains.
#if ZELM_HIGHWAY && (defined(__ARM_NEON) || defined(__x86_64__))
// In copy_neon.cc, because the C library's memcpy takes up to twice as many
// instructions, and in copy_x86.cc.
void copyBytes(uint8_t* to, const uint8_t* from, size_t bytes, bool stream = false);
#else
inline void copyBytes(uint8_t* to, const uint8_t* from, size_t bytes, bool = false) {
  std::memcpy(to, from, bytes);
}
#endif

}  // namespace zelm

#endif  // ZELM_SRC_SIMD_COPY_H_
