// Semi-planar 4:2:0 to 4:2:2: every chroma row becomes two, itself and the mean of
// it and the next row, rounded down; the region's last row is repeated.
#include <cstring>

#include "plane.h"
#include "zelm_imageutil.h"

namespace {

using zelm::Region;

// Where byte i of a row comes from.
struct KeepPairs {
  static size_t position(size_t i) { return i; }
};
struct SwapPairs {
  static size_t position(size_t i) { return i ^ 1; }
};

template <class Order>
void expandRow(uint8_t* even, uint8_t* odd, const uint8_t* row, const uint8_t* next,
               size_t bytes) {
  for (size_t i = 0; i < bytes; ++i) {
    const size_t p = Order::position(i);
    even[i] = row[p];
    odd[i] = static_cast<uint8_t>((row[p] + next[p]) >> 1);
  }
}

template <class Order>
void expand(const ImageStruct& dst, const ImageStruct& src) {
  const Region luma = zelm::lumaRegion(src), lumaTo = zelm::lumaRegion(dst);
  for (size_t y = 0; y < luma.rows; ++y) {
    std::memcpy(lumaTo.row(y), luma.row(y), luma.columns);
  }

  // The 4:2:2 chroma plane has luma's geometry, only elsewhere.
  const Region chroma = zelm::chromaRegion(src);
  Region to = lumaTo;
  to.origin += dst.uvOffset;
  for (size_t k = 0; k < chroma.rows; ++k) {
    const uint8_t* row = chroma.row(k);
    const uint8_t* next = k + 1 < chroma.rows ? chroma.row(k + 1) : row;
    expandRow<Order>(to.row(2 * k), to.row(2 * k + 1), row, next, 2 * chroma.columns);
  }
}

}  // namespace

extern "C" void convYUV420SP_YUV422SP(ImageStruct* dst, ImageStruct* src) {
  expand<KeepPairs>(*dst, *src);
}

extern "C" void convYUV420SP_YUV422SP_VU2UV(ImageStruct* dst, ImageStruct* src) {
  expand<SwapPairs>(*dst, *src);
}
