// UYVY to semi-planar 4:2:0 with pairs V, U. Bytes are only moved, and of every two
// rows the chroma of the upper one is kept:
//   from            U0 Y0 V0 Y1  U1 Y2 V1 Y3 ...
//   luma            Y0 Y1 Y2 Y3 ...
//   chroma          V0 U0 V1 U1 ...
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
void splitLumaRow(uint8_t* luma, const uint8_t* from, size_t groups) {
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
void splitRow(uint8_t* luma, uint8_t* chroma, const uint8_t* from, size_t groups) {
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

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#include "simd/vbmi_pass.h"

#if HWY_ONCE
namespace zelm {

static void splitUyvy(const Region& luma, const Region& chroma, const Region& from) {
  const size_t groups = from.columns / 2;
  const bool stream = worthStreaming(7 * from.rows * groups);
  const size_t bytes = 2 * groups;
  const auto row = stream ? ZELM_KERNEL_FOR(splitRow<true>, bytes)
                          : ZELM_KERNEL_FOR(splitRow<false>, bytes);
  const auto lumaRow = stream ? ZELM_KERNEL_FOR(splitLumaRow<true>, bytes)
                              : ZELM_KERNEL_FOR(splitLumaRow<false>, bytes);
  for (size_t k = 0; k < from.rows / 2; ++k) {
    row(luma.row(2 * k), chroma.row(k), from.row(2 * k), groups);
    lumaRow(luma.row(2 * k + 1), from.row(2 * k + 1), groups);
  }
  if (stream) finishStreaming();
}

}  // namespace zelm

extern "C" void convYUV422IUYVY_YUV420SPVU(ImageStruct* dst, ImageStruct* src) {
  zelm::splitUyvy(zelm::lumaRegion(*dst), zelm::chromaRegionBehindLuma(*dst),
                  zelm::packedRegion(*src, 2));
}
#endif  // HWY_ONCE
