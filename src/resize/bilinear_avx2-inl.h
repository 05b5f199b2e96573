// Bilinear scaling of a vector's width of columns down the rows, whose filtered rows
// stay in registers. Included by bilinear.cc in the pass with AVX2.
//
// Filtered rows are H - 32768, and the 128 is added when they are blended.
#include "simd/vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// The source rows of a destination row.
struct RowPair {
  const uint8_t *upper, *lower;
  enum { kSame, kNext, kOther } after;  // how they follow those of the row before
  uint32_t weight;                      // 256 times that of the lower one, twice
  uint32_t whenLess;                    // what is added where the lower one is less

  HWY_INLINE void setRows(const uint8_t* first, const uint8_t* second,
                          const RowPair* before) {
    upper = first;
    lower = second;
    after = before == nullptr                                   ? kOther
            : first == before->upper && second == before->lower ? kSame
            : first == before->lower                            ? kNext
                                                                : kOther;
  }
  HWY_INLINE void setWeight(unsigned ofLower) {
    weight = 256 * ofLower * 0x10001;
    whenLess = ((kBase - 256 * ofLower) & 0xFFFF) * 0x10001;
  }
  static constexpr uint32_t kBase = 32768 + 128;
};

// A unit in registers.
template <class Unit>
class HeldUnit {
 public:
  explicit HWY_INLINE HeldUnit(const Unit& unit)
      : picks_(unit), weights_(load(unit.weights)) {}
  HWY_INLINE Vec<I16> filter(const uint8_t* from) const {
    return pairProducts8(weights_, centred(picks_.pick(from)));
  }

 private:
  typename Unit::Held picks_;
  Vec<U8> weights_;
};

HWY_INLINE Vec<I16> blendRows(Vec<I16> a, Vec<I16> b, const RowPair& row) {
  const Vec<U16> weight = asU16(hn::Set(u32, row.weight));
  const Vec<U16> product = hn::MulHigh(asU16(hn::Sub(b, a)), weight);
  const Vec<U16> base = hn::IfThenElse(
      hn::RebindMask(u16, hn::Lt(b, a)), asU16(hn::Set(u32, row.whenLess)),
      hn::Set(u16, static_cast<uint16_t>(RowPair::kBase)));
  return asI16(hn::ShiftRight<8>(hn::Add(hn::Add(asU16(a), product), base)));
}

template <class Source, class Unit>
HWY_INLINE void blendDownwards(uint8_t* to, ptrdiff_t stride, const Source* rows,
                               size_t count, const Unit& first, const Unit& second) {
  Vec<I16> a0 = hn::Zero(i16), a1 = a0, b0 = a0, b1 = a0;
  for (const Source* row = rows; row != rows + count; ++row) {
    if (row->after == RowPair::kNext) {
      a0 = b0;
      a1 = b1;
      b0 = first.filter(row->lower);
      b1 = second.filter(row->lower);
    } else if (row->after == RowPair::kOther) {
      a0 = first.filter(row->upper);
      a1 = second.filter(row->upper);
      b0 = first.filter(row->lower);
      b1 = second.filter(row->lower);
    }
    store(packInBlocks(blendRows(a0, b0, *row), blendRows(a1, b1, *row)), to);
    to += stride;
  }
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
