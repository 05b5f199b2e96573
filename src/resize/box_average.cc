// Box averages: every sample is the mean of a block of 2 x 2 or 4 x 4, rounded down.
// With them, semi-planar 4:2:0 reduced by exactly 2 or 4.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "resize/box_average.cc"
#include "simd/each_target.h"  // before all others

#include "plane.h"
#include "resize/box_average.h"
#include "resize/box_average_neon-inl.h"
#include "resize/box_average_shuffled-inl.h"
#include "simd/dispatch.h"
#include "simd/vector-inl.h"
#include "zelm_imageutil.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// A sample is kSample interleaved bytes, which are averaged separately. Three bytes do
// not go evenly into a block, so that they are left to the plain loop.
template <size_t kFactor, size_t kSample>
#if ZELM_NEON
[[gnu::noinline]]  // would share its registers with the loop over rows
#endif
void averageRow(uint8_t* to, const uint8_t* from, ptrdiff_t stride, size_t bytes,
                [[maybe_unused]] const uint8_t* next) {
  size_t done = 0;
#if ZELM_NEON
  if constexpr (kSample < 3) {
    done = averageDeinterleaved<kFactor, kSample>(to, from, stride, bytes);
  }
#endif
#if ZELM_VECTORS
  if constexpr (ZELM_NEON ? kSample == 4 : kSample != 3) {
    done = averageShuffled<kFactor, kSample>(to, from, stride, bytes, next);
  }
#endif
  for (size_t i = done; i < bytes; ++i) {
    const uint8_t* block = from + i / kSample * kFactor * kSample + i % kSample;
    unsigned sum = 0;
    for (size_t y = 0; y < kFactor; ++y) {
      const uint8_t* row = block + static_cast<ptrdiff_t>(y) * stride;
      for (size_t x = 0; x < kFactor; ++x) sum += row[x * kSample];
    }
    to[i] = static_cast<uint8_t>(sum / (kFactor * kFactor));
  }
}

template <size_t kFactor, size_t kSample>
void averageRows(const Region& toRows, const Region& fromRows) {
  const Region to = toRows, from = fromRows;  // which no store can change
  const ptrdiff_t step = static_cast<ptrdiff_t>(kFactor) * from.stride;
  // What rows of small frames need next is near already.
  const bool prefetches = from.stride >= 512 || from.stride <= -512;
  ptrdiff_t source = 0, row = 0;
  for (size_t y = 0; y < to.rows; ++y) {
    const bool hasNext = prefetches && y + 1 < to.rows;
    averageRow<kFactor, kSample>(to.origin + row, from.origin + source, from.stride,
                                 to.columns * kSample,
                                 hasNext ? from.origin + source + step : nullptr);
    source += step;
    row += to.stride;
  }
}

using AverageRows = void(const Region& to, const Region& from);

AverageRows* kernelOf(size_t factor, size_t sample) {
  AverageRows* const by2[] = {averageRows<2, 1>, averageRows<2, 2>, averageRows<2, 3>,
                              averageRows<2, 4>};
  AverageRows* const by4[] = {averageRows<4, 1>, averageRows<4, 2>, averageRows<4, 3>,
                              averageRows<4, 4>};
  return (factor == 2 ? by2 : by4)[sample - 1];
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zelm {

void averagePlane(const Region& to, const Region& from, size_t factor, size_t sample) {
  ZELM_KERNEL_FOR(kernelOf, to.columns * sample)(factor, sample)(to, from);
}

static void averageFrame(const ImageStruct& dst, const ImageStruct& src,
                         size_t factor) {
  averagePlane(lumaRegion(dst), lumaRegion(src), factor, 1);
  averagePlane(chromaRegion(dst), chromaRegion(src), factor, 2);
}

}  // namespace zelm

extern "C" void resize_averageOfPixel2_420LP(ImageStruct* dst, ImageStruct* src) {
  zelm::averageFrame(*dst, *src, 2);
}

extern "C" void resize_averageOfPixel4_420LP(ImageStruct* dst, ImageStruct* src) {
  zelm::averageFrame(*dst, *src, 4);
}
#endif  // HWY_ONCE
