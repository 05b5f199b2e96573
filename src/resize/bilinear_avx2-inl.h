// Bilinear scaling of a vector's width of columns down the rows. Included by
// bilinear.cc in the pass with AVX2.
//
// The filtered rows above and below a destination row stay in registers, lane by lane
// side by side, so that one multiplication blends them. Its upper halves are the bytes,
// of lanes that are taken in turn from the lower and the upper half of a block:
//   lanes       0 2 4 6 1 3 5 7
//   pairs       0 2 4 6 | 1 3 5 7
//   upperHalves 0 1 2 3 4 5 6 7
#include "simd/vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// The source rows of a destination row.
struct RowPair {
  const uint8_t *upper, *lower;
  enum { kSame, kNext, kOther } after;  // how they follow those of the row before
  uint32_t weights;                     // of the upper and the lower one, 16 bits each
};

// Those of some destination rows.
template <class RowTap>
class RowPairs {
 public:
  HWY_INLINE RowPairs(const Region& to, const RowsDown& rows) : end_(pairs_ + to.rows) {
    const uint8_t *upper = nullptr, *lower = nullptr;
    for (size_t y = 0; y < to.rows; ++y) {
      const RowTap tap(rows.down, rows.first + y);
      RowPair& pair = pairs_[y];
      pair.upper = rows.from.row(tap.row[0]);
      pair.lower = rows.from.row(tap.row[1]);
      pair.after = pair.upper == upper && pair.lower == lower ? RowPair::kSame
                   : pair.upper == lower                      ? RowPair::kNext
                                                              : RowPair::kOther;
      pair.weights = 256 - tap.weight + (tap.weight << 16);
      upper = pair.upper;
      lower = pair.lower;
    }
  }
  const RowPair* begin() const { return pairs_; }
  const RowPair* end() const { return end_; }

 private:
  RowPair pairs_[RowsDown::kMost];
  const RowPair* end_;
};

// Filtered rows of a unit, one above the other in each pair of lanes.
struct PairedRows {
  Vec<I16> left, right, lower;

  HWY_INLINE void set(Vec<I16> above, Vec<I16> below) {
    left = hn::InterleaveLower(i16, above, below);
    right = hn::InterleaveUpper(i16, above, below);
    lower = below;
  }
  HWY_INLINE Vec<I16> blend(Vec<I16> weights) const {
    return upperHalves(pairProducts(left, weights), pairProducts(right, weights));
  }
};

// A unit in registers.
template <class Unit>
class HeldUnit {
 public:
  explicit HWY_INLINE HeldUnit(const Unit& unit)
      : picks_(unit, everyBlock(kOrder)),
        weights_(pickInBlocks(load(unit.weights), everyBlock(kOrder))) {}

  HWY_INLINE void move(PairedRows* rows, const RowPair& to) const {
    if (to.after == RowPair::kNext) {
      rows->set(rows->lower, filter(to.lower));
    } else if (to.after == RowPair::kOther) {
      rows->set(filter(to.upper), filter(to.lower));
    }
  }

 private:
  HWY_INLINE Vec<I16> filter(const uint8_t* from) const {
    const Vec<I16> sums = pairProducts8(weights_, centred(picks_.pick(from)));
    return hn::Add(sums, hn::Set(i16, 128));
  }

  alignas(16) static constexpr uint8_t kOrder[16] = {0, 1, 4, 5, 8,  9,  12, 13,
                                                     2, 3, 6, 7, 10, 11, 14, 15};
  typename Unit::Held picks_;
  Vec<U8> weights_;
};

template <class Rows, class Unit>
HWY_INLINE void blendDownwards(uint8_t* to, ptrdiff_t stride, const Rows& rows,
                               const Unit& first, const Unit& second) {
  PairedRows a, b;
  a.set(hn::Zero(i16), hn::Zero(i16));
  b = a;
  for (const RowPair& row : rows) {
    first.move(&a, row);
    second.move(&b, row);
    const Vec<I16> weights = hn::BitCast(i16, hn::Set(u32, row.weights));
    const Vec<U8> bytes = asU8(packSignedInBlocks(a.blend(weights), b.blend(weights)));
    store(hn::Xor(bytes, hn::Set(u8, 128)), to);
    to += stride;
  }
}

// The same for half a vector of bytes, whose blocks lie side by side in one unit.
template <class Rows, class Unit>
HWY_INLINE void blendHalfDownwards(uint8_t* to, ptrdiff_t stride, const Rows& rows,
                                   const Unit& unit) {
  const hn::Full128<uint8_t> block;
  PairedRows a;
  a.set(hn::Zero(i16), hn::Zero(i16));
  for (const RowPair& row : rows) {
    unit.move(&a, row);
    const Vec<I16> lanes = a.blend(hn::BitCast(i16, hn::Set(u32, row.weights)));
    const auto bytes = _mm_packs_epi16(_mm256_castsi256_si128(lanes.raw),
                                       _mm256_extracti128_si256(lanes.raw, 1));
    hn::StoreU(hn::Xor(hn::VFromD<decltype(block)>{bytes}, hn::Set(block, 128)), block,
               to);
    to += stride;
  }
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
