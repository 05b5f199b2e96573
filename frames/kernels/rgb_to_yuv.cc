// Rows of RGB pixels to luma and chroma pairs:
//   Y = (sum of weight * channel + offset * 2^14 + 2^13) >> 14
//   pair bytes = clamp((the same sum over n pixels + n * (128 * 2^14 + 2^13)) >>
//                      (14 + log2 n))
// where n = 4, 2 or 1 pixels share a pair.
//
// In vectors luma weights are 128 h + l with both in 8 bits, so that products of bytes
// do: sums of two products, at most 255 * 127 and 255 * 128, fit in 16 bits.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "frames/kernels/rgb_to_yuv.cc"
#include "simd/each_target.h"  // before all others

#include <cstring>

#include "frames/kernels/pixels-inl.h"
#include "frames/kernels/rgb_to_yuv.h"
#include "simd/dispatch.h"
#include "simd/vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

HWY_INLINE int weighted(const int (&weights)[3], const int (&channels)[3]) {
  return weights[0] * channels[0] + weights[1] * channels[1] + weights[2] * channels[2];
}

HWY_INLINE uint8_t lumaOf(const uint8_t* pixel, const ChannelWeights& weights) {
  const int sum = weighted(weights.luma, {pixel[0], pixel[1], pixel[2]});
  return static_cast<uint8_t>((sum + (weights.lumaOffset * 2 + 1) * (1 << 13)) >> 14);
}

HWY_INLINE uint8_t meanOf(int sum, int log2) {
  const int value = (sum + ((128 * 2 + 1) << (13 + log2))) >> (14 + log2);
  return static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
}

#if ZELM_VECTORS
template <size_t kPixelBytes, size_t kRows>
class Converter {
 public:
  HWY_INLINE explicit Converter(const ChannelWeights& weights)
      : bias_(hn::Set(i32, (weights.lumaOffset * 2 + 1) * (1 << 13))),
        first_(quads(weights.first)),
        second_(quads(weights.second)) {
    uint8_t high[4] = {}, low[4] = {};
    for (size_t i = 0; i < 3; ++i) {
      const int h = (weights.luma[i] + 64) >> 7;
      high[i] = static_cast<uint8_t>(h);
      low[i] = static_cast<uint8_t>(weights.luma[i] - 128 * h);
    }
    high_ = everyPixel(high);
    low_ = everyPixel(low);
  }

  // Converts kBytes pixels from the x-th on, of which as many and kPixelsBeyond more
  // are read.
  HWY_INLINE void convert(uint8_t* const (&luma)[2], uint8_t* pairs,
                          const uint8_t* const (&from)[2], size_t x) const {
    Vec<I32> y[kRows][4], c[4];
    for (size_t i = 0; i < 4; ++i) {
      Vec<I16> sums = hn::Zero(i16);
      for (size_t row = 0; row < kRows; ++row) {
        const Vec<U8> pixels =
            loadPixels<kPixelBytes>(from[row] + (x + i * kPixels) * kPixelBytes);
        y[row][i] = lumaOfPixels(pixels);
        sums = hn::Add(sums, sumsOfTwo(pixels));
      }
      c[i] = pairsOf(sums);
    }
    for (size_t row = 0; row < kRows; ++row) store(narrowTwice(y[row]), luma[row] + x);
    if (pairs != nullptr) store(narrowTwice(c), pairs + x);
  }

 private:
  static HWY_INLINE Vec<I8> everyPixel(const uint8_t (&bytes)[4]) {
    uint32_t pixel;
    std::memcpy(&pixel, bytes, sizeof pixel);
    return hn::BitCast(i8, hn::Set(u32, pixel));
  }
  // Weights w0, w1, w2, 0, w0, ... of 16-bit lanes.
  static HWY_INLINE Vec<I16> quads(const int (&weights)[3]) {
    alignas(16) const int16_t lanes[8] = {
        static_cast<int16_t>(weights[0]), static_cast<int16_t>(weights[1]),
        static_cast<int16_t>(weights[2]), 0,
        static_cast<int16_t>(weights[0]), static_cast<int16_t>(weights[1]),
        static_cast<int16_t>(weights[2]), 0};
    return hn::LoadDup128(i16, lanes);
  }

  HWY_INLINE Vec<I32> lumaOfPixels(Vec<U8> pixels) const {
    const Vec<I32> high =
        addPairProducts(bias_, pairProducts8(pixels, high_), hn::Set(i16, 128));
    return hn::ShiftRight<14>(
        addPairProducts(high, pairProducts8(pixels, low_), hn::Set(i16, 1)));
  }

  // Sums of two pixels' channels:
  //   r0 g0 b0 x r1 g1 b1 x ...   gives   r0 + r1, g0 + g1, b0 + b1, x, ...
  static HWY_INLINE Vec<I16> sumsOfTwo(Vec<U8> pixels) {
    alignas(16) static constexpr uint8_t kBeside[16] = {0, 4,  1, 5,  2,  6,  3,  7,
                                                        8, 12, 9, 13, 10, 14, 11, 15};
    return asI16(pairSums(pickInBlocks(pixels, everyBlock(kBeside))));
  }

  // The pairs of such sums, first and second in turn. Each product of sums leaves two
  // parts that are added:
  //   first    a0 b0 a1 b1        a0 B0 a1 B1   (first's even, second's odd lanes)
  //   second   A0 B0 A1 B1        b0 A0 b1 A1   (the others, exchanged)
  HWY_INLINE Vec<I32> pairsOf(Vec<I16> sums) const {
    const Vec<I32> first = pairProducts(sums, first_),
                   second = pairProducts(sums, second_);
    const Vec<I32> own = hn::OddEven(second, first);
    const Vec<I32> other = hn::Shuffle2301(hn::OddEven(first, second));
    constexpr int kLog2 = kRows == 2 ? 2 : 1;
    const Vec<I32> half = hn::Set(i32, 257 << (13 + kLog2));
    return hn::ShiftRight<14 + kLog2>(hn::Add(hn::Add(own, other), half));
  }

  static HWY_INLINE Vec<U8> narrowTwice(const Vec<I32> (&v)[4]) {
    return joinTwice(
        packInBlocks(narrowInBlocks(v[0], v[1]), narrowInBlocks(v[2], v[3])));
  }

  Vec<I32> bias_;
  Vec<I16> first_, second_;
  Vec<I8> high_, low_;
};
#endif  // ZELM_VECTORS

template <size_t kPixelBytes, size_t kRows>
HWY_INLINE void convertRows(uint8_t* const (&luma)[2], uint8_t* pairs,
                            const uint8_t* const (&from)[2], size_t pixels,
                            const ChannelWeights& weights) {
  size_t done = 0;
#if ZELM_VECTORS
  if (pixels > kPixelsBeyond<kPixelBytes>) {
    const Converter<kPixelBytes, kRows> converter(weights);
    done = 2 * inBlocks((pixels - kPixelsBeyond<kPixelBytes>) / 2, kBytes / 2,
                        [&](size_t j)
                            HWY_ATTR { converter.convert(luma, pairs, from, 2 * j); });
  }
#endif
  for (size_t row = 0; row < kRows; ++row) {
    for (size_t x = done; x < pixels; ++x) {
      luma[row][x] = lumaOf(from[row] + kPixelBytes * x, weights);
    }
  }
  if (pairs == nullptr) return;
  for (size_t x = done; x < pixels; x += 2) {
    const size_t columns = x + 1 < pixels ? 2 : 1;
    int channels[3] = {};
    for (size_t i = 0; i < kRows * columns; ++i) {
      const uint8_t* pixel = from[i / columns] + kPixelBytes * (x + i % columns);
      for (size_t c = 0; c < 3; ++c) channels[c] += pixel[c];
    }
    const int log2 = static_cast<int>(kRows + columns - 2);
    pairs[x] = meanOf(weighted(weights.first, channels), log2);
    pairs[x + 1] = meanOf(weighted(weights.second, channels), log2);
  }
}

void rgbToYuvRows(uint8_t* const (&luma)[2], uint8_t* pairs,
                  const uint8_t* const (&from)[2], size_t pixelBytes, size_t pixels,
                  const ChannelWeights& weights) {
  const bool two = from[1] != nullptr;
  (pixelBytes == 4 ? (two ? convertRows<4, 2> : convertRows<4, 1>)
                   : (two ? convertRows<3, 2> : convertRows<3, 1>))(luma, pairs, from,
                                                                    pixels, weights);
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#include "simd/vbmi_pass.h"

#if HWY_ONCE
zelm::RgbToYuvRows* zelm::rgbToYuvKernel(size_t pixels) {
  // Pixels of three bytes are read a little beyond those that are converted.
  return ZELM_KERNEL_FOR(rgbToYuvRows, pixels - pixels / 8);
}
#endif  // HWY_ONCE
