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

// Stays a function of its own, because two layouts share it.
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
  done = convertBlocks<Format, kIsBt601Full>(to, luma, chroma, last, colour, blueFirst);
  // The right pixel of the first pair was converted like an inner one.
  if (done > 0) put(1, 0);
#endif
  for (size_t j = done; j < pairs; ++j) {
    put(2 * j, j);
    if (2 * j + 1 < pixels) put(2 * j + 1, j == 0 || j == last ? j : j + 1);
  }
}

template <class Format, bool kBlueFirst>
void rgbRow(uint8_t* to, const uint8_t* luma, const ChromaRows& chroma, size_t pixels,
            const YuvToRgb& colour) {
  (colour.bt601Full
       ? convertRow<Format, true>
       : convertRow<Format, false>)(to, luma, chroma, pixels, colour, kBlueFirst);
}

template <class Format, bool kBlueFirst>
RgbKernels kernelsFor([[maybe_unused]] size_t pixels) {
  RgbKernels kernels = {rgbRow<Format, kBlueFirst>, nullptr, nullptr};
#if ZELM_X86 && HWY_TARGET == HWY_AVX2
  if (pixels >= kLeastPixels) {
    kernels.expand = expandChroma;
    kernels.rowOfSums = rgbRowOfSums<Format, kBlueFirst>;
  }
#endif
  return kernels;
}

RgbKernels kernelsOf(RgbLayout layout, size_t pixels) {
  RgbKernels (*const kernels[])(size_t) = {
      kernelsFor<Rgb888, false>,  kernelsFor<Rgb888, true>, kernelsFor<Rgba8888, false>,
      kernelsFor<Rgba8888, true>, kernelsFor<Rgb565, true>, kernelsFor<Rgb565, false>};
  return kernels[static_cast<int>(layout)](pixels);
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#include "simd/vbmi_pass.h"

#if HWY_ONCE
namespace zelm {

// Columns that are converted from top to bottom at a time, where chroma is expanded.
// Their two rows of sums take 32 KiB of the stack; narrower strips would break rows of
// the destination into pieces, which takes up to 1.25 of the time.
static constexpr size_t kStrip = 4096;

// The last pair is left to plain code.
RgbRows::RgbRows(RgbLayout layout, const YuvToRgb& colour, bool uFirst, size_t pixels)
    : kernels_(ZELM_KERNEL_FOR(kernelsOf, pixels - (pixels < 2 ? pixels : 2))(layout,
                                                                              pixels)),
      colour_(colour),
      uFirst_(uFirst) {}

void RgbRows::begin(size_t pixels, RowEnds ends, int16_t* scratch) {
  pixels_ = pixels;
  ends_ = ends;
  if (!expands()) return;
  for (size_t i = 0; i < 2; ++i) {
    kept_[i] = scratch + i * (scratchSize(pixels) / 2);
    number_[i] = SIZE_MAX;
  }
}

const int16_t* RgbRows::sums(const PairRow& row) {
  int16_t* kept = kept_[row.number % 2];
  size_t& number = number_[row.number % 2];
  if (number != row.number) {
    kernels_.expand(kept, row.pairs, pixels_, ends_);
    number = row.number;
  }
  return kept;
}

void RgbRows::makeRow(uint8_t* to, const uint8_t* luma, const PairRow& own,
                      const PairRow& other, bool loneFirst) {
  if (!expands()) {
    kernels_.row(to, luma, {own.pairs, other.pairs, uFirst_, loneFirst}, pixels_,
                 colour_);
    return;
  }
  const int16_t *ownSums = sums(own), *otherSums = sums(other);
  kernels_.rowOfSums(
      to, luma,
      {ownSums, loneFirst ? ownSums : otherSums, loneFirst ? otherSums : ownSums},
      pixels_, colour_, uFirst_);
}

static void convertRegion(const ImageStruct& dst, const ImageStruct& src,
                          RgbLayout layout) {
  const Region to = packedRegion(dst, pixelBytes(layout));
  const Region luma = lumaRegion(src);
  const Region chroma = chromaRegion(src);
  if (chroma.empty()) return;
  const bool uFirst = src.format == FORMAT_YUV420SP;
  const size_t pixels = 2 * chroma.columns;
  RgbRows rows(layout, kBt601Full, uFirst, pixels);
  alignas(64) int16_t scratch[RgbRows::scratchSize(kStrip)];

  size_t end;
  for (size_t x = 0; x < pixels; x = end) {
    // What would be left for the last strip is shared with the one before it.
    const size_t left = pixels - x;
    end = !rows.expands() || left <= kStrip ? pixels
          : left < 2 * kStrip               ? x + left / 4 * 2
                                            : x + kStrip;
    rows.begin(end - x, {x == 0, end == pixels}, scratch);
    for (size_t k = 0; k < chroma.rows; ++k) {
      const bool partners = k > 0 && k + 1 < chroma.rows;
      const PairRow own = {chroma.row(k) + x, k};
      const PairRow above = partners ? PairRow{chroma.row(k - 1) + x, k - 1} : own;
      const PairRow below = partners ? PairRow{chroma.row(k + 1) + x, k + 1} : own;
      // The upper row takes V from above as well, the lower one U from below.
      uint8_t* pixelsTo = to.row(2 * k) + x * pixelBytes(layout);
      rows.makeRow(pixelsTo, luma.row(2 * k) + x, own, above, uFirst);
      rows.makeRow(pixelsTo + to.stride, luma.row(2 * k + 1) + x, own, below, !uFirst);
    }
  }
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
