// A luma region turned by a quarter turn: D(x, y) = S(y, H - 1 - x) clockwise,
// S(W - 1 - y, x) counter-clockwise. Tiles are walked so that both sides stay in
// the cache.
#include "plane.h"
#include "zelm_imageutil.h"

namespace {

using zelm::Region;

constexpr size_t kTile = 16;

// Writes `columns` x `rows` samples: rows are `from` + y * step, samples along them
// `across` apart.
void turnTile(uint8_t* to, size_t stride, const uint8_t* from, ptrdiff_t across,
              ptrdiff_t step, size_t columns, size_t rows) {
  for (size_t y = 0; y < rows; ++y) {
    for (size_t x = 0; x < columns; ++x) {
      to[y * stride + x] =
          from[static_cast<ptrdiff_t>(y) * step + static_cast<ptrdiff_t>(x) * across];
    }
  }
}

// `first` becomes the top left of the destination; `across` and `step` lead from a
// destination sample's source to that of its right and lower neighbour.
void turn(const Region& to, const uint8_t* first, ptrdiff_t across, ptrdiff_t step,
          size_t columns, size_t rows) {
  for (size_t y = 0; y < rows; y += kTile) {
    const size_t tileRows = rows - y < kTile ? rows - y : kTile;
    for (size_t x = 0; x < columns; x += kTile) {
      const size_t tileColumns = columns - x < kTile ? columns - x : kTile;
      turnTile(
          to.row(y) + x, to.stride,
          first + static_cast<ptrdiff_t>(y) * step + static_cast<ptrdiff_t>(x) * across,
          across, step, tileColumns, tileRows);
    }
  }
}

}  // namespace

extern "C" void rotate90_Y(ImageStruct* dst, ImageStruct* src) {
  const Region from = zelm::lumaRegion(*src);
  if (from.empty()) return;
  turn(zelm::lumaRegion(*dst), from.row(from.rows - 1),
       -static_cast<ptrdiff_t>(from.stride), 1, from.rows, from.columns);
}

extern "C" void rotate270_Y(ImageStruct* dst, ImageStruct* src) {
  const Region from = zelm::lumaRegion(*src);
  if (from.empty()) return;
  turn(zelm::lumaRegion(*dst), from.origin + from.columns - 1,
       static_cast<ptrdiff_t>(from.stride), -1, from.rows, from.columns);
}
