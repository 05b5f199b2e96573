// Box averages: the kernels that reduce by 2 or 4.
#ifndef ZELM_SRC_RESIZE_BOX_AVERAGE_H_
#define ZELM_SRC_RESIZE_BOX_AVERAGE_H_

#include <cstddef>
#include <cstdint>

namespace zelm {

// Makes a row of `bytes` bytes out of 2 or 4 rows from `from` on, which are twice or
// four times as long. `next` is where the next row's sources begin, which are
// prefetched, or null.
using AverageRow = void(uint8_t* to, const uint8_t* from, ptrdiff_t stride,
                        size_t bytes, const uint8_t* next);

// Returns the kernel for a factor of 2 or 4, samples of 1 to 4 bytes, and destination
// rows of so many bytes.
AverageRow* averageKernel(size_t factor, size_t sample, size_t bytes);

}  // namespace zelm

#endif  // ZELM_SRC_RESIZE_BOX_AVERAGE_H_
