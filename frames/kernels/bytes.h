// Rows of bytes: every second one, means of two rows.
#ifndef ZELM_FRAMES_KERNELS_BYTES_H_
#define ZELM_FRAMES_KERNELS_BYTES_H_

#include <cstddef>
#include <cstdint>

namespace zelm {

// to[i] = from[2 i], or from[2 i + 1]. The byte behind the last one that is taken is
// not read.
using TakeBytes = void(uint8_t* to, const uint8_t* from, size_t bytes);
TakeBytes* firstBytesKernel();
TakeBytes* secondBytesKernel();

// to[i] = the mean of a[i] and b[i], rounded up.
using MeanRow = void(uint8_t* to, const uint8_t* a, const uint8_t* b, size_t bytes);
MeanRow* meanRowKernel();

}  // namespace zelm

#endif  // ZELM_FRAMES_KERNELS_BYTES_H_
