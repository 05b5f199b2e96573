// The library's choice of the instruction set. It stands in a file of its own because
// the programs of tests and benchmarks are linked with another one.
#include "simd/instruction_set.h"

namespace zelm {

InstructionSet instructionSet() { return offeredInstructionSet(); }

}  // namespace zelm
