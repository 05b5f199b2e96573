// The vector helpers for Arm, where a vector is one block of 16 bytes. Part of
// simd/vector-inl.h, which says what each of them does.
#if defined(ZELM_SRC_SIMD_VECTOR_NEON_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZELM_SRC_SIMD_VECTOR_NEON_INL_H_
#undef ZELM_SRC_SIMD_VECTOR_NEON_INL_H_
#else
#define ZELM_SRC_SIMD_VECTOR_NEON_INL_H_
#endif

#include "simd/neon.h"
#include "simd/vector_types-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

HWY_INLINE Vec<U8> packInBlocks(Vec<I16> a, Vec<I16> b) {
  return Vec<U8>{narrowSaturating(a.raw, b.raw)};
}
HWY_INLINE Vec<I8> packSignedInBlocks(Vec<I16> a, Vec<I16> b) {
  return Vec<I8>{vcombine_s8(vqmovn_s16(a.raw), vqmovn_s16(b.raw))};
}
// Highway's own puts b first on 32-bit Arm.
HWY_INLINE Vec<I16> narrowInBlocks(Vec<I32> a, Vec<I32> b) {
  return Vec<I16>{vcombine_s16(vqmovn_s32(a.raw), vqmovn_s32(b.raw))};
}
HWY_INLINE Vec<U8> joinBlocks(Vec<U8> v) { return v; }
HWY_INLINE Vec<U8> pack(Vec<U16> a, Vec<U16> b) {
  return packInBlocks(asI16(a), asI16(b));
}

HWY_INLINE Vec<U16> pairSums(Vec<U8> v) { return Vec<U16>{vpaddlq_u8(v.raw)}; }
HWY_INLINE Vec<I16> pairProducts8(Vec<U8> a, Vec<I8> b) {
  const Vec<I16> even = asI16(hn::ShiftLeft<8>(asI16(b)));
  return hn::Add(hn::Mul(asI16(lowBytes(a)), hn::ShiftRight<8>(even)),
                 hn::Mul(asI16(highBytes(a)), hn::ShiftRight<8>(asI16(b))));
}
HWY_INLINE Vec<I32> pairProducts(Vec<I16> a, Vec<I16> b) {
  const int32x4_t low = vmull_s16(vget_low_s16(a.raw), vget_low_s16(b.raw));
  const int32x4_t high = vmull_s16(vget_high_s16(a.raw), vget_high_s16(b.raw));
  return Vec<I32>{vcombine_s32(vpadd_s32(vget_low_s32(low), vget_high_s32(low)),
                               vpadd_s32(vget_low_s32(high), vget_high_s32(high)))};
}
HWY_INLINE Vec<I32> addPairProducts(Vec<I32> sum, Vec<I16> a, Vec<I16> b) {
  return hn::Add(sum, pairProducts(a, b));
}

HWY_INLINE Vec<U8> pickInBlocks(Vec<U8> v, Vec<U8> index) {
  return Vec<U8>{lookUp(v.raw, index.raw)};
}
HWY_INLINE Vec<U8> pickBeside(Vec<U8> others, Vec<U8> v, Vec<U8> index) {
  return Vec<U8>{lookUpOr(others.raw, v.raw, index.raw)};
}
// Byte shuffles of two vectors, by an index of 0 to 31 into a and then b.
HWY_INLINE Vec<U8> pickFromTwo(Vec<U8> a, Vec<U8> b, Vec<U8> index) {
  return Vec<U8>{lookUp(a.raw, b.raw, index.raw)};
}
HWY_INLINE Vec<U8> pickFromTwoBeside(Vec<U8> others, Vec<U8> a, Vec<U8> b,
                                     Vec<U8> index) {
  return Vec<U8>{lookUpOr(others.raw, a.raw, b.raw, index.raw)};
}

HWY_INLINE Vec<U8> swapPairs(Vec<U8> v) { return Vec<U8>{vrev16q_u8(v.raw)}; }

template <class From>
HWY_INLINE Vec<U8> loadBlocks(const From& from) {
  return load(from(0));
}

HWY_INLINE SplitPairs loadPairs(const uint8_t* from) {
  SplitPairs pairs;
  hn::LoadInterleaved2(u8, from, pairs.first, pairs.second);
  return pairs;
}

// Rounds to the upper halves of lanes: a's first, then b's.
HWY_INLINE Vec<U16> roundedUpperHalves(Vec<U32> a, Vec<U32> b) {
  return Vec<U16>{narrowUpper(a.raw, b.raw)};
}
HWY_INLINE Vec<U8> roundedUpperBytes(Vec<U16> a, Vec<U16> b) {
  return Vec<U8>{narrowUpper(a.raw, b.raw)};
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // include guard
