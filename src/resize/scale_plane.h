// Scaling of a whole plane: what every scaler does before its kernel is called.
#ifndef ZELM_SRC_RESIZE_SCALE_PLANE_H_
#define ZELM_SRC_RESIZE_SCALE_PLANE_H_

#include <cstddef>

#include "plane.h"

namespace zelm {

// Nothing is made out of nothing, and equal extents are a copy. A sample has `sample`
// bytes.
template <class Kernel>
void scalePlane(Kernel* kernel, const Region& to, const Region& from, size_t sample) {
  if (from.empty()) return;
  if (to.columns == from.columns && to.rows == from.rows) {
    copyRows(to, from, to.rows, to.columns * sample);
  } else {
    kernel(to, from);
  }
}

}  // namespace zelm

#endif  // ZELM_SRC_RESIZE_SCALE_PLANE_H_
