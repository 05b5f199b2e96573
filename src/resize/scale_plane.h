// Scaling of planes: the kernels of the three methods, for the whole of a plane or for
// a part of it.
#ifndef ZELM_SRC_RESIZE_SCALE_PLANE_H_
#define ZELM_SRC_RESIZE_SCALE_PLANE_H_

#include <cstddef>

#include "plane.h"

namespace zelm {

// Which part of a scaled plane is made: where it begins, and how large the whole plane
// would be.
struct PlanePart {
  size_t column, row, wholeColumns, wholeRows;
};

// Makes to.columns x to.rows samples, the part of the plane of wholeColumns x wholeRows
// that `from` is scaled to. The bytes are those that the whole plane has there.
//
// Of `from` only the rows and columns that the part is made of need to exist: from the
// first to the last sample that its samples lie on (nearest), the one at or before each
// and the next one (bilinear), and one more on both sides (bicubic). In each of these
// rows up to 64 bytes before and behind those columns are read as well, but nothing
// outside of the row.
using ScalePart = void(const Region& to, const Region& from, const PlanePart& part);

// Return the kernel for samples of 1 to 4 bytes, and rows of so many bytes: the shorter
// ones of the source's and of those that are made.
ScalePart* nearestKernel(size_t sample, size_t bytes);
ScalePart* bilinearKernel(size_t sample, size_t bytes);
ScalePart* bicubicKernel(size_t sample, size_t bytes);

}  // namespace zelm

#endif  // ZELM_SRC_RESIZE_SCALE_PLANE_H_
