// The choice of the instruction set for tests and benchmarks.
#include "instruction_set_ceiling.h"

#include <string.h>

namespace zelm {
namespace {

InstructionSet currentCeiling = InstructionSet::kAvx512Vbmi;
InstructionSet chosen = chooseInstructionSet(processorFeatures(), currentCeiling);

}  // namespace

InstructionSet instructionSet() { return chosen; }

void setInstructionSetCeiling(InstructionSet ceiling) {
  currentCeiling = ceiling;
  chosen = chooseInstructionSet(processorFeatures(), ceiling);
}

InstructionSet instructionSetCeiling() { return currentCeiling; }

bool findInstructionSet(const char* name, InstructionSet* set) {
  const char* const names[] = {"plain", "sse4", "avx2", "avx512", "all"};
  for (int i = 0; i < 5; ++i) {
    if (strcmp(name, names[i]) != 0) continue;
    *set = static_cast<InstructionSet>(i);
    return true;
  }
  return false;
}

}  // namespace zelm
