// Where a region lies in the planes of a frame.
#include "frames/planes.h"

namespace zelm {
namespace {

Region partOf(const ZelmPlane& plane, size_t sample, const Rect& part) {
  return {plane.data + static_cast<ptrdiff_t>(part.row) * plane.stride +
              part.column * sample,
          plane.stride, part.columns, part.rows};
}

}  // namespace

FramePlanes planesOf(const ZelmFrame& frame, const Format& format, const Rect& region) {
  FramePlanes planes = {};
  planes.uFirst = format.uFirst;
  const ZelmPlane *first = &frame.planes[0], *second = &frame.planes[1];
  const Rect chroma = sharedBy(region, format.columnsShared(), format.rowsShared());
  switch (format.layout) {
    case Layout::kTiles:
      planes.first = {first->data, first->stride, region.columns, region.rows};
      planes.chroma[0] = {second->data, second->stride, chroma.columns, chroma.rows};
      planes.pairs = true;
      break;
    case Layout::kPairs:
      planes.first = partOf(*first, 1, region);
      planes.chroma[0] = partOf(*second, 2, chroma);
      planes.pairs = true;
      break;
    case Layout::kPlanar: {
      planes.first = partOf(*first, 1, region);
      const ZelmPlane* third = &frame.planes[2];
      const ZelmPlane& u = format.uFirst ? *second : *third;
      const ZelmPlane& v = format.uFirst ? *third : *second;
      planes.step[0] = u.step == 2 ? 2 : 1;
      planes.step[1] = v.step == 2 ? 2 : 1;
      planes.chroma[0] = partOf(u, planes.step[0], chroma);
      planes.chroma[1] = partOf(v, planes.step[1], chroma);
      // Planes that interleave are pairs.
      if (u.step == 2 && v.step == 2 && u.stride == v.stride &&
          (u.data + 1 == v.data || v.data + 1 == u.data)) {
        planes.pairs = true;
        planes.uFirst = u.data < v.data;
        if (!planes.uFirst) planes.chroma[0] = planes.chroma[1];
      }
      break;
    }
    default:
      planes.first = partOf(*first, format.bytes, region);
      break;
  }
  return planes;
}

}  // namespace zelm
