// Compiles the including file once per instruction set. The file names itself in
// HWY_TARGET_INCLUDE first, and puts its kernels into
//   HWY_BEFORE_NAMESPACE();
//   namespace zelm { namespace { namespace HWY_NAMESPACE { ... } } }
//   HWY_AFTER_NAMESPACE();
// and what exists once, under #if HWY_ONCE. Without Highway there is one pass, of
// plain code. ZELM_VECTORS tells a kernel whether it may use vectors.
#ifndef ZELM_SRC_SIMD_EACH_TARGET_H_
#define ZELM_SRC_SIMD_EACH_TARGET_H_

#if ZELM_HIGHWAY

// The lowest set is plain code. No kernel needs the sets left out, nor these
// extensions, which some processors lack.
#define HWY_BROKEN_EMU128 1
#define HWY_DISABLE_PCLMUL_AES
#define HWY_DISABLE_F16C
#if defined(__x86_64__)
#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3_DL)
#else
// Kernels use what the compiler may use anywhere, which on Arm is NEON or plain code.
// With run-time dispatch Highway would let it use the instructions for AES as well.
#define TOOLCHAIN_MISS_SYS_AUXV_H
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128)
#endif
#define ZELM_VECTORS (HWY_TARGET != HWY_SCALAR)
#define ZELM_VBMI 0  // but see simd/again_with_vbmi.h

#include "hwy/foreach_target.h"  // IWYU pragma: keep

#else

#define ZELM_VECTORS 0
#define ZELM_VBMI 0
#define HWY_ONCE 1
#define HWY_NAMESPACE N_SCALAR
#define HWY_BEFORE_NAMESPACE() static_assert(true, "")
#define HWY_AFTER_NAMESPACE() static_assert(true, "")
#define HWY_ATTR
#define HWY_INLINE inline

#endif  // ZELM_HIGHWAY

#endif  // ZELM_SRC_SIMD_EACH_TARGET_H_
