// Semi-planar 4:2:0 reduced by exactly 2 or 4: every sample is the mean of a block
// of 2 x 2 or 4 x 4, rounded down. The destination region sets the size of the work.
#include "plane.h"
#include "zelm_imageutil.h"

namespace {

using zelm::Region;

// One destination row. A sample is `Bytes` interleaved bytes, averaged separately.
template <size_t Factor, size_t Bytes>
void averageRow(uint8_t* to, const uint8_t* from, size_t stride, size_t columns) {
  for (size_t i = 0; i < columns * Bytes; ++i) {
    const uint8_t* block = from + i / Bytes * Factor * Bytes + i % Bytes;
    unsigned sum = 0;
    for (size_t y = 0; y < Factor; ++y) {
      for (size_t x = 0; x < Factor; ++x) sum += block[y * stride + x * Bytes];
    }
    to[i] = static_cast<uint8_t>(sum / (Factor * Factor));
  }
}

template <size_t Factor, size_t Bytes>
void averagePlane(const Region& to, const Region& from) {
  for (size_t y = 0; y < to.rows; ++y) {
    averageRow<Factor, Bytes>(to.row(y), from.row(Factor * y), from.stride, to.columns);
  }
}

template <size_t Factor>
void averageFrame(const ImageStruct& dst, const ImageStruct& src) {
  averagePlane<Factor, 1>(zelm::lumaRegion(dst), zelm::lumaRegion(src));
  averagePlane<Factor, 2>(zelm::chromaRegion(dst), zelm::chromaRegion(src));
}

}  // namespace

extern "C" void resize_averageOfPixel2_420LP(ImageStruct* dst, ImageStruct* src) {
  averageFrame<2>(*dst, *src);
}

extern "C" void resize_averageOfPixel4_420LP(ImageStruct* dst, ImageStruct* src) {
  averageFrame<4>(*dst, *src);
}
