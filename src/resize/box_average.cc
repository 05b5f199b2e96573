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

#if ZELM_NEON
// Lane by lane shifted and narrowed to bytes, a's and then b's.
template <int kShift>
HWY_INLINE uint8x16_t narrowed(uint16x8_t a, uint16x8_t b) {
#if HWY_ARCH_ARM_V7
  uint8x16_t both;  // the compiler would compute the halves elsewhere and move them
  asm("vshrn.i16 %e0, %q1, %3\n\tvshrn.i16 %f0, %q2, %3"
      : "=&w"(both)
      : "w"(a), "w"(b), "i"(kShift));
  return both;
#else
  return vshrn_high_n_u16(vshrn_n_u16(a, kShift), b, kShift);
#endif
}

// Sums of neighbours, of a's and then of b's.
HWY_INLINE uint16x8_t addNeighbours(uint16x8_t a, uint16x8_t b) {
#if HWY_ARCH_ARM_V7
  uint16x8_t both;
  asm("vpadd.i16 %e0, %e1, %f1\n\tvpadd.i16 %f0, %e2, %f2"
      : "=&w"(both)
      : "w"(a), "w"(b));
  return both;
#else
  return vpaddq_u16(a, b);
#endif
}

// Sums of pairs of neighbours over two rows.
HWY_INLINE uint16x8_t pairSums(uint8x16_t a, uint8x16_t b) {
#if HWY_ARCH_ARM_V7
  uint16x8_t sums;
  asm("vpaddl.u8 %q0, %q1\n\tvpadal.u8 %q0, %q2" : "=&w"(sums) : "w"(a), "w"(b));
  return sums;
#else
  return vpadalq_u8(vpaddlq_u8(a), b);
#endif
}

// Two or four rows that are read from left to right.
template <size_t kFactor, size_t kSample>
struct Rows {
  const uint8_t *a, *b, *c, *d;

  HWY_INLINE Rows(const uint8_t* from, size_t stride)
      : a(from), b(from + stride), c(from + 2 * stride), d(from + 3 * stride) {}

  // Luma: sums that follow each other. Chroma: of the first and of the second bytes.
  HWY_INLINE uint16x8x2_t sums() {
    const uint8x16x2_t p = take(a), q = take(b);
    uint16x8x2_t s = {{pairSums(p.val[0], q.val[0]), pairSums(p.val[1], q.val[1])}};
    if (kFactor == 2) return s;
    const uint8x16x2_t r = take(c), t = take(d);
    for (int i = 0; i < 2; ++i) {
      s.val[i] = vpadalq_u8(vpadalq_u8(s.val[i], r.val[i]), t.val[i]);
    }
    return s;
  }

  // The same of 2 x 2 or 4 x 4 samples, to the same number of lanes.
  HWY_INLINE uint16x8x2_t blockSums() {
    const uint16x8x2_t s = sums();
    if (kFactor == 2) return s;
    const uint16x8x2_t t = sums();
    if (kSample == 1) {
      return {{addNeighbours(s.val[0], s.val[1]), addNeighbours(t.val[0], t.val[1])}};
    }
    return {{addNeighbours(s.val[0], t.val[0]), addNeighbours(s.val[1], t.val[1])}};
  }

 private:
  static HWY_INLINE uint8x16x2_t take(const uint8_t*& from) {
    return kSample == 1 ? take32(from) : takePairs(from);
  }
};

// Bytes that are made at a time.
template <size_t kFactor>
constexpr size_t kBlock = 128 / kFactor;

template <size_t kFactor, size_t kSample>
HWY_INLINE void averageBlock(uint8_t*& to, Rows<kFactor, kSample>& rows) {
  constexpr int kShift = kFactor == 2 ? 2 : 4;
  for (size_t i = 0; i < kBlock<kFactor>; i += 32) {
    const uint16x8x2_t s = rows.blockSums(), t = rows.blockSums();
    if (kSample == 1) {
      put16(to, narrowed<kShift>(s.val[0], s.val[1]));
      put16(to, narrowed<kShift>(t.val[0], t.val[1]));
    } else {
      const uint8x16x2_t pairs = vzipq_u8(narrowed<kShift>(s.val[0], t.val[0]),
                                          narrowed<kShift>(s.val[1], t.val[1]));
      put16(to, pairs.val[0]);
      put16(to, pairs.val[1]);
    }
  }
}

template <size_t kFactor, size_t kSample>
HWY_INLINE size_t averageBlocks(uint8_t* to, const uint8_t* from, size_t stride,
                                size_t bytes) {
  if (bytes < kBlock<kFactor>) return 0;
  Rows<kFactor, kSample> rows(from, stride);
  size_t left = bytes;
  for (; left >= kBlock<kFactor>; left -= kBlock<kFactor>) averageBlock(to, rows);
  // The last block is moved back; not by inMovingBlocks, as a lambda would keep `rows`
  // in memory.
  if (left > 0) {
    const size_t back = kBlock<kFactor> - left;
    Rows<kFactor, kSample> lastRows(rows.a - kFactor * back, stride);
    to -= back;
    averageBlock(to, lastRows);
  }
  return bytes;
}
#elif ZELM_VECTORS
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

template <size_t kFactor, size_t kSample>
HWY_INLINE size_t averageBlocks(uint8_t* to, const uint8_t* from, size_t stride,
                                size_t bytes) {
  return inBlocks(bytes, kBytes, [&](size_t i) HWY_ATTR {
    store(kFactor == 2 ? averageBy2<kSample>(from + 2 * i, stride)
                       : averageBy4<kSample>(from + 4 * i, stride),
          to + i);
  });
}
#endif

// One destination row of `bytes` bytes. A sample is kSample interleaved bytes,
// averaged separately.
template <size_t kFactor, size_t kSample>
HWY_INLINE void averageRow(uint8_t* to, const uint8_t* from, size_t stride,
                           size_t bytes) {
  size_t done = 0;
#if ZELM_VECTORS
  done = averageBlocks<kFactor, kSample>(to, from, stride, bytes);
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
