// Box averages with NEON, for samples of 1 and 2 bytes. Included by box_average.cc in
// each of its passes.
//
// Neighbouring bytes are added by vpaddl and vpadal, the latter onto the sums of the
// rows above. Chroma is deinterleaved as it is loaded, so that first and second bytes
// are summed in registers of their own, and interleaved again at the end.
#if ZELM_NEON

#include "simd/neon.h"
#include "simd/vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// Two or four source rows that are read from left to right.
template <size_t kFactor, size_t kSample>
struct Rows {
  const uint8_t *a, *b, *c, *d;

  HWY_INLINE Rows(const uint8_t* from, ptrdiff_t stride)
      : a(from), b(from + stride), c(from + 2 * stride), d(from + 3 * stride) {}

  // Returns the sums of 2 x kFactor samples for the next 32 bytes of the rows. Luma:
  // val[1] continues val[0]. Chroma: val[0] holds the first bytes of the pairs, val[1]
  // the second ones.
  HWY_INLINE uint16x8x2_t sums() {
    const uint8x16x2_t p = take(a), q = take(b);
    uint16x8x2_t s = {{addBlocks(p.val[0], q.val[0]), addBlocks(p.val[1], q.val[1])}};
    if (kFactor == 2) return s;
    const uint8x16x2_t r = take(c), t = take(d);
    for (int i = 0; i < 2; ++i) {
      s.val[i] = vpadalq_u8(vpadalq_u8(s.val[i], r.val[i]), t.val[i]);
    }
    return s;
  }

  // Returns the sums of whole blocks, 2 x 2 or 4 x 4 samples, in as many lanes.
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

// The number of destination bytes that are made at a time.
template <size_t kFactor>
constexpr size_t kBlock = 128 / kFactor;

template <size_t kFactor, size_t kSample>
HWY_INLINE void averageBlock(uint8_t*& to, Rows<kFactor, kSample>& rows) {
  constexpr int kShift = kFactor == 2 ? 2 : 4;
  for (size_t i = 0; i < kBlock<kFactor>; i += 32) {
    const uint16x8x2_t s = rows.blockSums(), t = rows.blockSums();
    if (kSample == 1) {
      put16(to, narrowShifted<kShift>(s.val[0], s.val[1]));
      put16(to, narrowShifted<kShift>(t.val[0], t.val[1]));
    } else {
      const uint8x16x2_t pairs = vzipq_u8(narrowShifted<kShift>(s.val[0], t.val[0]),
                                          narrowShifted<kShift>(s.val[1], t.val[1]));
      put16(to, pairs.val[0]);
      put16(to, pairs.val[1]);
    }
  }
}

template <size_t kFactor, size_t kSample>
HWY_INLINE size_t averageDeinterleaved(uint8_t* to, const uint8_t* from,
                                       ptrdiff_t stride, size_t bytes) {
  if (bytes < kBlock<kFactor>) return 0;
  Rows<kFactor, kSample> rows(from, stride);
  size_t left = bytes;
  for (; left >= kBlock<kFactor>; left -= kBlock<kFactor>) averageBlock(to, rows);
  // The last block is moved back so that it ends with the row. This is not left to
  // inMovingBlocks, because a lambda would keep `rows` in memory.
  if (left > 0) {
    const size_t back = kBlock<kFactor> - left;
    Rows<kFactor, kSample> lastRows(rows.a - kFactor * back, stride);
    to -= back;
    averageBlock(to, lastRows);
  }
  return bytes;
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // ZELM_NEON
