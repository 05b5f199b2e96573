// Arithmetic of bilinear scaling with the vectors of x86. Included by bilinear.cc in
// each of its passes.
//
// One multiplication (pairProducts8) multiplies neighbouring bytes and adds the
// products, so left and right samples stand side by side, and so do their weights:
//   bytes    0     1      2     3      4     5
//            left  right  left  right  left  right
//   lanes    0            1            2
// One of the factors is signed, so samples less 128 are used and rows are kept as G.
#if ZELM_X86

#include <utility>

#include "simd/vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

constexpr size_t kRightPlace = 1;
HWY_INLINE size_t leftPlace(size_t lane) { return 2 * lane; }

HWY_INLINE Vec<I16> filterSamples(Vec<U8> picked, const uint8_t* weights) {
  const Vec<I16> sums = pairProducts8(hn::Load(u8, weights), centred(picked));
  return hn::Add(sums, hn::Set(i16, 128));
}

// filterBoth(u) are the two filtered rows of unit u, filterUpper(u) is the first of
// them.
template <class FilterUpper, class FilterBoth>
HWY_INLINE void blendUnits(uint8_t* to, unsigned weight, size_t bytes,
                           const FilterUpper&, const FilterBoth& filterBoth) {
  const Vec<U16> by = hn::Set(u16, static_cast<uint16_t>(256 * weight));
  const auto blend = [&](size_t h) HWY_ATTR {
    const std::pair<Vec<I16>, Vec<I16>> rows = filterBoth(h);
    const Vec<I16> a = rows.first, b = rows.second;
    const Vec<I16> product = asI16(hn::MulHigh(asU16(hn::Sub(b, a)), by));
    return subtractWhereLess(hn::Add(a, product), b, a, asI16(by));
  };
  const size_t vectors = vectorsFor(bytes);
  for (size_t v = 0; v < vectors; ++v) {
    const Vec<U8> packed = asU8(packUpperBytes(blend(2 * v), blend(2 * v + 1)));
    store(hn::Xor(packed, hn::Set(u8, 128)), to + vectorStart(v, bytes));
  }
}

HWY_INLINE void blendKeptRows(uint8_t* to, const int16_t* upper, const int16_t* lower,
                              unsigned weight, size_t bytes) {
  const auto row = [](const int16_t* from, size_t h)
                       HWY_ATTR { return hn::Load(i16, from + h * (kBytes / 2)); };
  blendUnits(
      to, weight, bytes, [&](size_t h) HWY_ATTR { return row(upper, h); },
      [&](size_t h) HWY_ATTR { return std::make_pair(row(upper, h), row(lower, h)); });
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // ZELM_X86
