// Comparisons of zelm_frames with its reference as test assertions.
#ifndef ZELM_TESTS_FRAMES_HARNESS_H
#define ZELM_TESTS_FRAMES_HARNESS_H

#include "frames_comparison.h"
#include "frames_reference.h"
#include "harness.h"

namespace frames_test {

using harness::Bytes;
using harness::Content;
using harness::Random;

constexpr uint32_t kFormats = 17, kColours = 6;

// For slow machines: with ZELM_TEST_STEP=n only every n-th case is tried.
int caseStep();

// Compares with blocks that end at an inaccessible page, and again with blocks that
// begin `lead` bytes behind one. A mismatch is a test failure and returns false.
bool compare(const Case& c, Content content, uint32_t seed,
             const Call& call = convertAtOnce, size_t lead = 0);

// A frame in one buffer of its own, as zelmFrameInit() describes it.
class OwnFrame {
 public:
  OwnFrame(uint32_t format, uint32_t width, uint32_t height, uint32_t colour = 0);
  OwnFrame(OwnFrame&&) = default;
  OwnFrame& operator=(OwnFrame&&) = default;
  void fill(uint32_t seed) {
    harness::fill(bytes.data(), bytes.size(), frame.width, harness::kRandom, seed);
  }

  Bytes bytes;
  ZelmFrame frame;
};

// Converts without complaints.
void convert(OwnFrame* dst, const OwnFrame& src, const ZelmEdit& edit = {});

}  // namespace frames_test

#endif  // ZELM_TESTS_FRAMES_HARNESS_H
