// Box averages by byte shuffles and multiplications, for samples of 1, 2 and 4 bytes.
// Included by box_average.cc in each of its passes.
//
// Neighbouring bytes are added by one multiplication with 1 (pairSums). Samples of more
// bytes are first shuffled such that what is added are neighbours:
//   V0 U0 V1 U1 V2 U2 V3 U3  ->  V0 V1 U0 U1 V2 V3 U2 U3
#if ZELM_VECTORS

#include "simd/vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// The shuffle of a block whose lanes have kLane bytes.
template <size_t kSample, size_t kLane>
struct SideBySide {
  alignas(16) uint8_t order[16];

  constexpr SideBySide() : order() {
    for (size_t i = 0; i < 16; ++i) {
      const size_t lane = i / kLane, place = lane % (2 * kSample);
      const size_t from = lane - place + place % 2 * kSample + place / 2;
      order[i] = static_cast<uint8_t>(kLane * from + i % kLane);
    }
  }
};

// Puts the first lanes of two neighbouring samples side by side, and the second ones,
// and so on.
template <size_t kSample, size_t kLane>
HWY_INLINE Vec<U8> sideBySide(Vec<U8> v) {
  if constexpr (kSample == 1) return v;
  static constexpr SideBySide<kSample, kLane> kShuffle;
  return pickInBlocks(v, everyBlock(kShuffle.order));
}

// Returns the sums of 2 x kRows samples for a vector's width of bytes at `from`.
template <size_t kRows, size_t kSample>
HWY_INLINE Vec<U16> sumPairs(const uint8_t* from, ptrdiff_t stride) {
  Vec<U16> sum = hn::Zero(u16);
  for (size_t y = 0; y < kRows; ++y) {
    const Vec<U8> v = load(from + static_cast<ptrdiff_t>(y) * stride);
    sum = hn::Add(sum, pairSums(sideBySide<kSample, 1>(v)));
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
    const Vec<U8> sums = asU8(sumPairs<4, kSample>(from + at, stride));
    const Vec<I16> pairs = asI16(sideBySide<kSample, 2>(sums));
    return hn::ShiftRight<4>(pairProducts(pairs, hn::Set(i16, 1)));
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
// once; with vectors of 64 bytes two rows are few enough for the processor's own
// prefetching.
template <size_t kFactor>
HWY_INLINE void prefetchBlock(const uint8_t* from, ptrdiff_t stride, size_t column) {
  constexpr size_t kLine = 64;
  if ((kFactor == 2 && kBytes == 64) || column % kLine != 0) return;
  for (size_t y = 0; y < kFactor; ++y) {
    for (size_t x = 0; x < kFactor * kBytes; x += kLine) {
      __builtin_prefetch(from + static_cast<ptrdiff_t>(y) * stride + column + x);
    }
  }
}

template <size_t kFactor, size_t kSample>
HWY_INLINE size_t averageShuffled(uint8_t* to, const uint8_t* from, ptrdiff_t stride,
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

#endif  // ZELM_VECTORS
