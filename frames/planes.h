// Where a region lies in the planes of a frame.
#ifndef ZELM_FRAMES_PLANES_H_
#define ZELM_FRAMES_PLANES_H_

#include <cstddef>

#include "frames/format.h"
#include "frames/rect.h"
#include "plane.h"

namespace zelm {

// The region's part of each plane. Planes of tiles begin with the frame instead, as a
// region may begin inside of a tile.
struct FramePlanes {
  Region first;      // luma, or what the only plane holds
  Region chroma[2];  // pairs, or U and V
  bool pairs;
  bool uFirst;     // of pairs
  size_t step[2];  // of U and V: 1 or 2
};

FramePlanes planesOf(const ZelmFrame& frame, const Format& format, const Rect& region);

}  // namespace zelm

#endif  // ZELM_FRAMES_PLANES_H_
