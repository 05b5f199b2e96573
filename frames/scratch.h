// Working memory of a band: planes taken one after the other, and all given back at the
// end of the band.
#ifndef ZELM_FRAMES_SCRATCH_H_
#define ZELM_FRAMES_SCRATCH_H_

#include <cstddef>
#include <cstdint>

#include "plane.h"

namespace zelm {

class Scratch {
 public:
  // Kernels may read this far before and behind what they need of a row.
  static constexpr size_t kPadding = 64;

  // The bytes that take() uses of the memory.
  static constexpr size_t bytesFor(size_t rowBytes, size_t rows) {
    return strideFor(rowBytes) * rows + kPadding;
  }

  Scratch(uint8_t* memory, size_t size) : next_(memory), end_(memory + size) {}

  // Returns a plane of `columns` x `rows` samples.
  Region take(size_t sample, size_t columns, size_t rows) {
    const size_t rowBytes = columns * sample;
    // The plan computed the size for all that its bands take.
    if (bytesFor(rowBytes, rows) > static_cast<size_t>(end_ - next_)) __builtin_trap();
    uint8_t* origin = next_ + kPadding;
    next_ += bytesFor(rowBytes, rows);
    return {origin, static_cast<ptrdiff_t>(strideFor(rowBytes)), columns, rows};
  }

 private:
  static constexpr size_t strideFor(size_t rowBytes) {
    return (rowBytes + 63) / 64 * 64 + kPadding;
  }

  uint8_t* next_;
  uint8_t* end_;
};

}  // namespace zelm

#endif  // ZELM_FRAMES_SCRATCH_H_
