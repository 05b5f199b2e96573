// Says, in the compiler's messages, for which instruction sets Highway would compile
// kernels. Read by cmake/ZelmHighway.cmake.
#include "simd/wanted_targets.h"

#include "hwy/detect_targets.h"

#if HWY_TARGETS & HWY_SCALAR
#pragma message("zelm: plain code;")
#endif
#if HWY_TARGETS & HWY_SSE4
#pragma message("zelm: SSE4;")
#endif
#if HWY_TARGETS & HWY_AVX2
#pragma message("zelm: AVX2;")
#endif
#if HWY_TARGETS & HWY_AVX3
#pragma message("zelm: AVX-512;")
#pragma message("zelm: AVX-512 with VBMI;")
#endif
#if HWY_ARCH_ARM && HWY_STATIC_TARGET != HWY_SCALAR
#pragma message("zelm: NEON;")
#elif HWY_ARCH_ARM_V7 && HWY_BROKEN_ARM7_WITHOUT_VFP4
#pragma message("zelm: without -mfpu=neon-vfpv4;")
#elif HWY_ARCH_ARM_V7
#pragma message("zelm: without -mfpu=neon;")
#endif

int main() { return 0; }
