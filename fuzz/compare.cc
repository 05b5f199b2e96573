// Fills the source and turns a mismatch into a finding.
#include "compare.h"

#include "content.h"
#include "finding.h"

namespace fuzz {
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
