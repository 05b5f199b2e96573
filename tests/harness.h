// Comparisons with the reference as test assertions, on frames with patterns.
#ifndef ZELM_TESTS_HARNESS_H
#define ZELM_TESTS_HARNESS_H

#include <ostream>
#include <vector>

#include "comparison.h"
#include "reference.h"

namespace harness {

using Bytes = std::vector<uint8_t>;

enum Content { kRandom, kZero, kFull, kChecker, kSteps, kRamp, kContents };

void fill(uint8_t* bytes, size_t size, size_t stride, Content content, uint32_t seed);

// Compares the call with buffers that end at an inaccessible page, and again with
// buffers that start at one. A mismatch is a test failure and returns false. `digest`
// accumulates what the library has written.
bool compare(const Call& call, const Frame& dst, const Frame& src, Content content,
             uint32_t seed, uint64_t* digest = nullptr);

inline std::ostream& operator<<(std::ostream& out, const Text& text) {
  return out << text.characters();
}

}  // namespace harness

#endif  // ZELM_TESTS_HARNESS_H
