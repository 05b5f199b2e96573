// How rows of luma and of chroma pairs are written to the destination's planes.
#include "frames/write.h"

#include "convert/pairs.h"
#include "frames/tiles.h"

namespace zelm {

Target::Target(const ZelmFrame& frame, const Format& format, const Rect& region,
               Scratch& scratch)
    : format_(format),
      region_(region),
      planes_(planesOf(frame, format, region)),
      pairs_(halfUp(region.columns)) {
  for (uint8_t*& row : scratchLuma_) row = scratch.take(1, 2 * pairs_, 1).origin;
  scratchPairs_ = scratch.take(2, pairs_, 1).origin;
  swapped_ = scratch.take(2, pairs_, 1).origin;
}

void Target::writeLuma(size_t y, const uint8_t* luma) const {
  const Region& plane = planes_.first;
  if (format_.layout == Layout::kTiles) {
    TiledPlane{plane.origin, plane.stride, 16}.writeRow(
        luma, region_.row + y, region_.column, region_.columns);
  } else if (luma != plane.row(y)) {
    copyBytes(plane.row(y), luma, region_.columns);
  }
}

// Returns the pairs in the order of uFirst().
const uint8_t* Target::ordered(const uint8_t* pairs, bool uFirst) const {
  if (uFirst == this->uFirst()) return pairs;
  swapPairsKernel(2 * pairs_)(swapped_, pairs, 2 * pairs_, false);
  return swapped_;
}

void Target::writePairs(size_t y, const uint8_t* pairs, bool uFirst) const {
  const Region& plane = planes_.chroma[0];
  if (format_.layout == Layout::kTiles) {
    TiledPlane{plane.origin, plane.stride, 8}.writeRow(
        ordered(pairs, uFirst), region_.row / 2 + y, region_.column, 2 * pairs_);
    return;
  }
  if (planes_.pairs) {
    uint8_t* row = plane.row(y);
    if (uFirst != planes_.uFirst) {
      swapPairsKernel(2 * pairs_)(row, pairs, 2 * pairs_, false);
    } else if (pairs != row) {
      copyBytes(row, pairs, 2 * pairs_);
    }
    return;
  }
  uint8_t *u = plane.row(y), *v = planes_.chroma[1].row(y);
  if (storesPlanes()) {
    splitPairsKernel(pairs_)(uFirst ? u : v, uFirst ? v : u, pairs, pairs_, false);
    return;
  }
  for (size_t i = 0; i < pairs_; ++i) {
    u[i * planes_.step[0]] = pairs[2 * i + (uFirst ? 0 : 1)];
    v[i * planes_.step[1]] = pairs[2 * i + (uFirst ? 1 : 0)];
  }
}

void Target::writePacked(size_t y, const uint8_t* luma, const uint8_t* pairs,
                         bool uFirst) const {
  const uint8_t* chroma = ordered(pairs, uFirst);
  const bool chromaFirst = format_.uFirst;
  uint8_t* row = planes_.first.row(y);
  joinPairsKernel(region_.columns)(row, chromaFirst ? chroma : luma,
                                   chromaFirst ? luma : chroma, region_.columns, false);
  if (region_.columns % 2 != 0) {
    // The last group holds one pixel, whose luma is written twice.
    uint8_t* second = row + 2 * region_.columns;
    second[chromaFirst ? 0 : 1] = chroma[region_.columns];
    second[chromaFirst ? 1 : 0] = luma[region_.columns - 1];
  }
}

}  // namespace zelm
