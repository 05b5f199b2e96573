// Comparing a call of the library with the same call of the reference.
#ifndef ZELM_TESTS_HARNESS_H
#define ZELM_TESTS_HARNESS_H

#include <functional>
#include <string>
#include <vector>

#include "reference.h"
#include "zelm_imageutil.h"

namespace harness {

using Bytes = std::vector<uint8_t>;
using StageFunction = void (*)(ImageStruct* dst, ImageStruct* src);

// The same numbers on every machine.
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

enum Content { kRandom, kZero, kFull, kChecker, kSteps, kRamp, kContents };

void fill(uint8_t* bytes, size_t size, size_t stride, Content content, uint32_t seed);

// A record whose `data` is still to be set, and what its buffer looks like. The row
// stride and the start of the chroma only serve messages and content.
struct Frame {
  ImageStruct record;
  size_t bytes, stride, chroma;
};

std::string describe(const ImageStruct& record);

// Reserved areas and fields nobody reads get values that would be noticed.
ImageStruct noisyRecord(Random* random);

struct Call {
  std::string name;
  std::function<int(ImageStruct*dst, ImageStruct*src)> product, expected;
};

// Runs both functions of the call on equal buffers that end (then start) at an
// inaccessible page, and compares results, every byte of the destination, the source
// and the records, and that no heap memory is left behind. A mismatch is a test failure
// and gives false. `digest` accumulates what the library has written.
bool compare(const Call& call, const Frame& dst, const Frame& src, Content content,
             uint32_t seed, uint64_t* digest = nullptr);

}  // namespace harness

#endif  // ZELM_TESTS_HARNESS_H
