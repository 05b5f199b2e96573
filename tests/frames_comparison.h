// Comparing conversions of zelm_frames with their reference, for tests and fuzzers.
#ifndef ZELM_TESTS_FRAMES_COMPARISON_H
#define ZELM_TESTS_FRAMES_COMPARISON_H

#include <functional>
#include <vector>

#include "frames_cases.h"

namespace frames_test {

// Converts with the library, in one way or another; returns a ZelmResult.
using Call = std::function<int(const ZelmFrame& dst, const ZelmFrame& src,
                               const ZelmEdit& edit)>;

int convertAtOnce(const ZelmFrame& dst, const ZelmFrame& src, const ZelmEdit& edit);

// One case with the bytes of its source. The reference is asked once.
class Comparison {
 public:
  using Guard = GuardedBuffer::Guard;
  // Writes the bytes of a block with rows of `stride` bytes.
  using Fill = std::function<void(uint8_t* bytes, size_t size, size_t stride)>;

  Comparison(const Case& c, const Fill& fill);

  // Calls the library on blocks that end at inaccessible pages, or begin `lead` bytes
  // behind them. Every byte of the destination's blocks has to be the reference's, the
  // source unchanged and all heap memory freed. Returns a line with the case and one
  // for each thing that is wrong, or an empty text.
  harness::Text run(const Call& call, Guard guard, size_t lead = 0);

  // The destination's block that the last run wrote.
  const uint8_t* written(int block) const { return written_[block]; }

 private:
  const Case& case_;
  std::vector<uint8_t> source_[3], expected_[3];
  uint8_t* written_[3];
};

}  // namespace frames_test

#endif  // ZELM_TESTS_FRAMES_COMPARISON_H
