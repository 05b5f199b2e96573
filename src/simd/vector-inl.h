// Vector helpers that more than one stage uses. Included once per instruction set, so
// there is no ordinary include guard.
//
// On x86 most instructions work on blocks of 128 bits. Names say what that means for
// the order: `...InBlocks` keeps lanes inside their block. These come from the header
// of the instruction set, and are one instruction there or a few:
//
//   packInBlocks        saturating narrow of int16 to bytes: a's lanes, then b's
//   packSignedInBlocks  the same of int16 to int8
//   narrowInBlocks      the same of int32 to int16
//   joinBlocks          undoes the order that a pack of two vectors leaves
//   pack                bytes of 16-bit lanes that hold 0 to 255, in order
//   pairSums            sums of neighbouring bytes
//   pairProducts8       a0 * b0 + a1 * b1 of neighbouring bytes; b is signed
//   pairProducts        a0 * b0 + a1 * b1 of neighbouring int16
//   addPairProducts     the same, added to a sum
//   pickInBlocks        byte shuffle by an index of 0 to 15; 0 where it is 128
//   pickBeside          the same; the byte of `others` where the index is 128
//   swapPairs           exchanges the bytes of each pair
//   loadBlocks          blocks from different places, block b from from(b)
//   loadPairs           deinterleaves kBytes pairs: first bytes, second bytes
//   storeBlocksInTurn   block 0 of a, b and c, then block 1 of them, ... (x86)
//   subtractWhereLess   v, less `amount` in the lanes where a < b (x86)
//   upperHalves         the upper halves of 32-bit lanes, a's below b's (x86)
//
// pickBeside needs `others` to be 0 wherever the index is not 128.
#if defined(ZELM_SRC_SIMD_VECTOR_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZELM_SRC_SIMD_VECTOR_INL_H_
#undef ZELM_SRC_SIMD_VECTOR_INL_H_
#else
#define ZELM_SRC_SIMD_VECTOR_INL_H_
#endif

#include "simd/vector_types-inl.h"
#if ZELM_NEON
#include "simd/vector_neon-inl.h"
#elif ZELM_X86
#include "simd/vector_x86-inl.h"
#endif

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

#if ZELM_VECTORS

// Reorders groups of 4 bytes, by an order for vectors of two and one for four blocks.
HWY_INLINE Vec<U8> permuteGroups(Vec<U8> v, const uint32_t (&two)[8],
                                 const uint32_t (&four)[16]) {
  if (kBlocks == 1) return v;
  const auto order = hn::SetTableIndices(u32, kBlocks == 2 ? &two[0] : &four[0]);
  return asU8(hn::TableLookupLanes(hn::BitCast(u32, v), order));
}

// Does what joinBlocks does after vectors a to d were narrowed twice. A block then
// holds four bytes of each of them, as here with two blocks:
//   a0 b0 c0 d0 | a1 b1 c1 d1   gives   a0 a1 b0 b1 | c0 c1 d0 d1
HWY_INLINE Vec<U8> joinTwice(Vec<U8> v) {
  alignas(64) static constexpr uint32_t kTwo[8] = {0, 4, 1, 5, 2, 6, 3, 7};
  alignas(64) static constexpr uint32_t kFour[16] = {0, 4, 8,  12, 1, 5, 9,  13,
                                                     2, 6, 10, 14, 3, 7, 11, 15};
  return permuteGroups(v, kTwo, kFour);
}

// Does the opposite: reorders so that interleaving in blocks, once or twice, gives
// results in the order of memory. With two blocks of four groups of 4 bytes:
//   0 1 2 3 | 4 5 6 7   gives   0 1 4 5 | 2 3 6 7 (once), 0 2 4 6 | 1 3 5 7 (twice)
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

// Makes int16 lanes that alternate between two weights, for pairProducts.
HWY_INLINE Vec<I16> alternate(int even, int odd) {
  const uint32_t pair =
      static_cast<uint32_t>(even & 0xFFFF) | static_cast<uint32_t>(odd) << 16;
  return hn::BitCast(i16, hn::Set(u32, pair));
}

#endif  // ZELM_VECTORS

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // include guard
