// Box averages with the vectors of x86, of 16 to 64 bytes. Included by box_average.cc,
// once per pass.
//
// Neighbouring bytes are added by one multiplication with 1 (pairSums). Chroma is first
// shuffled such that what is added are neighbours:
//   V0 U0 V1 U1 V2 U2 V3 U3  ->  V0 V1 U0 U1 V2 V3 U2 U3
#if ZELM_X86

#include "simd/vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// Puts the first bytes of two neighbouring pairs side by side, and the second ones.
HWY_INLINE Vec<U8> sideBySide(Vec<U8> v) {
  alignas(16) static constexpr uint8_t kOrder[16] = {0, 2,  1, 3,  4,  6,  5,  7,
                                                     8, 10, 9, 11, 12, 14, 13, 15};
  return pickInBlocks(v, everyBlock(kOrder));
}

// The same for 16-bit lanes.
HWY_INLINE Vec<U16> sideBySide(Vec<U16> v) {
  alignas(16) static constexpr uint8_t kOrder[16] = {0, 1, 4,  5,  2,  3,  6,  7,
                                                     8, 9, 12, 13, 10, 11, 14, 15};
  return asU16(pickInBlocks(asU8(v), everyBlock(kOrder)));
}

// Returns the sums of 2 x kRows samples for a vector's width of bytes at `from`.
template <size_t kRows, size_t kSample>
HWY_INLINE Vec<U16> sumPairs(const uint8_t* from, ptrdiff_t stride) {
  Vec<U16> sum = hn::Zero(u16);
  for (size_t y = 0; y < kRows; ++y) {
    const Vec<U8> v = load(from + static_cast<ptrdiff_t>(y) * stride);
    sum = hn::Add(sum, pairSums(kSample == 2 ? sideBySide(v) : v));
  }
  return sum;
}

template <size_t kSample>
HWY_INLINE Vec<U8> averageBy2(const uint8_t* from, ptrdiff_t stride) {
  const auto mean = [&](size_t at) HWY_ATTR {
    return hn::ShiftRight<2>(sumPairs<2, kSample>(from + at, stride));
  };
  return pack(mean(0), mean(kBytes));
}

template <size_t kSample>
HWY_INLINE Vec<U8> averageBy4(const uint8_t* from, ptrdiff_t stride) {
  // Pair sums of four rows are at most 2040, so four of them fit in 16 bits.
  const auto mean = [&](size_t at) HWY_ATTR {
    Vec<U16> sum = sumPairs<4, kSample>(from + at, stride);
    if (kSample == 2) sum = sideBySide(sum);
    return hn::ShiftRight<4>(pairProducts(asI16(sum), hn::Set(i16, 1)));
  };
  const auto half = [&](size_t at) HWY_ATTR {
    return asU16(narrowInBlocks(mean(at), mean(at + kBytes)));
  };
  // Each of the two narrowings interleaves blocks; one permutation at the end puts
  // them in order.
  return joinTwice(packInBlocks(asI16(half(0)), asI16(half(2 * kBytes))));
}

// Prefetches what the next destination row needs of the rows below, once per line. This
// gains where a plane does not fit in the caches, because several rows are read at
// once.
template <size_t kFactor>
HWY_INLINE void prefetchBlock(const uint8_t* from, ptrdiff_t stride, size_t column) {
  constexpr size_t kLine = 64;
  if (column % kLine != 0) return;
  for (size_t y = 0; y < kFactor; ++y) {
    for (size_t x = 0; x < kFactor * kBytes; x += kLine) {
      __builtin_prefetch(from + static_cast<ptrdiff_t>(y) * stride + column + x);
    }
  }
}

template <size_t kFactor, size_t kSample>
HWY_INLINE size_t averageBlocks(uint8_t* to, const uint8_t* from, ptrdiff_t stride,
                                size_t bytes, const uint8_t* next) {
  return inBlocks(bytes, kBytes, [&](size_t i) HWY_ATTR {
    if (next != nullptr) prefetchBlock<kFactor>(next, stride, kFactor * i);
    store(kFactor == 2 ? averageBy2<kSample>(from + 2 * i, stride)
                       : averageBy4<kSample>(from + 4 * i, stride),
          to + i);
  });
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // ZELM_X86
