// How rows of luma and of chroma pairs are written to the destination's planes.
#ifndef ZELM_FRAMES_WRITE_H_
#define ZELM_FRAMES_WRITE_H_

#include <cstddef>
#include <cstdint>

#include "frames/format.h"
#include "frames/planes.h"
#include "frames/rect.h"
#include "frames/scratch.h"

namespace zelm {

// The destination region. Rows are counted from its own first row.
class Target {
 public:
  Target(const ZelmFrame& frame, const Format& format, const Rect& region,
         Scratch& scratch);

  // The rows of luma or of pixels, where they lie side by side in memory.
  bool hasPlainLuma() const {
    return format_.layout != Layout::kPacked && format_.layout != Layout::kTiles;
  }
  Region lumaRows(size_t first, size_t rows) const {
    return rowsOf(planes_.first, first, rows);
  }

  // Tells whether chroma is stored as such pairs, or as planes of samples side by side.
  bool storesPairs(bool uFirst) const {
    return planes_.pairs && format_.layout != Layout::kTiles &&
           planes_.uFirst == uFirst;
  }
  bool storesPlanes() const {
    return format_.layout == Layout::kPlanar && planes_.step[0] == 1 &&
           planes_.step[1] == 1;
  }
  Region chromaRows(int plane, size_t first, size_t rows) const {
    return rowsOf(planes_.chroma[plane], first, rows);
  }

  // The order of pairs that is written with the least work.
  bool uFirst() const { return format_.layout == Layout::kPacked || planes_.uFirst; }

  // Where a row of luma (of pairs in the order of uFirst()) may be made so that
  // writing it is no work: in the destination, or else in scratch memory.
  uint8_t* lumaPlace(size_t y) const {
    return hasPlainLuma() ? planes_.first.row(y) : scratchLuma_[y % 2];
  }
  uint8_t* pairsPlace(size_t y) const {
    return storesPairs(uFirst()) ? planes_.chroma[0].row(y) : scratchPairs_;
  }
  // A place for pairs in the other order.
  uint8_t* scratchPairs() const { return scratchPairs_; }

  void writeLuma(size_t y, const uint8_t* luma) const;
  void writePairs(size_t y, const uint8_t* pairs, bool uFirst) const;
  // A row of a packed format.
  void writePacked(size_t y, const uint8_t* luma, const uint8_t* pairs,
                   bool uFirst) const;

  // The scratch memory for a region of that many columns.
  static size_t scratchBytes(size_t columns) {
    return 4 * Scratch::bytesFor(columns + 1, 1);
  }

 private:
  static Region rowsOf(const Region& plane, size_t first, size_t rows) {
    return {plane.row(first), plane.stride, plane.columns, rows};
  }
  const uint8_t* ordered(const uint8_t* pairs, bool uFirst) const;

  const Format& format_;
  const Rect region_;
  const FramePlanes planes_;
  const size_t pairs_;  // in a row
  uint8_t* scratchLuma_[2];
  uint8_t* scratchPairs_;
  uint8_t* swapped_;
};

}  // namespace zelm

#endif  // ZELM_FRAMES_WRITE_H_
