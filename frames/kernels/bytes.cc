// Rows of bytes: every second one, means of two rows, packed 4:2:2.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "frames/kernels/bytes.cc"
#include "simd/each_target.h"  // before all others

#include "frames/kernels/bytes.h"
#include "simd/dispatch.h"
#include "simd/vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

void firstBytes(uint8_t* to, const uint8_t* from, size_t bytes) {
  size_t done = 0;
#if ZELM_VECTORS
  // All but the last byte, behind which nothing may be read.
  done = inBlocks(bytes - 1, kBytes, [&](size_t i) HWY_ATTR {
    store(loadPairs(from + 2 * i).first, to + i);
  });
#endif
  for (size_t i = done; i < bytes; ++i) to[i] = from[2 * i];
}

void secondBytes(uint8_t* to, const uint8_t* from, size_t bytes) {
  size_t done = 0;
#if ZELM_VECTORS
  done = inBlocks(bytes, kBytes, [&](size_t i) HWY_ATTR {
    store(loadPairs(from + 2 * i).second, to + i);
  });
#endif
  for (size_t i = done; i < bytes; ++i) to[i] = from[2 * i + 1];
}

void meanRow(uint8_t* to, const uint8_t* a, const uint8_t* b, size_t bytes) {
  size_t done = 0;
#if ZELM_VECTORS
  done = inBlocks(bytes, kBytes, [&](size_t i) HWY_ATTR {
    store(hn::AverageRound(load(a + i), load(b + i)), to + i);
  });
#endif
  for (size_t i = done; i < bytes; ++i) {
    to[i] = static_cast<uint8_t>((a[i] + b[i] + 1) >> 1);
  }
}

template <bool kStream, bool kChromaFirst, size_t kRows, bool kUpper>
HWY_INLINE void splitRows(uint8_t* const (&luma)[2], uint8_t* pairs,
                          const uint8_t* const (&from)[2], size_t pixels) {
  size_t done = 0;
#if ZELM_VECTORS
  done = 2 * inBlocks(pixels / 2, kBytes / 2, [&](size_t j) HWY_ATTR {
           const auto row = [&](size_t y) HWY_ATTR {
             const SplitPairs split = loadPairs(from[y] + 4 * j);
             store<kStream>(kChromaFirst ? split.second : split.first, luma[y] + 2 * j);
             return kChromaFirst ? split.first : split.second;
           };
           Vec<U8> chroma = row(0);
           if (kRows == 2) {
             const Vec<U8> below = row(1);
             if (!kUpper) chroma = hn::AverageRound(chroma, below);
           }
           store<kStream>(chroma, pairs + 2 * j);
         });
#endif
  for (size_t y = 0; y < kRows; ++y) {
    for (size_t x = done; x < pixels; ++x) luma[y][x] = from[y][2 * x + kChromaFirst];
  }
  constexpr size_t kMeanOf = kUpper ? 1 : kRows;
  for (size_t i = done; i < (pixels + 1) / 2 * 2; ++i) {
    const size_t at = 2 * i + !kChromaFirst;
    const unsigned sum = from[0][at] + (kMeanOf == 2 ? from[1][at] + 1u : 0u);
    pairs[i] = static_cast<uint8_t>(sum / kMeanOf);
  }
}

template <bool kStream, bool kChromaFirst>
HWY_INLINE void splitAnyRows(uint8_t* const (&luma)[2], uint8_t* pairs,
                             const uint8_t* const (&from)[2], size_t pixels,
                             bool upper) {
  if (from[1] == nullptr) {
    splitRows<kStream, kChromaFirst, 1, false>(luma, pairs, from, pixels);
  } else if (upper) {
    splitRows<kStream, kChromaFirst, 2, true>(luma, pairs, from, pixels);
  } else {
    splitRows<kStream, kChromaFirst, 2, false>(luma, pairs, from, pixels);
  }
}

void splitPacked(uint8_t* const (&luma)[2], uint8_t* pairs,
                 const uint8_t* const (&from)[2], size_t pixels, bool chromaFirst,
                 bool upper, bool stream) {
  (chromaFirst ? (stream ? splitAnyRows<true, true> : splitAnyRows<false, true>)
               : (stream ? splitAnyRows<true, false> : splitAnyRows<false, false>))(
      luma, pairs, from, pixels, upper);
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#include "simd/vbmi_pass.h"

#if HWY_ONCE
namespace zelm {

TakeBytes* firstBytesKernel(size_t bytes) { return ZELM_KERNEL_FOR(firstBytes, bytes); }
TakeBytes* secondBytesKernel(size_t bytes) {
  return ZELM_KERNEL_FOR(secondBytes, bytes);
}
MeanRow* meanRowKernel(size_t bytes) { return ZELM_KERNEL_FOR(meanRow, bytes); }
SplitPacked* splitPackedKernel(size_t pixels) {
  return ZELM_KERNEL_FOR(splitPacked, pixels);
}

}  // namespace zelm
#endif  // HWY_ONCE
