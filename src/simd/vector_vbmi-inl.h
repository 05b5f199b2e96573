// The vector helpers that VBMI and VNNI have an instruction of their own for, and the
// only ones that differ from AVX-512's. Included by simd/vbmi_pass.h in each of its
// passes, so there is no include guard.
HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

using namespace N_AVX3;

HWY_INLINE Vec<I32> addPairProducts(Vec<I32> sum, Vec<I16> a, Vec<I16> b) {
  return Vec<I32>{_mm512_dpwssd_epi32(sum.raw, a.raw, b.raw)};
}

template <size_t kFirst>
struct EverySecond {
  alignas(64) uint8_t index[kBytes];
  constexpr EverySecond() : index() {
    for (size_t i = 0; i < kBytes; ++i) index[i] = static_cast<uint8_t>(2 * i + kFirst);
  }
};

// Every second byte of a and then of b, from byte kFirst on.
template <size_t kFirst>
HWY_INLINE Vec<U8> everySecond(Vec<U8> a, Vec<U8> b) {
  static constexpr EverySecond<kFirst> kPlaces;
  return Vec<U8>{_mm512_permutex2var_epi8(a.raw, load(kPlaces.index).raw, b.raw)};
}
HWY_INLINE Vec<U8> pack(Vec<U16> a, Vec<U16> b) {
  return everySecond<0>(asU8(a), asU8(b));
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
