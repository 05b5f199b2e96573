// The bytes of chroma pairs exchanged in place.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "convert/exchange_chroma.cc"
#include "simd/each_target.h"  // before all others

#include "convert/exchange_chroma.h"
#include "plane.h"
#include "simd/dispatch.h"
#include "simd/vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// No block is moved back to end with the row: it would exchange some bytes twice.
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

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zelm {

void exchangeChroma(const ImageStruct& frame) {
  const auto exchangeRow = ZELM_KERNEL(exchangePairsRow);
  const Region chroma = chromaRegion(frame);
  const RowSpan span = joinRows(chroma, chroma, chroma.rows, 2 * chroma.columns);
  for (size_t k = 0; k < span.rows; ++k) exchangeRow(chroma.row(k), span.bytes);
}

}  // namespace zelm
#endif  // HWY_ONCE
