// Copies semi-planar 4:2:0, exchanges the bytes of its chroma pairs, or splits them
// into planes.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "convert/semi_planar.cc"
#include "simd/each_target.h"  // before all others

#include "convert/pairs.h"
#include "convert/semi_planar_neon-inl.h"
#include "plane.h"
#include "simd/dispatch.h"
#include "simd/streaming.h"
#include "simd/vector-inl.h"
#include "zelm_imageutil.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

#if ZELM_VECTORS && !ZELM_NEON
template <bool kStream>
HWY_INLINE size_t swapPairsInBlocks(uint8_t* to, const uint8_t* from, size_t bytes) {
  return inBlocks(bytes, 2 * kBytes, [&](size_t i) HWY_ATTR {
    const Vec<U8> a = swapPairs(load(from + i)), b = swapPairs(load(from + i + kBytes));
    store<kStream>(a, to + i);
    store<kStream>(b, to + i + kBytes);
  });
}

template <bool kStream>
HWY_INLINE size_t splitPairsInBlocks(uint8_t* first, uint8_t* second,
                                     const uint8_t* from, size_t pairs) {
  return inBlocks(pairs, kBytes, [&](size_t j) HWY_ATTR {
    const SplitPairs split = loadPairs(from + 2 * j);
    store<kStream>(split.first, first + j);
    store<kStream>(split.second, second + j);
  });
}
#endif

template <bool kStream>
HWY_INLINE void swapBytesOfPairs(uint8_t* to, const uint8_t* from, size_t bytes) {
  size_t done = 0;
#if ZELM_VECTORS
  done = swapPairsInBlocks<kStream>(to, from, bytes);
#endif
  for (size_t i = done; i < bytes; i += 2) {
    to[i] = from[i + 1];
    to[i + 1] = from[i];
  }
}
void swapPairsRow(uint8_t* to, const uint8_t* from, size_t bytes, bool stream) {
  (stream ? swapBytesOfPairs<true> : swapBytesOfPairs<false>)(to, from, bytes);
}

template <bool kStream>
HWY_INLINE void splitPairs(uint8_t* first, uint8_t* second, const uint8_t* from,
                           size_t pairs) {
  size_t done = 0;
#if ZELM_VECTORS
  done = splitPairsInBlocks<kStream>(first, second, from, pairs);
#endif
  for (size_t j = done; j < pairs; ++j) {
    first[j] = from[2 * j];
    second[j] = from[2 * j + 1];
  }
}
void splitPairsRow(uint8_t* first, uint8_t* second, const uint8_t* from, size_t pairs,
                   bool stream) {
  (stream ? splitPairs<true> : splitPairs<false>)(first, second, from, pairs);
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zelm {

SplitPairsRow* splitPairsKernel(size_t pairs) {
  return ZELM_KERNEL_FOR(splitPairsRow, pairs);
}
SwapPairsRow* swapPairsKernel(size_t bytes) {
  return ZELM_KERNEL_FOR(swapPairsRow, bytes);
}

static size_t roundUpTo16(size_t value) { return (value + 15) / 16 * 16; }

static void swapPlane(const Region& to, const Region& from, bool stream) {
  const RowSpan span = joinRows(to, from, from.rows, 2 * to.columns);
  SwapPairsRow* const swapRow = swapPairsKernel(span.bytes);
  for (size_t k = 0; k < span.rows; ++k) {
    swapRow(to.row(k), from.row(k), span.bytes, stream);
  }
}

// Splits whole frames. The chroma rows of the planar side are padded to multiples of 16
// bytes, its luma rows are not; the planes lie where padded luma rows would end.
static void splitFrame(const ImageStruct& dst, const ImageStruct& src) {
  const size_t height = dst.height, pairs = dst.width / 2, rows = height / 2;
  const size_t lumaStride = roundUpTo16(dst.width);
  const size_t chromaStride = roundUpTo16(lumaStride / 2);
  const bool stream = worthStreaming(3 * height * dst.width);
  copyBytes(dst.data, src.data, static_cast<size_t>(src.height) * src.width, stream);

  SplitPairsRow* const splitRow = splitPairsKernel(pairs);
  uint8_t* first = dst.data + height * lumaStride;
  uint8_t* second = first + height * chromaStride / 2;
  const uint8_t* from = src.data + src.uvOffset;
  if (chromaStride == pairs) {
    splitRow(first, second, from, rows * pairs, stream);
  } else {
    for (size_t k = 0; k < rows; ++k) {
      splitRow(first + k * chromaStride, second + k * chromaStride,
               from + k * 2 * pairs, pairs, stream);
    }
  }
  if (stream) finishStreaming();
}

}  // namespace zelm

extern "C" void convYUV420SP_YUV420SP(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  const Region luma = lumaRegion(*src), chroma = chromaRegion(*src);
  const Region lumaTo = lumaRegion(*dst), chromaTo = chromaRegion(*dst);
  const size_t bytes = dst->roiWidth;
  const bool stream = worthStreaming(2 * (luma.rows + chroma.rows) * bytes);
  // Planes that follow each other on both sides are one plane.
  if (chroma.origin == luma.row(luma.rows) &&
      chromaTo.origin == lumaTo.row(luma.rows)) {
    copyRows(lumaTo, luma, luma.rows + chroma.rows, bytes, stream);
  } else {
    copyRows(lumaTo, luma, luma.rows, bytes, stream);
    copyRows(chromaTo, chroma, chroma.rows, bytes, stream);
  }
  if (stream) finishStreaming();
}

extern "C" void convYUV420SP_VU2UV(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  const Region luma = lumaRegion(*src);
  const bool stream = worthStreaming(3 * luma.rows * luma.columns);
  copyRows(lumaRegion(*dst), luma, luma.rows, dst->roiWidth, stream);
  swapPlane(chromaRegion(*dst), chromaRegion(*src), stream);
  if (stream) finishStreaming();
}

extern "C" void convYUV420SP_YUV420P(ImageStruct* dst, ImageStruct* src) {
  zelm::splitFrame(*dst, *src);
}
#endif  // HWY_ONCE
