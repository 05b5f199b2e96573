// Tells Highway which of its targets are compiled: these and no others, whatever later
// releases add. Before any of Highway's own headers.
#ifndef ZELM_SRC_SIMD_WANTED_TARGETS_H_
#define ZELM_SRC_SIMD_WANTED_TARGETS_H_

// The lowest target is plain code, and no kernel needs these extensions, which some
// processors with the rest of a target lack.
#define HWY_BROKEN_EMU128 1
#define HWY_DISABLE_PCLMUL_AES
#define HWY_DISABLE_F16C
// Highway's own checks would need its library to say what is wrong; builds without
// optimisation and with sanitizers have them otherwise.
#define HWY_IS_DEBUG_BUILD 0

#if defined(__x86_64__)
#define ZELM_WANTED_TARGETS (HWY_SCALAR | HWY_SSE4 | HWY_AVX2 | HWY_AVX3)
#else
// One target, of the instructions that the compiler may use anywhere: NEON or plain
// code. NEON is bit 28 with the instructions for AES and, in later releases, bit 29
// without them. Where Highway believes in a choice at run time, it would let the
// compiler use those instructions.
#define HWY_COMPILE_ONLY_STATIC
#define TOOLCHAIN_MISS_SYS_AUXV_H
#define ZELM_WANTED_TARGETS (HWY_SCALAR | 1LL << 28 | 1LL << 29)
#endif
#define HWY_DISABLED_TARGETS (~(ZELM_WANTED_TARGETS))

#endif  // ZELM_SRC_SIMD_WANTED_TARGETS_H_
