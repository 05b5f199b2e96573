// Turns mismatches into test failures.
#include "frames_harness.h"

#include <gtest/gtest.h>
#include <stdlib.h>

namespace frames_test {

int caseStep() {
  const char* text = getenv("ZELM_TEST_STEP");
  const int step = text != nullptr ? atoi(text) : 1;
  return step > 0 ? step : 1;
}

bool compare(const Case& c, Content content, uint32_t seed, const Call& call,
             size_t lead) {
  uint32_t block = 0;
  Comparison comparison(c, [&](uint8_t* bytes, size_t size, size_t stride) {
    harness::fill(bytes, size, stride, content, seed + 1000 * block++);
  });
  using Guard = Comparison::Guard;
  for (const Guard guard : {Guard::kBehind, Guard::kBefore}) {
    const harness::Text wrong = comparison.run(call, guard, lead);
    if (wrong.empty()) continue;
    ADD_FAILURE() << wrong << "\n  with content " << content << ", seed " << seed;
    return false;
  }
  return true;
}

OwnFrame::OwnFrame(uint32_t format, uint32_t width, uint32_t height, uint32_t colour)
    : bytes(zelmFrameBytes(format, width, height, 1)) {
  EXPECT_EQ(zelmFrameInit(&frame, format, width, height, bytes.data(), bytes.size(), 1),
            ZELM_OK);
  frame.colour = colour;
}

void convert(OwnFrame* dst, const OwnFrame& src, const ZelmEdit& edit) {
  ZelmMessage message;
  ASSERT_EQ(zelmConvert(&dst->frame, &src.frame, &edit, &message), ZELM_OK)
      << message.text;
}

}  // namespace frames_test
