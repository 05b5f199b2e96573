// The plain rules that the library is compared with: one sample at a time, straight
// from the formulas, sharing nothing with the library but the record.
#ifndef ZELM_TESTS_REFERENCE_H
#define ZELM_TESTS_REFERENCE_H

#include "zelm_imageutil.h"

namespace reference {

int checkStruct(ImageStruct* img);
int checkRotateParam(ImageStruct* src, ImageStruct* dst, int mode, int rotation);
int getReductionRate(ImageStruct* dst, ImageStruct* src);

// The codes and bytes of the pipelines when there is enough memory.
int Zelm_Resize_and_Convert(ImageStruct src, ImageStruct dst, int luma, int chroma,
                            int reserved);
int Zelm_Convert_and_Resize(ImageStruct src, ImageStruct dst, int luma, int chroma,
                            int reserved);
int Zelm_Rotate_and_Convert(ImageStruct src, ImageStruct dst, int mode, int rotation);

// The stages.
using Stage = void(ImageStruct* dst, ImageStruct* src);
Stage convYUV420SP_RGBA8888, convYUV420SP_RGB565, convYUV420SP_RGB888;
Stage convYUV420SP_YUV420SP, convYUV420SP_VU2UV;
Stage convYUV420SP_YUV420P, convYUV420P_YUV420SP;
Stage convYUV420SP_YUV422SP, convYUV420SP_YUV422SP_VU2UV;
Stage convYUV422IUYVY_YUV420SPVU, convRGB565_YUV420SPVU;
Stage convYUV420SPMB_YUV420SPVU, convYUV420SPVU_YUV420SPMB;
Stage resize_nearest, resize_nearestVU, resize_linear, resize_linearVU;
Stage resize_linear3ch, resize_cubic, resize_cubicVU;
Stage resize_averageOfPixel2_420LP, resize_averageOfPixel4_420LP;
Stage rotate0_Y, rotate90_Y, rotate180_Y, rotate270_Y;

// A region of a plane whose samples have `channels` interleaved bytes.
struct Plane {
  uint8_t* origin;
  size_t stride;
  int rows, columns, channels;

  uint8_t& at(int row, int column, int channel = 0) const {
    return origin[row * stride + static_cast<size_t>(column) * channels + channel];
  }
};

// The scaling methods.
using Scale = void(const Plane& out, const Plane& in);
Scale scaleNearest, scaleLinear, scaleCubic;

// How many samples a frame has, and the next multiple of 16.
inline size_t area(const ImageStruct& i) {
  return static_cast<size_t>(i.width) * i.height;
}

inline size_t upTo16(size_t n) { return (n + 15) / 16 * 16; }

}  // namespace reference

#endif  // ZELM_TESTS_REFERENCE_H
