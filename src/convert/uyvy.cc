// UYVY to semi-planar 4:2:0 with pairs V, U: bytes are moved. Of every two rows the
// chroma of the upper one is kept.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "convert/uyvy.cc"
#include "simd/each_target.h"  // before all others

#include "plane.h"
#include "simd/dispatch.h"
#include "simd/streaming.h"
#include "simd/vector-inl.h"
#include "zelm_imageutil.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

template <bool kStream>
HWY_INLINE void splitLumaRow(uint8_t* luma, const uint8_t* from, size_t groups) {
  size_t done = 0;
#if ZELM_VECTORS
  done = inBlocks(groups, kBytes / 2, [&](size_t j) HWY_ATTR {
    store<kStream>(loadPairs(from + 4 * j).second, luma + 2 * j);
  });
#endif
  for (size_t j = done; j < groups; ++j) {
    luma[2 * j] = from[4 * j + 1];
    luma[2 * j + 1] = from[4 * j + 3];
  }
}

template <bool kStream>
HWY_INLINE void splitRow(uint8_t* luma, uint8_t* chroma, const uint8_t* from,
                         size_t groups) {
  size_t done = 0;
#if ZELM_VECTORS
  done = inBlocks(groups, kBytes / 2, [&](size_t j) HWY_ATTR {
    const SplitPairs split = loadPairs(from + 4 * j);
    store<kStream>(split.second, luma + 2 * j);
    store<kStream>(swapPairs(split.first), chroma + 2 * j);
  });
#endif
  for (size_t j = done; j < groups; ++j) {
    luma[2 * j] = from[4 * j + 1];
    luma[2 * j + 1] = from[4 * j + 3];
    chroma[2 * j] = from[4 * j + 2];
    chroma[2 * j + 1] = from[4 * j];
  }
}

void uyvyLumaRow(uint8_t* luma, const uint8_t* from, size_t groups, bool stream) {
  (stream ? splitLumaRow<true> : splitLumaRow<false>)(luma, from, groups);
}
void uyvyRow(uint8_t* luma, uint8_t* chroma, const uint8_t* from, size_t groups,
             bool stream) {
  (stream ? splitRow<true> : splitRow<false>)(luma, chroma, from, groups);
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#include "simd/vbmi_pass.h"

#if HWY_ONCE
extern "C" void convYUV422IUYVY_YUV420SPVU(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  const Region from = packedRegion(*src, 2);
  const Region luma = lumaRegion(*dst), chroma = chromaRegionBehindLuma(*dst);
  const auto convertRow = ZELM_KERNEL(uyvyRow);
  const auto convertLumaRow = ZELM_KERNEL(uyvyLumaRow);
  const size_t groups = from.columns / 2;
  const bool stream = worthStreaming(7 * from.rows * groups);
  for (size_t k = 0; k < from.rows / 2; ++k) {
    convertRow(luma.row(2 * k), chroma.row(k), from.row(2 * k), groups, stream);
    convertLumaRow(luma.row(2 * k + 1), from.row(2 * k + 1), groups, stream);
  }
  if (stream) finishStreaming();
}
#endif  // HWY_ONCE
