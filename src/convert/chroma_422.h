// Chroma of 4:2:0 to 4:2:2: the kernel that makes two rows of one.
#ifndef ZELM_SRC_CONVERT_CHROMA_422_H_
#define ZELM_SRC_CONVERT_CHROMA_422_H_

#include <cstddef>
#include <cstdint>

namespace zelm {

// Writes the two rows that a row of pairs becomes: itself, and the mean of it and the
// next row, rounded down. With `stream` it stores past the caches, which
// simd/streaming.h explains.
using ExpandRow = void(uint8_t* even, uint8_t* odd, const uint8_t* row,
                       const uint8_t* next, size_t bytes, bool stream);

// Returns the kernel for rows of so many bytes that keeps the order of the bytes of a
// pair, or exchanges them.
ExpandRow* expandRowKernel(bool swap, size_t bytes);

}  // namespace zelm

#endif  // ZELM_SRC_CONVERT_CHROMA_422_H_
