// Every stage against the reference and against what it wrote when the two first
// agreed.
#include <gtest/gtest.h>
#include <stdlib.h>

#include "stages.h"

namespace harness {
namespace {

// Where everything is slow, ZELM_TEST_STEP=n tries each n-th case only.
size_t caseStep() {
  const char* text = getenv("ZELM_TEST_STEP");
  const int step = text != nullptr ? atoi(text) : 1;
  return step > 0 ? static_cast<size_t>(step) : 1;
}

class StageTest : public testing::TestWithParam<Stage> {};

TEST_P(StageTest, EqualsReference) {
  const Stage& stage = GetParam();
  const auto call = [](StageFunction function) {
    return [function](ImageStruct* dst, ImageStruct* src) {
      function(dst, src);
      return 0;
    };
  };
  const Call both{stage.name, call(stage.product), call(stage.expected)};
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

INSTANTIATE_TEST_SUITE_P(, StageTest, testing::ValuesIn(stages()),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace harness
