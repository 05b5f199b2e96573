// YUV with chroma pairs to packed RGB, in any description of colour, and with it the
// conversions of semi-planar 4:2:0.
//
// With SU and SV the sums of four chroma samples (a sample that stands alone or in
// a pair is repeated), u = SU - 512 and v = SV - 512, the rule is
//   R = clamp((4 y (Y - offset) + rv v + 2^15) >> 16)
//   G = clamp((4 y (Y - offset) - gu u - gv v + 2^15) >> 16)
//   B = clamp((4 y (Y - offset) + bu u + 2^15) >> 16)
// Full-range BT.601 has the weights 1, 1.402, 0.344, 0.714 and 1.772. There y is 2^14,
// so that luma can be added behind the shift:
//   R = clamp(Y + ((11485 v + 2^14) >> 15))
//   G = clamp(Y + ((-5638 u - 11700 v + 2^15) >> 16))
//   B = clamp(Y + ((14516 u + 2^14) >> 15))
// Chroma is interpolated in opposite directions: the upper luma row of a chroma row
// takes V between it and the row above, the lower one U between it and the row
// below; the right pixel of a pair takes both between it and the next pair. The
// region's first and last chroma row and pair stand without a partner.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "convert/yuv_to_rgb.cc"
#include "simd/each_target.h"  // before all others

#include "convert/pixel_formats.h"
#include "convert/yuv_to_rgb.h"
#include "convert/yuv_to_rgb_neon-inl.h"
#include "convert/yuv_to_rgb_x86-inl.h"
#include "plane.h"
#include "simd/dispatch.h"
#include "simd/streaming.h"
#include "simd/vector-inl.h"
#include "zelm_imageutil.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

HWY_INLINE uint8_t clampToByte(int value) {
  return static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
}

// Converts pixel x by the rule; `other` is the pair that its own is averaged with.
template <class Format>
HWY_INLINE void putPixel(uint8_t* to, const uint8_t* luma, const ChromaRows& chroma,
                         size_t x, size_t other, const YuvToRgb& colour,
                         bool blueFirst) {
  const size_t own = x / 2;
  const auto sum = [&](bool lone, size_t byte) HWY_ATTR {
    const uint8_t* row = lone ? chroma.own : chroma.other;
    return chroma.own[2 * own + byte] + row[2 * own + byte] +
           chroma.own[2 * other + byte] + row[2 * other + byte] - 512;
  };
  const int first = sum(chroma.loneFirst, 0), second = sum(!chroma.loneFirst, 1);
  const int u = chroma.uFirst ? first : second, v = chroma.uFirst ? second : first;
  const int y = 4 * colour.y * (luma[x] - colour.offset) + (1 << 15);
  const uint8_t r = clampToByte((y + colour.rv * v) >> 16);
  const uint8_t g = clampToByte((y - colour.gu * u - colour.gv * v) >> 16);
  const uint8_t b = clampToByte((y + colour.bu * u) >> 16);
  Format::put(to + x * Format::kPixelBytes, blueFirst ? b : r, g, blueFirst ? r : b);
}

// Stays a function of its own: inlined into the loop over two rows it would share its
// registers with that.
template <class Format, bool kIsBt601Full>
[[gnu::noinline]] void convertRow(uint8_t* to, const uint8_t* luma,
                                  const ChromaRows& chroma, size_t pixels,
                                  const YuvToRgb& anyColour, bool blueFirst) {
  const YuvToRgb& colour = kIsBt601Full ? kBt601Full : anyColour;
  const size_t pairs = (pixels + 1) / 2, last = pairs - 1;
  const auto put = [&](size_t x, size_t other) HWY_ATTR {
    putPixel<Format>(to, luma, chroma, x, other, colour, blueFirst);
  };
  size_t done = 0;
#if ZELM_VECTORS
  done =
      convertBlocks<Format, kIsBt601Full>(to, luma, chroma, pixels, colour, blueFirst);
  // Where blocks convert the right pixel of the first pair like an inner one.
  if (done > 0 && !kPutsFirstPair) put(1, 0);
#endif
  for (size_t j = done; j < pairs; ++j) {
    put(2 * j, j);
    if (2 * j + 1 < pixels) put(2 * j + 1, j == 0 || j == last ? j : j + 1);
  }
}

template <class Format, bool kIsBt601Full>
void convertTwoRows(const TwoRows& rows, size_t pixels, const YuvToRgb& colour,
                    bool blueFirst) {
  const auto chroma = [&](size_t i) HWY_ATTR {
    const bool upper = i == 1;
    return ChromaRows{rows.pairs[i], rows.pairs[1 - i], rows.uFirst,
                      rows.uFirst == upper};
  };
#if ZELM_IS_AVX2
  if (convertTwo<Format, kIsBt601Full>(rows, pixels, colour, blueFirst)) {
    for (size_t i = 0; i < 2 * (pixels % 2); ++i) {
      putPixel<Format>(rows.to[i], rows.luma[i], chroma(i), pixels - 1, pixels / 2,
                       colour, blueFirst);
    }
    return;
  }
#endif
  for (size_t i = 0; i < 2; ++i) {
    convertRow<Format, kIsBt601Full>(rows.to[i], rows.luma[i], chroma(i), pixels,
                                     colour, blueFirst);
  }
}

template <class Format, bool kIsBt601Full>
constexpr RgbKernels kKernels = {convertRow<Format, kIsBt601Full>,
                                 convertTwoRows<Format, kIsBt601Full>};

RgbKernels kernelsOf(size_t pixelBytes, bool isBt601Full) {
  constexpr RgbKernels kernels[][2] = {
      {kKernels<Rgb565, false>, kKernels<Rgb565, true>},
      {kKernels<Rgb888, false>, kKernels<Rgb888, true>},
      {kKernels<Rgba8888, false>, kKernels<Rgba8888, true>}};
  return kernels[pixelBytes - 2][isBt601Full];
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#include "simd/vbmi_pass.h"

#if HWY_ONCE
namespace zelm {

// The last pair is left to plain code.
RgbKernels rgbKernels(size_t pixelBytes, bool isBt601Full, size_t pixels) {
  return ZELM_KERNEL_FOR(kernelsOf, pixels - (pixels < 2 ? pixels : 2))(pixelBytes,
                                                                        isBt601Full);
}

static void convertRegion(const ImageStruct& dst, const ImageStruct& src,
                          RgbLayout layout) {
  Region to = packedRegion(dst, pixelBytes(layout));
  const Region luma = lumaRegion(src);
  const Region chroma = chromaRegion(src);
  if (chroma.empty()) return;
  to.rows = 2 * chroma.rows;
  const size_t pixels = 2 * chroma.columns;
  const bool stream = worthStreaming(to.rows * pixels * (pixelBytes(layout) + 1) +
                                     pixels * chroma.rows);
  const RgbRows rows(layout, kBt601Full, src.format == FORMAT_YUV420SP, pixels, stream);
  rows.make(to, luma, 0, {chroma.rows, 2}, [&](size_t k) { return chroma.row(k); });
  if (stream) finishStreaming();
}

}  // namespace zelm

extern "C" void convYUV420SP_RGBA8888(ImageStruct* dst, ImageStruct* src) {
  zelm::convertRegion(*dst, *src, zelm::RgbLayout::kRgba);
}

extern "C" void convYUV420SP_RGB888(ImageStruct* dst, ImageStruct* src) {
  zelm::convertRegion(*dst, *src, zelm::RgbLayout::kRgb24);
}

extern "C" void convYUV420SP_RGB565(ImageStruct* dst, ImageStruct* src) {
  zelm::convertRegion(*dst, *src, zelm::RgbLayout::kBgr565);
}
#endif  // HWY_ONCE
