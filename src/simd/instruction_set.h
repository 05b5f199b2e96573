// Which of the compiled instruction sets a call runs with.
#ifndef ZELM_SRC_SIMD_INSTRUCTION_SET_H_
#define ZELM_SRC_SIMD_INSTRUCTION_SET_H_

namespace zelm {

// The sets in rising order. On processors other than x86-64 the choice is made when the
// library is compiled, and this one is not looked at.
enum class InstructionSet { kPlain, kSse4, kAvx2, kAvx512, kAvx512Vbmi };

// What the processor and the operating system offer.
struct ProcessorFeatures {
  bool sse4;    // SSSE3, SSE4.1, SSE4.2
  bool avx2;    // AVX2, BMI1, BMI2, FMA
  bool avx512;  // AVX-512 F, VL, DQ, BW
  bool vbmi;    // AVX-512 VBMI and VNNI: bytes permuted across a whole vector, sums of
                // products added up
};

// The features of this machine.
ProcessorFeatures processorFeatures();

// The highest set that is offered together with all sets below it, and that is not
// above `ceiling`.
InstructionSet chooseInstructionSet(const ProcessorFeatures& features,
                                    InstructionSet ceiling);

// The set that every call runs with: the highest one that this machine offers. The
// answer never changes while a process runs.
InstructionSet instructionSet();

}  // namespace zelm

#endif  // ZELM_SRC_SIMD_INSTRUCTION_SET_H_
