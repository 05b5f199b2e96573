// Copies a luma region, or turns it by half a turn.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "rotate/upright.cc"
#include "simd/each_target.h"  // before all others

#include "plane.h"
#include "rotate/upright_neon-inl.h"
#include "simd/dispatch.h"
#include "simd/vector-inl.h"
#include "zelm_imageutil.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

#if ZELM_VECTORS && !ZELM_NEON
template <class D>
HWY_INLINE size_t reverseBlocks(D d, uint8_t* to, const uint8_t* from, size_t bytes) {
  constexpr size_t kBlock = MaxLanes(D());
  alignas(16) static constexpr uint8_t kBackwards[16] = {15, 14, 13, 12, 11, 10, 9, 8,
                                                         7,  6,  5,  4,  3,  2,  1, 0};
  const auto backwards = hn::LoadDup128(d, kBackwards);
  const auto reverse = [&](size_t x) HWY_ATTR {
    auto v = hn::TableLookupBytes(hn::LoadU(d, from + bytes - kBlock - x), backwards);
    if (kBlock > 16) v = hn::ConcatLowerUpper(d, v, v);
    hn::StoreU(v, d, to + x);
  };
  constexpr size_t kTurn = kBlock == 16 ? 64 : kBlock;
  const size_t done = inBlocks(bytes, kTurn, [&](size_t x) HWY_ATTR {
    for (size_t i = 0; i < kTurn; i += kBlock) reverse(x + i);
  });
  return done > 0 ? done : inBlocks(bytes, kBlock, reverse);
}

HWY_INLINE size_t reverseInBlocks(uint8_t* to, const uint8_t* from, size_t bytes) {
  // Wider blocks that are read downwards are slower, until rows outgrow the first two
  // levels of cache.
  if (bytes >= size_t{3} << 20) {
    return reverseBlocks(hn::CappedTag<uint8_t, 32>(), to, from, bytes);
  }
  return reverseBlocks(hn::Full128<uint8_t>(), to, from, bytes);
}
#endif

void reverseRow(uint8_t* to, const uint8_t* from, size_t bytes) {
  size_t done = 0;
#if ZELM_VECTORS
  done = reverseInBlocks(to, from, bytes);
#endif
  for (size_t x = done; x < bytes; ++x) to[x] = from[bytes - 1 - x];
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
extern "C" void rotate0_Y(ImageStruct* dst, ImageStruct* src) {
  const zelm::Region from = zelm::lumaRegion(*src);
  zelm::copyRows(zelm::lumaRegion(*dst), from, from.rows, from.columns);
}

extern "C" void rotate180_Y(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  const Region from = lumaRegion(*src), to = lumaRegion(*dst);
  const auto turnRow = ZELM_KERNEL(reverseRow);
  const RowSpan span = joinRows(to, from, from.rows, from.columns);
  for (size_t y = 0; y < span.rows; ++y) {
    turnRow(to.row(y), from.row(span.rows - 1 - y), span.bytes);
  }
}
#endif  // HWY_ONCE
