// Every stage against the reference and against what it wrote when the two first
// agreed.
#include <gtest/gtest.h>

#include "stages.h"

namespace harness {
namespace {

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
  for (const Case& c : casesOf(stage)) {
    ASSERT_TRUE(compare(both, c.dst, c.src, c.content, c.seed, &digest));
  }
  EXPECT_EQ(digest, stage.digest) << "digest 0x" << std::hex << digest;
}

INSTANTIATE_TEST_SUITE_P(, StageTest, testing::ValuesIn(stages()),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace harness
