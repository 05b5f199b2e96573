// Nearest-neighbour scaling of a luma plane or of whole chroma pairs. The source
// columns are the same for all rows, so they are found once per strip.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "resize/nearest.cc"
#include "simd/each_target.h"  // before all others

#include "plane.h"
#include "resize/axis.h"
#include "resize/picks-inl.h"
#include "simd/dispatch.h"
#include "simd/vector-inl.h"
#include "zelm_imageutil.h"

HWY_BEFORE_NAMESPACE();
namespace zelm {
namespace {
namespace HWY_NAMESPACE {

// A strip of destination bytes from `first` on; kSample bytes make a sample.
template <size_t kSample>
struct Strip {
  const Axis& across;
  size_t first;
  size_t bytes;

  size_t sourceByte(size_t i) const {
    return across.nearest((first + i) / kSample) * kSample + (first + i) % kSample;
  }
};

template <size_t kSample>
class PlainColumns {
 public:
  explicit PlainColumns(const Strip<kSample>& strip) : samples_(strip.bytes / kSample) {
    for (size_t i = 0; i < samples_; ++i) {
      position_[i] = static_cast<uint32_t>(strip.sourceByte(i * kSample));
    }
  }

  void pickRow(uint8_t* to, const uint8_t* from, const uint8_t*) const {
    for (size_t i = 0; i < samples_; ++i) {
      std::memcpy(to + i * kSample, from + position_[i], kSample);
    }
  }

 private:
  size_t samples_;
  uint32_t position_[kStripBytes / kSample];
};

#if ZELM_VECTORS
template <size_t kPieces>
class VectorColumns {
 public:
  template <size_t kSample>
  VectorColumns(const Strip<kSample>& strip, size_t rowBytes) : bytes_(strip.bytes) {
    for (size_t v = 0; v < vectorsFor(bytes_); ++v) {
      const size_t start = vectorStart(v, bytes_);
      for (size_t i = 0; i < kBytes; ++i) {
        const size_t position = strip.sourceByte(start + i);
        if (i % kPieceBytes == 0) picks_[v].place(i / kPieceBytes, position, rowBytes);
        picks_[v].set(i, position);
      }
    }
  }

  // `next` is the row that will be picked from next, or null.
  HWY_INLINE void pickRow(uint8_t* to, const uint8_t* from, const uint8_t* next) const {
    const size_t bytes = bytes_, vectors = vectorsFor(bytes);
    for (size_t v = 0; v < vectors; ++v) {
      if (next != nullptr) picks_[v].prefetch(next);
      store(picks_[v].pick(from), to + vectorStart(v, bytes));
    }
  }

 private:
  size_t bytes_;
  Picks<kPieces> picks_[kStripBytes / kBytes];
};
#endif

template <size_t kSample>
struct Scaler : Planes {
  using Planes::Planes;

  HWY_INLINE void plain(size_t first, size_t bytes) const {
    scaleStrip(PlainColumns<kSample>({across, first, bytes}), first, bytes);
  }
#if ZELM_VECTORS
  template <size_t kPieces>
  HWY_INLINE void vectors(size_t first, size_t bytes) const {
    const VectorColumns<kPieces> columns(Strip<kSample>{across, first, bytes},
                                         from.columns * kSample);
    scaleStrip(columns, first, bytes);
  }
#endif

  template <class Columns>
  HWY_INLINE void scaleStrip(const Columns& columns, size_t first, size_t bytes) const {
    const bool reducing = to.rows < from.rows;
    size_t previous = SIZE_MAX;
    for (size_t y = 0; y < to.rows; ++y) {
      uint8_t* row = to.row(y) + first;
      const size_t source = down.nearest(y);
      if (source == previous) {
        copyBytes(row, row - to.stride, bytes);
      } else {
        const uint8_t* next = from.row(down.nearest(y + 1));
        columns.pickRow(row, from.row(source), reducing ? next : nullptr);
      }
      previous = source;
    }
  }
};

void scaleLuma(const Region& to, const Region& from) {
  scaleInStrips<1>(Scaler<1>(to, from), kStripBytes, 1, 1);
}
void scaleChroma(const Region& to, const Region& from) {
  scaleInStrips<2>(Scaler<2>(to, from), kStripBytes, 1, 1);
}

}  // namespace HWY_NAMESPACE
}  // namespace
}  // namespace zelm
HWY_AFTER_NAMESPACE();

#include "simd/vbmi_pass.h"

#if HWY_ONCE
extern "C" void resize_nearest(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  scalePlane(ZELM_KERNEL(scaleLuma), lumaRegion(*dst), lumaRegion(*src), 1);
}

extern "C" void resize_nearestVU(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  scalePlane(ZELM_KERNEL(scaleChroma), chromaRegion(*dst), chromaRegion(*src), 2);
}
#endif  // HWY_ONCE
