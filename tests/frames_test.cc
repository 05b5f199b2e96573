// Conversions of zelm_frames against the reference: all pairs of formats, all ways in
// which planes lie, edits one by one and together, bands and threads.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <string>
#include <thread>

#include "frames_harness.h"

namespace frames_test {
namespace {

using harness::kContents;
using harness::kRandom;

Content contentOf(int i) {
  return static_cast<Content>(i % 4 == 0 ? i / 4 % kContents : 0);
}

std::string nameOf(uint32_t format) { return frames_reference::formatOf(format).name; }

// Each source format is a test of its own, so that they can run at the same time.
class FramesFrom : public testing::TestWithParam<uint32_t> {};

TEST_P(FramesFrom, EqualReferenceAtAllWidths) {
  Random random(GetParam());
  const int step = caseStep();
  int i = 0;
  for (uint32_t to = 1; to <= kFormats; ++to) {
    for (uint32_t width = 1; width <= 133; width += width < 36 ? 1 : 3) {
      if (++i % step != 0) continue;
      const uint32_t height = 1 + (width * 5 + to) % 7;
      const uint32_t from = static_cast<uint32_t>(random.below(kColours));
      const uint32_t colour =
          random.below(3) == 0 ? from : static_cast<uint32_t>(random.below(kColours));
      ASSERT_TRUE(compare({layOut(to, width, height, colour),
                           layOut(GetParam(), width, height, from),
                           {}},
                          contentOf(i), width));
    }
  }
}

TEST_P(FramesFrom, EqualReferenceForAllColours) {
  for (uint32_t to = 1; to <= kFormats; ++to) {
    for (uint32_t colours = 0; colours < kColours * kColours; ++colours) {
      if (colours % static_cast<uint32_t>(caseStep()) != 0) continue;
      const Case c = {layOut(to, 71, 5, colours % kColours),
                      layOut(GetParam(), 71, 5, colours / kColours),
                      {}};
      ASSERT_TRUE(compare(c, contentOf(static_cast<int>(colours)), colours));
    }
  }
}

// Strides, steps and alignments, of the source and of the destination.
TEST_P(FramesFrom, EqualReferenceHoweverPlanesLie) {
  size_t lead = 0;
  int i = 0;
  for (uint32_t to = 1; to <= kFormats; ++to) {
    for (int styles = 0; styles < kChromas * kChromas * 4; ++styles) {
      const auto styleOf = [styles](int chroma, int direction) {
        // All planes downwards or upwards, or in different directions.
        const unsigned bottomUp[] = {0, 7, 2, 5};
        return Style{static_cast<size_t>(chroma * 7 + styles % 3), bottomUp[direction],
                     static_cast<Chroma>(chroma), styles % 5 != 0};
      };
      const Style a = styleOf(styles / 4 % kChromas, styles % 4);
      const Style b = styleOf(styles / 4 / kChromas, (styles + styles / 4) % 4);
      // Formats with nothing to choose are tried once.
      const bool separate = frames_reference::formatOf(GetParam()).separate;
      if (!separate && a.chroma != kApart) continue;
      if (!frames_reference::formatOf(to).separate && b.chroma != kApart) continue;
      if (++i % caseStep() != 0) continue;
      const uint32_t width = 66 + static_cast<uint32_t>(styles) % 5;
      const Case c = {
          layOut(to, width, 5, 0, b), layOut(GetParam(), width, 5, 0, a), {}};
      ASSERT_TRUE(compare(c, kRandom, static_cast<uint32_t>(styles), convertAtOnce,
                          lead++ % 64));
    }
  }
}

// Every filter and every turn, up, down and by ratios that averages lead to.
TEST_P(FramesFrom, EqualReferenceScaledAndTurned) {
  struct {
    uint32_t w, h, toW, toH;
  } const sizes[] = {
      {64, 40, 32, 20},  {96, 60, 32, 20}, {160, 96, 20, 12}, {72, 72, 9, 5},
      {37, 23, 71, 50},  {20, 9, 150, 7},  {1, 1, 40, 3},     {70, 33, 1, 1},
      {130, 34, 65, 34}, {65, 3, 64, 3},   {33, 18, 34, 18},  {2, 2, 3, 5},
      {256, 128, 16, 8}, {40, 50, 10, 12},
  };
  int i = 0;
  for (uint32_t to = 1; to <= kFormats; ++to) {
    for (const auto& s : sizes) {
      for (uint32_t turn = 0; turn < 8; ++turn) {
        if (++i % caseStep() != 0) continue;
        ZelmEdit edit = {};
        edit.lumaFilter = static_cast<uint32_t>(i) % 3;
        edit.chromaFilter = static_cast<uint32_t>(i) / 3 % 3;
        edit.turn = turn % 4 * 90;
        edit.mirror = turn / 4;
        const bool quarter = turn % 2 == 1;
        const Case c = {layOut(to, quarter ? s.toH : s.toW, quarter ? s.toW : s.toH),
                        layOut(GetParam(), s.w, s.h), edit};
        ASSERT_TRUE(compare(c, contentOf(i), turn));
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(, FramesFrom, testing::Range(1u, kFormats + 1),
                         [](const auto& info) { return nameOf(info.param); });

// A few thousand edits with everything in them at once. The number of a case is its
// seed, so that it can be made again by itself.
class FramesAnyEdit : public testing::TestWithParam<int> {};

TEST_P(FramesAnyEdit, EqualReference) {
  for (int i = 0; i < 1000; i += caseStep()) {
    const uint32_t seed = static_cast<uint32_t>(GetParam() * 1000 + i);
    Random random(seed);
    const Case c = anyCase([&random](int limit) { return random.below(limit); });
    const size_t lead = static_cast<size_t>(random.below(64));
    ASSERT_TRUE(compare(c, contentOf(i), seed, convertAtOnce, lead)) << "case " << seed;
  }
}

INSTANTIATE_TEST_SUITE_P(, FramesAnyEdit, testing::Range(0, 6));

// ----------------------------------------------------------------------------- bands

struct PlanDeleter {
  void operator()(ZelmPlan* plan) const { zelmPlanDestroy(plan); }
};
using Plan = std::unique_ptr<ZelmPlan, PlanDeleter>;

Plan planFor(const ZelmFrame& dst, const ZelmFrame& src, const ZelmEdit& edit) {
  ZelmPlan* plan = nullptr;
  ZelmMessage message;
  EXPECT_EQ(zelmPlanCreate(&plan, &dst, &src, &edit, &message), ZELM_OK)
      << message.text;
  return Plan(plan);
}

// Cases that are large enough for several bands, most of them in regions of frames.
std::vector<Case> largeCases() {
  std::vector<Case> cases;
  for (uint32_t i = 0; i < 12; ++i) {
    const uint32_t formats[][2] = {{ZELM_NV12, ZELM_RGBA},    {ZELM_RGBA, ZELM_I420},
                                   {ZELM_YUYV, ZELM_NV21},    {ZELM_TILED, ZELM_I422},
                                   {ZELM_BGR565, ZELM_TILED}, {ZELM_YV12, ZELM_UYVY}};
    const bool scales = i >= 6;
    ZelmEdit edit = {};
    edit.turn = i % 4 * 90;
    edit.mirror = i / 2 % 2;
    edit.lumaFilter = i % 3;
    edit.chromaFilter = (i + 1) % 3;
    const bool quarter = i % 2 == 1;
    const uint32_t w = scales ? 500 : 250, h = scales ? 350 : 700;
    edit.source = {16, 8, w, h};
    edit.destination = {2, 4, quarter ? 700u : 250u, quarter ? 250u : 700u};
    cases.push_back({layOut(formats[i % 6][1], 704, 706, ZELM_BT709_LIMITED),
                     layOut(formats[i % 6][0], 530, 710, ZELM_BT709_LIMITED), edit});
  }
  return cases;
}

TEST(FramesBands, AnyOrderAndNumberOfThreads) {
  const Call reversed = [](const ZelmFrame& dst, const ZelmFrame& src,
                           const ZelmEdit& edit) {
    const Plan plan = planFor(dst, src, edit);
    const int bands = zelmPlanBands(plan.get());
    EXPECT_GT(bands, 1);
    int code = ZELM_OK;
    for (int b = bands; b-- > 0;) {
      code = std::min(code, zelmPlanRunBand(plan.get(), b, &dst, &src));
    }
    return code;
  };
  // Each thread takes the next band that nobody has taken yet; there are as many as the
  // shortest plans have bands, and more.
  const Call shared = [](const ZelmFrame& dst, const ZelmFrame& src,
                         const ZelmEdit& edit) {
    const Plan plan = planFor(dst, src, edit);
    const int bands = zelmPlanBands(plan.get());
    std::atomic<int> next{0}, code{ZELM_OK};
    const auto work = [&] {
      for (int b = next++; b < bands; b = next++) {
        const int result = zelmPlanRunBand(plan.get(), b, &dst, &src);
        if (result != ZELM_OK) code = result;
      }
    };
    std::vector<std::thread> threads;
    for (int t = 0; t < 6; ++t) threads.emplace_back(work);
    for (std::thread& thread : threads) thread.join();
    return code.load();
  };
  uint32_t seed = 0;
  for (const Case& c : largeCases()) {
    if (++seed % static_cast<uint32_t>(std::min(4, caseStep())) != 0) continue;
    for (const Call& call : {Call(convertAtOnce), reversed, shared}) {
      ASSERT_TRUE(compare(c, kRandom, seed, call));
    }
  }
}

// A band writes nothing but its own part, and all parts together are the region.
TEST(FramesBands, EachWritesItsOwnPart) {
  int i = 0;
  for (const Case& c : largeCases()) {
    if (++i % std::min(4, caseStep()) != 0) continue;
    OwnFrame src(c.src.frame.format, c.src.frame.width, c.src.frame.height);
    OwnFrame whole(c.dst.frame.format, c.dst.frame.width, c.dst.frame.height);
    src.fill(1);
    convert(&whole, src, c.edit);
    const Plan plan = planFor(whole.frame, src.frame, c.edit);
    std::vector<int> writers(whole.bytes.size());
    for (int b = 0; b < zelmPlanBands(plan.get()); ++b) {
      OwnFrame part(c.dst.frame.format, c.dst.frame.width, c.dst.frame.height);
      // What differs from the result in every byte stays like that unless it is
      // written.
      for (size_t i = 0; i < whole.bytes.size(); ++i) {
        part.bytes[i] = static_cast<uint8_t>(~whole.bytes[i]);
      }
      ASSERT_EQ(zelmPlanRunBand(plan.get(), b, &part.frame, &src.frame), ZELM_OK);
      for (size_t i = 0; i < whole.bytes.size(); ++i) {
        writers[i] += part.bytes[i] == whole.bytes[i];
      }
    }
    EXPECT_LE(*std::max_element(writers.begin(), writers.end()), 1) << describe(c);
  }
}

TEST(FramesPlan, RunsWithOtherPointersAndStrides) {
  for (uint32_t i = 0; i < 24; ++i) {
    const uint32_t from = 1 + i * 5 % kFormats, to = 1 + i * 3 % kFormats;
    ZelmEdit edit = {};
    edit.turn = i % 4 * 90;
    OwnFrame made(to, 75, 60), madeFrom(from, 60, 75);
    const Plan plan = planFor(made.frame, madeFrom.frame, edit);
    const Call run = [&plan](const ZelmFrame& dst, const ZelmFrame& src,
                             const ZelmEdit&) {
      return zelmPlanRun(plan.get(), &dst, &src);
    };
    for (uint32_t s = 0; s < kChromas; ++s) {
      const Style style = {s * 9, s % 2 * 7, static_cast<Chroma>(s), s % 2 == 0};
      const Style other = {60 - s * 9, s / 2 % 2 * 7,
                           static_cast<Chroma>(kChromas - 1 - s), true};
      ASSERT_TRUE(
          compare({layOut(to, 75, 60, 0, style), layOut(from, 60, 75, 0, other), edit},
                  kRandom, i, run, s * 13));
    }
  }
}

TEST(FramesPlan, ServesMoreThreadsThanBands) {
  OwnFrame src(ZELM_NV12, 320, 200), expected(ZELM_RGBA, 100, 180);
  src.fill(7);
  ZelmEdit edit = {};
  edit.turn = 90;
  convert(&expected, src, edit);
  const Plan plan = planFor(expected.frame, src.frame, edit);
  std::atomic<int> wrong{0}, waiting{8};
  const auto work = [&] {
    --waiting;
    while (waiting > 0) std::this_thread::yield();
    for (int i = 0; i < 20; ++i) {
      OwnFrame dst(ZELM_RGBA, 100, 180);
      wrong += zelmPlanRun(plan.get(), &dst.frame, &src.frame) != ZELM_OK ||
               dst.bytes != expected.bytes;
    }
  };
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t) threads.emplace_back(work);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace frames_test
