// Rows of chroma pairs: the kernels that join, split and swap them.
#ifndef ZELM_SRC_CONVERT_PAIRS_H_
#define ZELM_SRC_CONVERT_PAIRS_H_

#include <cstddef>
#include <cstdint>

namespace zelm {

// With `stream` these store past the caches, which simd/streaming.h explains.
// Interleaves two rows of bytes into pairs, and takes pairs apart.
using JoinPairsRow = void(uint8_t* to, const uint8_t* first, const uint8_t* second,
                          size_t pairs, bool stream);
using SplitPairsRow = void(uint8_t* first, uint8_t* second, const uint8_t* from,
                           size_t pairs, bool stream);

// Exchanges the bytes of each pair. The rows do not overlap, and `bytes` is even.
using SwapPairsRow = void(uint8_t* to, const uint8_t* from, size_t bytes, bool stream);

// Return the kernel for rows of so many pairs, or bytes.
JoinPairsRow* joinPairsKernel(size_t pairs);
SplitPairsRow* splitPairsKernel(size_t pairs);
SwapPairsRow* swapPairsKernel(size_t bytes);

}  // namespace zelm

#endif  // ZELM_SRC_CONVERT_PAIRS_H_
