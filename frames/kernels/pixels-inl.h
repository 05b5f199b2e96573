// Pixels of three or four bytes in vectors. Included once per instruction set, so there
// is no ordinary include guard.
#if ZELM_VBMI || \
    defined(ZELM_FRAMES_KERNELS_PIXELS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#if !ZELM_VBMI
#ifdef ZELM_FRAMES_KERNELS_PIXELS_INL_H_
#undef ZELM_FRAMES_KERNELS_PIXELS_INL_H_
#else
#define ZELM_FRAMES_KERNELS_PIXELS_INL_H_
#endif
#endif

#include "simd/vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

#if ZELM_VECTORS

// The pixels of a vector, of four bytes each.
constexpr size_t kPixels = kBytes / 4;

// How many pixels behind those of a vector are read, or written over, where pixels have
// three bytes.
template <size_t kPixelBytes>
constexpr size_t kPixelsBeyond = kPixelBytes == 3 ? kBytes / 8 : 0;

// Returns kPixels pixels. The fourth byte of those that have three is undefined.
template <size_t kPixelBytes>
HWY_INLINE Vec<U8> loadPixels(const uint8_t* from) {
  const Vec<U8> bytes = load(from);
  if (kPixelBytes == 4) return bytes;
  // Twelve bytes to each block, and three to each pixel.
  alignas(64) static constexpr uint32_t kTwo[8] = {0, 1, 2, 2, 3, 4, 5, 5};
  alignas(64) static constexpr uint32_t kFour[16] = {0, 1, 2, 2, 3, 4,  5,  5,
                                                     6, 7, 8, 8, 9, 10, 11, 11};
  alignas(16) static constexpr uint8_t kSpread[16] = {0, 1, 2, 2, 3, 4,  5,  5,
                                                      6, 7, 8, 8, 9, 10, 11, 11};
  return pickInBlocks(permuteGroups(bytes, kTwo, kFour), everyBlock(kSpread));
}

// Stores them.
template <size_t kPixelBytes>
HWY_INLINE void storePixels(Vec<U8> pixels, uint8_t* to) {
  if (kPixelBytes == 3) {
    alignas(16) static constexpr uint8_t kClose[16] = {
        0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 128, 128, 128, 128};
    alignas(64) static constexpr uint32_t kTwo[8] = {0, 1, 2, 4, 5, 6, 3, 7};
    alignas(64) static constexpr uint32_t kFour[16] = {0,  1,  2,  4,  5, 6, 8,  9,
                                                       10, 12, 13, 14, 3, 7, 11, 15};
    pixels = permuteGroups(pickInBlocks(pixels, everyBlock(kClose)), kTwo, kFour);
  }
  store(pixels, to);
}

#endif  // ZELM_VECTORS

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // include guard
