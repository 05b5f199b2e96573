// The plain rules that the library is compared with: one sample at a time, straight
// from the formulas, sharing nothing with the library but the record.
#ifndef ZELM_TESTS_REFERENCE_H
#define ZELM_TESTS_REFERENCE_H

#include "zelm_imageutil.h"

namespace reference {

int checkStruct(ImageStruct* img);
int checkRotateParam(ImageStruct* src, ImageStruct* dst, int mode, int rotation);
int getReductionRate(ImageStruct* dst, ImageStruct* src);

// Allocation never fails here; otherwise the codes and bytes of the pipelines.
int Zelm_Resize_and_Convert(ImageStruct src, ImageStruct dst, int luma, int chroma);
int Zelm_Convert_and_Resize(ImageStruct src, ImageStruct dst, int luma, int chroma);
int Zelm_Rotate_and_Convert(ImageStruct src, ImageStruct dst, int mode, int rotation);

void convYUV420SP_RGBA8888(ImageStruct* dst, ImageStruct* src);
void convYUV420SP_RGB565(ImageStruct* dst, ImageStruct* src);
void convYUV420SP_RGB888(ImageStruct* dst, ImageStruct* src);
void convYUV420SP_YUV420SP(ImageStruct* dst, ImageStruct* src);
void convYUV420SP_VU2UV(ImageStruct* dst, ImageStruct* src);
void convYUV420SP_YUV420P(ImageStruct* dst, ImageStruct* src);
void convYUV420P_YUV420SP(ImageStruct* dst, ImageStruct* src);
void convYUV420SP_YUV422SP(ImageStruct* dst, ImageStruct* src);
void convYUV420SP_YUV422SP_VU2UV(ImageStruct* dst, ImageStruct* src);
void convYUV422IUYVY_YUV420SPVU(ImageStruct* dst, ImageStruct* src);
void convRGB565_YUV420SPVU(ImageStruct* dst, ImageStruct* src);
void convYUV420SPMB_YUV420SPVU(ImageStruct* dst, ImageStruct* src);
void convYUV420SPVU_YUV420SPMB(ImageStruct* dst, ImageStruct* src);
void resize_nearest(ImageStruct* dst, ImageStruct* src);
void resize_nearestVU(ImageStruct* dst, ImageStruct* src);
void resize_linear(ImageStruct* dst, ImageStruct* src);
void resize_linearVU(ImageStruct* dst, ImageStruct* src);
void resize_linear3ch(ImageStruct* dst, ImageStruct* src);
void resize_cubic(ImageStruct* dst, ImageStruct* src);
void resize_cubicVU(ImageStruct* dst, ImageStruct* src);
void resize_averageOfPixel2_420LP(ImageStruct* dst, ImageStruct* src);
void resize_averageOfPixel4_420LP(ImageStruct* dst, ImageStruct* src);
void rotate0_Y(ImageStruct* dst, ImageStruct* src);
void rotate90_Y(ImageStruct* dst, ImageStruct* src);
void rotate180_Y(ImageStruct* dst, ImageStruct* src);
void rotate270_Y(ImageStruct* dst, ImageStruct* src);

}  // namespace reference

#endif  // ZELM_TESTS_REFERENCE_H
