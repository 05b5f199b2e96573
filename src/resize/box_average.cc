// Reduces semi-planar 4:2:0 by exactly 2 or 4: every sample is the mean of a block of
// 2 x 2 or 4 x 4, rounded down. The destination region sets the size of the work.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "resize/box_average.cc"
#include "simd/each_target.h"  // before all others

#include "plane.h"
#include "resize/box_average_neon-inl.h"
#include "resize/box_average_x86-inl.h"
#include "simd/dispatch.h"
#include "simd/vector-inl.h"
#include "zelm_imageutil.h"

// What differs between instruction sets: averageBlocks<factor, sample>(to, from,
// stride, bytes) makes a destination row and returns the number of bytes made, which is
// all, or 0 if the row is too short for vectors.

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// Makes one destination row of `bytes` bytes. A sample is kSample interleaved bytes,
// which are averaged separately.
template <size_t kFactor, size_t kSample>
HWY_INLINE void averageRow(uint8_t* to, const uint8_t* from, ptrdiff_t stride,
                           size_t bytes, [[maybe_unused]] const uint8_t* next) {
  size_t done = 0;
#if ZELM_VECTORS
  done = averageBlocks<kFactor, kSample>(to, from, stride, bytes, next);
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

void lumaBy2(uint8_t* to, const uint8_t* from, ptrdiff_t stride, size_t bytes,
             const uint8_t* next) {
  averageRow<2, 1>(to, from, stride, bytes, next);
}
void chromaBy2(uint8_t* to, const uint8_t* from, ptrdiff_t stride, size_t bytes,
               const uint8_t* next) {
  averageRow<2, 2>(to, from, stride, bytes, next);
}
void lumaBy4(uint8_t* to, const uint8_t* from, ptrdiff_t stride, size_t bytes,
             const uint8_t* next) {
  averageRow<4, 1>(to, from, stride, bytes, next);
}
void chromaBy4(uint8_t* to, const uint8_t* from, ptrdiff_t stride, size_t bytes,
               const uint8_t* next) {
  averageRow<4, 2>(to, from, stride, bytes, next);
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zelm {

using AverageRow = void(uint8_t* to, const uint8_t* from, ptrdiff_t stride,
                        size_t bytes, const uint8_t* next);

static void averagePlane(AverageRow* average, const Region& to, const Region& from,
                         size_t factor, size_t sample) {
  for (size_t y = 0; y < to.rows; ++y) {
    const uint8_t* next = y + 1 < to.rows ? from.row(factor * (y + 1)) : nullptr;
    average(to.row(y), from.row(factor * y), from.stride, to.columns * sample, next);
  }
}

}  // namespace zelm

extern "C" void resize_averageOfPixel2_420LP(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  averagePlane(ZELM_KERNEL(lumaBy2), lumaRegion(*dst), lumaRegion(*src), 2, 1);
  averagePlane(ZELM_KERNEL(chromaBy2), chromaRegion(*dst), chromaRegion(*src), 2, 2);
}

extern "C" void resize_averageOfPixel4_420LP(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  averagePlane(ZELM_KERNEL(lumaBy4), lumaRegion(*dst), lumaRegion(*src), 4, 1);
  averagePlane(ZELM_KERNEL(chromaBy4), chromaRegion(*dst), chromaRegion(*src), 4, 2);
}
#endif  // HWY_ONCE
