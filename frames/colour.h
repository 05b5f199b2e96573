// Colour descriptions, and the weights of the conversions between them. docs/frames.md
// has the formulas; weights have 14 fraction bits.
#ifndef ZELM_FRAMES_COLOUR_H_
#define ZELM_FRAMES_COLOUR_H_

#include <cstdint>

#include "convert/yuv_to_rgb.h"
#include "zelm_frames.h"

namespace zelm {

constexpr uint32_t kColours = 6;

// The sum of a pixel's channels, each times its weight, for each of Y, U and V;
// channels are R, G, B.
struct RgbToYuv {
  int offset;  // of luma
  int y[3], u[3], v[3];
};

// From YUV to YUV of another colour: luma of luma, U and V; U and V of both.
struct YuvToYuv {
  int fromOffset, toOffset;  // of luma
  int yy, yu, yv;
  int uu, uv, vu, vv;
};

YuvToRgb yuvToRgb(uint32_t colour);
RgbToYuv rgbToYuv(uint32_t colour);
YuvToYuv yuvToYuv(uint32_t from, uint32_t to);

// The description of the same range whose matrix is that of `like`.
constexpr uint32_t withMatrixOf(uint32_t colour, uint32_t like) {
  return like / 2 * 2 + colour % 2;
}

}  // namespace zelm

#endif  // ZELM_FRAMES_COLOUR_H_
