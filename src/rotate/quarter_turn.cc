// Turns a luma region by a quarter turn: D(x, y) = S(y, H - 1 - x) clockwise, and
// S(W - 1 - y, x) counter-clockwise. Both are transpositions; one walks the source rows
// backwards, the other the destination rows.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "rotate/quarter_turn.cc"
#include "simd/each_target.h"  // before all others

#include "plane.h"
#include "rotate/quarter_turn_armv7-inl.h"
#include "simd/dispatch.h"
#include "simd/vector-inl.h"
#include "zelm_imageutil.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// Transposes `columns` x `rows` samples of the destination one by one: to(x, y) =
// from(y, x). Strides are signed.
HWY_INLINE void transposePart(uint8_t* to, ptrdiff_t toStride, const uint8_t* from,
                              ptrdiff_t fromStride, size_t columns, size_t rows) {
  for (size_t y = 0; y < rows; ++y) {
    for (size_t x = 0; x < columns; ++x) {
      to[static_cast<ptrdiff_t>(y) * toStride + static_cast<ptrdiff_t>(x)] =
          from[static_cast<ptrdiff_t>(x) * fromStride + static_cast<ptrdiff_t>(y)];
    }
  }
}

#if ZELM_VECTORS && !ZELM_ARMV7
constexpr size_t kTileColumns = kBytes;

// Interleaving rows i and i + 8 four times transposes 16 x 16 bytes. The first time:
//   row 0    a0 a1 a2 ...          row 0    a0 i0 a1 i1 a2 i2 ...  (lower halves)
//   row 8    i0 i1 i2 ...   gives  row 1    a8 i8 a9 i9 ...        (upper halves)
// Each time the top bit of a byte's row number becomes the bottom bit of its column
// number, and the other way round.
HWY_INLINE void interleaveHalves(const Vec<U8> (&in)[16], Vec<U8> (&out)[16]) {
  for (size_t i = 0; i < 8; ++i) {
    out[2 * i] = hn::InterleaveLower(u8, in[i], in[i + 8]);
    out[2 * i + 1] = hn::InterleaveUpper(u8, in[i], in[i + 8]);
  }
}

// Makes 16 rows of kBytes samples. Block b of a vector transposes the source rows from
// 16 b on.
HWY_INLINE void transposeTile(uint8_t* to, ptrdiff_t toStride, const uint8_t* from,
                              ptrdiff_t fromStride) {
  Vec<U8> a[16], b[16];
  for (ptrdiff_t i = 0; i < 16; ++i) {
    a[i] = loadBlocks([=](ptrdiff_t block)
                          HWY_ATTR { return from + (16 * block + i) * fromStride; });
  }
  interleaveHalves(a, b);
  interleaveHalves(b, a);
  interleaveHalves(a, b);
  interleaveHalves(b, a);
  for (ptrdiff_t i = 0; i < 16; ++i) {
    prefetchForWriting(to + i * toStride + 128);
    store(a[i], to + i * toStride);
  }
}
#endif

// Transposes one band of at most 64 destination rows.
void transposeBand(uint8_t* to, ptrdiff_t toStride, const uint8_t* from,
                   ptrdiff_t fromStride, size_t columns, size_t rows) {
  size_t doneRows = 0;
#if ZELM_VECTORS
  // Tiles go down the band first, so that whole cache lines of the source are used up.
  if (rows >= 16) {
    doneRows = rows;
    const size_t doneColumns = inBlocks(columns, kTileColumns, [&](size_t x) HWY_ATTR {
      inBlocks(rows, 16, [&](size_t y) HWY_ATTR {
        transposeTile(to + static_cast<ptrdiff_t>(y) * toStride + x, toStride,
                      from + static_cast<ptrdiff_t>(x) * fromStride + y, fromStride);
      });
    });
    if (doneColumns == 0) doneRows = 0;
  }
#endif
  transposePart(to + static_cast<ptrdiff_t>(doneRows) * toStride, toStride,
                from + doneRows, fromStride, columns, rows - doneRows);
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zelm {

// Transposes in bands whose source columns fill a cache line.
static void transpose(uint8_t* to, ptrdiff_t toStride, const uint8_t* from,
                      ptrdiff_t fromStride, size_t columns, size_t rows) {
  constexpr size_t kBand = 64;
  const auto band = ZELM_KERNEL(transposeBand);
  for (size_t y = 0; y < rows; y += kBand) {
    const size_t left = rows - y;
    band(to + static_cast<ptrdiff_t>(y) * toStride, toStride, from + y, fromStride,
         columns, left < kBand ? left : kBand);
  }
}

}  // namespace zelm

extern "C" void rotate90_Y(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  const Region from = lumaRegion(*src), to = lumaRegion(*dst);
  if (from.empty()) return;
  transpose(to.origin, to.stride, from.row(from.rows - 1), -from.stride, from.rows,
            from.columns);
}

extern "C" void rotate270_Y(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  const Region from = lumaRegion(*src), to = lumaRegion(*dst);
  if (from.empty()) return;
  transpose(to.row(from.columns - 1), -to.stride, from.origin, from.stride, from.rows,
            from.columns);
}
#endif  // HWY_ONCE
