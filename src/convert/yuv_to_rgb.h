// YUV to packed RGB: what a row is made of, and the kernels that make it.
#ifndef ZELM_SRC_CONVERT_YUV_TO_RGB_H_
#define ZELM_SRC_CONVERT_YUV_TO_RGB_H_

#include <cstddef>
#include <cstdint>

#include "convert/rgb_layout.h"

namespace zelm {

// The chroma of one luma row. One byte of each pair, the lone one, is taken from the
// row itself; the other byte is averaged with that of the `other` row, which may be the
// same row.
struct ChromaRows {
  const uint8_t* own;
  const uint8_t* other;
  bool uFirst;     // pairs are U, V
  bool loneFirst;  // the lone byte is the first one
};

// A description of colour: the luma of black, 0 or 16, and weights in 2^14. Those of U
// and V for G are subtracted. A weight for B above 32767 is even; the others are at
// most that. With BT.601 and full range, whose weights are kBt601Full, a faster kernel
// runs.
struct YuvToRgb {
  int offset;
  int y, rv, gu, gv, bu;
  bool bt601Full;
};

constexpr YuvToRgb kBt601Full = {0, 16384, 22970, 5638, 11700, 29032, true};

// Makes a row of pixels. The rows of chroma have a pair for every two of them, and one
// more for the last pixel of an odd number.
using RgbRow = void(uint8_t* to, const uint8_t* luma, const ChromaRows& chroma,
                    size_t pixels, const YuvToRgb& colour);

// Whether a row begins and ends where its image does. Otherwise a pair follows it.
struct RowEnds {
  bool first, last;
};

// Chroma rows expanded to sums for each pixel: the row's own ones, and where the first
// and the second byte of pairs come from beside it.
struct ChromaSums {
  const int16_t *own, *first, *second;
};

// Kernels for rows of some length. With some instruction sets chroma rows are expanded
// once and serve several rows; with others and for short rows, for which the last two
// are null, each row takes them as they are.
struct RgbKernels {
  RgbRow* row;
  void (*expand)(int16_t* sums, const uint8_t* pairs, size_t pixels, RowEnds ends);
  void (*rowOfSums)(uint8_t* to, const uint8_t* luma, const ChromaSums& chroma,
                    size_t pixels, const YuvToRgb& colour, bool uFirst);
};

// A row of chroma pairs, with a number of its own in the image.
struct PairRow {
  const uint8_t* pairs;
  size_t number;
};

// Converts rows of an image, or of a strip of its columns.
class RgbRows {
 public:
  RgbRows(RgbLayout layout, const YuvToRgb& colour, bool uFirst, size_t pixels);

  // How many int16_t makeRow() works in for rows of so many pixels. They should begin
  // at a multiple of 64 bytes, as each of the two rows in them then does.
  static constexpr size_t scratchSize(size_t pixels) {
    return 2 * ((2 * (pixels + 1) + 31) / 32 * 32);
  }
  // Whether it needs scratch at all, and so goes well with strips.
  bool expands() const { return kernels_.expand != nullptr; }
  // Begins an image, or a strip of one, of so many pixels.
  void begin(size_t pixels, RowEnds ends, int16_t* scratch);

  // Makes a row. Of its chroma one byte, the first one if `loneFirst`, is taken from
  // `own` alone, and the other one from `other`, too.
  void makeRow(uint8_t* to, const uint8_t* luma, const PairRow& own,
               const PairRow& other, bool loneFirst);

 private:
  const int16_t* sums(const PairRow& row);

  const RgbKernels kernels_;
  const YuvToRgb& colour_;
  const bool uFirst_;
  size_t pixels_ = 0;
  RowEnds ends_ = {true, true};
  int16_t* kept_[2] = {};  // rows of even and of odd numbers
  size_t number_[2] = {};
};

}  // namespace zelm

#endif  // ZELM_SRC_CONVERT_YUV_TO_RGB_H_
