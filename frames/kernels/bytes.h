// Rows of bytes: every second one, means of two rows, packed 4:2:2.
#ifndef ZELM_FRAMES_KERNELS_BYTES_H_
#define ZELM_FRAMES_KERNELS_BYTES_H_

#include <cstddef>
#include <cstdint>

namespace zelm {

// Each kernel is that for rows of so many bytes or pixels.

// to[i] = from[2 i], or from[2 i + 1]. The byte behind the last one that is taken is
// not read.
using TakeBytes = void(uint8_t* to, const uint8_t* from, size_t bytes);
TakeBytes* firstBytesKernel(size_t bytes);
TakeBytes* secondBytesKernel(size_t bytes);

// to[i] = the mean of a[i] and b[i], rounded up.
using MeanRow = void(uint8_t* to, const uint8_t* a, const uint8_t* b, size_t bytes);
MeanRow* meanRowKernel(size_t bytes);

// Splits a row of packed 4:2:2 into luma and pairs, or two rows into two of luma and
// one of pairs: their mean, rounded up, or those of the upper row. `from[1]` is null,
// or the other row. An odd last pixel has a pair of its own. With `stream` it stores
// past the caches, which simd/streaming.h explains.
using SplitPacked = void(uint8_t* const (&luma)[2], uint8_t* pairs,
                         const uint8_t* const (&from)[2], size_t pixels,
                         bool chromaFirst, bool upper, bool stream);
SplitPacked* splitPackedKernel(size_t pixels);

}  // namespace zelm

#endif  // ZELM_FRAMES_KERNELS_BYTES_H_
