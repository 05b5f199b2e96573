// What a conversion does, and the making of some rows of the destination.
#ifndef ZELM_FRAMES_ROUTE_H_
#define ZELM_FRAMES_ROUTE_H_

#include <cstddef>
#include <cstdint>

#include "frames/colour.h"
#include "frames/format.h"
#include "frames/geometry.h"
#include "frames/kernels/rgb_to_yuv.h"
#include "frames/read.h"
#include "zelm_frames.h"

namespace zelm {

// What a conversion does to frames of the plan's formats and sizes.
struct Route {
  const Format *from, *to;
  Rect sourceRegion, targetRegion;
  Shape luma;       // or pixels
  Shape chroma;     // of frames that have it
  Sampling work;    // of the source as it is read
  Rows chromaRows;  // how 4:2:2 is read
  bool needsChroma;
  uint64_t frameBytes;  // of both regions
  bool recolours;       // from YUV to YUV of another colour
  YuvToRgb toRgb;
  YuvToYuv recolour;
  ChannelWeights fromRgb;  // of pairs U, V

  size_t rowsShared() const { return work == Sampling::k420 ? 2 : 1; }
};

// Makes rows of the destination region, from an even one on.
void makeRows(const Route& route, const ZelmFrame& dst, const ZelmFrame& src,
              size_t first, size_t rows, Scratch& scratch);

// Returns the scratch memory that this takes at most.
size_t scratchFor(const Route& route, size_t first, size_t rows);

}  // namespace zelm

#endif  // ZELM_FRAMES_ROUTE_H_
