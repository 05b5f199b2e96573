// Semi-planar 4:2:0 copied, with its chroma pairs exchanged, or split into planes.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "convert/semi_planar.cc"
#include "simd/each_target.h"  // before all others

#include "convert/semi_planar.h"
#include "plane.h"
#include "simd/dispatch.h"
#include "simd/streaming.h"
#include "simd/vector-inl.h"
#include "zelm_imageutil.h"

HWY_BEFORE_NAMESPACE();
namespace zelm {
namespace {
namespace HWY_NAMESPACE {

void swapPairsRow(uint8_t* to, const uint8_t* from, size_t bytes) {
  size_t done = 0;
#if ZELM_NEON
  done = inMovingBlocks(
      bytes, 128,
      [&]() HWY_ATTR {
        for (int k = 0; k < 4; ++k) {
          uint8x16x2_t v = take32(from);
          for (uint8x16_t& pairs : v.val) pairs = vrev16q_u8(pairs);
          put32(to, v);
        }
      },
      [&](size_t n) HWY_ATTR { from -= n, to -= n; });
#elif ZELM_VECTORS
  done = inBlocks(bytes, 2 * kBytes, [&](size_t i) HWY_ATTR {
    const Vec<U8> a = swapPairs(load(from + i)), b = swapPairs(load(from + i + kBytes));
    store(a, to + i);
    store(b, to + i + kBytes);
  });
#endif
  for (size_t i = done; i < bytes; i += 2) {
    to[i] = from[i + 1];
    to[i + 1] = from[i];
  }
}

// In place no block may be moved back: it would exchange bytes twice.
void exchangePairsRow(uint8_t* row, size_t bytes) {
  size_t i = 0;
#if ZELM_VECTORS
  for (; i + kBytes <= bytes; i += kBytes) store(swapPairs(load(row + i)), row + i);
#endif
  for (; i < bytes; i += 2) {
    const uint8_t first = row[i];
    row[i] = row[i + 1];
    row[i + 1] = first;
  }
}

template <bool kStream>
HWY_INLINE void splitPairs(uint8_t* first, uint8_t* second, const uint8_t* from,
                           size_t pairs) {
  size_t done = 0;
#if ZELM_NEON
  done = inMovingBlocks(
      pairs, 64,
      [&]() HWY_ATTR {
        for (int k = 0; k < 4; ++k) {
          const uint8x16x2_t split = takePairs(from);
          put16(first, split.val[0]);
          put16(second, split.val[1]);
        }
      },
      [&](size_t n) HWY_ATTR { from -= 2 * n, first -= n, second -= n; });
#elif ZELM_VECTORS
  done = inBlocks(pairs, kBytes, [&](size_t j) HWY_ATTR {
    const SplitPairs split = loadPairs(from + 2 * j);
    store<kStream>(split.first, first + j);
    store<kStream>(split.second, second + j);
  });
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

}  // namespace HWY_NAMESPACE
}  // namespace
}  // namespace zelm
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zelm {
namespace {

size_t roundUpTo16(size_t value) { return (value + 15) / 16 * 16; }

void swapPlane(const Region& to, const Region& from) {
  const auto swapRow = ZELM_KERNEL(swapPairsRow);
  const RowSpan span = joinRows(to, from, from.rows, 2 * to.columns);
  for (size_t k = 0; k < span.rows; ++k) swapRow(to.row(k), from.row(k), span.bytes);
}

}  // namespace

void exchangeChroma(const ImageStruct& frame) {
  const auto exchangeRow = ZELM_KERNEL(exchangePairsRow);
  const Region chroma = chromaRegion(frame);
  const RowSpan span = joinRows(chroma, chroma, chroma.rows, 2 * chroma.columns);
  for (size_t k = 0; k < span.rows; ++k) exchangeRow(chroma.row(k), span.bytes);
}

namespace {

// Whole frames. The chroma rows of the planar side are padded to multiples of 16
// bytes, the luma rows are not; the planes lie where padded luma rows would end.
void splitFrame(const ImageStruct& dst, const ImageStruct& src) {
  const size_t height = dst.height, pairs = dst.width / 2, rows = height / 2;
  const size_t lumaStride = roundUpTo16(dst.width);
  const size_t chromaStride = roundUpTo16(lumaStride / 2);
  copyBytes(dst.data, src.data, static_cast<size_t>(src.height) * src.width);

  const auto splitRow = ZELM_KERNEL(splitPairsRow);
  uint8_t* first = dst.data + height * lumaStride;
  uint8_t* second = first + height * chromaStride / 2;
  const uint8_t* from = src.data + src.uvOffset;
  const bool stream = worthStreaming(3 * height * dst.width);
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

}  // namespace
}  // namespace zelm

extern "C" void convYUV420SP_YUV420SP(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  const Region luma = lumaRegion(*src), chroma = chromaRegion(*src);
  const Region lumaTo = lumaRegion(*dst), chromaTo = chromaRegion(*dst);
  const size_t bytes = dst->roiWidth;
  // Planes that follow each other on both sides are one plane.
  if (chroma.origin == luma.origin + luma.rows * luma.stride &&
      chromaTo.origin == lumaTo.origin + luma.rows * lumaTo.stride) {
    copyRows(lumaTo, luma, luma.rows + chroma.rows, bytes);
    return;
  }
  copyRows(lumaTo, luma, luma.rows, bytes);
  copyRows(chromaTo, chroma, chroma.rows, bytes);
}

extern "C" void convYUV420SP_VU2UV(ImageStruct* dst, ImageStruct* src) {
  const zelm::Region luma = zelm::lumaRegion(*src);
  zelm::copyRows(zelm::lumaRegion(*dst), luma, luma.rows, dst->roiWidth);
  zelm::swapPlane(zelm::chromaRegion(*dst), zelm::chromaRegion(*src));
}

extern "C" void convYUV420SP_YUV420P(ImageStruct* dst, ImageStruct* src) {
  zelm::splitFrame(*dst, *src);
}
#endif  // HWY_ONCE
