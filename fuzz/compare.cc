// Fills the source and turns a mismatch into a finding.
#include "compare.h"

#include "finding.h"

namespace fuzz {
namespace {

// Noise from a seed, or the rest of the input again and again.
void fill(uint8_t* to, size_t size, Input* input) {
  const uint32_t seed = input->byte();
  const size_t given = input->left();
  if (seed % 2 == 0 && given > 0) {
    for (size_t i = 0; i < size; ++i) to[i] = input->rest()[i % given];
  } else {
    uint32_t state = seed * 2654435761u + 1;
    for (size_t i = 0; i < size; ++i) {
      state = state * 1664525u + 1013904223u;
      to[i] = seed % 4 == 1 ? static_cast<uint8_t>(state >> 24)
                            : static_cast<uint8_t>(state >> 31 ? 255 : 0);
    }
  }
}

}  // namespace

void compare(const harness::Call& call, const harness::Frame& dst,
             const harness::Frame& src, Input* input) {
  using Guard = GuardedBuffer::Guard;
  static GuardedBuffer buffer;
  const int guards = input->byte();
  const auto guard = [guards](int bit) {
    return guards & bit ? Guard::kBefore : Guard::kBehind;
  };
  uint8_t* source = buffer.place(src.bytes, guard(2));
  fill(source, src.bytes, input);
  harness::Comparison comparison(call, dst, src, source);
  const harness::Text wrong = comparison.run(guard(1), guard(2));
  check(wrong.empty(), wrong.characters());
}

}  // namespace fuzz
