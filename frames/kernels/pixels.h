// Rows of RGB pixels from one layout to another.
#ifndef ZELM_FRAMES_KERNELS_PIXELS_H_
#define ZELM_FRAMES_KERNELS_PIXELS_H_

#include <cstddef>
#include <cstdint>

#include "convert/rgb_layout.h"

namespace zelm {

// From pixels of three or four bytes to any layout, or from words to R, G, B, A.
using RepackPixels = void(uint8_t* to, RgbLayout toLayout, const uint8_t* from,
                          RgbLayout fromLayout, size_t pixels);
RepackPixels* repackKernel(size_t pixels);

}  // namespace zelm

#endif  // ZELM_FRAMES_KERNELS_PIXELS_H_
