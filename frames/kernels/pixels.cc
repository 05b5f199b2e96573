// Rows of RGB pixels from one layout to another. Channels of fewer bits are widened by
// repeating their upper ones, and narrowed by leaving the lower ones out.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "frames/kernels/pixels.cc"
#include "simd/each_target.h"  // before all others

#include "frames/kernels/pixels-inl.h"
#include "frames/kernels/pixels.h"
#include "simd/dispatch.h"
#include "simd/vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

#if ZELM_VECTORS
// Exchanges the first and the third channel.
HWY_INLINE Vec<U8> swapChannels(Vec<U8> pixels) {
  alignas(16) static constexpr uint8_t kSwapped[16] = {2,  1, 0, 3,  6,  5,  4,  7,
                                                       10, 9, 8, 11, 14, 13, 12, 15};
  return pickInBlocks(pixels, everyBlock(kSwapped));
}

// Widens the words in the lower halves of lanes, the high bits to the first channel.
//   word     h4..h0 m5..m0 l4..l0
//   lane     h4..h0 h4..h2 | m5..m0 m5 m4 | l4..l0 l4..l2 | 255
HWY_INLINE Vec<U8> widenWords(Vec<U32> word) {
  const auto bits = [&](Vec<U32> v, uint32_t mask)
                        HWY_ATTR { return hn::And(v, hn::Set(u32, mask)); };
  const Vec<U32> high =
      hn::Or(bits(hn::ShiftRight<8>(word), 0xF8), bits(hn::ShiftRight<13>(word), 0x07));
  const Vec<U32> middle = hn::Or(bits(hn::ShiftLeft<5>(word), 0xFC00),
                                 bits(hn::ShiftRight<1>(word), 0x0300));
  const Vec<U32> low = hn::Or(bits(hn::ShiftLeft<19>(word), 0xF80000),
                              bits(hn::ShiftLeft<14>(word), 0x070000));
  return asU8(hn::Or(hn::Or(high, middle), hn::Or(low, hn::Set(u32, 0xFF000000))));
}

// Does the opposite: narrows pixels to words, of which lanes hold copies, the sign
// extended.
HWY_INLINE Vec<I32> narrowPixels(Vec<U8> pixels) {
  const Vec<U32> v = hn::BitCast(u32, pixels);
  const auto bits = [&](Vec<U32> lanes, uint32_t mask)
                        HWY_ATTR { return hn::And(lanes, hn::Set(u32, mask)); };
  const Vec<U32> high = hn::ShiftLeft<24>(bits(v, 0xF8));
  const Vec<U32> middle = bits(hn::ShiftLeft<11>(v), 0x07E00000);
  const Vec<U32> low = bits(hn::ShiftRight<3>(v), 0x001F0000);
  return hn::ShiftRight<16>(hn::BitCast(i32, hn::Or(hn::Or(high, middle), low)));
}
#endif  // ZELM_VECTORS

// Widens words to R, G, B, A.
template <bool kRedHigh>
HWY_INLINE void unpack565(uint8_t* to, const uint8_t* from, size_t pixels) {
  size_t done = 0;
#if ZELM_VECTORS
  done = inBlocks(pixels, 2 * kPixels, [&](size_t x) HWY_ATTR {
    const Vec<U16> words = asU16(splitBlocks(load(from + 2 * x))), zero = hn::Zero(u16);
    const auto put = [&](Vec<U16> lanes, size_t at) HWY_ATTR {
      const Vec<U8> wide = widenWords(hn::BitCast(u32, lanes));
      store(kRedHigh ? wide : swapChannels(wide), to + 4 * at);
    };
    put(hn::InterleaveLower(u16, words, zero), x);
    put(hn::InterleaveUpper(u16, words, zero), x + kPixels);
  });
#endif
  for (size_t x = done; x < pixels; ++x) {
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
  size_t done = 0;
#if ZELM_VECTORS
  if (pixels > kPixelsBeyond<kFrom>) {
    const auto words = [&](size_t x) HWY_ATTR {
      const Vec<U8> v = loadPixels<kFrom>(from + kFrom * x);
      return narrowPixels(kSwap ? swapChannels(v) : v);
    };
    done = inBlocks(pixels - kPixelsBeyond<kFrom>, 2 * kPixels, [&](size_t x) HWY_ATTR {
      store(joinBlocks(asU8(narrowInBlocks(words(x), words(x + kPixels)))), to + 2 * x);
    });
  }
#endif
  for (size_t x = done; x < pixels; ++x) {
    const uint8_t* pixel = from + kFrom * x;
    const unsigned high = pixel[kSwap ? 2 : 0] >> 3, low = pixel[kSwap ? 0 : 2] >> 3;
    const unsigned middle = pixel[1] >> 2;
    const unsigned word = high << 11 | middle << 5 | low;
    to[2 * x] = static_cast<uint8_t>(word);
    to[2 * x + 1] = static_cast<uint8_t>(word >> 8);
  }
}

template <size_t kFrom, size_t kTo, bool kSwap>
HWY_INLINE void moveChannels(uint8_t* to, const uint8_t* from, size_t pixels) {
  size_t done = 0;
#if ZELM_VECTORS
  constexpr size_t kBeyond = kPixelsBeyond < kFrom < kTo ? kFrom : kTo > ;
  if (pixels > kBeyond) {
    done = inBlocks(pixels - kBeyond, kPixels, [&](size_t x) HWY_ATTR {
      Vec<U8> v = loadPixels<kFrom>(from + kFrom * x);
      if (kSwap) v = swapChannels(v);
      if (kFrom == 3 && kTo == 4) {
        v = hn::Or(v, hn::BitCast(u8, hn::Set(u32, 0xFF000000)));
      }
      storePixels<kTo>(v, to + kTo * x);
    });
  }
#endif
  for (size_t x = done; x < pixels; ++x) {
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

#include "simd/vbmi_pass.h"

#if HWY_ONCE
zelm::RepackPixels* zelm::repackKernel(size_t pixels) {
  return ZELM_KERNEL_FOR(repackRow, 2 * pixels);
}
#endif  // HWY_ONCE
