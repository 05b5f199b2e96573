// Rows of luma and of chroma pairs from one colour description to another.
#ifndef ZELM_FRAMES_KERNELS_RECOLOUR_H_
#define ZELM_FRAMES_KERNELS_RECOLOUR_H_

#include <cstddef>
#include <cstdint>

#include "frames/colour.h"

namespace zelm {

// `pairs` has the chroma of the pixels, in the old colour; it is null where luma does
// not depend on chroma.
using RecolourLuma = void(uint8_t* to, const uint8_t* luma, const uint8_t* pairs,
                          bool uFirst, size_t pixels, const YuvToYuv& weights);
RecolourLuma* recolourLumaKernel(size_t pixels);

using RecolourPairs = void(uint8_t* to, const uint8_t* pairs, bool uFirst, size_t count,
                           const YuvToYuv& weights);
RecolourPairs* recolourPairsKernel(size_t pairs);

}  // namespace zelm

#endif  // ZELM_FRAMES_KERNELS_RECOLOUR_H_
