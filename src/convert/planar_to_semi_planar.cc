// Planar 4:2:0 to semi-planar: the chroma planes, packed one behind the other, are
// interleaved. Whole frames.
#include <cstring>

#include "plane.h"
#include "zelm_imageutil.h"

namespace {

void joinPairs(uint8_t* to, const uint8_t* first, const uint8_t* second, size_t pairs) {
  for (size_t j = 0; j < pairs; ++j) {
    to[2 * j] = first[j];
    to[2 * j + 1] = second[j];
  }
}

}  // namespace

extern "C" void convYUV420P_YUV420SP(ImageStruct* dst, ImageStruct* src) {
  const size_t luma = static_cast<size_t>(src->height) * src->width;
  std::memcpy(dst->data, src->data, luma);
  const uint8_t* first = src->data + src->uvOffset;
  joinPairs(dst->data + dst->uvOffset, first, first + luma / 4, luma / 4);
}
