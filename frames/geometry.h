// Where the samples of a layer go: reduction, scaling, turn and mirror, for any
// rectangle of the result. A layer is luma, chroma or pixels: samples that are moved
// and scaled alike.
#ifndef ZELM_FRAMES_GEOMETRY_H_
#define ZELM_FRAMES_GEOMETRY_H_

#include <cstddef>
#include <cstdint>

#include "frames/read.h"
#include "frames/scratch.h"
#include "plane.h"
#include "resize/scale_plane.h"

namespace zelm {

// A turn and a mirror: sample (x, y) of the result is that of column x and row y of
// the layer, counted from the right where columnsReversed, from below where
// rowsReversed, and with x and y exchanged where transposed.
struct Turn {
  bool transposed, columnsReversed, rowsReversed;
};

// `degrees` clockwise, then left and right exchanged.
Turn turnOf(unsigned degrees, bool mirror);

inline Size turned(Size size, const Turn& turn) {
  return turn.transposed ? Size{size.rows, size.columns} : size;
}

// How a layer is shaped. Sizes are those of the layer, not of luma.
struct Shape {
  Size source;
  int halvings;
  Size scaled;
  uint32_t filter;
  Turn turn;

  Size reduced() const { return {source.columns >> halvings, source.rows >> halvings}; }
  Size result() const { return turned(scaled, turn); }
  bool isScaled() const { return !(reduced() == scaled); }
  bool changes() const {
    return halvings > 0 || isScaled() || turn.transposed || turn.columnsReversed ||
           turn.rowsReversed;
  }
};

// Makes a rectangle of a layer that is shaped. Returns where it lies: in the source, in
// scratch memory, or, if `sink` is not null, there.
Region makeLayer(const Shape& shape, size_t sample, const Rect& rect,
                 const LayerReader& reader, Scratch& scratch, const Region* sink);

// Returns the most scratch memory that makeLayer takes, the reader's included.
size_t layerScratch(const Shape& shape, size_t sample, const Rect& rect);

}  // namespace zelm

#endif  // ZELM_FRAMES_GEOMETRY_H_
