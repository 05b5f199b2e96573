// At the end of a file's kernels: compiles them once more, as AVX-512 with VBMI and
// VNNI, in a namespace of its own, where bytes are permuted across a whole vector.
//
// Highway has a target of this kind, AVX3_DL, but release 1.0.3 compiles it with
// `avxvnni`, which its processors lack, instead of `avx512vnni` (right from 1.0.4 on),
// and later releases ask of it more extensions than the kernels need. So the pass is
// made of Highway's AVX3 here. There is no include guard, because every pass over the
// file comes here.
#if ZELM_HIGHWAY && HWY_TARGET == HWY_AVX3 && !ZELM_VBMI

#undef ZELM_VBMI
#define ZELM_VBMI 1
#undef HWY_NAMESPACE
#define HWY_NAMESPACE N_AVX3_VBMI
#undef HWY_TARGET_STR
#define HWY_TARGET_STR HWY_TARGET_STR_AVX3 ",avx512vbmi,avx512vnni"

#include "simd/vector_vbmi-inl.h"

// What exists once is left to the pass that comes here, which may be that pass.
#pragma push_macro("HWY_ONCE")
#undef HWY_ONCE
#define HWY_ONCE 0
#include HWY_TARGET_INCLUDE
#pragma pop_macro("HWY_ONCE")

#undef ZELM_VBMI
#define ZELM_VBMI 0
#undef HWY_NAMESPACE
#define HWY_NAMESPACE N_AVX3
#undef HWY_TARGET_STR
#define HWY_TARGET_STR HWY_TARGET_STR_AVX3

#undef ZELM_WITH_VBMI
#define ZELM_WITH_VBMI(name) N_AVX3_VBMI::name

#endif
