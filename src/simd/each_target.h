// Compiles the including file once per instruction set. The file names itself in
// HWY_TARGET_INCLUDE first, and puts its kernels into
//   HWY_BEFORE_NAMESPACE();
//   namespace zelm::HWY_NAMESPACE { namespace { ... } }
//   HWY_AFTER_NAMESPACE();
// and what exists once, under #if HWY_ONCE. Without Highway there is one pass, of
// plain code. In a pass
//   ZELM_VECTORS  tells whether kernels may use vectors,
//   ZELM_X86      whether these are those of x86,
//   ZELM_IS_AVX2  and those of AVX2,
//   ZELM_NEON     whether these are those of Arm,
//   ZELM_ARMV7    and of Arm with 32 bits,
//   ZELM_VBMI     whether it is the extra pass of simd/vbmi_pass.h.
#ifndef ZELM_SRC_SIMD_EACH_TARGET_H_
#define ZELM_SRC_SIMD_EACH_TARGET_H_

#if ZELM_HIGHWAY

#define ZELM_VECTORS (HWY_TARGET != HWY_SCALAR)
#define ZELM_X86 (HWY_ARCH_X86 && ZELM_VECTORS)
#define ZELM_IS_AVX2 (ZELM_X86 && HWY_TARGET == HWY_AVX2)
#define ZELM_NEON (HWY_ARCH_ARM && ZELM_VECTORS)
#define ZELM_ARMV7 (HWY_ARCH_ARM_V7 && ZELM_VECTORS)
#define ZELM_VBMI 0

#include "simd/wanted_targets.h"
// Highway's header comes last: it compiles the file for all targets but one.
#include "hwy/foreach_target.h"  // IWYU pragma: keep

#else

#define ZELM_VECTORS 0
#define ZELM_X86 0
#define ZELM_IS_AVX2 0
#define ZELM_NEON 0
#define ZELM_ARMV7 0
#define ZELM_VBMI 0
#define HWY_ONCE 1
#define HWY_NAMESPACE N_SCALAR
#define HWY_BEFORE_NAMESPACE() static_assert(true, "")
#define HWY_AFTER_NAMESPACE() static_assert(true, "")
#define HWY_ATTR
#define HWY_INLINE inline

#endif  // ZELM_HIGHWAY

#endif  // ZELM_SRC_SIMD_EACH_TARGET_H_
