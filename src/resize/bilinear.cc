// Bilinear scaling of a luma plane, of chroma pairs, or of three-byte pixels:
//   H = (256 - wx) * left + wx * right          for two source rows, at most 65280
//   out = ((256 - wy) * H[upper] + wy * H[lower] + 32768) >> 16
// All of it is exact, so the order of the passes is free: rows are filtered
// horizontally, kept, and blended.
#include <cstring>

#include "plane.h"
#include "resize/axis.h"
#include "zelm_imageutil.h"

namespace {

using zelm::Axis;
using zelm::kStripColumns;
using zelm::Region;

struct Columns {
  uint16_t left[kStripColumns];
  uint16_t right[kStripColumns];
  uint16_t weight[kStripColumns];
  size_t count;
};

void findColumns(Columns* columns, const Axis& across, size_t first, size_t count) {
  columns->count = count;
  for (size_t i = 0; i < count; ++i) {
    const size_t left = across.before(first + i);
    columns->left[i] = static_cast<uint16_t>(left);
    columns->right[i] = static_cast<uint16_t>(across.clamp(left + 1));
    columns->weight[i] = static_cast<uint16_t>(across.weight(first + i));
  }
}

template <size_t Bytes>
void filterRow(uint16_t* to, const uint8_t* from, const Columns& columns) {
  for (size_t i = 0; i < columns.count; ++i) {
    const uint8_t* left = from + columns.left[i] * Bytes;
    const uint8_t* right = from + columns.right[i] * Bytes;
    for (size_t b = 0; b < Bytes; ++b) {
      const int difference = right[b] - left[b];
      to[i * Bytes + b] =
          static_cast<uint16_t>(256 * left[b] + columns.weight[i] * difference);
    }
  }
}

void blendRow(uint8_t* to, const uint16_t* upper, const uint16_t* lower,
              unsigned weight, size_t bytes) {
  for (size_t i = 0; i < bytes; ++i) {
    const uint32_t sum = (256 - weight) * upper[i] + weight * lower[i];
    to[i] = static_cast<uint8_t>((sum + 32768) >> 16);
  }
}

// The last two filtered rows: when a plane is enlarged, every source row is
// filtered once.
template <size_t Bytes>
class FilteredRows {
 public:
  FilteredRows(const Region& from, const Columns& columns)
      : from_(from), columns_(columns) {}

  // Row y, filtered. The row asked for before stays valid.
  const uint16_t* get(size_t y) {
    if (index_[newest_] == y) return rows_[newest_];
    newest_ ^= 1;
    if (index_[newest_] != y) {
      filterRow<Bytes>(rows_[newest_], from_.row(y), columns_);
      index_[newest_] = y;
    }
    return rows_[newest_];
  }

 private:
  const Region& from_;
  const Columns& columns_;
  uint16_t rows_[2][kStripColumns * Bytes];
  size_t index_[2] = {SIZE_MAX, SIZE_MAX};
  int newest_ = 0;
};

template <size_t Bytes>
void scaleStrip(const Region& to, const Region& from, const Axis& down,
                const Columns& columns, size_t first) {
  FilteredRows<Bytes> rows(from, columns);
  for (size_t y = 0; y < to.rows; ++y) {
    const size_t upper = down.before(y);
    const unsigned weight = down.weight(y);
    const uint16_t* a = rows.get(upper);
    const uint16_t* b = weight == 0 ? a : rows.get(down.clamp(upper + 1));
    blendRow(to.row(y) + first * Bytes, a, b, weight, columns.count * Bytes);
  }
}

template <size_t Bytes>
void scale(const Region& to, const Region& from) {
  if (from.empty()) return;
  if (from.columns == to.columns && from.rows == to.rows) {
    for (size_t y = 0; y < to.rows; ++y) {
      std::memcpy(to.row(y), from.row(y), to.columns * Bytes);
    }
    return;
  }
  const Axis across(from.columns, to.columns), down(from.rows, to.rows);
  for (size_t first = 0; first < to.columns; first += kStripColumns) {
    const size_t rest = to.columns - first;
    Columns columns;
    findColumns(&columns, across, first, rest < kStripColumns ? rest : kStripColumns);
    scaleStrip<Bytes>(to, from, down, columns, first);
  }
}

}  // namespace

extern "C" void resize_linear(ImageStruct* dst, ImageStruct* src) {
  scale<1>(zelm::lumaRegion(*dst), zelm::lumaRegion(*src));
}

extern "C" void resize_linearVU(ImageStruct* dst, ImageStruct* src) {
  scale<2>(zelm::chromaRegion(*dst), zelm::chromaRegion(*src));
}

// The destination is a packed block at `data`.
extern "C" void resize_linear3ch(ImageStruct* dst, ImageStruct* src) {
  const size_t columns = dst->roiWidth;
  scale<3>({dst->data, 3 * columns, columns, dst->roiHeight},
           zelm::packedRegion(*src, 3));
}
