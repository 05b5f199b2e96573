// Vectors, their lanes, loads and stores: what is the same for every instruction set.
// Included once per instruction set, so there is no ordinary include guard.
#if defined(ZELM_SRC_SIMD_VECTOR_TYPES_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZELM_SRC_SIMD_VECTOR_TYPES_INL_H_
#undef ZELM_SRC_SIMD_VECTOR_TYPES_INL_H_
#else
#define ZELM_SRC_SIMD_VECTOR_TYPES_INL_H_
#endif

#include <cstddef>
#include <cstdint>

#if ZELM_HIGHWAY
#include "hwy/highway.h"
#endif

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// Calls body(i) for blocks of `block` items. The last one is moved back so that it ends
// at `count`. Returns the number of items done: all, or 0 if there is no whole block.
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

// The bytes of a vector, and its blocks of 128 bits.
constexpr size_t kBytes = HWY_LANES(uint8_t);
constexpr size_t kBlocks = kBytes / 16;

HWY_INLINE Vec<U8> load(const uint8_t* from) { return hn::LoadU(u8, from); }
HWY_INLINE void store(Vec<U8> v, uint8_t* to) { hn::StoreU(v, u8, to); }
// Stores past the caches where the address allows it.
template <bool kStream>
HWY_INLINE void store(Vec<U8> v, uint8_t* to) {
  if (kStream && reinterpret_cast<uintptr_t>(to) % kBytes == 0) {
    hn::Stream(v, u8, to);
  } else {
    store(v, to);
  }
}

// Prefetches a destination line, which the processor reads before a part of it is
// written. Far ahead this helps stores of several vectors at a time; for one at a time
// the processor does it by itself.
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

// The first and the second bytes of kBytes pairs.
struct SplitPairs {
  Vec<U8> first, second;
};

#endif  // ZELM_VECTORS

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // include guard
