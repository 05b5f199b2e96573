// Turns: the kernels that transpose a plane and reverse a row.
#ifndef ZELM_SRC_ROTATE_TURN_H_
#define ZELM_SRC_ROTATE_TURN_H_

#include <cstddef>
#include <cstdint>

namespace zelm {

// Makes to(x, y) = from(y, x) for columns x rows samples of the destination. A negative
// stride walks that side's rows backwards, so quarter turns and both transpositions are
// this one call.
using Transpose = void(uint8_t* to, ptrdiff_t toStride, const uint8_t* from,
                       ptrdiff_t fromStride, size_t columns, size_t rows);

// Makes the samples of a row in reverse order.
using ReverseRow = void(uint8_t* to, const uint8_t* from, size_t samples);

// Return the kernel for samples of 1 to 4 bytes, and destination rows of so many of
// them.
Transpose* transposeKernel(size_t sample, size_t columns);
ReverseRow* reverseKernel(size_t sample);

}  // namespace zelm

#endif  // ZELM_SRC_ROTATE_TURN_H_
