// The chroma pairs of a shaped source, row by row, in the colour of the destination.
#ifndef ZELM_FRAMES_PAIR_ROWS_H_
#define ZELM_FRAMES_PAIR_ROWS_H_

#include <cstddef>
#include <cstdint>

#include "frames/colour.h"
#include "frames/scratch.h"
#include "plane.h"

namespace zelm {

class PairRows {
 public:
  PairRows() = default;

  // `chroma` holds pairs, or U and V, from row `first` on. If `weights` is not null,
  // pairs are recoloured by them. Planes are joined to pairs in the order of `uFirst`.
  PairRows(const Region (&chroma)[2], bool pairs, bool uFirst, size_t first,
           const YuvToYuv* weights, Scratch& scratch);

  // Returns the pairs of a row, which stay until three other rows were asked for.
  const uint8_t* get(size_t y);
  // The same before they are recoloured.
  const uint8_t* original(size_t y);

  bool uFirst() const { return uFirst_; }

  static size_t scratchBytes(size_t columns) {
    return 2 * Scratch::bytesFor(columns + 1, kKept);
  }

 private:
  static constexpr size_t kKept = 4;

  // Rows that were made, each in the place that its number names.
  struct Kept {
    Region rows = {};
    size_t number[kKept] = {SIZE_MAX, SIZE_MAX, SIZE_MAX, SIZE_MAX};

    // Returns the place of a row; `make` fills it if another row was there.
    template <class Make>
    const uint8_t* get(size_t y, const Make& make) {
      uint8_t* row = rows.row(y % kKept);
      if (number[y % kKept] != y) {
        make(row);
        number[y % kKept] = y;
      }
      return row;
    }
  };

  Region chroma_[2] = {};
  bool pairs_ = true, uFirst_ = true;
  size_t first_ = 0;
  const YuvToYuv* weights_ = nullptr;
  Kept joined_, recoloured_;
};

}  // namespace zelm

#endif  // ZELM_FRAMES_PAIR_ROWS_H_
