// Bicubic scaling of a luma plane or of chroma pairs: four taps in each direction,
// whose weights sum to 256 and whose indices are clamped into the region.
//   H = sum of wx * sample                      17 bits and sign, not rounded
//   out = clamp((sum of wy * H + 32768) >> 16)
// The sums are exact, so the order of the passes is free: rows are filtered
// horizontally, kept, and combined vertically.
//
// Vectors use samples less 128, which makes H - 32768. This is one bit too wide for 16,
// so it is kept as the sum of two neighbouring lanes, X + Z, which one pairwise
// multiplication with (wy, wy) joins. X holds half of the inner taps, the outer ones
// and
// + 128, Z holds the other half. Weights sum to 256, so combining such rows makes the
// sum above less 2^23, rounding included: its upper 16 bits are out - 128.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "resize/bicubic.cc"
#include "simd/each_target.h"  // before all others

#include "plane.h"
#include "resize/cubic_tables.h"
#include "resize/scale_plane.h"
#include "resize/scaler-inl.h"
#include "simd/dispatch.h"
#include "simd/vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// Returns the indices of the four samples around `at`.
HWY_INLINE void findTaps(size_t (&index)[4], const Axis& axis, size_t at) {
  index[0] = at > 0 ? at - 1 : 0;
  for (size_t t = 1; t < 4; ++t) index[t] = axis.clamp(at + t - 1);
}

template <size_t kSampleBytes>
struct Bicubic {
  // Four rows of 32-bit lanes are kept, and stay in the first-level cache beside the
  // tables.
  static constexpr size_t kSample = kSampleBytes, kTaps = 4, kPicks = 2,
                          kStrip = stripBytes(kSample, 512);
  static constexpr bool kGroupTaps = false;
  using Filtered = int32_t;

  struct Tap {
    size_t position[4];
    CubicTaps weights;
    size_t lowest() const { return position[0]; }
  };
  static HWY_INLINE Tap tapOf(const Axis& across, size_t byte) {
    const size_t column = byte / kSample;
    Tap tap;
    findTaps(tap.position, across, across.before(column));
    for (size_t& position : tap.position)
      position = position * kSample + byte % kSample;
    tap.weights = cubicTaps(across.weight(column));
    return tap;
  }

  struct RowTap {
    size_t row[4];
    CubicTaps weights;

    HWY_INLINE RowTap(const Axis& down, size_t y) : weights(cubicTaps(down.weight(y))) {
      findTaps(row, down, down.before(y));
    }
  };

  class PlainColumns {
   public:
    static constexpr bool kDirect = false, kKept = true, kDownwards = false;

    PlainColumns(const Axis& across, size_t first, size_t bytes) : bytes_(bytes) {
      for (size_t i = 0; i < bytes; ++i) {
        const Tap tap = tapOf(across, first + i);
        for (size_t t = 0; t < 4; ++t) {
          position_[t][i] = static_cast<uint32_t>(tap.position[t]);
          weight_[t][i] = static_cast<int16_t>(tap.weights.tap[t]);
        }
      }
    }

    void filterRow(int32_t* to, const uint8_t* from) const {
      for (size_t i = 0; i < bytes_; ++i) {
        int32_t sum = 0;
        for (size_t t = 0; t < 4; ++t) sum += weight_[t][i] * from[position_[t][i]];
        to[i] = sum;
      }
    }

    void makeRow(uint8_t* to, const int32_t* const (&rows)[4], const RowTap& tap,
                 const uint8_t* const*) const {
      for (size_t i = 0; i < bytes_; ++i) {
        int32_t sum = 32768;
        for (size_t t = 0; t < 4; ++t) sum += tap.weights.tap[t] * rows[t][i];
        const int32_t value = sum >> 16;
        to[i] = static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
      }
    }

   private:
    size_t bytes_;
    uint32_t position_[4][kStrip];
    int16_t weight_[4][kStrip];
  };

#if ZELM_VECTORS
  // Samples 1 and 2, and 0 and 3, side by side:
  //   bytes        0    1    2    3    4    5
  //   inner        s1   s2   s1   s2   s1   s2
  //   outer        s0   s3   s0   s3   s0   s3
  //   lanes        0         1         2
  // The inner weights are halved, so that each is a byte; the outer ones are negative
  // and are subtracted.
  template <size_t kPieces>
  struct Unit {
    Picks<kPieces> inner, outer;
    alignas(64) uint8_t weights[3][kBytes];

    HWY_INLINE void place(size_t group, size_t lowest, size_t rowBytes) {
      inner.place(group, lowest, rowBytes);
      outer.place(group, lowest, rowBytes);
    }
    HWY_INLINE void set(size_t lane, const Tap& tap) {
      for (size_t k = 0; k < 2; ++k) {
        const size_t byte = 2 * lane + k;
        inner.set(byte, tap.position[1 + k]);
        outer.set(byte, tap.position[3 * k]);
        const int weight = tap.weights.tap[1 + k];
        weights[0][byte] = static_cast<uint8_t>(weight / 2);
        weights[1][byte] = static_cast<uint8_t>(weight - weight / 2);
        weights[2][byte] = static_cast<uint8_t>(-tap.weights.tap[3 * k]);
      }
    }

    HWY_INLINE void filter(int32_t* to, const uint8_t* from) const {
      const Vec<I8> inside = centred(inner.pick(from)),
                    outside = centred(outer.pick(from));
      const auto products = [&](size_t i, Vec<I8> samples) HWY_ATTR {
        return pairProducts8(hn::Load(u8, weights[i]), samples);
      };
      const Vec<I16> x = hn::Sub(hn::Add(products(0, inside), hn::Set(i16, 128)),
                                 products(2, outside));
      const Vec<I16> z = products(1, inside);
      hn::Store(hn::BitCast(i32, hn::InterleaveLower(i16, x, z)), i32, to);
      hn::Store(hn::BitCast(i32, hn::InterleaveUpper(i16, x, z)), i32, to + kBytes / 4);
    }
  };

  template <size_t kPieces>
  struct VectorColumns : UnitTables<Bicubic, Unit<kPieces>> {
    using UnitTables<Bicubic, Unit<kPieces>>::UnitTables;
    static constexpr bool kDirect = false, kKept = true, kDownwards = false;

    HWY_INLINE void filterRow(int32_t* to, const uint8_t* from) const {
      const size_t units = 2 * vectorsFor(this->bytes_);
      for (size_t u = 0; u < units; ++u) {
        this->units_[u].filter(to + u * (kBytes / 2), from);
      }
    }

    HWY_INLINE void makeRow(uint8_t* to, const int32_t* const (&rows)[4],
                            const RowTap& tap, const uint8_t* const*) const {
      const auto weight = [&](size_t t) HWY_ATTR {
        return hn::Set(i16, static_cast<int16_t>(tap.weights.tap[t]));
      };
      const Vec<I16> w0 = weight(0), w1 = weight(1), w2 = weight(2), w3 = weight(3);
      const auto quarter = [&](size_t lane) HWY_ATTR {
        const auto row = [&](size_t t)
                             HWY_ATTR { return asI16(hn::Load(i32, rows[t] + lane)); };
        const Vec<I32> outer = addPairProducts(pairProducts(row(0), w0), row(3), w3);
        const Vec<I32> inner = addPairProducts(pairProducts(row(1), w1), row(2), w2);
        return hn::ShiftRight<16>(hn::Add(outer, inner));
      };
      constexpr size_t kLanes = kBytes / 4;
      const auto half = [&](size_t lane) HWY_ATTR {
        return narrowInBlocks(quarter(lane), quarter(lane + kLanes));
      };
      const size_t bytes = this->bytes_, vectors = vectorsFor(bytes);
      for (size_t v = 0; v < vectors; ++v) {
        const size_t lane = v * kBytes;
        storeHalves(half(lane), half(lane + 2 * kLanes), to + vectorStart(v, bytes));
      }
    }
  };
#endif  // ZELM_VECTORS
};

ScalePart* kernelOf(size_t sample) { return scalerOf<Bicubic>(sample); }

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#include "simd/vbmi_pass.h"

#if HWY_ONCE
zelm::ScalePart* zelm::bicubicKernel(size_t sample, size_t bytes) {
  return ZELM_KERNEL_FOR(kernelOf, bytes)(sample);
}
#endif  // HWY_ONCE
