// What the processor offers, and the instruction set that follows from it.
#include "simd/instruction_set.h"

namespace zelm {

ProcessorFeatures processorFeatures() {
#if defined(__x86_64__)
  return {__builtin_cpu_supports("ssse3") && __builtin_cpu_supports("sse4.1") &&
              __builtin_cpu_supports("sse4.2"),
          __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") &&
              __builtin_cpu_supports("bmi2") && __builtin_cpu_supports("fma"),
          __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
              __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512bw"),
          __builtin_cpu_supports("avx512vbmi") && __builtin_cpu_supports("avx512vnni")};
#else
  return {};
#endif
}

InstructionSet chooseInstructionSet(const ProcessorFeatures& features,
                                    InstructionSet ceiling) {
  const bool offered[] = {features.sse4, features.avx2, features.avx512, features.vbmi};
  int best = 0;
  while (best < 4 && offered[best]) ++best;
  const InstructionSet highest = static_cast<InstructionSet>(best);
  return highest < ceiling ? highest : ceiling;
}

}  // namespace zelm
