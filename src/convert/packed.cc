// UYVY and RGB565 to semi-planar 4:2:0 with pairs V, U.
//
// UYVY: bytes are copied; chroma is that of the upper row of every two.
// RGB565 (red in the high bits): full-range BT.601 with 14 fraction bits. Y is
// computed for every pixel, chroma for the upper left of every 2 x 2. Both round
// with one eighth, 2048 / 2^14, not one half; chroma symmetrically about zero:
//   Y  = (4897 R + 9611 G + 1876 B + 2048) >> 14
//   Cr = 8192 R - 6860 G - 1332 B,  Cb = 8192 B - 5427 G - 2765 R
//   V, U = 128 +- ((|C| + 2048) >> 14)
#include "plane.h"
#include "zelm_imageutil.h"

namespace {

using zelm::Region;

// The chroma plane follows a luma plane of width x height, wherever uvOffset says.
Region chromaBehindLuma(const ImageStruct& dst) {
  return zelm::chromaRegionAt(dst, static_cast<size_t>(zelm::lumaBytes(dst)));
}

void uyvyLumaRow(uint8_t* luma, const uint8_t* from, size_t groups) {
  for (size_t j = 0; j < groups; ++j) {
    luma[2 * j] = from[4 * j + 1];
    luma[2 * j + 1] = from[4 * j + 3];
  }
}

void uyvyRow(uint8_t* luma, uint8_t* chroma, const uint8_t* from, size_t groups) {
  for (size_t j = 0; j < groups; ++j) {
    luma[2 * j] = from[4 * j + 1];
    luma[2 * j + 1] = from[4 * j + 3];
    chroma[2 * j] = from[4 * j + 2];
    chroma[2 * j + 1] = from[4 * j];
  }
}

struct Rgb {
  int r, g, b;
};

// The fields of a word, widened to 8 bits by repeating their top bits.
Rgb unpack565(const uint8_t* from) {
  const int word = from[0] | from[1] << 8;
  const int r = word >> 11, g = word >> 5 & 63, b = word & 31;
  return {r << 3 | r >> 2, g << 2 | g >> 4, b << 3 | b >> 2};
}

uint8_t lumaOf(Rgb c) {
  return static_cast<uint8_t>((4897 * c.r + 9611 * c.g + 1876 * c.b + 2048) >> 14);
}

uint8_t centred(int c) {
  return static_cast<uint8_t>(c >= 0 ? 128 + ((c + 2048) >> 14)
                                     : 128 - ((-c + 2048) >> 14));
}

void rgb565LumaRow(uint8_t* luma, const uint8_t* from, size_t pixels) {
  for (size_t x = 0; x < pixels; ++x) luma[x] = lumaOf(unpack565(from + 2 * x));
}

void rgb565ChromaRow(uint8_t* chroma, const uint8_t* from, size_t pairs) {
  for (size_t j = 0; j < pairs; ++j) {
    const Rgb c = unpack565(from + 4 * j);
    chroma[2 * j] = centred(8192 * c.r - 6860 * c.g - 1332 * c.b);
    chroma[2 * j + 1] = centred(8192 * c.b - 5427 * c.g - 2765 * c.r);
  }
}

}  // namespace

extern "C" void convYUV422IUYVY_YUV420SPVU(ImageStruct* dst, ImageStruct* src) {
  const Region from = zelm::packedRegion(*src, 2);
  const Region luma = zelm::lumaRegion(*dst), chroma = chromaBehindLuma(*dst);
  const size_t groups = from.columns / 2;
  for (size_t k = 0; k < from.rows / 2; ++k) {
    uyvyRow(luma.row(2 * k), chroma.row(k), from.row(2 * k), groups);
    uyvyLumaRow(luma.row(2 * k + 1), from.row(2 * k + 1), groups);
  }
}

extern "C" void convRGB565_YUV420SPVU(ImageStruct* dst, ImageStruct* src) {
  const Region from = zelm::packedRegion(*src, 2);
  const Region luma = zelm::lumaRegion(*dst), chroma = chromaBehindLuma(*dst);
  const size_t pixels = from.columns;
  for (size_t y = 0; y < from.rows; ++y) {
    rgb565LumaRow(luma.row(y), from.row(y), pixels);
    // An odd last pixel forms a pair with itself.
    if (pixels % 2 != 0) luma.row(y)[pixels] = luma.row(y)[pixels - 1];
    if (y % 2 == 0) rgb565ChromaRow(chroma.row(y / 2), from.row(y), (pixels + 1) / 2);
  }
}
