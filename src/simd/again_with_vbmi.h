// At the end of a file's kernels: compiles them once more, as AVX-512 with VBMI, in a
// namespace of its own. The vector helpers are those of AVX-512. There is no include
// guard, because every pass over the file comes here.
#if ZELM_HIGHWAY && HWY_TARGET == HWY_AVX3 && !ZELM_VBMI

namespace zelm {
namespace {
namespace N_AVX3_VBMI {
using namespace N_AVX3;
}
}  // namespace
}  // namespace zelm

#undef ZELM_VBMI
#define ZELM_VBMI 1
#undef HWY_NAMESPACE
#define HWY_NAMESPACE N_AVX3_VBMI
#undef HWY_TARGET_STR
#define HWY_TARGET_STR HWY_TARGET_STR_AVX3 ",avx512vbmi"

#include HWY_TARGET_INCLUDE

#undef ZELM_VBMI
#define ZELM_VBMI 0
#undef HWY_NAMESPACE
#define HWY_NAMESPACE N_AVX3
#undef HWY_TARGET_STR
#define HWY_TARGET_STR HWY_TARGET_STR_AVX3

#undef ZELM_WITH_VBMI
#define ZELM_WITH_VBMI(name) N_AVX3_VBMI::name

#endif
