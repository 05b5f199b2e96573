// Comparing a call of the library with the reference on records made from a fuzzer's
// input. Plain C in what runs, so that the memory sanitizer sees all of it.
#ifndef ZELM_FUZZ_COMPARE_H
#define ZELM_FUZZ_COMPARE_H

#include <stddef.h>
#include <stdint.h>

#include "harness.h"

namespace fuzz {

using harness::Frame;

// The input, read from the front; zeros behind its end.
class Input {
 public:
  Input(const uint8_t* bytes, size_t size) : next_(bytes), end_(bytes + size) {}
  size_t left() const { return static_cast<size_t>(end_ - next_); }
  const uint8_t* rest() const { return next_; }
  uint8_t byte() { return next_ == end_ ? 0 : *next_++; }
  uint32_t word() {
    uint32_t word = 0;
    for (int i = 0; i < 4; ++i) word = word << 8 | byte();
    return word;
  }
  int below(int limit) { return byte() % limit; }
  // Mostly small, now and then up to `limit`, and around the widths of vectors.
  int extent(int limit);

 private:
  const uint8_t *next_, *end_;
};

// One call with the record's data set; what the library returned.
using Call = int (*)(const void* context, ImageStruct* dst, ImageStruct* src);

// Calls both on equal buffers between inaccessible pages and stops the program when
// codes, bytes, the source or the records differ. The rest of the input is the content.
void compare(const char* name, const void* context, Call product, Call expected,
             const Frame& dst, const Frame& src, Input* input);

[[noreturn]] void finding(const char* name, const char* what, const ImageStruct& dst,
                          const ImageStruct& src);

}  // namespace fuzz

#endif  // ZELM_FUZZ_COMPARE_H
