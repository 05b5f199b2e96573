// Nearest-neighbour scaling of a luma plane or of whole chroma pairs.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "resize/nearest.cc"
#include "simd/each_target.h"  // before all others

#include "plane.h"
#include "resize/scale_plane.h"
#include "resize/scaler-inl.h"
#include "simd/dispatch.h"
#include "simd/vector-inl.h"

#if ZELM_IS_AVX2
#include "resize/nearest_avx2-inl.h"  // after the headers that it uses
#endif

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

template <size_t kSampleBytes>
struct Nearest {
  static constexpr size_t kSample = kSampleBytes, kTaps = 1, kPicks = 1,
                          kStrip = stripBytes(kSample, 2048);
  static constexpr bool kGroupTaps = true;

  struct Tap {
    size_t position;
    size_t lowest() const { return position; }
  };
  static HWY_INLINE Tap tapOf(const Axis& across, size_t byte) {
    return {across.nearest(byte / kSample) * kSample + byte % kSample};
  }

  struct RowTap {
    size_t row[1];
    HWY_INLINE RowTap(const Axis& down, size_t y) : row{down.nearest(y)} {}
  };

  class PlainColumns {
   public:
    static constexpr bool kDirect = true, kKept = false, kDownwards = false;

    PlainColumns(const Axis& across, size_t first, size_t bytes)
        : samples_(bytes / kSample) {
      for (size_t i = 0; i < samples_; ++i) {
        position_[i] =
            static_cast<uint32_t>(tapOf(across, first + i * kSample).position);
      }
    }

    void makeRow(uint8_t* to, const uint8_t* const (&rows)[1], const RowTap&,
                 const uint8_t* const*) const {
      const uint8_t* from = rows[0];
      for (size_t i = 0; i < samples_; ++i) {
        std::memcpy(to + i * kSample, from + position_[i], kSample);
      }
    }

   private:
    size_t samples_;
    uint32_t position_[kStrip / kSample];
  };

#if ZELM_VECTORS
  template <size_t kPieces>
  struct Unit : Picks<kPieces> {
    HWY_INLINE void set(size_t lane, const Tap& tap) {
      Picks<kPieces>::set(lane, tap.position);
    }
    template <class Taps>
    HWY_INLINE void setGroup(size_t group, const Taps& taps, size_t byte,
                             size_t rowBytes) {
      const auto from = taps.nearest(byte);
      this->place(group, from.lowest, rowBytes);
      Picks<kPieces>::setGroup(group, from.lowest, from.offsets);
    }
  };

  template <size_t kPieces>
  struct VectorColumns : UnitTables<Nearest, Unit<kPieces>> {
    using UnitTables<Nearest, Unit<kPieces>>::UnitTables;
    static constexpr bool kDirect = true, kKept = false, kDownwards = true;

#if ZELM_IS_AVX2
    HWY_INLINE void makeDownwards(const Region& to, const RowsDown& rows) const {
      pickDownwards(to, rows, this->units_, this->bytes_, this->endsInHalf_);
    }
#endif

    HWY_INLINE void makeRow(uint8_t* to, const uint8_t* const (&rows)[1], const RowTap&,
                            const uint8_t* const* next) const {
      const uint8_t* from = rows[0];
      const Unit<kPieces>* unit = this->units_;
      inBlocks(this->bytes_, kBytes, [&](size_t i) HWY_ATTR {
        if (next != nullptr) unit->prefetch(next[0]);
        store(unit->pick(from), to + i);
        ++unit;
      });
    }
  };
#endif
};

ScalePart* kernelOf(size_t sample) { return scalerOf<Nearest>(sample); }

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#include "simd/vbmi_pass.h"

#if HWY_ONCE
zelm::ScalePart* zelm::nearestKernel(size_t sample, size_t bytes) {
  return ZELM_KERNEL_FOR(kernelOf, bytes)(sample);
}
#endif  // HWY_ONCE
