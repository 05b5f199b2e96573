// The library's choice of the instruction set. It stands in a file of its own because
// the programs of tests and benchmarks are linked with another one.
#include "simd/instruction_set.h"

namespace zelm {

// Chosen when the library is loaded. Calls that come earlier run with plain code.
static const InstructionSet chosen =
    chooseInstructionSet(processorFeatures(), InstructionSet::kAvx512Vbmi);

InstructionSet instructionSet() { return chosen; }

}  // namespace zelm
