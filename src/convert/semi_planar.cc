// Semi-planar 4:2:0 copied, with its chroma pairs exchanged, or split into planes.
#include <cstring>

#include "plane.h"
#include "zelm_imageutil.h"

namespace {

using zelm::Region;

void copyRows(const Region& to, const Region& from, size_t rows, size_t bytes) {
  if (to.stride == bytes && from.stride == bytes) {
    std::memcpy(to.origin, from.origin, rows * bytes);
    return;
  }
  for (size_t y = 0; y < rows; ++y) std::memcpy(to.row(y), from.row(y), bytes);
}

void swapPairsRow(uint8_t* to, const uint8_t* from, size_t pairs) {
  for (size_t j = 0; j < pairs; ++j) {
    to[2 * j] = from[2 * j + 1];
    to[2 * j + 1] = from[2 * j];
  }
}

void splitPairsRow(uint8_t* first, uint8_t* second, const uint8_t* from, size_t pairs) {
  for (size_t j = 0; j < pairs; ++j) {
    first[j] = from[2 * j];
    second[j] = from[2 * j + 1];
  }
}

size_t roundUpTo16(size_t value) { return (value + 15) / 16 * 16; }

}  // namespace

extern "C" void convYUV420SP_YUV420SP(ImageStruct* dst, ImageStruct* src) {
  const Region luma = zelm::lumaRegion(*src), chroma = zelm::chromaRegion(*src);
  copyRows(zelm::lumaRegion(*dst), luma, luma.rows, dst->roiWidth);
  copyRows(zelm::chromaRegion(*dst), chroma, chroma.rows, dst->roiWidth);
}

extern "C" void convYUV420SP_VU2UV(ImageStruct* dst, ImageStruct* src) {
  const Region luma = zelm::lumaRegion(*src);
  copyRows(zelm::lumaRegion(*dst), luma, luma.rows, dst->roiWidth);

  const Region from = zelm::chromaRegion(*src), to = zelm::chromaRegion(*dst);
  for (size_t k = 0; k < from.rows; ++k)
    swapPairsRow(to.row(k), from.row(k), to.columns);
}

// Whole frames. The chroma rows of the planar side are padded to multiples of 16
// bytes, the luma rows are not; the planes lie where padded luma rows would end.
extern "C" void convYUV420SP_YUV420P(ImageStruct* dst, ImageStruct* src) {
  const size_t height = dst->height, pairs = dst->width / 2, rows = height / 2;
  const size_t lumaStride = roundUpTo16(dst->width);
  const size_t chromaStride = roundUpTo16(lumaStride / 2);
  std::memcpy(dst->data, src->data, static_cast<size_t>(src->height) * src->width);

  uint8_t* first = dst->data + height * lumaStride;
  uint8_t* second = first + height * chromaStride / 2;
  const uint8_t* from = src->data + src->uvOffset;
  for (size_t k = 0; k < rows; ++k) {
    splitPairsRow(first + k * chromaStride, second + k * chromaStride,
                  from + k * 2 * pairs, pairs);
  }
}
