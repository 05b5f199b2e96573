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

// Returns the kernel for rows of so many pixels.
RgbRow* rgbRowKernel(RgbLayout layout, size_t pixels);

}  // namespace zelm

#endif  // ZELM_SRC_CONVERT_YUV_TO_RGB_H_
