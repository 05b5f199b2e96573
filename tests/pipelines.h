// The pipelines as calls to compare, and whole frames of each format for them.
#ifndef ZELM_TESTS_PIPELINES_H
#define ZELM_TESTS_PIPELINES_H

#include "comparison.h"

namespace harness {

constexpr uint32_t kFormats[] = {FORMAT_YUV420SP,    FORMAT_YUV420SPVU, FORMAT_YUV420P,
                                 FORMAT_RGB565,      FORMAT_RGB888,     FORMAT_RGBA8888,
                                 FORMAT_YUV422IUYVY, FORMAT_YUV420SPMB, FORMAT_YUV422SP,
                                 FORMAT_YUV422SPVU};

// A frame of that size, with a gap before the chroma. A format or a size that does not
// exist makes a record like any other, with a few bytes of data.
Frame wholeFrame(uint32_t format, uint32_t width, uint32_t height, uint32_t gap = 0);

// Zelm_Resize_and_Convert(), Zelm_Convert_and_Resize() and Zelm_Rotate_and_Convert().
Call resizeAndConvert(int luma, int chroma, int reserved = -1);
Call convertAndResize(int luma, int chroma, int reserved = -1);
Call rotateAndConvert(int mode, int rotation);

}  // namespace harness

#endif  // ZELM_TESTS_PIPELINES_H
