// Fills frames with patterns and turns mismatches into test failures.
#include "harness.h"

#include <gtest/gtest.h>

namespace harness {
namespace {

void hash(const uint8_t* bytes, size_t size, uint64_t* digest) {
  const uint64_t prime = 1099511628211u;
  size_t i = 0;
  for (; i + 8 <= size; i += 8) {
    uint64_t word = 0;
    for (int b = 7; b >= 0; --b) word = word << 8 | bytes[i + b];
    *digest = (*digest ^ word) * prime;
    *digest ^= *digest >> 32;
  }
  for (; i < size; ++i) *digest = (*digest ^ bytes[i]) * prime;
}

}  // namespace

void fill(uint8_t* bytes, size_t size, size_t stride, Content content, uint32_t seed) {
  Random random(seed);
  for (size_t i = 0; i < size; ++i) {
    const size_t row = i / stride, column = i % stride;
    const size_t values[kContents] = {random.next() >> 8,
                                      0,
                                      255,
                                      (row + column + seed) % 2 * 255,
                                      (row / 5 + column / 7 + seed) % 2 * 255,
                                      3 * column + 5 * row + seed};
    bytes[i] = static_cast<uint8_t>(values[content]);
  }
}

bool compare(const Call& call, const Frame& dst, const Frame& src, Content content,
             uint32_t seed, uint64_t* digest) {
  Bytes source(src.bytes);
  fill(source.data(), source.size(), src.stride, content, seed);
  Comparison comparison(call, dst, src, source.data());
  using Guard = Comparison::Guard;
  for (const Guard guard : {Guard::kBehind, Guard::kBefore}) {
    const Text wrong = comparison.run(guard, guard);
    if (!wrong.empty()) {
      ADD_FAILURE() << wrong << "\n  with content " << content << ", seed " << seed;
      return false;
    }
    if (digest != nullptr) hash(comparison.written(), dst.bytes, digest);
  }
  return true;
}

}  // namespace harness
