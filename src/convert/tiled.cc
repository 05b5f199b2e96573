// The 16 x 16-tiled 4:2:0 layout, to and from linear semi-planar with pairs V, U.
//
// A tile holds its left 8 columns, row by row, then its right 8. Luma tiles have 16
// rows, chroma tiles 8. Tiled pairs are U, V, so the bytes of chroma pairs are
// exchanged on the way. Bytes of an edge tile that lie outside the frame are neither
// read nor written.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "convert/tiled.cc"
#include "simd/each_target.h"  // before all others

#include "convert/tiled_armv7-inl.h"
#include "plane.h"
#include "simd/dispatch.h"
#include "simd/vector-inl.h"
#include "zelm_imageutil.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// The one of the two planes that is written.
template <bool kToTiled>
HWY_INLINE uint8_t* target(uint8_t* linear, uint8_t* tiled) {
  return kToTiled ? tiled : linear;
}

// Moves the part of a tile that lies in the frame, by columns and rows.
template <bool kToTiled, bool kSwap>
HWY_INLINE void movePart(uint8_t* linear, size_t stride, uint8_t* tile,
                         size_t halfBytes, size_t columns, size_t rows) {
  for (size_t y = 0; y < rows; ++y) {
    for (size_t x = 0; x < columns; ++x) {
      const size_t swapped = kSwap ? x ^ 1 : x;
      uint8_t* in = tile + (x / 8) * halfBytes + 8 * y + x % 8;
      uint8_t* out = linear + y * stride + swapped;
      *target<kToTiled>(out, in) = *target<!kToTiled>(out, in);
    }
  }
}

#if ZELM_VECTORS && !ZELM_ARMV7
// Moves two rows of 16 bytes at a time, which lie in the tile as two rows of each half:
//   linear   row 0   L0 | R0        tile   left    L0 | L1
//            row 1   L1 | R1               right   R0 | R1
template <bool kToTiled, bool kSwap, size_t kRows>
HWY_INLINE void moveTile(uint8_t* linear, size_t stride, uint8_t* tile) {
  const hn::Full128<uint8_t> block;
  const hn::Full128<uint64_t> halves;
  const auto loadBlock = [&](const uint8_t* from) HWY_ATTR {
    auto v = hn::LoadU(block, from);
    if (kSwap) {
      const auto words = hn::BitCast(hn::Full128<uint16_t>(), v);
      v = hn::BitCast(block, hn::Or(hn::ShiftLeft<8>(words), hn::ShiftRight<8>(words)));
    }
    return hn::BitCast(halves, v);
  };
  for (size_t y = 0; y < kRows; y += 2) {
    uint8_t* row[2] = {linear + y * stride, linear + (y + 1) * stride};
    uint8_t* half[2] = {tile + 8 * y, tile + 8 * (kRows + y)};
    uint8_t** from = kToTiled ? row : half;
    uint8_t** to = kToTiled ? half : row;
    const auto a = loadBlock(from[0]), b = loadBlock(from[1]);
    hn::StoreU(hn::BitCast(block, hn::InterleaveLower(halves, a, b)), block, to[0]);
    hn::StoreU(hn::BitCast(block, hn::InterleaveUpper(halves, a, b)), block, to[1]);
  }
}
#endif

// Moves one row of tiles. `columns` is also the linear stride.
template <bool kToTiled, bool kSwap, size_t kRows>
HWY_INLINE void moveTiles(uint8_t* linear, uint8_t* tile, size_t columns, size_t rows) {
  size_t x = 0;
#if ZELM_VECTORS
  for (; rows == kRows && x + 16 <= columns; x += 16, tile += 16 * kRows) {
    moveTile<kToTiled, kSwap, kRows>(linear + x, columns, tile);
  }
#endif
  for (; x < columns; x += 16, tile += 16 * kRows) {
    const size_t left = columns - x;
    movePart<kToTiled, kSwap>(linear + x, columns, tile, 8 * kRows,
                              left < 16 ? left : 16, rows);
  }
}

void lumaToTiles(uint8_t* linear, uint8_t* tiled, size_t columns, size_t rows) {
  moveTiles<true, false, 16>(linear, tiled, columns, rows);
}
void chromaToTiles(uint8_t* linear, uint8_t* tiled, size_t columns, size_t rows) {
  moveTiles<true, true, 8>(linear, tiled, columns, rows);
}
void tilesToLuma(uint8_t* linear, uint8_t* tiled, size_t columns, size_t rows) {
  moveTiles<false, false, 16>(linear, tiled, columns, rows);
}
void tilesToChroma(uint8_t* linear, uint8_t* tiled, size_t columns, size_t rows) {
  moveTiles<false, true, 8>(linear, tiled, columns, rows);
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zelm {

using MoveTiles = void(uint8_t* linear, uint8_t* tiled, size_t columns, size_t rows);

// Moves one plane of `columns` bytes, which is also the linear stride, by `rows` rows,
// in tiles of 16 bytes by `tileRows` rows.
static void movePlane(MoveTiles* move, uint8_t* linear, uint8_t* tiled, size_t columns,
                      size_t rows, size_t tileRows) {
  const size_t tileRowBytes = (columns + 15) / 16 * 16 * tileRows;
  for (size_t y = 0; y < rows; y += tileRows) {
    const size_t left = rows - y;
    move(linear + y * columns, tiled, columns, left < tileRows ? left : tileRows);
    tiled += tileRowBytes;
  }
}

}  // namespace zelm

// The frame's size is the source region's. Source chroma is found by uvOffset, the
// destination's lies behind its luma.
extern "C" void convYUV420SPMB_YUV420SPVU(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  const size_t width = src->roiWidth, height = src->roiHeight;
  movePlane(ZELM_KERNEL(tilesToLuma), dst->data, src->data, width, height, 16);
  movePlane(ZELM_KERNEL(tilesToChroma), dst->data + lumaBytes(*dst),
            src->data + src->uvOffset, width, height / 2, 8);
}

extern "C" void convYUV420SPVU_YUV420SPMB(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  const size_t width = src->roiWidth, height = src->roiHeight;
  movePlane(ZELM_KERNEL(lumaToTiles), src->data, dst->data, width, height, 16);
  movePlane(ZELM_KERNEL(chromaToTiles), src->data + src->uvOffset,
            dst->data + tiledLumaBytes(dst->width, dst->height), width, height / 2, 8);
}
#endif  // HWY_ONCE
