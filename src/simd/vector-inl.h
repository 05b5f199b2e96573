// Vector helpers that more than one stage uses. Included once per instruction set,
// so there is no ordinary include guard.
//
// On x86 most instructions work on blocks of 128 bits. Names say what that means for
// the order: `...InBlocks` keeps lanes inside their block.
#if defined(ZELM_SRC_SIMD_VECTOR_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZELM_SRC_SIMD_VECTOR_INL_H_
#undef ZELM_SRC_SIMD_VECTOR_INL_H_
#else
#define ZELM_SRC_SIMD_VECTOR_INL_H_
#endif

#include <cstddef>
#include <cstdint>
#include <type_traits>

#if ZELM_HIGHWAY
#include "hwy/highway.h"
#endif

#include "simd/copy.h"

HWY_BEFORE_NAMESPACE();
namespace zelm {
namespace {
namespace HWY_NAMESPACE {

// Calls body(i) for blocks of `block` items, the last one moved back so that it ends
// at `count`. Gives the number of items done: all, or 0 if there is no whole block.
template <class Body>
HWY_INLINE size_t inBlocks(size_t count, size_t block, const Body& body) {
  if (count < block) return 0;
  size_t i = 0;
  for (; i + block <= count; i += block) body(i);
  if (i < count) body(count - block);
  return count;
}

#if ZELM_VECTORS

namespace hn = hwy::HWY_NAMESPACE;

using U8 = hn::ScalableTag<uint8_t>;
using U16 = hn::ScalableTag<uint16_t>;
using U32 = hn::ScalableTag<uint32_t>;
using I8 = hn::ScalableTag<int8_t>;
using I16 = hn::ScalableTag<int16_t>;
using I32 = hn::ScalableTag<int32_t>;

template <class D>
using Vec = hn::VFromD<D>;

constexpr U8 u8;
constexpr U16 u16;
constexpr U32 u32;
constexpr I8 i8;
constexpr I16 i16;
constexpr I32 i32;

// Bytes in a vector, and in 128-bit blocks.
constexpr size_t kBytes = HWY_LANES(uint8_t);
constexpr size_t kBlocks = kBytes / 16;

HWY_INLINE Vec<U8> load(const uint8_t* from) { return hn::LoadU(u8, from); }
HWY_INLINE void store(Vec<U8> v, uint8_t* to) { hn::StoreU(v, u8, to); }
// Past the caches, where the address allows it.
template <bool kStream>
HWY_INLINE void store(Vec<U8> v, uint8_t* to) {
  if (kStream && reinterpret_cast<uintptr_t>(to) % kBytes == 0) {
    hn::Stream(v, u8, to);
  } else {
    store(v, to);
  }
}

// Asks early for memory that will be written. Far ahead it helps stores of several
// vectors at a time, as the processor does by itself for one.
HWY_INLINE void prefetchForWriting(const uint8_t* at) { __builtin_prefetch(at, 1); }

template <class V>
HWY_INLINE Vec<U16> asU16(V v) {
  return hn::BitCast(u16, v);
}
template <class V>
HWY_INLINE Vec<I16> asI16(V v) {
  return hn::BitCast(i16, v);
}
template <class V>
HWY_INLINE Vec<U8> asU8(V v) {
  return hn::BitCast(u8, v);
}

// The lower and the upper byte of each 16-bit lane.
HWY_INLINE Vec<U16> lowBytes(Vec<U8> v) {
  return hn::And(asU16(v), hn::Set(u16, 0x00FF));
}
HWY_INLINE Vec<U16> highBytes(Vec<U8> v) { return hn::ShiftRight<8>(asU16(v)); }

// The same 16 bytes in every block.
HWY_INLINE Vec<U8> everyBlock(const uint8_t (&bytes)[16]) {
  return hn::LoadDup128(u8, bytes);
}

// Bytes picked by an index of 0 to 15, or 0 where the index is 128.
HWY_INLINE Vec<U8> pickInBlocks(Vec<U8> v, Vec<U8> index) {
#if HWY_ARCH_ARM_V7
  uint8x16_t picked;
  asm("vtbl.8 %e0, {%e1, %f1}, %e2\n\tvtbl.8 %f0, {%e1, %f1}, %f2"
      : "=&w"(picked)
      : "w"(v.raw), "w"(index.raw));
  return Vec<U8>{picked};
#else
  return hn::TableLookupBytesOr0(v, index);
#endif
}
// The same, but `others` where the index is 128; these have 0 in all other places.
HWY_INLINE Vec<U8> pickBeside(Vec<U8> others, Vec<U8> v, Vec<U8> index) {
#if HWY_ARCH_ARM_V7
  asm("vtbx.8 %e0, {%e1, %f1}, %e2\n\tvtbx.8 %f0, {%e1, %f1}, %f2"
      : "+&w"(others.raw)
      : "w"(v.raw), "w"(index.raw));
  return others;
#elif HWY_TARGET == HWY_NEON
  return Vec<U8>{vqtbx1q_u8(others.raw, v.raw, index.raw)};
#else
  return hn::Or(others, pickInBlocks(v, index));
#endif
}

#if HWY_TARGET == HWY_NEON
// The same with an index of 0 to 31 into a, then b, or 0 or `others` where it is
// higher. On 32-bit Arm GCC needs asm to put the two side by side, and Clang takes no
// pair of registers into asm.
#if HWY_ARCH_ARM_V7 && HWY_COMPILER_CLANG
HWY_INLINE uint8x8x4_t tableOf(Vec<U8> a, Vec<U8> b) {
  return {{vget_low_u8(a.raw), vget_high_u8(a.raw), vget_low_u8(b.raw),
           vget_high_u8(b.raw)}};
}
#else
HWY_INLINE uint8x16x2_t tableOf(Vec<U8> a, Vec<U8> b) { return {{a.raw, b.raw}}; }
#endif

HWY_INLINE Vec<U8> pickFromTwo(Vec<U8> a, Vec<U8> b, Vec<U8> index) {
  const auto table = tableOf(a, b);
#if HWY_ARCH_ARM_V7 && HWY_COMPILER_CLANG
  return Vec<U8>{vcombine_u8(vtbl4_u8(table, vget_low_u8(index.raw)),
                             vtbl4_u8(table, vget_high_u8(index.raw)))};
#elif HWY_ARCH_ARM_V7
  uint8x16_t picked;
  asm("vtbl.8 %e0, %h1, %e2\n\tvtbl.8 %f0, %h1, %f2"
      : "=&w"(picked)
      : "w"(table), "w"(index.raw));
  return Vec<U8>{picked};
#else
  return Vec<U8>{vqtbl2q_u8(table, index.raw)};
#endif
}
HWY_INLINE Vec<U8> pickFromTwoBeside(Vec<U8> others, Vec<U8> a, Vec<U8> b,
                                     Vec<U8> index) {
  const auto table = tableOf(a, b);
#if HWY_ARCH_ARM_V7 && HWY_COMPILER_CLANG
  return Vec<U8>{
      vcombine_u8(vtbx4_u8(vget_low_u8(others.raw), table, vget_low_u8(index.raw)),
                  vtbx4_u8(vget_high_u8(others.raw), table, vget_high_u8(index.raw)))};
#elif HWY_ARCH_ARM_V7
  asm("vtbx.8 %e0, %h1, %e2\n\tvtbx.8 %f0, %h1, %f2"
      : "+&w"(others.raw)
      : "w"(table), "w"(index.raw));
  return others;
#else
  return Vec<U8>{vqtbx2q_u8(others.raw, table, index.raw)};
#endif
}
#endif

HWY_INLINE Vec<U8> swapPairs(Vec<U8> v) {
#if HWY_TARGET == HWY_NEON
  return Vec<U8>{vrev16q_u8(v.raw)};
#else
  alignas(16) static constexpr uint8_t kSwap[16] = {1, 0, 3,  2,  5,  4,  7,  6,
                                                    9, 8, 11, 10, 13, 12, 15, 14};
  return pickInBlocks(v, everyBlock(kSwap));
#endif
}

// 16-byte pieces from different places side by side, block b from from(b).
template <class From>
HWY_INLINE Vec<U8> loadBlocks(const From& from) {
  const hn::Full128<uint8_t> block;
#if HWY_TARGET == HWY_AVX3
  const hn::Full256<uint8_t> half;
  return hn::Combine(
      u8, hn::Combine(half, hn::LoadU(block, from(3)), hn::LoadU(block, from(2))),
      hn::Combine(half, hn::LoadU(block, from(1)), hn::LoadU(block, from(0))));
#elif HWY_TARGET == HWY_AVX2
  return hn::Combine(u8, hn::LoadU(block, from(1)), hn::LoadU(block, from(0)));
#else
  return hn::LoadU(block, from(0));
#endif
}

// What Highway has no name for: one instruction on x86, two or three elsewhere.
// packInBlocks     int16 to bytes, limited to 0..255; a's lanes, then b's
// packSignedInBlocks  int16 to int8, limited to -128..127
// narrowInBlocks   int32 to int16, limited
// pairSums         sums of neighbouring bytes
// pairProducts8    a0 * b0 + a1 * b1 of neighbouring bytes; b is signed
// pairProducts     a0 * b0 + a1 * b1 of neighbouring int16
// joinBlocks       undoes the order that a pack of two vectors leaves
#if HWY_ARCH_X86

HWY_INLINE hn::Vec128<uint8_t> packInBlocks(hn::Vec128<int16_t> a,
                                            hn::Vec128<int16_t> b) {
  return hn::Vec128<uint8_t>{_mm_packus_epi16(a.raw, b.raw)};
}
HWY_INLINE hn::Vec128<int8_t> packSignedInBlocks(hn::Vec128<int16_t> a,
                                                 hn::Vec128<int16_t> b) {
  return hn::Vec128<int8_t>{_mm_packs_epi16(a.raw, b.raw)};
}
HWY_INLINE hn::Vec128<uint16_t> pairSums(hn::Vec128<uint8_t> v) {
  return hn::Vec128<uint16_t>{_mm_maddubs_epi16(v.raw, _mm_set1_epi8(1))};
}
HWY_INLINE hn::Vec128<int16_t> pairProducts8(hn::Vec128<uint8_t> a,
                                             hn::Vec128<int8_t> b) {
  return hn::Vec128<int16_t>{_mm_maddubs_epi16(a.raw, b.raw)};
}
HWY_INLINE hn::Vec128<int32_t> pairProducts(hn::Vec128<int16_t> a,
                                            hn::Vec128<int16_t> b) {
  return hn::Vec128<int32_t>{_mm_madd_epi16(a.raw, b.raw)};
}
HWY_INLINE hn::Vec128<uint8_t> joinBlocks(hn::Vec128<uint8_t> v) { return v; }

#if HWY_TARGET <= HWY_AVX2
HWY_INLINE hn::Vec256<uint8_t> packInBlocks(hn::Vec256<int16_t> a,
                                            hn::Vec256<int16_t> b) {
  return hn::Vec256<uint8_t>{_mm256_packus_epi16(a.raw, b.raw)};
}
HWY_INLINE hn::Vec256<int8_t> packSignedInBlocks(hn::Vec256<int16_t> a,
                                                 hn::Vec256<int16_t> b) {
  return hn::Vec256<int8_t>{_mm256_packs_epi16(a.raw, b.raw)};
}
HWY_INLINE hn::Vec256<uint16_t> pairSums(hn::Vec256<uint8_t> v) {
  return hn::Vec256<uint16_t>{_mm256_maddubs_epi16(v.raw, _mm256_set1_epi8(1))};
}
HWY_INLINE hn::Vec256<int16_t> pairProducts8(hn::Vec256<uint8_t> a,
                                             hn::Vec256<int8_t> b) {
  return hn::Vec256<int16_t>{_mm256_maddubs_epi16(a.raw, b.raw)};
}
HWY_INLINE hn::Vec256<int32_t> pairProducts(hn::Vec256<int16_t> a,
                                            hn::Vec256<int16_t> b) {
  return hn::Vec256<int32_t>{_mm256_madd_epi16(a.raw, b.raw)};
}
HWY_INLINE hn::Vec256<uint8_t> joinBlocks(hn::Vec256<uint8_t> v) {
  return hn::Vec256<uint8_t>{_mm256_permute4x64_epi64(v.raw, _MM_SHUFFLE(3, 1, 2, 0))};
}
#endif

#if HWY_TARGET <= HWY_AVX3
HWY_INLINE hn::Vec512<uint8_t> packInBlocks(hn::Vec512<int16_t> a,
                                            hn::Vec512<int16_t> b) {
  return hn::Vec512<uint8_t>{_mm512_packus_epi16(a.raw, b.raw)};
}
HWY_INLINE hn::Vec512<int8_t> packSignedInBlocks(hn::Vec512<int16_t> a,
                                                 hn::Vec512<int16_t> b) {
  return hn::Vec512<int8_t>{_mm512_packs_epi16(a.raw, b.raw)};
}
HWY_INLINE hn::Vec512<uint16_t> pairSums(hn::Vec512<uint8_t> v) {
  return hn::Vec512<uint16_t>{_mm512_maddubs_epi16(v.raw, _mm512_set1_epi8(1))};
}
HWY_INLINE hn::Vec512<int16_t> pairProducts8(hn::Vec512<uint8_t> a,
                                             hn::Vec512<int8_t> b) {
  return hn::Vec512<int16_t>{_mm512_maddubs_epi16(a.raw, b.raw)};
}
HWY_INLINE hn::Vec512<int32_t> pairProducts(hn::Vec512<int16_t> a,
                                            hn::Vec512<int16_t> b) {
  return hn::Vec512<int32_t>{_mm512_madd_epi16(a.raw, b.raw)};
}
HWY_INLINE hn::Vec512<uint8_t> joinBlocks(hn::Vec512<uint8_t> v) {
  const __m512i order = _mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7);
  return hn::Vec512<uint8_t>{_mm512_permutexvar_epi64(order, v.raw)};
}
#endif

#elif HWY_TARGET == HWY_NEON

// Two halves of a register are written in place: with intrinsics the compiler for
// 32-bit Arm computes them elsewhere and moves them.
HWY_INLINE Vec<U8> packInBlocks(Vec<I16> a, Vec<I16> b) {
#if HWY_ARCH_ARM_V7
  uint8x16_t both;
  asm("vqmovun.s16 %e0, %q1\n\tvqmovun.s16 %f0, %q2"
      : "=&w"(both)
      : "w"(a.raw), "w"(b.raw));
  return Vec<U8>{both};
#else
  return Vec<U8>{vqmovun_high_s16(vqmovun_s16(a.raw), b.raw)};
#endif
}
HWY_INLINE Vec<I8> packSignedInBlocks(Vec<I16> a, Vec<I16> b) {
  return Vec<I8>{vcombine_s8(vqmovn_s16(a.raw), vqmovn_s16(b.raw))};
}
// The upper halves of lanes, rounded; a's, then b's.
HWY_INLINE Vec<U16> roundedUpperHalves(Vec<U32> a, Vec<U32> b) {
#if HWY_ARCH_ARM_V7
  uint16x8_t both;
  asm("vrshrn.i32 %e0, %q1, #16\n\tvrshrn.i32 %f0, %q2, #16"
      : "=&w"(both)
      : "w"(a.raw), "w"(b.raw));
  return Vec<U16>{both};
#else
  return Vec<U16>{vrshrn_high_n_u32(vrshrn_n_u32(a.raw, 16), b.raw, 16)};
#endif
}
HWY_INLINE Vec<U8> roundedUpperBytes(Vec<U16> a, Vec<U16> b) {
#if HWY_ARCH_ARM_V7
  uint8x16_t both;
  asm("vrshrn.i16 %e0, %q1, #8\n\tvrshrn.i16 %f0, %q2, #8"
      : "=&w"(both)
      : "w"(a.raw), "w"(b.raw));
  return Vec<U8>{both};
#else
  return Vec<U8>{vrshrn_high_n_u16(vrshrn_n_u16(a.raw, 8), b.raw, 8)};
#endif
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
HWY_INLINE Vec<U8> joinBlocks(Vec<U8> v) { return v; }

#else
#error "These helpers are missing for this instruction set"
#endif

HWY_INLINE Vec<I32> addPairProducts(Vec<I32> sum, Vec<I16> a, Vec<I16> b) {
  return hn::Add(sum, pairProducts(a, b));
}

HWY_INLINE Vec<I16> narrowInBlocks(Vec<I32> a, Vec<I32> b) {
#if HWY_TARGET == HWY_NEON
  // Highway's own puts b first on 32-bit Arm.
  return Vec<I16>{vcombine_s16(vqmovn_s32(a.raw), vqmovn_s32(b.raw))};
#else
  return hn::ReorderDemote2To(i16, a, b);
#endif
}

// Bytes of 16-bit lanes that hold 0..255, in the order of a and then b.
HWY_INLINE Vec<U8> pack(Vec<U16> a, Vec<U16> b) {
  return joinBlocks(packInBlocks(asI16(a), asI16(b)));
}

// Reorders 4-byte groups; `order` is for vectors of two and of four blocks.
HWY_INLINE Vec<U8> permuteGroups(Vec<U8> v, const uint32_t (&two)[8],
                                 const uint32_t (&four)[16]) {
  if (kBlocks == 1) return v;
  const auto order = hn::SetTableIndices(u32, kBlocks == 2 ? &two[0] : &four[0]);
  return asU8(hn::TableLookupLanes(hn::BitCast(u32, v), order));
}

// As joinBlocks after narrowing twice: a block holds four bytes of each of four
// vectors.
HWY_INLINE Vec<U8> joinTwice(Vec<U8> v) {
  alignas(64) static constexpr uint32_t kTwo[8] = {0, 4, 1, 5, 2, 6, 3, 7};
  alignas(64) static constexpr uint32_t kFour[16] = {0, 4, 8,  12, 1, 5, 9,  13,
                                                     2, 6, 10, 14, 3, 7, 11, 15};
  return permuteGroups(v, kTwo, kFour);
}

// The opposite: reorders so that interleaving in blocks, once or twice, gives results
// in the order of memory.
HWY_INLINE Vec<U8> splitBlocks(Vec<U8> v) {
  alignas(64) static constexpr uint32_t kTwo[8] = {0, 1, 4, 5, 2, 3, 6, 7};
  alignas(64) static constexpr uint32_t kFour[16] = {0, 1, 8,  9,  2, 3, 10, 11,
                                                     4, 5, 12, 13, 6, 7, 14, 15};
  return permuteGroups(v, kTwo, kFour);
}
HWY_INLINE Vec<U8> splitTwice(Vec<U8> v) {
  alignas(64) static constexpr uint32_t kTwo[8] = {0, 2, 4, 6, 1, 3, 5, 7};
  alignas(64) static constexpr uint32_t kFour[16] = {0, 4, 8,  12, 1, 5, 9,  13,
                                                     2, 6, 10, 14, 3, 7, 11, 15};
  return permuteGroups(v, kTwo, kFour);
}

// Stores block 0 of a, b and c, then block 1 of them, and so on.
HWY_INLINE void storeBlocksInTurn(Vec<U8> a, Vec<U8> b, Vec<U8> c, uint8_t* to) {
#if HWY_TARGET == HWY_AVX3
  const auto pick = [](Vec<U8> low, Vec<U8> high, __m512i order) HWY_ATTR {
    return Vec<U8>{_mm512_permutex2var_epi64(low.raw, order, high.raw)};
  };
  const auto ab0 = pick(a, b, _mm512_setr_epi64(0, 1, 8, 9, 0, 0, 2, 3));
  const auto bc1 = pick(b, c, _mm512_setr_epi64(2, 3, 10, 11, 0, 0, 4, 5));
  const auto ca2 = pick(c, a, _mm512_setr_epi64(4, 5, 14, 15, 0, 0, 6, 7));
  store(pick(ab0, c, _mm512_setr_epi64(0, 1, 2, 3, 8, 9, 6, 7)), to);
  store(pick(bc1, a, _mm512_setr_epi64(0, 1, 2, 3, 12, 13, 6, 7)), to + 64);
  store(pick(ca2, b, _mm512_setr_epi64(0, 1, 2, 3, 14, 15, 6, 7)), to + 128);
#elif HWY_TARGET == HWY_AVX2
  store(hn::ConcatLowerLower(u8, b, a), to);
  store(hn::ConcatUpperLower(u8, a, c), to + 32);
  store(hn::ConcatUpperUpper(u8, c, b), to + 64);
#else
  store(a, to);
  store(b, to + 16);
  store(c, to + 32);
#endif
}

// The first and the second bytes of kBytes pairs.
struct SplitPairs {
  Vec<U8> first, second;
};
HWY_INLINE SplitPairs loadPairs(const uint8_t* from) {
#if HWY_TARGET == HWY_NEON
  SplitPairs pairs;
  hn::LoadInterleaved2(u8, from, pairs.first, pairs.second);
  return pairs;
#else
  const Vec<U8> a = load(from), b = load(from + kBytes);
  return {pack(lowBytes(a), lowBytes(b)), pack(highBytes(a), highBytes(b))};
#endif
}

// int16 lanes that alternate between two weights, for pairProducts.
HWY_INLINE Vec<I16> alternate(int even, int odd) {
  const uint32_t pair =
      static_cast<uint32_t>(even & 0xFFFF) | static_cast<uint32_t>(odd) << 16;
  return hn::BitCast(i16, hn::Set(u32, pair));
}

// v, less `amount` where a < b.
HWY_INLINE Vec<I16> subtractWhereLess(Vec<I16> v, Vec<I16> a, Vec<I16> b,
                                      Vec<I16> amount) {
#if HWY_TARGET == HWY_AVX3
  return Vec<I16>{_mm512_mask_sub_epi16(v.raw, hn::Lt(a, b).raw, v.raw, amount.raw)};
#else
  return hn::Sub(v, hn::IfThenElseZero(hn::Lt(a, b), amount));
#endif
}

// The upper halves of 32-bit lanes: in each lane a's below b's.
HWY_INLINE Vec<I16> upperHalves(Vec<I32> a, Vec<I32> b) {
  const Vec<I32> moved = hn::BitCast(i32, hn::ShiftRight<16>(hn::BitCast(u32, a)));
  return hn::OddEven(asI16(b), asI16(moved));
}

#endif  // ZELM_VECTORS

}  // namespace HWY_NAMESPACE
}  // namespace
}  // namespace zelm
HWY_AFTER_NAMESPACE();

#endif  // include guard
