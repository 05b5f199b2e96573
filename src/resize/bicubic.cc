// Bicubic scaling of a luma plane or of chroma pairs: four taps in each direction
// that sum to 256, indices clamped into the region.
//   H = sum of wx * sample                      17 bits and sign, not rounded
//   out = clamp((sum of wy * H + 32768) >> 16)
// The sums are exact, so the order of the passes is free: rows are filtered
// horizontally, kept, and combined.
#include <cstring>

#include "plane.h"
#include "resize/axis.h"
#include "resize/cubic_tables.h"
#include "zelm_imageutil.h"

namespace {

using zelm::Axis;
using zelm::CubicTaps;
using zelm::kStripColumns;
using zelm::Region;

struct Columns {
  uint16_t index[4][kStripColumns];
  int16_t tap[4][kStripColumns];
  size_t count;
};

// The four sample indices around `at`.
void findTaps(size_t (&index)[4], const Axis& axis, size_t at) {
  index[0] = at > 0 ? at - 1 : 0;
  for (size_t t = 1; t < 4; ++t) index[t] = axis.clamp(at + t - 1);
}

void findColumns(Columns* columns, const Axis& across, size_t first, size_t count) {
  columns->count = count;
  for (size_t i = 0; i < count; ++i) {
    size_t index[4];
    findTaps(index, across, across.before(first + i));
    const CubicTaps taps = zelm::cubicTaps(across.weight(first + i));
    for (size_t t = 0; t < 4; ++t) {
      columns->index[t][i] = static_cast<uint16_t>(index[t]);
      columns->tap[t][i] = static_cast<int16_t>(taps.tap[t]);
    }
  }
}

template <size_t Bytes>
void filterRow(int32_t* to, const uint8_t* from, const Columns& columns) {
  for (size_t i = 0; i < columns.count; ++i) {
    for (size_t b = 0; b < Bytes; ++b) {
      int32_t sum = 0;
      for (size_t t = 0; t < 4; ++t) {
        sum += columns.tap[t][i] * from[columns.index[t][i] * Bytes + b];
      }
      to[i * Bytes + b] = sum;
    }
  }
}

void combineRows(uint8_t* to, const int32_t* const (&rows)[4], const CubicTaps& taps,
                 size_t bytes) {
  for (size_t i = 0; i < bytes; ++i) {
    int32_t sum = 32768;
    for (size_t t = 0; t < 4; ++t) sum += taps.tap[t] * rows[t][i];
    const int32_t value = sum >> 16;
    to[i] = static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
  }
}

// The last four filtered rows: source row y is kept in place y mod 4, so the four
// rows around a position, being neighbours, never push each other out.
template <size_t Bytes>
class FilteredRows {
 public:
  FilteredRows(const Region& from, const Columns& columns)
      : from_(from), columns_(columns) {}

  const int32_t* get(size_t y) {
    int32_t* row = rows_[y % 4];
    if (index_[y % 4] != y) {
      filterRow<Bytes>(row, from_.row(y), columns_);
      index_[y % 4] = y;
    }
    return row;
  }

 private:
  const Region& from_;
  const Columns& columns_;
  int32_t rows_[4][kStripColumns * Bytes];
  size_t index_[4] = {SIZE_MAX, SIZE_MAX, SIZE_MAX, SIZE_MAX};
};

template <size_t Bytes>
void scaleStrip(const Region& to, const Region& from, const Axis& down,
                const Columns& columns, size_t first) {
  FilteredRows<Bytes> filtered(from, columns);
  for (size_t y = 0; y < to.rows; ++y) {
    size_t index[4];
    findTaps(index, down, down.before(y));
    const int32_t* const rows[4] = {filtered.get(index[0]), filtered.get(index[1]),
                                    filtered.get(index[2]), filtered.get(index[3])};
    combineRows(to.row(y) + first * Bytes, rows, zelm::cubicTaps(down.weight(y)),
                columns.count * Bytes);
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

extern "C" void resize_cubic(ImageStruct* dst, ImageStruct* src) {
  scale<1>(zelm::lumaRegion(*dst), zelm::lumaRegion(*src));
}

extern "C" void resize_cubicVU(ImageStruct* dst, ImageStruct* src) {
  scale<2>(zelm::chromaRegion(*dst), zelm::chromaRegion(*src));
}
