// ZELM_KERNEL(name) is the function `name` of the instruction set to run with, out of
// those that simd/each_target.h has compiled, and that of VBMI where the file ends with
// simd/vbmi_pass.h. ZELM_KERNEL_FOR(name, bytes) is the same for rows that offer
// vectors no more than so many bytes: a row that is shorter than a vector is left to
// plain code, and a set with shorter vectors is faster than that. Both are used under
// #if HWY_ONCE.
#ifndef ZELM_SRC_SIMD_DISPATCH_H_
#define ZELM_SRC_SIMD_DISPATCH_H_

#include <cstddef>

#include "simd/instruction_set.h"

#ifndef ZELM_SRC_SIMD_EACH_TARGET_H_
#error "simd/each_target.h comes before all other headers"
#endif

#if ZELM_HIGHWAY && defined(__x86_64__)

namespace zelm {

// The set that rows of so many bytes run with: the highest one that this machine
// offers, as far as its vectors fit into a row.
inline InstructionSet instructionSetFor(size_t bytes) {
  const InstructionSet offered = instructionSet();
  const InstructionSet fitting = bytes < 32   ? InstructionSet::kSse4
                                 : bytes < 64 ? InstructionSet::kAvx2
                                              : InstructionSet::kAvx512Vbmi;
  return offered < fitting ? offered : fitting;
}

// The table is made when the program is linked, not at each call.
template <auto* plain, auto* sse4, auto* avx2, auto* avx512, auto* vbmi>
auto* pickKernel(InstructionSet set) {
  static constexpr decltype(plain) kKernels[] = {plain, sse4, avx2, avx512, vbmi};
  return kKernels[static_cast<int>(set)];
}

}  // namespace zelm

// A set below the compiler's own baseline is not compiled; the baseline stands in.
#if HWY_TARGETS & HWY_SCALAR
#define ZELM_PLAIN(name) N_SCALAR::name
#else
#define ZELM_PLAIN(name) HWY_NAMESPACE::name
#endif
#if HWY_TARGETS & HWY_SSE4
#define ZELM_SSE4(name) N_SSE4::name
#else
#define ZELM_SSE4(name) HWY_NAMESPACE::name
#endif
#if HWY_TARGETS & HWY_AVX2
#define ZELM_AVX2(name) N_AVX2::name
#else
#define ZELM_AVX2(name) HWY_NAMESPACE::name
#endif
#if HWY_TARGETS & HWY_AVX3
#define ZELM_AVX512(name) N_AVX3::name
#else
#define ZELM_AVX512(name) HWY_NAMESPACE::name
#endif
// Redefined by simd/vbmi_pass.h.
#define ZELM_WITH_VBMI(name) ZELM_AVX512(name)
#define ZELM_KERNEL_OF(set, name)                                   \
  pickKernel<&ZELM_PLAIN(name), &ZELM_SSE4(name), &ZELM_AVX2(name), \
             &ZELM_AVX512(name), &ZELM_WITH_VBMI(name)>(set)
#define ZELM_KERNEL(name) ZELM_KERNEL_OF(instructionSet(), name)
#define ZELM_KERNEL_FOR(name, bytes) ZELM_KERNEL_OF(instructionSetFor(bytes), name)

#else

namespace zelm {

// Hides from the compiler which function it is: a kernel that is inlined into the loop
// over rows has to share its registers. There is one set, however long rows are.
template <class Kernel>
Kernel* asFunction(Kernel* kernel, size_t = 0) {
  asm("" : "+r"(kernel));
  return kernel;
}

}  // namespace zelm

#define ZELM_KERNEL(name) asFunction(&HWY_NAMESPACE::name)
#define ZELM_KERNEL_FOR(name, bytes) asFunction(&HWY_NAMESPACE::name, bytes)

#endif

#endif  // ZELM_SRC_SIMD_DISPATCH_H_
