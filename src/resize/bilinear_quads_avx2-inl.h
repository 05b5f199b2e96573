// Bilinear rows that are reduced by two to four, made directly of their source rows.
// Included by bilinear.cc in the pass with AVX2.
//
// The four bytes that a destination byte is made of lie side by side, so that one
// product joins left and right, and the next one upper and lower:
//   bytes    left  right  left  right     of the upper row, of the lower row
//   lanes    upper        lower
//   lanes    sum
// A unit makes eight destination bytes, four in each block. The sources of four lie
// within 16 bytes, and those of the next four behind them. So one load brings all,
// but where a row begins and ends:
//   row      . . . . L R . L R . L R . L R . L R . L R . L R . L R . . . .
//           |---------- block 0 ----------|---------- block 1 ----------|
#include "simd/vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// A unit.
class Quads {
 public:
  // Sets the unit to the pairs of its bytes. Tells whether one load brings both blocks,
  // which it never does unless they `mayFollow` each other.
  template <class Pairs>
  HWY_INLINE bool set(const Pairs& pairs, size_t rowBytes, bool mayFollow) {
    const __m128i offsets = pairs.offsets.raw;
    const size_t last = rowBytes - 16;
    const size_t first =
        pairs.lowest + static_cast<size_t>(_mm_extract_epi8(offsets, 0));
    const size_t second =
        pairs.lowest + static_cast<size_t>(_mm_extract_epi8(offsets, 8));
    const bool follow = mayFollow && second >= 16 && second <= last;
    const size_t starts[] = {follow         ? second - 16
                             : first < last ? first
                                            : last,
                             second < last ? second : last};
    const auto inBlock = [&](size_t block) HWY_ATTR {
      const auto behind = static_cast<char>(pairs.lowest - starts[block]);
      return _mm_add_epi8(offsets, _mm_set1_epi8(behind));
    };
    store(twice(inBlock(0), inBlock(1)), index_);
    store(twice(pairs.weights, pairs.weights), weights_);
    for (size_t b = 0; b < 2; ++b) starts_[b] = static_cast<uint32_t>(starts[b]);
    return follow;
  }

  // The unit in registers.
  template <bool kFollow>
  class Held {
   public:
    explicit HWY_INLINE Held(const Quads& quads)
        : index_(load(quads.index_)), weights_(load(quads.weights_)) {
      for (size_t b = 0; b < (kFollow ? 1 : 2); ++b) starts_[b] = quads.starts_[b];
    }

    // The sums of both rows' samples less 128, in 32 bits.
    HWY_INLINE Vec<I32> blend(const uint8_t* upper, const uint8_t* lower,
                              Vec<I16> rowWeights) const {
      const Vec<U8> samples = asU8(hn::OddEven(pick(lower), pick(upper)));
      const Vec<I16> sums = pairProducts8(weights_, centred(samples));
      return pairProducts(hn::Add(sums, hn::Set(i16, 128)), rowWeights);
    }

   private:
    HWY_INLINE Vec<U16> pick(const uint8_t* row) const {
      const Vec<U8> both =
          kFollow ? load(row + starts_[0])
                  : loadBlocks([&](size_t b) HWY_ATTR { return row + starts_[b]; });
      return asU16(pickInBlocks(both, index_));
    }

    Vec<U8> index_, weights_;
    size_t starts_[2];
  };

 private:
  // The pairs of each lane twice.
  static HWY_INLINE Vec<U8> twice(__m128i low, __m128i high) {
    return Vec<U8>{_mm256_setr_m128i(_mm_unpacklo_epi16(low, low),
                                     _mm_unpackhi_epi16(high, high))};
  }

  alignas(32) uint8_t index_[32], weights_[32];
  uint32_t starts_[2];
};

template <class M>
class QuadColumns {
 public:
  using SourceRows = typename M::SourceRows;
  // Fewer would load the tables more often, and more reach too many pages at a time.
  static constexpr size_t kRowsAtOnce = 4;

  // Blocks of three-byte samples share samples, so that no load brings two. They take
  // less time than three pieces, but not less than two.
  static bool suit(const Axis& across) {
    const uint64_t least = M::kSample == 3 ? 8 * kWhole / 3 : 2 * kWhole;
    return across.step >= least && across.step < 4 * kWhole;
  }

  QuadColumns(const Axis& across, size_t first, size_t bytes, size_t rowBytes)
      : bytes_(bytes), end_(vectorsFor(bytes)) {
    const GroupTaps<M::kSample> taps(across);
    for (size_t v = end_; v-- > 0;) {
      for (size_t u = 0; u < 4; ++u) {
        const size_t byte = first + vectorStart(v, bytes) + 8 * u;
        Quads& unit = units_[4 * v + u];
        const bool follow = unit.set(taps.bilinear(byte), rowBytes, M::kSample != 3);
        if (!follow && v > 0) end_ = v;
      }
    }
  }

  HWY_INLINE void makeDownwards(const Region& to, const RowsDown& rows) const {
    const SourceRows sources(to, rows);
    const size_t vectors = vectorsFor(bytes_);
    make<false>(to, sources, 0);
    size_t v = 1;
    for (; v < end_; ++v) make<true>(to, sources, v);
    for (; v < vectors; ++v) make<false>(to, sources, v);
  }

 private:
  static constexpr uint64_t kWhole = UINT64_C(1) << 32;

  template <bool kFollow>
  HWY_INLINE void make(const Region& region, const SourceRows& rows, size_t v) const {
    // Lanes of two units alternate, and so do the groups of a unit's blocks.
    alignas(16) static constexpr uint8_t kOrder[16] = {0, 2,  4,  6,  1, 3,  5,  7,
                                                       8, 10, 12, 14, 9, 11, 13, 15};
    const Quads* units = units_ + 4 * v;
    const Quads::Held<kFollow> first(units[0]), second(units[1]), third(units[2]),
        fourth(units[3]);
    uint8_t* to = region.origin + vectorStart(v, bytes_);
    for (const RowPair& row : rows) {
      const Vec<I16> weights = hn::BitCast(i16, hn::Set(u32, row.weights));
      const uint8_t *upper = row.upper, *lower = row.lower;
      const Vec<I16> a = upperHalves(first.blend(upper, lower, weights),
                                     second.blend(upper, lower, weights));
      const Vec<I16> b = upperHalves(third.blend(upper, lower, weights),
                                     fourth.blend(upper, lower, weights));
      const Vec<U8> bytes = asU8(packSignedInBlocks(a, b));
      const Vec<U8> inOrder = joinTwice(pickInBlocks(bytes, everyBlock(kOrder)));
      store(hn::Xor(inOrder, hn::Set(u8, 128)), to);
      to += region.stride;
    }
  }

  size_t bytes_;
  size_t end_;  // behind the last vector in which blocks follow, but the first never do
  Quads units_[M::kStrip / 8];
};

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
