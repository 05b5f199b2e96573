// Semi-planar 4:2:0 reduced by exactly 2 or 4: every sample is the mean of a block
// of 2 x 2 or 4 x 4, rounded down. The destination region sets the size of the work.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "resize/box_average.cc"
#include "simd/each_target.h"  // before all others

#include "plane.h"
#include "simd/dispatch.h"
#include "simd/vector-inl.h"
#include "zelm_imageutil.h"

HWY_BEFORE_NAMESPACE();
namespace zelm {
namespace {
namespace HWY_NAMESPACE {

#if ZELM_VECTORS
// Puts the first bytes of two neighbouring pairs side by side, and the second ones, so
// that chroma is summed by the same pairwise additions as luma.
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

// Sums of 2 x kRows samples at `from`, a vector's width of them.
template <size_t kRows, size_t kSample>
HWY_INLINE Vec<U16> sumPairs(const uint8_t* from, size_t stride) {
  Vec<U16> sum = hn::Zero(u16);
  for (size_t y = 0; y < kRows; ++y) {
    const Vec<U8> v = load(from + y * stride);
    sum = hn::Add(sum, pairSums(kSample == 2 ? sideBySide(v) : v));
  }
  return sum;
}

template <size_t kSample>
HWY_INLINE Vec<U8> averageBy2(const uint8_t* from, size_t stride) {
  const auto mean = [&](size_t at) HWY_ATTR {
    return hn::ShiftRight<2>(sumPairs<2, kSample>(from + at, stride));
  };
  return pack(mean(0), mean(kBytes));
}

template <size_t kSample>
HWY_INLINE Vec<U8> averageBy4(const uint8_t* from, size_t stride) {
  // Pair sums of four rows are at most 2040, so four of them fit in 16 bits.
  const auto mean = [&](size_t at) HWY_ATTR {
    Vec<U16> sum = sumPairs<4, kSample>(from + at, stride);
    if (kSample == 2) sum = sideBySide(sum);
    return hn::ShiftRight<4>(pairProducts(asI16(sum), hn::Set(i16, 1)));
  };
  const auto half = [&](size_t at) HWY_ATTR {
    return asU16(narrowInBlocks(mean(at), mean(at + kBytes)));
  };
  // Each narrowing interleaves blocks; one permutation at the end mends both.
  return joinTwice(packInBlocks(asI16(half(0)), asI16(half(2 * kBytes))));
}
#endif

// One destination row of `bytes` bytes. A sample is kSample interleaved bytes,
// averaged separately.
template <size_t kFactor, size_t kSample>
HWY_INLINE void averageRow(uint8_t* to, const uint8_t* from, size_t stride,
                           size_t bytes) {
  size_t done = 0;
#if ZELM_VECTORS
  done = inBlocks(bytes, kBytes, [&](size_t i) HWY_ATTR {
    store(kFactor == 2 ? averageBy2<kSample>(from + 2 * i, stride)
                       : averageBy4<kSample>(from + 4 * i, stride),
          to + i);
  });
#endif
  for (size_t i = done; i < bytes; ++i) {
    const uint8_t* block = from + i / kSample * kFactor * kSample + i % kSample;
    unsigned sum = 0;
    for (size_t y = 0; y < kFactor; ++y) {
      for (size_t x = 0; x < kFactor; ++x) sum += block[y * stride + x * kSample];
    }
    to[i] = static_cast<uint8_t>(sum / (kFactor * kFactor));
  }
}

void lumaBy2(uint8_t* to, const uint8_t* from, size_t stride, size_t bytes) {
  averageRow<2, 1>(to, from, stride, bytes);
}
void chromaBy2(uint8_t* to, const uint8_t* from, size_t stride, size_t bytes) {
  averageRow<2, 2>(to, from, stride, bytes);
}
void lumaBy4(uint8_t* to, const uint8_t* from, size_t stride, size_t bytes) {
  averageRow<4, 1>(to, from, stride, bytes);
}
void chromaBy4(uint8_t* to, const uint8_t* from, size_t stride, size_t bytes) {
  averageRow<4, 2>(to, from, stride, bytes);
}

}  // namespace HWY_NAMESPACE
}  // namespace
}  // namespace zelm
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zelm {
namespace {

using AverageRow = void(uint8_t* to, const uint8_t* from, size_t stride, size_t bytes);

void averagePlane(AverageRow* average, const Region& to, const Region& from,
                  size_t factor, size_t sample) {
  for (size_t y = 0; y < to.rows; ++y) {
    average(to.row(y), from.row(factor * y), from.stride, to.columns * sample);
  }
}

}  // namespace
}  // namespace zelm

extern "C" void resize_averageOfPixel2_420LP(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  averagePlane(ZELM_KERNEL(lumaBy2), lumaRegion(*dst), lumaRegion(*src), 2, 1);
  averagePlane(ZELM_KERNEL(chromaBy2), chromaRegion(*dst), chromaRegion(*src), 2, 2);
}

extern "C" void resize_averageOfPixel4_420LP(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  averagePlane(ZELM_KERNEL(lumaBy4), lumaRegion(*dst), lumaRegion(*src), 4, 1);
  averagePlane(ZELM_KERNEL(chromaBy4), chromaRegion(*dst), chromaRegion(*src), 4, 2);
}
#endif  // HWY_ONCE
