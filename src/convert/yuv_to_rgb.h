// YUV to packed RGB: what a row is made of, and the kernels that make it.
#ifndef ZELM_SRC_CONVERT_YUV_TO_RGB_H_
#define ZELM_SRC_CONVERT_YUV_TO_RGB_H_

#include <cstddef>
#include <cstdint>

#include "convert/rgb_layout.h"
#include "plane.h"

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
                    size_t pixels, const YuvToRgb& colour, bool blueFirst);

// Two luma rows that follow each other and see the same two chroma rows: the lower one
// of pairs[0] and the upper one of pairs[1], which may be the same row.
struct TwoRows {
  uint8_t* to[2];
  const uint8_t* luma[2];
  const uint8_t* pairs[2];
  bool uFirst;
  bool stream;  // whether storing past the caches is worth it
};

using RgbTwoRows = void(const TwoRows& rows, size_t pixels, const YuvToRgb& colour,
                        bool blueFirst);

struct RgbKernels {
  RgbRow* row;
  RgbTwoRows* twoRows;
};

// The kernels for rows of so many pixels, of 2 to 4 bytes.
RgbKernels rgbKernels(size_t pixelBytes, bool isBt601Full, size_t pixels);

// How many chroma rows an image has, and how many luma rows each of them serves, which
// is 1 or 2.
struct ChromaSharing {
  size_t rows;
  size_t shared;
};

// Converts rows of an image.
class RgbRows {
 public:
  RgbRows(RgbLayout layout, const YuvToRgb& colour, bool uFirst, size_t pixels,
          bool stream = false)
      : kernels_(rgbKernels(pixelBytes(layout), colour.bt601Full, pixels)),
        blueFirst_(blueFirst(layout)),
        colour_(colour),
        uFirst_(uFirst),
        pixels_(pixels),
        stream_(stream) {}

  // Makes the rows of `to`, of which the first is row `first` of the image. Chroma row
  // k is pairs(k).
  template <class Pairs>
  void make(const Region& to, const Region& luma, size_t first,
            const ChromaSharing& chroma, const Pairs& pairs) const {
    for (size_t y = 0; y < to.rows; ++y) {
      const Seen seen = seenBy(first + y, chroma), next = seenBy(first + y + 1, chroma);
      const uint8_t *own = pairs(seen.own), *other = pairs(seen.other);
      if (y + 1 < to.rows && next.own == seen.other && next.other == seen.own) {
        kernels_.twoRows({{to.row(y), to.row(y + 1)},
                          {luma.row(y), luma.row(y + 1)},
                          {own, other},
                          uFirst_,
                          stream_},
                         pixels_, colour_, blueFirst_);
        ++y;
      } else {
        const bool upper = (first + y) % 2 == 0;
        kernels_.row(to.row(y), luma.row(y), {own, other, uFirst_, uFirst_ == upper},
                     pixels_, colour_, blueFirst_);
      }
    }
  }

 private:
  struct Seen {
    size_t own, other;
  };

  // An upper luma row takes V from the chroma row above as well, a lower one U from the
  // one below. The first and the last chroma row stand alone.
  static Seen seenBy(size_t y, const ChromaSharing& chroma) {
    const size_t k = chroma.shared == 1 ? y : y / 2;
    if (chroma.shared == 1 || k == 0 || k + 1 >= chroma.rows) return {k, k};
    return {k, y % 2 == 0 ? k - 1 : k + 1};
  }

  const RgbKernels kernels_;
  const bool blueFirst_;
  const YuvToRgb& colour_;
  const bool uFirst_;
  const size_t pixels_;
  const bool stream_;
};

}  // namespace zelm

#endif  // ZELM_SRC_CONVERT_YUV_TO_RGB_H_
