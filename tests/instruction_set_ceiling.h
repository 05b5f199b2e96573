// A choice of the instruction set with a ceiling that can be lowered while the program
// runs, in order to see what an older processor would do. Programs that are linked with
// it, instead of with the library's own choice, run the library's kernels.
#ifndef ZELM_TESTS_INSTRUCTION_SET_CEILING_H
#define ZELM_TESTS_INSTRUCTION_SET_CEILING_H

#include "simd/instruction_set.h"

namespace zelm {

// From now on instructionSet() is at most this one. To be called before any thread is
// started; without it there is no ceiling.
void setInstructionSetCeiling(InstructionSet ceiling);
InstructionSet instructionSetCeiling();

// The ceiling called "plain", "sse4", "avx2", "avx512" or "all"; false for other names.
bool findInstructionSet(const char* name, InstructionSet* set);

}  // namespace zelm

#endif  // ZELM_TESTS_INSTRUCTION_SET_CEILING_H
