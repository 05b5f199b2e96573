// Rows of RGB pixels to luma and chroma pairs.
#ifndef ZELM_FRAMES_KERNELS_RGB_TO_YUV_H_
#define ZELM_FRAMES_KERNELS_RGB_TO_YUV_H_

#include <cstddef>
#include <cstdint>
#include <utility>

namespace zelm {

// The weights of a pixel's channels, in the order of memory, with 14 fraction bits: of
// luma, and of the first and the second byte of pairs.
struct ChannelWeights {
  int lumaOffset;
  int luma[3], first[3], second[3];
};

inline ChannelWeights withPairsSwapped(ChannelWeights weights) {
  std::swap(weights.first, weights.second);
  return weights;
}

// Converts one row of pixels, or two of them to a row of luma each and one row of
// pairs. `from[1]` is null, or the other row; `pairs` is null where only luma is
// wanted. Pixels have `pixelBytes` bytes, 3 or 4. Where their number is odd, the last
// pair is made of what there is.
using RgbToYuvRows = void(uint8_t* const (&luma)[2], uint8_t* pairs,
                          const uint8_t* const (&from)[2], size_t pixelBytes,
                          size_t pixels, const ChannelWeights& weights);
RgbToYuvRows* rgbToYuvKernel(size_t pixels);

}  // namespace zelm

#endif  // ZELM_FRAMES_KERNELS_RGB_TO_YUV_H_
