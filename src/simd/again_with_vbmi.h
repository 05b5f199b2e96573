// At the end of a file's kernels: compiles them once more, as AVX-512 with VBMI and
// VNNI, in a namespace of its own. The vector helpers are those of AVX-512, but for
// those below. There is no include guard, because every pass over the file comes here.
#if ZELM_HIGHWAY && HWY_TARGET == HWY_AVX3 && !ZELM_VBMI

#undef ZELM_VBMI
#define ZELM_VBMI 1
#undef HWY_NAMESPACE
#define HWY_NAMESPACE N_AVX3_VBMI
#undef HWY_TARGET_STR
#define HWY_TARGET_STR HWY_TARGET_STR_AVX3 ",avx512vbmi,avx512vnni"

HWY_BEFORE_NAMESPACE();
namespace zelm {
namespace {
namespace HWY_NAMESPACE {

using namespace N_AVX3;

template <size_t kFirst>
struct EverySecond {
  alignas(64) uint8_t index[kBytes];
  constexpr EverySecond() : index() {
    for (size_t i = 0; i < kBytes; ++i) index[i] = static_cast<uint8_t>(2 * i + kFirst);
  }
};

HWY_INLINE Vec<I32> addPairProducts(Vec<I32> sum, Vec<I16> a, Vec<I16> b) {
  return Vec<I32>{_mm512_dpwssd_epi32(sum.raw, a.raw, b.raw)};
}

// Every second byte of a and then of b, from byte kFirst on.
template <size_t kFirst>
HWY_INLINE Vec<U8> everySecond(Vec<U8> a, Vec<U8> b) {
  static constexpr EverySecond<kFirst> kPlaces;
  return Vec<U8>{_mm512_permutex2var_epi8(a.raw, load(kPlaces.index).raw, b.raw)};
}
HWY_INLINE Vec<U8> pack(Vec<U16> a, Vec<U16> b) {
  return everySecond<0>(asU8(a), asU8(b));
}

}  // namespace HWY_NAMESPACE
}  // namespace
}  // namespace zelm
HWY_AFTER_NAMESPACE();

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
