// The pipelines as calls to compare, and whole frames of each format for them.
#ifndef ZELM_TESTS_PIPELINES_H
#define ZELM_TESTS_PIPELINES_H

#include <algorithm>

#include "comparison.h"
#include "reference.h"

namespace harness {

constexpr uint32_t kFormats[] = {FORMAT_YUV420SP,    FORMAT_YUV420SPVU, FORMAT_YUV420P,
                                 FORMAT_RGB565,      FORMAT_RGB888,     FORMAT_RGBA8888,
                                 FORMAT_YUV422IUYVY, FORMAT_YUV420SPMB, FORMAT_YUV422SP,
                                 FORMAT_YUV422SPVU};

// A frame of that size, with a gap before the chroma. A format or a size that does not
// exist makes a record like any other, with a few bytes of data.
inline Frame wholeFrame(uint32_t format, uint32_t width, uint32_t height,
                        uint32_t gap = 0) {
  const size_t size = zelmFrameLayout(format, width, height).size;
  Frame f{zelmWholeFrame(format, width, height, nullptr),
          std::max<size_t>(4, size) + gap, std::max(1u, width), 0};
  f.record.uvOffset += gap;
  f.chroma = f.record.uvOffset > gap ? f.record.uvOffset : f.bytes;
  return f;
}

// The name shows the two arguments that choose what is done.
template <class Product, class Expected, class... Rest>
Call pipeline(const char* name, Product product, Expected expected, int a, int b,
              Rest... rest) {
  Call call;
  call.name.add("%s(%d, %d)", name, a, b);
  call.product = [=](ImageStruct* d, ImageStruct* s) -> int {
    return product(*s, *d, a, b, rest...);
  };
  call.expected = [=](ImageStruct* d, ImageStruct* s) {
    return expected(*s, *d, a, b, rest...);
  };
  return call;
}

inline Call resizeAndConvert(int luma, int chroma, int reserved = -1) {
  return pipeline("Zelm_Resize_and_Convert", ::Zelm_Resize_and_Convert,
                  reference::Zelm_Resize_and_Convert, luma, chroma, reserved);
}
inline Call convertAndResize(int luma, int chroma, int reserved = -1) {
  return pipeline("Zelm_Convert_and_Resize", ::Zelm_Convert_and_Resize,
                  reference::Zelm_Convert_and_Resize, luma, chroma, reserved);
}
inline Call rotateAndConvert(int mode, int rotation) {
  return pipeline("Zelm_Rotate_and_Convert", ::Zelm_Rotate_and_Convert,
                  reference::Zelm_Rotate_and_Convert, mode, rotation);
}

}  // namespace harness

#endif  // ZELM_TESTS_PIPELINES_H
