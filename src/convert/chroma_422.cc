// Semi-planar 4:2:0 to 4:2:2. Every chroma row becomes two: itself, and the mean of it
// and the next row, rounded down. The region's last row is repeated.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "convert/chroma_422.cc"
#include "simd/each_target.h"  // before all others

#include "convert/chroma_422.h"
#include "convert/chroma_422_neon-inl.h"
#include "plane.h"
#include "simd/dispatch.h"
#include "simd/streaming.h"
#include "simd/vector-inl.h"
#include "zelm_imageutil.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

#if ZELM_VECTORS && !ZELM_NEON
// The instruction for a mean rounds up, so the complements are averaged.
HWY_INLINE Vec<U8> meanRoundedDown(Vec<U8> a, Vec<U8> b) {
  return hn::Not(hn::AverageRound(hn::Not(a), hn::Not(b)));
}

template <bool kSwap, bool kStream>
HWY_INLINE size_t expandBlocks(uint8_t* even, uint8_t* odd, const uint8_t* row,
                               const uint8_t* next, size_t bytes) {
  return inBlocks(bytes, kBytes, [&](size_t i) HWY_ATTR {
    Vec<U8> a = load(row + i), b = load(next + i);
    if (kSwap) {
      a = swapPairs(a);
      b = swapPairs(b);
    }
    store<kStream>(a, even + i);
    store<kStream>(meanRoundedDown(a, b), odd + i);
  });
}
#endif

template <bool kSwap, bool kStream>
HWY_INLINE void expandRow(uint8_t* even, uint8_t* odd, const uint8_t* row,
                          const uint8_t* next, size_t bytes) {
  size_t done = 0;
#if ZELM_VECTORS
  done = expandBlocks<kSwap, kStream>(even, odd, row, next, bytes);
#endif
  for (size_t i = done; i < bytes; ++i) {
    const size_t p = kSwap ? i ^ 1 : i;
    even[i] = row[p];
    odd[i] = static_cast<uint8_t>((row[p] + next[p]) >> 1);
  }
}

void expandRowKept(uint8_t* even, uint8_t* odd, const uint8_t* row, const uint8_t* next,
                   size_t bytes, bool stream) {
  (stream ? expandRow<false, true> : expandRow<false, false>)(even, odd, row, next,
                                                              bytes);
}

void expandRowSwapped(uint8_t* even, uint8_t* odd, const uint8_t* row,
                      const uint8_t* next, size_t bytes, bool stream) {
  (stream ? expandRow<true, true> : expandRow<true, false>)(even, odd, row, next,
                                                            bytes);
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
zelm::ExpandRow* zelm::expandRowKernel(bool swap, size_t bytes) {
  return swap ? ZELM_KERNEL_FOR(expandRowSwapped, bytes)
              : ZELM_KERNEL_FOR(expandRowKept, bytes);
}

namespace zelm {

static void expandFrame(const ImageStruct& dst, const ImageStruct& src, bool swap) {
  const Region luma = lumaRegion(src), lumaTo = lumaRegion(dst);
  const bool stream = worthStreaming(7 * luma.rows * luma.columns / 2);
  copyRows(lumaTo, luma, luma.rows, luma.columns, stream);

  // The 4:2:2 chroma plane has luma's geometry, only elsewhere.
  const Region chroma = chromaRegion(src);
  Region to = lumaTo;
  to.origin += dst.uvOffset;
  ExpandRow* const expand = expandRowKernel(swap, 2 * chroma.columns);
  for (size_t k = 0; k < chroma.rows; ++k) {
    const uint8_t* row = chroma.row(k);
    const uint8_t* next = k + 1 < chroma.rows ? chroma.row(k + 1) : row;
    expand(to.row(2 * k), to.row(2 * k + 1), row, next, 2 * chroma.columns, stream);
  }
  if (stream) finishStreaming();
}

}  // namespace zelm

extern "C" void convYUV420SP_YUV422SP(ImageStruct* dst, ImageStruct* src) {
  zelm::expandFrame(*dst, *src, false);
}

extern "C" void convYUV420SP_YUV422SP_VU2UV(ImageStruct* dst, ImageStruct* src) {
  zelm::expandFrame(*dst, *src, true);
}
#endif  // HWY_ONCE
