// Pairs each pipeline of the library with that of the reference.
#include "pipelines.h"

#include <algorithm>

#include "reference.h"

namespace harness {
namespace {

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

}  // namespace

Frame wholeFrame(uint32_t format, uint32_t width, uint32_t height, uint32_t gap) {
  const size_t size = zelmFrameLayout(format, width, height).size;
  Frame f{zelmWholeFrame(format, width, height, nullptr),
          std::max<size_t>(4, size) + gap, std::max(1u, width), 0};
  f.record.uvOffset += gap;
  f.chroma = f.record.uvOffset > gap ? f.record.uvOffset : f.bytes;
  return f;
}

Call resizeAndConvert(int luma, int chroma, int reserved) {
  return pipeline("Zelm_Resize_and_Convert", ::Zelm_Resize_and_Convert,
                  reference::Zelm_Resize_and_Convert, luma, chroma, reserved);
}

Call convertAndResize(int luma, int chroma, int reserved) {
  return pipeline("Zelm_Convert_and_Resize", ::Zelm_Convert_and_Resize,
                  reference::Zelm_Convert_and_Resize, luma, chroma, reserved);
}

Call rotateAndConvert(int mode, int rotation) {
  return pipeline("Zelm_Rotate_and_Convert", ::Zelm_Rotate_and_Convert,
                  reference::Zelm_Rotate_and_Convert, mode, rotation);
}

}  // namespace harness
