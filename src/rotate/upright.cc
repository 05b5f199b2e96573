// A luma region copied, or turned by half a turn.
#include <cstring>

#include "plane.h"
#include "zelm_imageutil.h"

namespace {

using zelm::Region;

void reverseRow(uint8_t* to, const uint8_t* from, size_t bytes) {
  for (size_t x = 0; x < bytes; ++x) to[x] = from[bytes - 1 - x];
}

}  // namespace

extern "C" void rotate0_Y(ImageStruct* dst, ImageStruct* src) {
  const Region from = zelm::lumaRegion(*src), to = zelm::lumaRegion(*dst);
  for (size_t y = 0; y < from.rows; ++y) {
    std::memcpy(to.row(y), from.row(y), from.columns);
  }
}

extern "C" void rotate180_Y(ImageStruct* dst, ImageStruct* src) {
  const Region from = zelm::lumaRegion(*src), to = zelm::lumaRegion(*dst);
  for (size_t y = 0; y < from.rows; ++y) {
    reverseRow(to.row(y), from.row(from.rows - 1 - y), from.columns);
  }
}
