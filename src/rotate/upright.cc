// Reverses rows, and copies a luma region or turns it by half a turn.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "rotate/upright.cc"
#include "simd/each_target.h"  // before all others

#include "plane.h"
#include "rotate/turn.h"
#include "rotate/upright_neon-inl.h"
#include "simd/dispatch.h"
#include "simd/streaming.h"
#include "simd/vector-inl.h"
#include "zelm_imageutil.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

#if ZELM_VECTORS
// The shuffle that reverses the samples of a block. Where a sample has 3 bytes they are
// the last 15 bytes of the block, which become the first ones.
template <size_t kSample>
struct Backwards {
  alignas(16) uint8_t order[16];

  constexpr Backwards() : order() {
    for (size_t i = 0; i < 16 / kSample * kSample; ++i) {
      order[i] =
          static_cast<uint8_t>(16 - kSample - i / kSample * kSample + i % kSample);
    }
  }
};

template <size_t kSample, class D>
HWY_INLINE hn::VFromD<D> loadReversed(D d, const uint8_t* from) {
  static constexpr Backwards<kSample> kShuffle;
  auto v = hn::TableLookupBytes(hn::LoadU(d, from), hn::LoadDup128(d, kShuffle.order));
  if (MaxLanes(d) > 16) v = hn::ConcatLowerUpper(d, v, v);
  return v;
}

template <size_t kSample, class D>
HWY_INLINE void reverseBlock(D d, uint8_t* to, const uint8_t* from) {
  hn::StoreU(loadReversed<kSample>(d, from), d, to);
}

template <size_t kSample, class D>
HWY_INLINE size_t reverseBlocks(D d, uint8_t* to, const uint8_t* from, size_t bytes) {
  constexpr size_t kBlock = MaxLanes(D());
  const auto reverse = [&](size_t x) HWY_ATTR {
    reverseBlock<kSample>(d, to + x, from + bytes - kBlock - x);
  };
  constexpr size_t kTurn = kBlock == 16 ? 64 : kBlock;
  const size_t done = inBlocks(bytes, kTurn, [&](size_t x) HWY_ATTR {
    for (size_t i = 0; i < kTurn; i += kBlock) reverse(x + i);
  });
  return done > 0 ? done : inBlocks(bytes, kBlock, reverse);
}

#if ZELM_IS_AVX2
// Stores the lines of many bytes past the caches.
HWY_INLINE size_t reverseLines(uint8_t* to, const uint8_t* from, size_t bytes) {
  constexpr size_t kLine = 64, kAhead = 512;
  size_t x = -reinterpret_cast<uintptr_t>(to) % kLine;
  for (size_t i = 0; i < kLine; i += kBytes) {  // what lies before the first line
    reverseBlock<1>(u8, to + i, from + bytes - kBytes - i);
  }
  for (; x + kLine <= bytes; x += kLine) {
    const uint8_t* line = from + bytes - kLine - x;
    __builtin_prefetch(line - (bytes - kLine - x < kAhead ? 0 : kAhead));
    const Vec<U8> first = loadReversed<1>(u8, line + kBytes);
    const Vec<U8> second = loadReversed<1>(u8, line);
    hn::Stream(first, u8, to + x);
    hn::Stream(second, u8, to + x + kBytes);
  }
  finishStreaming();
  return x;
}
#endif

template <size_t kSample>
HWY_INLINE size_t reverseInBlocks(uint8_t* to, const uint8_t* from, size_t bytes) {
  const hn::Full128<uint8_t> block;
  if constexpr (kSample == 3) {
    // Each block stores 15 bytes and one more, which the next one stores anew.
    size_t x = 0;
    for (; x + 16 <= bytes; x += 15) {
      reverseBlock<3>(block, to + x, from + bytes - 16 - x);
    }
    return x;
  } else {
#if ZELM_NEON
    if constexpr (kSample == 1) return reverseBytes(to, from, bytes);
#else
#if ZELM_IS_AVX2
    if (kSample == 1 && worthStreaming(2 * bytes)) return reverseLines(to, from, bytes);
#endif
    // Wider blocks that are read downwards are slower, until rows outgrow the first two
    // levels of cache.
    if (bytes >= size_t{3} << 20) {
      return reverseBlocks<kSample>(hn::CappedTag<uint8_t, 32>(), to, from, bytes);
    }
#endif
    return reverseBlocks<kSample>(block, to, from, bytes);
  }
}
#endif

template <size_t kSample>
void reverseRow(uint8_t* to, const uint8_t* from, size_t samples) {
  const size_t bytes = samples * kSample;
  size_t done = 0;
#if ZELM_VECTORS
  done = reverseInBlocks<kSample>(to, from, bytes);
#endif
  for (size_t x = done; x < bytes; x += kSample) {
    std::memcpy(to + x, from + bytes - kSample - x, kSample);
  }
}

ReverseRow* kernelOf(size_t sample) {
  ReverseRow* const kernels[] = {reverseRow<1>, reverseRow<2>, reverseRow<3>,
                                 reverseRow<4>};
  return kernels[sample - 1];
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
zelm::ReverseRow* zelm::reverseKernel(size_t sample) {
  return ZELM_KERNEL(kernelOf)(sample);
}

extern "C" void rotate0_Y(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  const Region from = lumaRegion(*src);
  const bool stream = worthStreaming(2 * from.rows * from.columns);
  copyRows(lumaRegion(*dst), from, from.rows, from.columns, stream);
  if (stream) finishStreaming();
}

extern "C" void rotate180_Y(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  const Region from = lumaRegion(*src), to = lumaRegion(*dst);
  ReverseRow* const turnRow = reverseKernel(1);
  const RowSpan span = joinRows(to, from, from.rows, from.columns);
  for (size_t y = 0; y < span.rows; ++y) {
    turnRow(to.row(y), from.row(span.rows - 1 - y), span.bytes);
  }
}
#endif  // HWY_ONCE
