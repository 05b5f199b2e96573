// Bilinear scaling of a luma plane, of chroma pairs, or of three-byte pixels:
//   H = (256 - wx) * left + wx * right          for two source rows, at most 65280
//   out = ((256 - wy) * H[upper] + wy * H[lower] + 32768) >> 16
// All of it is exact, so the order of the passes is free: rows are filtered
// horizontally, kept, and blended vertically.
//
// Samples less 128 give H - 32768, which fits in int16, and so does G = H - 32768 +
// 128, which is what kept rows hold. With D = G[lower] - G[upper] then
//   out - 128 = (G[upper] + floor(wy * D / 256)) >> 8
// because G is whole. D needs 17 bits. Modulo 2^16 its unsigned product with wy / 256
// is too large by 256 * wy where D is negative; the sum fits in int16 again.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "resize/bilinear.cc"
#include "simd/each_target.h"  // before all others

#include "plane.h"
#include "resize/scale_plane.h"
#include "resize/scaler-inl.h"
#include "simd/dispatch.h"
#include "simd/vector-inl.h"

// What differs between instruction sets:
//   leftPlace(lane), kRightPlace
//       where the left sample of a lane stands among the picked bytes, and how far
//       behind it the right one
//   filterSamples(picked, weights)
//       the lanes of a filtered row
//   blendKeptRows(to, upper, lower, weight, bytes)
//       two filtered rows, into bytes
//   blendUnits(to, weight, bytes, filterUpper, filterBoth)
//       the same of rows that are filtered on the way: of a unit filterUpper(unit)
//       returns the lanes of the upper row, filterBoth(unit) those of both

// After the headers that they use.
#include "resize/bilinear_neon-inl.h"
#include "resize/bilinear_x86-inl.h"
#if ZELM_IS_AVX2
#include "resize/bilinear_avx2-inl.h"
#include "resize/bilinear_quads_avx2-inl.h"
#endif

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

template <size_t kSampleBytes>
struct Bilinear {
  static constexpr size_t kSample = kSampleBytes, kTaps = 2, kPicks = 2,
                          kStrip = stripBytes(kSample, 2048);
  static constexpr bool kGroupTaps = true;
  // Pixels of large frames come from memory.
  static constexpr bool kPrefetches = kGroupsAtOnce && kSample == 3;
  using Filtered = int16_t;

  struct Tap {
    uint32_t left;
    uint16_t weight;  // of the right sample, in 1/256
    uint8_t step;     // from the left sample to the right one
    size_t lowest() const { return left; }
    size_t right() const { return size_t{left} + step; }
  };
  static HWY_INLINE Tap tapOf(const Axis& across, size_t byte) {
    const size_t column = byte / kSample, left = across.before(column);
    return {static_cast<uint32_t>(left * kSample + byte % kSample),
            static_cast<uint16_t>(across.weight(column)),
            static_cast<uint8_t>((across.clamp(left + 1) - left) * kSample)};
  }

  // A weight of 256 means the lower row alone.
  struct RowTap {
    size_t row[2];
    unsigned weight;  // of the lower row, in 1/256: at most 255

    HWY_INLINE RowTap(const Axis& down, size_t y) : weight(down.weight(y) % 256) {
      const size_t upper = down.before(y) + down.weight(y) / 256;
      row[0] = down.clamp(upper);
      row[1] = weight == 0 ? row[0] : down.clamp(upper + 1);
    }
  };

  class PlainColumns {
   public:
    static constexpr bool kDirect = false, kKept = true, kDownwards = false;

    PlainColumns(const Axis& across, size_t first, size_t bytes) : bytes_(bytes) {
      for (size_t i = 0; i < bytes; ++i) tap_[i] = tapOf(across, first + i);
    }

    void filterRow(int16_t* to, const uint8_t* from) const {
      for (size_t i = 0; i < bytes_; ++i) {
        const int left = from[tap_[i].left], right = from[tap_[i].right()];
        const int sum = 256 * left + tap_[i].weight * (right - left);
        to[i] = static_cast<int16_t>(sum - 32768 + 128);
      }
    }

    void makeRow(uint8_t* to, const int16_t* const (&rows)[2], const RowTap& tap,
                 const uint8_t* const*) const {
      const int16_t *upper = rows[0], *lower = rows[1];
      const int weight = static_cast<int>(tap.weight);
      for (size_t i = 0; i < bytes_; ++i) {
        const int sum = upper[i] + ((weight * (lower[i] - upper[i])) >> 8);
        to[i] = static_cast<uint8_t>((sum >> 8) + 128);
      }
    }

   private:
    size_t bytes_;
    Tap tap_[kStrip];
  };

#if ZELM_IS_AVX2
  using Reduced = QuadColumns<Bilinear>;
  using SourceRows = RowPairs<RowTap>;
#endif

#if ZELM_VECTORS
  // When halving, left and right samples side by side are the bytes of the row in their
  // order, but for the few vectors in which a position moves on by 3 samples.
  //
  // A weight of 256 is no byte, so where one sample counts alone it is taken twice,
  // with 128 each.
  template <size_t kPieces>
  struct Unit : Picks<kPieces> {
    HWY_INLINE void set(size_t lane, const Tap& tap) {
      const size_t left = leftPlace(lane), right = left + kRightPlace;
      const bool alone = tap.weight % 256 == 0;
      const size_t leftAt = tap.weight == 256 ? tap.right() : tap.left;
      const size_t rightAt = tap.weight == 0 ? tap.left : tap.right();
      Picks<kPieces>::set(left, leftAt);
      Picks<kPieces>::set(right, rightAt);
      if (kMayRun) {
        run = (lane == 0 || run) && this->isInRun(left, leftAt) &&
              this->isInRun(right, rightAt);
      }
      weights[left] = static_cast<uint8_t>(alone ? 128 : 256 - tap.weight);
      weights[right] = static_cast<uint8_t>(alone ? 128 : tap.weight);
    }

    template <class Taps>
    HWY_INLINE void setGroup(size_t group, const Taps& taps, size_t byte,
                             size_t rowBytes) {
      const auto pairs = taps.bilinear(byte);
      this->place(group, pairs.lowest, rowBytes);
      Picks<kPieces>::setGroup(group, pairs.lowest, pairs.offsets);
      if (kMayRun) run = (group == 0 || run) && this->isGroupInRun(group);
      pairs.storeWeights(weights + group * kPieceBytes);
    }

    HWY_INLINE auto filter(const uint8_t* from) const {
      return filterSamples(samples(from), weights);
    }
    // Both rows are picked first, so that what they share is loaded once.
    HWY_INLINE auto filterBoth(const uint8_t* upper, const uint8_t* lower) const {
      const Vec<U8> above = samples(upper), below = samples(lower);
      const auto first = filterSamples(above, weights);
      return std::make_pair(first, filterSamples(below, weights));
    }

    HWY_INLINE Vec<U8> samples(const uint8_t* from) const {
      return kMayRun && run ? this->loadRun(from) : this->pick(from);
    }

    static constexpr bool kMayRun = kRuns && kSample == 1 && kPieces == 2;
    bool run;  // whether the unit is loaded without a shuffle
    alignas(64) uint8_t weights[kBytes];
  };

  template <size_t kPieces>
  struct VectorColumns : UnitTables<Bilinear, Unit<kPieces>> {
    using UnitTables<Bilinear, Unit<kPieces>>::UnitTables;
    static constexpr bool kDirect = true, kKept = true, kDownwards = true;

    HWY_INLINE void filterRow(int16_t* to, const uint8_t* from) const {
      const size_t units = 2 * vectorsFor(this->bytes_);
      for (size_t u = 0; u < units; ++u) {
        hn::Store(asI16(this->units_[u].filter(from)), i16, to + u * (kBytes / 2));
      }
    }

#if ZELM_IS_AVX2
    HWY_INLINE void makeDownwards(const Region& to, const RowsDown& rows) const {
      const SourceRows sources(to, rows);
      const size_t vectors = vectorsFor(this->bytes_) - this->endsInHalf_;
      for (size_t v = 0; v < vectors; ++v) {
        const HeldUnit<Unit<kPieces>> first(this->units_[2 * v]),
            second(this->units_[2 * v + 1]);
        blendDownwards(to.origin + vectorStart(v, this->bytes_), to.stride, sources,
                       first, second);
      }
      if (this->endsInHalf_) {
        const HeldUnit<Unit<kPieces>> last(this->units_[2 * vectors]);
        blendHalfDownwards(to.origin + this->bytes_ - kBytes / 2, to.stride, sources,
                           last);
      }
    }
#endif

    // Inlined, the compiler would be short of registers for this loop and load operands
    // again and again.
    HWY_NOINLINE void makeRow(uint8_t* to, const int16_t* const (&rows)[2],
                              const RowTap& tap, const uint8_t* const*) const {
      blendKeptRows(to, rows[0], rows[1], tap.weight, this->bytes_);
    }

    HWY_INLINE void makeRow(uint8_t* to, const uint8_t* const (&rows)[2],
                            const RowTap& tap, const uint8_t* const* next) const {
      const auto upper = [&](size_t u)
                             HWY_ATTR { return this->units_[u].filter(rows[0]); };
      const auto both = [&](size_t u) HWY_ATTR {
        return this->units_[u].filterBoth(rows[0], rows[1]);
      };
      if (kPrefetches && next != nullptr) {
        blendUnits(to, tap.weight, this->bytes_, upper, [&](size_t u) HWY_ATTR {
          __builtin_prefetch(next[0] + this->units_[u].start());
          __builtin_prefetch(next[1] + this->units_[u].start());
          return both(u);
        });
      } else {
        blendUnits(to, tap.weight, this->bytes_, upper, both);
      }
    }
  };
#endif  // ZELM_VECTORS
};

ScalePart* kernelOf(size_t sample) { return scalerOf<Bilinear>(sample); }

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#include "simd/vbmi_pass.h"

#if HWY_ONCE
zelm::ScalePart* zelm::bilinearKernel(size_t sample, size_t bytes) {
  return ZELM_KERNEL_FOR(kernelOf, bytes)(sample);
}
#endif  // HWY_ONCE
