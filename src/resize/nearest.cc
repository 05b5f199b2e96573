// Nearest-neighbour scaling of a luma plane or of whole chroma pairs.
#include <cstring>

#include "plane.h"
#include "resize/axis.h"
#include "zelm_imageutil.h"

namespace {

using zelm::Axis;
using zelm::kStripColumns;
using zelm::Region;

// `columns` are the source columns of the strip.
template <size_t Bytes>
void pickRow(uint8_t* to, const uint8_t* from, const uint16_t* columns, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    std::memcpy(to + i * Bytes, from + columns[i] * Bytes, Bytes);
  }
}

template <size_t Bytes>
void scaleStrip(const Region& to, const Region& from, size_t left, size_t count) {
  const Axis across(from.columns, to.columns), down(from.rows, to.rows);
  uint16_t columns[kStripColumns];
  for (size_t i = 0; i < count; ++i) {
    columns[i] = static_cast<uint16_t>(across.nearest(left + i));
  }
  size_t previous = 0;
  for (size_t y = 0; y < to.rows; ++y) {
    uint8_t* row = to.row(y) + left * Bytes;
    const size_t source = down.nearest(y);
    if (y > 0 && source == previous) {
      std::memcpy(row, row - to.stride, count * Bytes);
    } else {
      pickRow<Bytes>(row, from.row(source), columns, count);
    }
    previous = source;
  }
}

template <size_t Bytes>
void scale(const Region& to, const Region& from) {
  if (from.empty()) return;
  for (size_t left = 0; left < to.columns; left += kStripColumns) {
    const size_t rest = to.columns - left;
    scaleStrip<Bytes>(to, from, left, rest < kStripColumns ? rest : kStripColumns);
  }
}

}  // namespace

extern "C" void resize_nearest(ImageStruct* dst, ImageStruct* src) {
  scale<1>(zelm::lumaRegion(*dst), zelm::lumaRegion(*src));
}

extern "C" void resize_nearestVU(ImageStruct* dst, ImageStruct* src) {
  scale<2>(zelm::chromaRegion(*dst), zelm::chromaRegion(*src));
}
