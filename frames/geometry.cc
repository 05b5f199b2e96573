// Reduction, scaling, turn and mirror of a layer, rectangle by rectangle.
#include "frames/geometry.h"

#include "resize/axis.h"
#include "resize/box_average.h"
#include "rotate/turn.h"

namespace zelm {
namespace {

// The range of one axis that the samples `first` to `first + count - 1` need before
// they are scaled. It is up to two samples more than a filter looks at.
void sourceRange(size_t from, size_t to, size_t* first, size_t* count) {
  const Axis axis(from, to);
  const size_t before = axis.before(*first);
  const size_t behind = axis.clamp(axis.before(*first + *count - 1) + 2);
  *first = before > 0 ? before - 1 : 0;
  *count = behind - *first + 1;
}

// What of the layer, after scaling, becomes the rectangle by the turn.
Rect beforeTurn(const Shape& shape, const Rect& rect) {
  const Turn& turn = shape.turn;
  Rect before =
      turn.transposed ? Rect{rect.row, rect.column, rect.rows, rect.columns} : rect;
  if (turn.columnsReversed) {
    before.column = shape.scaled.columns - before.column - before.columns;
  }
  if (turn.rowsReversed) before.row = shape.scaled.rows - before.row - before.rows;
  return before;
}

Rect beforeScaling(const Shape& shape, const Rect& rect) {
  if (!shape.isScaled()) return rect;
  Rect before = rect;
  const Size reduced = shape.reduced();
  sourceRange(reduced.columns, shape.scaled.columns, &before.column, &before.columns);
  sourceRange(reduced.rows, shape.scaled.rows, &before.row, &before.rows);
  return before;
}

// What of a plane that is `shift` halvings larger becomes the rectangle.
Rect enlarged(const Rect& rect, int shift) {
  return {rect.column << shift, rect.row << shift, rect.columns << shift,
          rect.rows << shift};
}

// The halvings of the next step: by four times as long as it goes.
int nextShift(int halvings) { return halvings == 1 ? 1 : 2; }

// The plane of `size` that the region is a part of, from (column, row) on. What lies
// outside of the region must not be touched.
Region wholeOf(const Region& part, const Rect& rect, const Size& size, size_t sample) {
  const auto before =
      static_cast<uintptr_t>(static_cast<ptrdiff_t>(rect.row) * part.stride +
                             static_cast<ptrdiff_t>(rect.column * sample));
  const auto origin = reinterpret_cast<uintptr_t>(part.origin) - before;
  return {reinterpret_cast<uint8_t*>(origin), part.stride, size.columns, size.rows};
}

Region lastRowFirst(const Region& region) {
  return {region.row(region.rows - 1), -region.stride, region.columns, region.rows};
}

// Turns the region into one that is as large as its result.
void turnInto(const Region& to, Region from, const Turn& turn, size_t sample) {
  if (turn.rowsReversed) from = lastRowFirst(from);
  if (turn.transposed) {
    const Region rows = turn.columnsReversed ? lastRowFirst(to) : to;
    transposeKernel(sample, rows.columns)(rows.origin, rows.stride, from.origin,
                                          from.stride, rows.columns, rows.rows);
    return;
  }
  const auto reverse = reverseKernel(sample);
  for (size_t y = 0; y < to.rows; ++y) reverse(to.row(y), from.row(y), to.columns);
}

ScalePart* scaleKernel(uint32_t filter, size_t sample, size_t bytes) {
  switch (filter) {
    case ZELM_NEAREST:
      return nearestKernel(sample, bytes);
    case ZELM_CUBIC:
      return bicubicKernel(sample, bytes);
    default:
      return bilinearKernel(sample, bytes);
  }
}

}  // namespace

Turn turnOf(unsigned degrees, bool mirror) {
  switch (degrees) {
    case 90:
      return {true, false, !mirror};
    case 180:
      return {false, !mirror, true};
    case 270:
      return {true, true, mirror};
    default:
      return {false, mirror, false};
  }
}

Region makeLayer(const Shape& shape, size_t sample, const Rect& rect,
                 const LayerReader& reader, Scratch& scratch, const Region* sink) {
  const Turn& turn = shape.turn;
  const bool moves = turn.transposed || turn.columnsReversed;
  const bool turns = moves || turn.rowsReversed;
  const Rect scaled = beforeTurn(shape, rect), reduced = beforeScaling(shape, scaled);

  // The sink takes the result of the last step that there is.
  const Region* afterScaling = turns ? nullptr : sink;
  const Region* afterReducing = shape.isScaled() ? nullptr : afterScaling;
  const Region* afterReading = shape.halvings > 0 ? nullptr : afterReducing;
  const auto place = [&](const Region* wanted, const Rect& size) {
    return wanted != nullptr ? *wanted : scratch.take(sample, size.columns, size.rows);
  };

  Region have = reader.read(enlarged(reduced, shape.halvings), scratch, afterReading);
  for (int left = shape.halvings; left > 0;) {
    const int shift = nextShift(left);
    left -= shift;
    const Region to =
        place(left == 0 ? afterReducing : nullptr, enlarged(reduced, left));
    averagePlane(to, have, size_t{1} << shift, sample);
    have = to;
  }
  if (shape.isScaled()) {
    const Region to = place(afterScaling, scaled);
    const PlanePart part = {scaled.column, scaled.row, shape.scaled.columns,
                            shape.scaled.rows};
    const size_t columns = to.columns < have.columns ? to.columns : have.columns;
    scaleKernel(shape.filter, sample, columns * sample)(
        to, wholeOf(have, reduced, shape.reduced(), sample), part);
    have = to;
  }
  if (moves) {
    const Region to = place(sink, rect);
    turnInto(to, have, turn, sample);
    have = to;
  } else if (turns) {
    have = lastRowFirst(have);
  }
  if (sink != nullptr && have.origin != sink->origin) {
    copyRows(*sink, have, rect.rows, rect.columns * sample);
    have = *sink;
  }
  return have;
}

size_t layerScratch(const Shape& shape, size_t sample, const Rect& rect) {
  const auto bytes = [&](const Rect& size) {
    return Scratch::bytesFor(size.columns * sample, size.rows);
  };
  const Rect scaled = beforeTurn(shape, rect), reduced = beforeScaling(shape, scaled);
  const Rect read = enlarged(reduced, shape.halvings);
  size_t sum =
      bytes(rect) + bytes(scaled) + LayerReader::extraScratch(read.columns * sample);
  for (int left = shape.halvings; left >= 0; left -= left == 0 ? 1 : nextShift(left)) {
    sum += bytes(enlarged(reduced, left));
  }
  return sum;
}

}  // namespace zelm
