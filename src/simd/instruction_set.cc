#include "simd/instruction_set.h"

// Lowered in builds that show what an older processor would do.
#ifndef ZELM_HIGHEST_INSTRUCTION_SET
#define ZELM_HIGHEST_INSTRUCTION_SET kAvx512
#endif

namespace zelm {
namespace {

ProcessorFeatures processorFeatures() {
#if defined(__x86_64__)
  return {__builtin_cpu_supports("ssse3") && __builtin_cpu_supports("sse4.1") &&
              __builtin_cpu_supports("sse4.2"),
          __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") &&
              __builtin_cpu_supports("bmi2") && __builtin_cpu_supports("fma"),
          __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
              __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512bw")};
#else
  return {};
#endif
}

}  // namespace

InstructionSet chooseInstructionSet(const ProcessorFeatures& features,
                                    InstructionSet ceiling) {
  InstructionSet best = InstructionSet::kPlain;
  if (features.sse4) best = InstructionSet::kSse4;
  if (features.sse4 && features.avx2) best = InstructionSet::kAvx2;
  if (features.sse4 && features.avx2 && features.avx512) best = InstructionSet::kAvx512;
  return best < ceiling ? best : ceiling;
}

InstructionSet instructionSet() {
  return chooseInstructionSet(processorFeatures(),
                              InstructionSet::ZELM_HIGHEST_INSTRUCTION_SET);
}

}  // namespace zelm
