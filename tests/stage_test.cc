// Every stage against the reference and against what it wrote when the two first
// agreed.
#include <gtest/gtest.h>
#include <stdlib.h>

#include "stages.h"

namespace harness {
namespace {

// For slow machines: with ZELM_TEST_STEP=n only every n-th case is tried.
size_t caseStep() {
  const char* text = getenv("ZELM_TEST_STEP");
  const int step = text != nullptr ? atoi(text) : 1;
  return step > 0 ? static_cast<size_t>(step) : 1;
}

class StageTest : public testing::TestWithParam<Stage> {};

TEST_P(StageTest, EqualsReference) {
  const Stage& stage = GetParam();
  const Call both = callOf(stage);
  uint64_t digest = 14695981039346656037u;
  const std::vector<Case> cases = casesOf(stage);
  const size_t step = caseStep();
  for (size_t i = 0; i < cases.size(); i += step) {
    const Case& c = cases[i];
    ASSERT_TRUE(compare(both, c.dst, c.src, c.content, c.seed, &digest));
  }
  if (step == 1) {
    EXPECT_EQ(digest, stage.digest) << "digest 0x" << std::hex << digest;
  }
}

// Some kernels write past the caches when a frame is larger than they are.
TEST(LargeFrames, EqualReference) {
  const std::string names =
      "convYUV420SP_YUV422SP convYUV420SP_YUV422SP_VU2UV convYUV422IUYVY_YUV420SPVU "
      "convYUV420SP_YUV420P convYUV420P_YUV420SP rotate180_Y convYUV420SP_YUV420SP "
      "convYUV420SP_VU2UV convRGB565_YUV420SPVU rotate0_Y ";
  int tried = 0;
  Random random(1);
  for (const Stage& stage : stages()) {
    if (names.find(std::string(stage.name) + " ") == std::string::npos) continue;
    for (const bool margins : {false, true}) {
      // With margins no row is a whole number of vectors, without them every row is.
      const Sizes sizes =
          regionsOf(stage.fit, margins ? Size{4090, 1934} : Size{4096, 1930}, {0, 0});
      const Frame dst = makeFrame(stage.dst, stage.fit, sizes.dst, margins, &random);
      const Frame src = makeFrame(stage.src, stage.fit, sizes.src, margins, &random);
      ASSERT_TRUE(compare(callOf(stage), dst, src, kRandom, 1));
      ++tried;
    }
  }
  EXPECT_EQ(tried, 20);
}

// RGB is made in strips of columns where chroma is expanded first: one strip, one and a
// pair, two whole ones, two and a pair.
TEST(WideFrames, EqualReference) {
  Random random(2);
  int tried = 0;
  for (const Stage& stage : stages()) {
    if (std::string(stage.name).find("convYUV420SP_RGB") != 0) continue;
    for (const int width : {4096, 4098, 8192, 8194}) {
      for (const bool margins : {false, true}) {
        const Sizes sizes = regionsOf(stage.fit, Size{width, 6}, {0, 0});
        const Frame dst = makeFrame(stage.dst, stage.fit, sizes.dst, margins, &random);
        const Frame src = makeFrame(stage.src, stage.fit, sizes.src, margins, &random);
        ASSERT_TRUE(compare(callOf(stage), dst, src, kRandom, 1)) << width;
        ++tried;
      }
    }
  }
  EXPECT_EQ(tried, 24);
}

INSTANTIATE_TEST_SUITE_P(, StageTest, testing::ValuesIn(stages()),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace harness
