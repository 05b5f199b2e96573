// The instruction set that the library itself chooses, without a ceiling.
#include <gtest/gtest.h>

#include "ask_processor.h"

namespace zelm {
namespace {

TEST(InstructionSet, OfTheLibraryIsTheHighestOfTheMachine) {
  EXPECT_EQ(instructionSet(),
            chooseInstructionSet(askProcessor(), InstructionSet::kAvx512Vbmi));
}

}  // namespace
}  // namespace zelm
