// Transposes planes, and so turns a luma region by a quarter turn: D(x, y) =
// S(y, H - 1 - x) clockwise, and S(W - 1 - y, x) counter-clockwise. Both are
// transpositions; one walks the source rows backwards, the other the destination rows.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "rotate/quarter_turn.cc"
#include "simd/each_target.h"  // before all others

#include "plane.h"
#include "rotate/quarter_turn_armv7-inl.h"
#include "rotate/turn.h"
#include "simd/dispatch.h"
#include "simd/vector-inl.h"
#include "zelm_imageutil.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// Transposes sample by sample.
template <size_t kSample>
HWY_INLINE void transposePart(uint8_t* to, ptrdiff_t toStride, const uint8_t* from,
                              ptrdiff_t fromStride, size_t columns, size_t rows) {
  for (size_t x = 0; x < columns; ++x) {
    for (size_t y = 0; y < rows; ++y) {
      std::memcpy(to + static_cast<ptrdiff_t>(y) * toStride + x * kSample,
                  from + static_cast<ptrdiff_t>(x) * fromStride + y * kSample, kSample);
    }
  }
}

#if ZELM_VECTORS
template <size_t kSample>
constexpr bool kHasTiles = kSample != 3;

// A tile has as many rows as a block has samples, and as many columns as a vector.
template <size_t kSample>
constexpr size_t kTileRows = 16 / kSample;
template <size_t kSample>
constexpr size_t kTileColumns = ZELM_ARMV7&& kSample == 1 ? 8 : kBytes / kSample;

// Interleaving rows i and i + n / 2 of n rows, log2(n) times, transposes blocks of n x
// n samples. The first time for n = 16:
//   row 0    a0 a1 a2 ...          row 0    a0 i0 a1 i1 a2 i2 ...  (lower halves)
//   row 8    i0 i1 i2 ...   gives  row 1    a8 i8 a9 i9 ...        (upper halves)
// Each time the top bit of a sample's row number becomes the bottom bit of its column
// number, and the other way round.
template <class Lanes, size_t kRows>
HWY_INLINE void interleaveHalves(Lanes d, const Vec<U8> (&in)[kRows],
                                 Vec<U8> (&out)[kRows]) {
  for (size_t i = 0; i < kRows / 2; ++i) {
    const auto a = hn::BitCast(d, in[i]), b = hn::BitCast(d, in[i + kRows / 2]);
    out[2 * i] = asU8(hn::InterleaveLower(d, a, b));
    out[2 * i + 1] = asU8(hn::InterleaveUpper(d, a, b));
  }
}

#if !ZELM_ARMV7
HWY_INLINE void transposeBlocks(Vec<U8> (&a)[16]) {
  Vec<U8> b[16];
  interleaveHalves(u8, a, b);
  interleaveHalves(u8, b, a);
  interleaveHalves(u8, a, b);
  interleaveHalves(u8, b, a);
}
#endif
HWY_INLINE void transposeBlocks(Vec<U8> (&a)[8]) {
  Vec<U8> b[8], c[8];
  interleaveHalves(u16, a, b);
  interleaveHalves(u16, b, c);
  interleaveHalves(u16, c, a);
}
HWY_INLINE void transposeBlocks(Vec<U8> (&a)[4]) {
  Vec<U8> b[4];
  interleaveHalves(u32, a, b);
  interleaveHalves(u32, b, a);
}

// Whether source lines are prefetched: each row lies on another page, so the processor
// does not do it. Measured with vectors of two blocks.
constexpr bool kPrefetchesSource = kBlocks == 2;

// Prefetches a line of every row of the tiles that follow; tile `number` of a band asks
// for its share.
template <size_t kSample>
HWY_INLINE void prefetchNextTiles(const uint8_t* next, ptrdiff_t stride,
                                  size_t number) {
  constexpr size_t kLines = kTileColumns<kSample> / 4;  // a line serves four tiles
  for (size_t i = kLines * number; i < kLines * (number + 1); ++i) {
    __builtin_prefetch(next + static_cast<ptrdiff_t>(i) * stride);
  }
}

// Makes a tile. Block b of a vector transposes the source rows from kRows b on.
template <size_t kSample>
HWY_INLINE void transposeTile(uint8_t* to, ptrdiff_t toStride, const uint8_t* from,
                              ptrdiff_t fromStride) {
#if ZELM_ARMV7
  if constexpr (kSample == 1) {
    transposeBytes(to, toStride, from, fromStride);
    return;
  } else
#endif
  {
    constexpr ptrdiff_t kRows = kTileRows<kSample>;
    Vec<U8> a[kRows];
    for (ptrdiff_t i = 0; i < kRows; ++i) {
      a[i] = loadBlocks([=](ptrdiff_t block) HWY_ATTR {
        return from + (kRows * block + i) * fromStride;
      });
    }
    transposeBlocks(a);
    for (ptrdiff_t i = 0; i < kRows; ++i) {
      prefetchForWriting(to + i * toStride + 128);
      store(a[i], to + i * toStride);
    }
  }
}
#endif  // ZELM_VECTORS

// Transposes one band of destination rows. It stays a function of its own, so that the
// loop over bands does not take registers from it.
template <size_t kSample>
[[gnu::noinline]] void transposeBand(uint8_t* to, ptrdiff_t toStride,
                                     const uint8_t* from, ptrdiff_t fromStride,
                                     size_t columns, size_t rows) {
  size_t doneRows = 0;
#if ZELM_VECTORS
  if constexpr (kHasTiles<kSample>) {
    // Tiles go down the band first, so that whole cache lines of the source are used
    // up.
    constexpr size_t kRows = kTileRows<kSample>, kColumns = kTileColumns<kSample>;
    if (rows >= kRows) {
      doneRows = rows;
      const size_t doneColumns = inBlocks(columns, kColumns, [&](size_t x) HWY_ATTR {
        const bool prefetches = kPrefetchesSource && x + 2 * kColumns <= columns;
        inBlocks(rows, kRows, [&](size_t y) HWY_ATTR {
          if (prefetches) {
            prefetchNextTiles<kSample>(
                from + static_cast<ptrdiff_t>(x + kColumns) * fromStride, fromStride,
                y / kRows);
          }
          transposeTile<kSample>(
              to + static_cast<ptrdiff_t>(y) * toStride + x * kSample, toStride,
              from + static_cast<ptrdiff_t>(x) * fromStride + y * kSample, fromStride);
        });
      });
      if (doneColumns == 0) doneRows = 0;
    }
  }
#endif
  transposePart<kSample>(to + static_cast<ptrdiff_t>(doneRows) * toStride, toStride,
                         from + doneRows * kSample, fromStride, columns,
                         rows - doneRows);
}

// Transposes in bands whose source columns fill a cache line.
template <size_t kSample>
void transpose(uint8_t* to, ptrdiff_t toStride, const uint8_t* from,
               ptrdiff_t fromStride, size_t columns, size_t rows) {
  constexpr size_t kBand = 64 / kSample;
  for (size_t y = 0; y < rows; y += kBand) {
    const size_t left = rows - y;
    transposeBand<kSample>(to + static_cast<ptrdiff_t>(y) * toStride, toStride,
                           from + y * kSample, fromStride, columns,
                           left < kBand ? left : kBand);
  }
}

Transpose* kernelOf(size_t sample) {
  Transpose* const kernels[] = {transpose<1>, transpose<2>, transpose<3>, transpose<4>};
  return kernels[sample - 1];
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
zelm::Transpose* zelm::transposeKernel(size_t sample, size_t columns) {
  return ZELM_KERNEL_FOR(kernelOf, columns * sample)(sample);
}

extern "C" void rotate90_Y(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  const Region from = lumaRegion(*src), to = lumaRegion(*dst);
  if (from.empty()) return;
  transposeKernel(1, from.rows)(to.origin, to.stride, from.row(from.rows - 1),
                                -from.stride, from.rows, from.columns);
}

extern "C" void rotate270_Y(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  const Region from = lumaRegion(*src), to = lumaRegion(*dst);
  if (from.empty()) return;
  transposeKernel(1, from.rows)(to.row(from.columns - 1), -to.stride, from.origin,
                                from.stride, from.rows, from.columns);
}
#endif  // HWY_ONCE
