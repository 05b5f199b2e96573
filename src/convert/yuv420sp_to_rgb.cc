// Semi-planar 4:2:0 to packed RGB, full-range BT.601.
//
// With SU and SV the sums of four chroma samples (a sample that stands alone or in
// a pair is repeated), u = SU - 512 and v = SV - 512, the rule is
//   R = clamp(Y + ((11485 v + 2^14) >> 15))             1.402
//   G = clamp(Y + ((-2819 u - 5850 v + 2^14) >> 15))    0.344, 0.714
//   B = clamp(Y + ((14516 u + 2^14) >> 15))             1.772
// Chroma is interpolated in opposite directions: the upper luma row of a chroma row
// takes V between it and the row above, the lower one U between it and the row
// below; the right pixel of a pair takes both between it and the next pair. The
// region's first and last chroma row and pair stand without a partner.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "convert/yuv420sp_to_rgb.cc"
#include "simd/each_target.h"  // before all others

#include "convert/yuv420sp_to_rgb.h"
#include "convert/yuv420sp_to_rgb_neon-inl.h"
#include "convert/yuv420sp_to_rgb_x86-inl.h"
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
                         size_t x, size_t other) {
  const size_t own = x / 2;
  const auto sum = [&](bool lone, size_t byte) HWY_ATTR {
    const uint8_t* row = lone ? chroma.own : chroma.other;
    return chroma.own[2 * own + byte] + row[2 * own + byte] +
           chroma.own[2 * other + byte] + row[2 * other + byte] - 512;
  };
  const int first = sum(chroma.loneFirst, 0), second = sum(!chroma.loneFirst, 1);
  const int u = chroma.uFirst ? first : second, v = chroma.uFirst ? second : first;
  const int y = luma[x];
  Format::put(to + x * Format::kPixelBytes,
              clampToByte(y + ((11485 * v + (1 << 14)) >> 15)),
              clampToByte(y + ((-2819 * u - 5850 * v + (1 << 14)) >> 15)),
              clampToByte(y + ((14516 * u + (1 << 14)) >> 15)));
}

template <class Format>
HWY_INLINE void convertRow(uint8_t* to, const uint8_t* luma, const ChromaRows& chroma,
                           size_t pairs) {
  const size_t last = pairs - 1;
  size_t done = 0;
#if ZELM_VECTORS
  done = convertBlocks<Format>(to, luma, chroma, last);
  // The right pixel of the first pair was converted like an inner one.
  if (done > 0) putPixel<Format>(to, luma, chroma, 1, 0);
#endif
  for (size_t j = done; j < pairs; ++j) {
    putPixel<Format>(to, luma, chroma, 2 * j, j);
    putPixel<Format>(to, luma, chroma, 2 * j + 1, j == 0 || j == last ? j : j + 1);
  }
}

void rgba8888Row(uint8_t* to, const uint8_t* luma, const ChromaRows& chroma,
                 size_t pairs) {
  convertRow<Rgba8888>(to, luma, chroma, pairs);
}
void rgb888Row(uint8_t* to, const uint8_t* luma, const ChromaRows& chroma,
               size_t pairs) {
  convertRow<Rgb888>(to, luma, chroma, pairs);
}
void rgb565Row(uint8_t* to, const uint8_t* luma, const ChromaRows& chroma,
               size_t pairs) {
  convertRow<Rgb565>(to, luma, chroma, pairs);
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#include "simd/vbmi_pass.h"

#if HWY_ONCE
namespace zelm {

using ConvertRow = void(uint8_t* to, const uint8_t* luma, const ChromaRows& chroma,
                        size_t pairs);

static void convertRegion(const ImageStruct& dst, const ImageStruct& src,
                          ConvertRow* convert, size_t pixelBytes) {
  const Region to = packedRegion(dst, pixelBytes);
  const Region luma = lumaRegion(src);
  const Region chroma = chromaRegion(src);
  if (chroma.empty()) return;
  const bool uFirst = src.format == FORMAT_YUV420SP;

  for (size_t k = 0; k < chroma.rows; ++k) {
    const bool partners = k > 0 && k + 1 < chroma.rows;
    const uint8_t* own = chroma.row(k);
    const uint8_t* above = partners ? chroma.row(k - 1) : own;
    const uint8_t* below = partners ? chroma.row(k + 1) : own;
    // The upper row takes V from above as well, the lower one U from below.
    convert(to.row(2 * k), luma.row(2 * k), {own, above, uFirst, uFirst},
            chroma.columns);
    convert(to.row(2 * k + 1), luma.row(2 * k + 1), {own, below, uFirst, !uFirst},
            chroma.columns);
  }
}

}  // namespace zelm

extern "C" void convYUV420SP_RGBA8888(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  convertRegion(*dst, *src, ZELM_KERNEL(rgba8888Row), 4);
}

extern "C" void convYUV420SP_RGB888(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  convertRegion(*dst, *src, ZELM_KERNEL(rgb888Row), 3);
}

extern "C" void convYUV420SP_RGB565(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  convertRegion(*dst, *src, ZELM_KERNEL(rgb565Row), 2);
}
#endif  // HWY_ONCE
