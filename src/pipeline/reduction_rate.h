// How often a source may be halved by box averages before it is scaled.
#ifndef ZELM_SRC_PIPELINE_REDUCTION_RATE_H_
#define ZELM_SRC_PIPELINE_REDUCTION_RATE_H_

#include <cstddef>

namespace zelm {

// Sizes of luma; those of the destination are not 0.
inline int reductionRate(size_t width, size_t height, size_t toWidth, size_t toHeight) {
  if (width % 2 != 0 || height % 2 != 0) return 0;

  // The weaker reduction governs; its ratio is rounded down to an even number.
  const size_t across = width / toWidth / 2 * 2, down = height / toHeight / 2 * 2;
  const size_t ratio = across < down ? across : down;

  int n = 0;
  while (ratio >> (n + 1) != 0) ++n;
  // A 4:2:0 frame needs even sides, so the reduced sides must stay even.
  while (n > 0 && (((width >> n) | (height >> n)) & 1) != 0) --n;
  return n;
}

}  // namespace zelm

#endif  // ZELM_SRC_PIPELINE_REDUCTION_RATE_H_
