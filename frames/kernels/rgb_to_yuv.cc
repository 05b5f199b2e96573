// Rows of RGB pixels to luma and chroma pairs:
//   Y = (sum of weight * channel + offset * 2^14 + 2^13) >> 14
//   pair bytes = clamp((the same sum over n pixels + n * (128 * 2^14 + 2^13)) >>
//                      (14 + log2 n))
// where n = 4, 2 or 1 pixels share a pair.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "frames/kernels/rgb_to_yuv.cc"
#include "simd/each_target.h"  // before all others

#include "frames/kernels/rgb_to_yuv.h"
#include "simd/dispatch.h"
#include "simd/vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

HWY_INLINE int weighted(const int (&weights)[3], const int (&channels)[3]) {
  return weights[0] * channels[0] + weights[1] * channels[1] +
         weights[2] * channels[2];
}

HWY_INLINE uint8_t meanOf(int sum, int log2) {
  const int value = (sum + ((128 * 2 + 1) << (13 + log2))) >> (14 + log2);
  return static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
}

template <size_t kPixelBytes>
HWY_INLINE void convertRows(uint8_t* const (&luma)[2], uint8_t* pairs,
                            const uint8_t* const (&from)[2], size_t pixels,
                            const ChannelWeights& weights) {
  const size_t rows = from[1] != nullptr ? 2 : 1;
  for (size_t y = 0; y < rows; ++y) {
    for (size_t x = 0; x < pixels; ++x) {
      const uint8_t* p = from[y] + kPixelBytes * x;
      const int sum = weighted(weights.luma, {p[0], p[1], p[2]});
      luma[y][x] = static_cast<uint8_t>((sum + (weights.lumaOffset * 2 + 1) * (1 << 13)) >> 14);
    }
  }
  if (pairs == nullptr) return;
  for (size_t x = 0; x < pixels; x += 2) {
    const size_t columns = x + 1 < pixels ? 2 : 1;
    int channels[3] = {};
    for (size_t i = 0; i < rows * columns; ++i) {
      const uint8_t* p = from[i / columns] + kPixelBytes * (x + i % columns);
      for (size_t c = 0; c < 3; ++c) channels[c] += p[c];
    }
    const int log2 = static_cast<int>(rows + columns - 2);
    pairs[x] = meanOf(weighted(weights.first, channels), log2);
    pairs[x + 1] = meanOf(weighted(weights.second, channels), log2);
  }
}

void rgbToYuvRows(uint8_t* const (&luma)[2], uint8_t* pairs,
                  const uint8_t* const (&from)[2], size_t pixelBytes, size_t pixels,
                  const ChannelWeights& weights) {
  (pixelBytes == 4 ? convertRows<4> : convertRows<3>)(luma, pairs, from, pixels,
                                                      weights);
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zelm {

RgbToYuvRows* rgbToYuvKernel() { return ZELM_KERNEL(rgbToYuvRows); }

}  // namespace zelm
#endif  // HWY_ONCE
