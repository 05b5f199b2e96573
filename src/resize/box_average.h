// Box averages: planes reduced by 2 or 4.
#ifndef ZELM_SRC_RESIZE_BOX_AVERAGE_H_
#define ZELM_SRC_RESIZE_BOX_AVERAGE_H_

#include <cstddef>

#include "plane.h"

namespace zelm {

// Makes samples of 1 to 4 bytes, each of a block of 2 x 2 or 4 x 4 by the factor. The
// destination sets the size of the work.
void averagePlane(const Region& to, const Region& from, size_t factor, size_t sample);

}  // namespace zelm

#endif  // ZELM_SRC_RESIZE_BOX_AVERAGE_H_
