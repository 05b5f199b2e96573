// The instruction set that the library itself chooses, without a ceiling.
#include <gtest/gtest.h>

#include "simd/instruction_set.h"

namespace zelm {
namespace {

TEST(InstructionSet, OfTheLibraryIsTheHighestOfTheMachine) {
  EXPECT_EQ(instructionSet(),
            chooseInstructionSet(processorFeatures(), InstructionSet::kAvx512Vbmi));
}

}  // namespace
}  // namespace zelm
