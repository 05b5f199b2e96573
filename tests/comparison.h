// Comparing a call of the library with the same call of the reference, for tests and
// fuzzers. The memory sanitizer does not see into the compiled part of the C++ library,
// so that nothing here needs more of it than templates.
#ifndef ZELM_TESTS_COMPARISON_H
#define ZELM_TESTS_COMPARISON_H

#include <functional>

#include "guarded_buffer.h"
#include "zelm_imageutil.h"

namespace harness {

// Random numbers, the same on every machine.
class Random {
 public:
  explicit Random(uint32_t seed) : state_(seed * 2654435761u + 88172645u) {}
  uint32_t next() {
    state_ = state_ * 6364136223846793005u + 1442695040888963407u;
    return static_cast<uint32_t>(state_ >> 33);
  }
  int below(int limit) {
    return static_cast<int>(next() % static_cast<uint32_t>(limit));
  }

 private:
  uint64_t state_;
};

// A text of limited length.
class Text {
 public:
  const char* characters() const { return characters_; }
  bool empty() const { return length_ == 0; }
  // Appends as printf() writes. What no longer fits is left out.
  __attribute__((format(printf, 2, 3))) void add(const char* format, ...);

 private:
  char characters_[1000] = "";
  size_t length_ = 0;
};

// A record without its `data`, and the size of the buffer for it. The row stride and
// the start of the chroma only serve messages and patterns.
struct Frame {
  ImageStruct record;
  size_t bytes, stride, chroma;
};

Text describe(const ImageStruct& record);

// A record full of noise: reserved areas and fields that nobody reads have values whose
// change would be noticed.
ImageStruct noisyRecord(Random* random);

// Both functions return a result code; for stages it is always 0.
struct Call {
  Text name;
  std::function<int(ImageStruct*dst, ImageStruct*src)> product, expected;
};

// One call of the library and of the reference on equal buffers, with records of these
// frames. All buffers touch an inaccessible page.
class Comparison {
 public:
  using Guard = GuardedBuffer::Guard;

  // `source` holds the src.bytes bytes that both calls read.
  Comparison(const Call& call, const Frame& dst, const Frame& src, uint8_t* source);

  // Calls the library, and after the first time the reference. Compares the result code
  // and every byte of the destination; source and records must be unchanged and all
  // heap memory freed. Returns a line with the call and one for each of these that is
  // wrong, or an empty text.
  Text run(Guard dstGuard, Guard srcGuard);

  // The destination that the library wrote in the last run.
  const uint8_t* written() const { return written_; }

 private:
  void runReference();

  const Call& call_;
  const Frame &dst_, &src_;
  uint8_t *source_, *written_ = nullptr, *expected_ = nullptr;
  int expectedCode_ = 0;
};

}  // namespace harness

#endif  // ZELM_TESTS_COMPARISON_H
