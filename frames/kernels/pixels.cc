// Rows of RGB pixels from one layout to another. Channels of fewer bits are widened by
// repeating their upper ones, and narrowed by leaving the lower ones out.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "frames/kernels/pixels.cc"
#include "simd/each_target.h"  // before all others

#include "frames/kernels/pixels.h"
#include "simd/dispatch.h"
#include "simd/vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// Widens words to R, G, B, A.
template <bool kRedHigh>
HWY_INLINE void unpack565(uint8_t* to, const uint8_t* from, size_t pixels) {
  for (size_t x = 0; x < pixels; ++x) {
    const unsigned word = from[2 * x] | static_cast<unsigned>(from[2 * x + 1]) << 8;
    const unsigned high = word >> 11, middle = word >> 5 & 63, low = word & 31;
    const unsigned r = kRedHigh ? high : low, b = kRedHigh ? low : high;
    to[4 * x] = static_cast<uint8_t>(r << 3 | r >> 2);
    to[4 * x + 1] = static_cast<uint8_t>(middle << 2 | middle >> 4);
    to[4 * x + 2] = static_cast<uint8_t>(b << 3 | b >> 2);
    to[4 * x + 3] = 255;
  }
}

// The first channel goes to the high bits, or to the low ones if kSwap.
template <size_t kFrom, bool kSwap>
HWY_INLINE void pack565(uint8_t* to, const uint8_t* from, size_t pixels) {
  for (size_t x = 0; x < pixels; ++x) {
    const uint8_t* pixel = from + kFrom * x;
    const unsigned high = pixel[kSwap ? 2 : 0] >> 3, low = pixel[kSwap ? 0 : 2] >> 3;
    const unsigned word = high << 11 | (pixel[1] >> 2) << 5 | low;
    to[2 * x] = static_cast<uint8_t>(word);
    to[2 * x + 1] = static_cast<uint8_t>(word >> 8);
  }
}

template <size_t kFrom, size_t kTo, bool kSwap>
HWY_INLINE void moveChannels(uint8_t* to, const uint8_t* from, size_t pixels) {
  for (size_t x = 0; x < pixels; ++x) {
    const uint8_t* pixel = from + kFrom * x;
    to[kTo * x] = pixel[kSwap ? 2 : 0];
    to[kTo * x + 1] = pixel[1];
    to[kTo * x + 2] = pixel[kSwap ? 0 : 2];
    if (kTo == 4) to[kTo * x + 3] = kFrom == 4 ? pixel[3] : 255;
  }
}

template <size_t kFrom, bool kSwap>
HWY_INLINE void repackFrom(uint8_t* to, size_t toBytes, const uint8_t* from,
                           size_t pixels) {
  if (toBytes == 2) {
    pack565<kFrom, kSwap>(to, from, pixels);
  } else if (toBytes == 3) {
    moveChannels<kFrom, 3, kSwap>(to, from, pixels);
  } else {
    moveChannels<kFrom, 4, kSwap>(to, from, pixels);
  }
}

void repackRow(uint8_t* to, RgbLayout toLayout, const uint8_t* from,
               RgbLayout fromLayout, size_t pixels) {
  if (isWords565(fromLayout)) {
    (fromLayout == RgbLayout::kRgb565 ? unpack565<true> : unpack565<false>)(to, from,
                                                                            pixels);
    return;
  }
  // Of words red is first if it lies in the high bits.
  const bool toRed = redFirst(toLayout) || toLayout == RgbLayout::kRgb565;
  const bool swap = redFirst(fromLayout) != toRed, four = pixelBytes(fromLayout) == 4;
  (swap ? (four ? repackFrom<4, true> : repackFrom<3, true>)
        : (four ? repackFrom<4, false> : repackFrom<3, false>))(
      to, pixelBytes(toLayout), from, pixels);
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zelm {

RepackPixels* repackKernel() { return ZELM_KERNEL(repackRow); }

}  // namespace zelm
#endif  // HWY_ONCE
