// The vector helpers for SSE4, AVX2 and AVX-512. Part of simd/vector-inl.h, which says
// what each of them does.
#if defined(ZELM_SRC_SIMD_VECTOR_X86_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZELM_SRC_SIMD_VECTOR_X86_INL_H_
#undef ZELM_SRC_SIMD_VECTOR_X86_INL_H_
#else
#define ZELM_SRC_SIMD_VECTOR_X86_INL_H_
#endif

#include "simd/vector_types-inl.h"

// The instruction of this name on a vector of this instruction set's width.
#undef ZELM_MM
#if HWY_TARGET == HWY_AVX3
#define ZELM_MM(name) _mm512_##name
#elif HWY_TARGET == HWY_AVX2
#define ZELM_MM(name) _mm256_##name
#else
#define ZELM_MM(name) _mm_##name
#endif

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

HWY_INLINE Vec<U8> packInBlocks(Vec<I16> a, Vec<I16> b) {
  return Vec<U8>{ZELM_MM(packus_epi16)(a.raw, b.raw)};
}
HWY_INLINE Vec<I8> packSignedInBlocks(Vec<I16> a, Vec<I16> b) {
  return Vec<I8>{ZELM_MM(packs_epi16)(a.raw, b.raw)};
}
HWY_INLINE Vec<I16> narrowInBlocks(Vec<I32> a, Vec<I32> b) {
  return hn::ReorderDemote2To(i16, a, b);
}

HWY_INLINE Vec<U16> pairSums(Vec<U8> v) {
  return Vec<U16>{ZELM_MM(maddubs_epi16)(v.raw, ZELM_MM(set1_epi8)(1))};
}
HWY_INLINE Vec<I16> pairProducts8(Vec<U8> a, Vec<I8> b) {
  return Vec<I16>{ZELM_MM(maddubs_epi16)(a.raw, b.raw)};
}
HWY_INLINE Vec<I32> pairProducts(Vec<I16> a, Vec<I16> b) {
  return Vec<I32>{ZELM_MM(madd_epi16)(a.raw, b.raw)};
}
HWY_INLINE Vec<I32> addPairProducts(Vec<I32> sum, Vec<I16> a, Vec<I16> b) {
  return hn::Add(sum, pairProducts(a, b));
}

HWY_INLINE Vec<U8> pickInBlocks(Vec<U8> v, Vec<U8> index) {
  return hn::TableLookupBytesOr0(v, index);
}
HWY_INLINE Vec<U8> pickBeside(Vec<U8> others, Vec<U8> v, Vec<U8> index) {
  return hn::Or(others, pickInBlocks(v, index));
}

HWY_INLINE Vec<U8> swapPairs(Vec<U8> v) {
  alignas(16) static constexpr uint8_t kSwap[16] = {1, 0, 3,  2,  5,  4,  7,  6,
                                                    9, 8, 11, 10, 13, 12, 15, 14};
  return pickInBlocks(v, everyBlock(kSwap));
}

#if HWY_TARGET == HWY_AVX3

HWY_INLINE Vec<U8> joinBlocks(Vec<U8> v) {
  const __m512i order = _mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7);
  return Vec<U8>{_mm512_permutexvar_epi64(order, v.raw)};
}

template <class From>
HWY_INLINE Vec<U8> loadBlocks(const From& from) {
  const hn::Full128<uint8_t> block;
  const hn::Full256<uint8_t> half;
  return hn::Combine(
      u8, hn::Combine(half, hn::LoadU(block, from(3)), hn::LoadU(block, from(2))),
      hn::Combine(half, hn::LoadU(block, from(1)), hn::LoadU(block, from(0))));
}

HWY_INLINE void storeBlocksInTurn(Vec<U8> a, Vec<U8> b, Vec<U8> c, uint8_t* to) {
  const auto pick = [](Vec<U8> low, Vec<U8> high, __m512i order) HWY_ATTR {
    return Vec<U8>{_mm512_permutex2var_epi64(low.raw, order, high.raw)};
  };
  const auto ab0 = pick(a, b, _mm512_setr_epi64(0, 1, 8, 9, 0, 0, 2, 3));
  const auto bc1 = pick(b, c, _mm512_setr_epi64(2, 3, 10, 11, 0, 0, 4, 5));
  const auto ca2 = pick(c, a, _mm512_setr_epi64(4, 5, 14, 15, 0, 0, 6, 7));
  store(pick(ab0, c, _mm512_setr_epi64(0, 1, 2, 3, 8, 9, 6, 7)), to);
  store(pick(bc1, a, _mm512_setr_epi64(0, 1, 2, 3, 12, 13, 6, 7)), to + 64);
  store(pick(ca2, b, _mm512_setr_epi64(0, 1, 2, 3, 14, 15, 6, 7)), to + 128);
}

HWY_INLINE Vec<I16> subtractWhereLess(Vec<I16> v, Vec<I16> a, Vec<I16> b,
                                      Vec<I16> amount) {
  return Vec<I16>{_mm512_mask_sub_epi16(v.raw, hn::Lt(a, b).raw, v.raw, amount.raw)};
}

// One shuffle moves a's halves and leaves b's where they are.
HWY_INLINE Vec<I16> upperHalves(Vec<I32> a, Vec<I32> b) {
  const __m512i down =
      _mm512_set4_epi32(0x00000F0E, 0x00000B0A, 0x00000706, 0x00000302);
  return Vec<I16>{_mm512_mask_shuffle_epi8(b.raw, 0x3333333333333333, a.raw, down)};
}

#else

HWY_INLINE Vec<I16> upperHalves(Vec<I32> a, Vec<I32> b) {
  const auto moved = hn::ShiftRight<16>(hn::BitCast(u32, a));
  return hn::OddEven(hn::BitCast(i16, b), hn::BitCast(i16, moved));
}

HWY_INLINE Vec<I16> subtractWhereLess(Vec<I16> v, Vec<I16> a, Vec<I16> b,
                                      Vec<I16> amount) {
  return hn::Sub(v, hn::IfThenElseZero(hn::Lt(a, b), amount));
}

#endif
#if HWY_TARGET == HWY_AVX2

HWY_INLINE Vec<U8> joinBlocks(Vec<U8> v) {
  return Vec<U8>{_mm256_permute4x64_epi64(v.raw, _MM_SHUFFLE(3, 1, 2, 0))};
}

template <class From>
HWY_INLINE Vec<U8> loadBlocks(const From& from) {
  const hn::Full128<uint8_t> block;
  return hn::Combine(u8, hn::LoadU(block, from(1)), hn::LoadU(block, from(0)));
}

HWY_INLINE void storeBlocksInTurn(Vec<U8> a, Vec<U8> b, Vec<U8> c, uint8_t* to) {
  store(hn::ConcatLowerLower(u8, b, a), to);
  store(hn::ConcatUpperLower(u8, a, c), to + 32);
  store(hn::ConcatUpperUpper(u8, c, b), to + 64);
}

#elif HWY_TARGET == HWY_SSE4

HWY_INLINE Vec<U8> joinBlocks(Vec<U8> v) { return v; }

template <class From>
HWY_INLINE Vec<U8> loadBlocks(const From& from) {
  return load(from(0));
}

HWY_INLINE void storeBlocksInTurn(Vec<U8> a, Vec<U8> b, Vec<U8> c, uint8_t* to) {
  store(a, to);
  store(b, to + 16);
  store(c, to + 32);
}

#endif

HWY_INLINE Vec<U8> pack(Vec<U16> a, Vec<U16> b) {
  return joinBlocks(packInBlocks(asI16(a), asI16(b)));
}

HWY_INLINE SplitPairs loadPairs(const uint8_t* from) {
  const Vec<U8> a = load(from), b = load(from + kBytes);
  return {pack(lowBytes(a), lowBytes(b)), pack(highBytes(a), highBytes(b))};
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#undef ZELM_MM

#endif  // include guard
