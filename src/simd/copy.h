// Copying bytes.
#ifndef ZELM_SRC_SIMD_COPY_H_
#define ZELM_SRC_SIMD_COPY_H_

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zelm {

#if ZELM_HIGHWAY && defined(__ARM_NEON)
// In copy_neon.cc, because the C library's memcpy takes up to twice as many
// instructions.
void copyBytes(uint8_t* to, const uint8_t* from, size_t bytes);
#else
inline void copyBytes(uint8_t* to, const uint8_t* from, size_t bytes) {
  std::memcpy(to, from, bytes);
}
#endif

}  // namespace zelm

#endif  // ZELM_SRC_SIMD_COPY_H_
