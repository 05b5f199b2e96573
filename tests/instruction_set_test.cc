// Which instruction set the kernels run with: the choice, and where a call really ends
// up in this run on this machine. The kernel here is compiled and picked like those of
// the library. The environment variable ZELM_INSTRUCTION_SET sets the ceiling of all
// tests of the program: plain, sse4, avx2, avx512 or all.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "instruction_set_test.cc"
#include "simd/each_target.h"  // before all others

#include "simd/dispatch.h"
#include "simd/instruction_set.h"
#include "simd/vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

const char* compiledFor() {
#if !ZELM_VECTORS
  return "plain code";
#elif ZELM_VBMI
  return "AVX-512 with VBMI";
#elif HWY_TARGET == HWY_AVX3
  return "AVX-512";
#elif HWY_TARGET == HWY_AVX2
  return "AVX2";
#elif HWY_TARGET == HWY_SSE4
  return "SSE4";
#elif ZELM_NEON
  return "NEON";
#endif
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#include "simd/vbmi_pass.h"

#if HWY_ONCE
#include <gtest/gtest.h>
#include <stdlib.h>
#if defined(__x86_64__)
#include <cpuid.h>
#endif

#include <algorithm>
#include <cstdio>
#include <initializer_list>
#include <string>

#include "instruction_set_ceiling.h"

namespace zelm {
namespace {

// In the order of InstructionSet.
[[maybe_unused]] const char* const names[] = {"plain code", "SSE4", "AVX2", "AVX-512",
                                              "AVX-512 with VBMI"};

std::string kernelRuns() { return ZELM_KERNEL(compiledFor)(); }

// Sets the ceiling before the first test and prints once what follows from it.
class SetsInstructionSet : public testing::Environment {
 public:
  void SetUp() override {
    InstructionSet ceiling = instructionSetCeiling();
    const char* name = getenv("ZELM_INSTRUCTION_SET");
    ASSERT_TRUE(name == nullptr || findInstructionSet(name, &ceiling)) << name;
    setInstructionSetCeiling(ceiling);
#if defined(__x86_64__)
    printf("[   NOTE   ] allowed up to %s, runs with %s\n",
           names[static_cast<int>(ceiling)], kernelRuns().c_str());
#else
    printf("[   NOTE   ] %d-bit code, runs with %s\n",
           static_cast<int>(8 * sizeof(void*)), kernelRuns().c_str());
#endif
    testing::Test::RecordProperty("instruction_set", kernelRuns());
  }
};
const auto* const environment =
    testing::AddGlobalTestEnvironment(new SetsInstructionSet);

TEST(InstructionSet, ChoiceEndsAtTheFirstGapAndAtTheCeiling) {
  // The highest set for each combination of features, SSE4 being the lowest bit.
  const int highest[16] = {0, 1, 0, 2, 0, 1, 0, 3, 0, 1, 0, 2, 0, 1, 0, 4};
  for (int bits = 0; bits < 16; ++bits) {
    const ProcessorFeatures features = {(bits & 1) != 0, (bits & 2) != 0,
                                        (bits & 4) != 0, (bits & 8) != 0};
    for (int ceiling = 0; ceiling < 5; ++ceiling) {
      const InstructionSet set =
          chooseInstructionSet(features, static_cast<InstructionSet>(ceiling));
      EXPECT_EQ(static_cast<int>(set), std::min(highest[bits], ceiling)) << bits;
    }
  }
}

#if defined(__x86_64__)

// What the processor says of itself, without the compiler's help.
ProcessorFeatures askProcessor() {
  unsigned a, b, c, d, b7, c7, saved = 0;
  if (__get_cpuid(1, &a, &b, &c, &d) == 0) return {};
  const auto all = [](unsigned word, std::initializer_list<int> bits) {
    return std::all_of(bits.begin(), bits.end(),
                       [word](int bit) { return (word >> bit & 1) != 0; });
  };
  const unsigned c1 = c;
  // The registers that the operating system saves: upper halves of ymm, masks, zmm.
  if (all(c1, {27})) asm volatile("xgetbv" : "=a"(saved), "=d"(d) : "c"(0));
  if (__get_cpuid_count(7, 0, &a, &b7, &c7, &d) == 0) b7 = c7 = 0;
  const bool ymm = all(saved, {1, 2}), zmm = ymm && all(saved, {5, 6, 7});
  return {all(c1, {9, 19, 20}), ymm && all(c1, {12}) && all(b7, {3, 5, 8}),
          zmm && all(b7, {16, 17, 30, 31}), zmm && all(c7, {1, 11})};
}

TEST(InstructionSet, FeaturesAreThoseOfTheProcessor) {
  const ProcessorFeatures features = processorFeatures(), asked = askProcessor();
  EXPECT_EQ(features.sse4, asked.sse4);
  EXPECT_EQ(features.avx2, asked.avx2);
  EXPECT_EQ(features.avx512, asked.avx512);
  EXPECT_EQ(features.vbmi, asked.vbmi);
}

TEST(InstructionSet, IsTheHighestUpToTheCeiling) {
  const InstructionSet set =
      chooseInstructionSet(processorFeatures(), instructionSetCeiling());
  EXPECT_EQ(instructionSet(), set);
#if ZELM_HIGHWAY
  // Options of the compiler may raise the lowest set that is compiled.
  const InstructionSet baseline =
      HWY_STATIC_TARGET == HWY_AVX3   ? InstructionSet::kAvx512
      : HWY_STATIC_TARGET == HWY_AVX2 ? InstructionSet::kAvx2
      : HWY_STATIC_TARGET == HWY_SSE4 ? InstructionSet::kSse4
                                      : InstructionSet::kPlain;
  EXPECT_EQ(kernelRuns(), names[static_cast<int>(std::max(set, baseline))]);
#else
  EXPECT_EQ(kernelRuns(), names[0]);
#endif
}

#elif defined(__arm__) || defined(__aarch64__)

// Highway silently compiles plain code where the compiler's options leave out NEON.
TEST(InstructionSet, IsNeonUnlessVectorsAreOff) {
#if ZELM_HIGHWAY
  EXPECT_EQ(kernelRuns(), "NEON");
#else
  EXPECT_EQ(kernelRuns(), "plain code");
#endif
}

#endif

}  // namespace
}  // namespace zelm
#endif  // HWY_ONCE
