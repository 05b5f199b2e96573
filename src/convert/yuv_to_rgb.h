// YUV to packed RGB: what a row is made of, and the kernels that make it.
#ifndef ZELM_SRC_CONVERT_YUV_TO_RGB_H_
#define ZELM_SRC_CONVERT_YUV_TO_RGB_H_

#include <cstddef>
#include <cstdint>

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

// Names give channels in the order of bytes, but for words of 16 bits from the highest
// bit on.
enum class RgbLayout { kRgb24, kBgr24, kRgba, kBgra, kRgb565, kBgr565 };

// Makes a row of pixels. The rows of chroma have a pair for every two of them, and one
// more for the last pixel of an odd number.
using RgbRow = void(uint8_t* to, const uint8_t* luma, const ChromaRows& chroma,
                    size_t pixels, const YuvToRgb& colour);

RgbRow* rgbRowKernel(RgbLayout layout);

}  // namespace zelm

#endif  // ZELM_SRC_CONVERT_YUV_TO_RGB_H_
