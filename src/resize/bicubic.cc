// Bicubic scaling of a luma plane or of chroma pairs: four taps in each direction
// that sum to 256, indices clamped into the region.
//   H = sum of wx * sample                      17 bits and sign, not rounded
//   out = clamp((sum of wy * H + 32768) >> 16)
// The sums are exact, so the order of the passes is free: rows are filtered
// horizontally, kept, and combined.
//
// Vectors use samples less 128, which makes H - 32768: one bit too wide for 16, so it
// is kept as the sum of two lanes, X + Z, that one pairwise multiplication with (wy,
// wy) joins. X holds half of the inner taps, the outer ones and + 128, Z the other
// half. Weights sum to 256, so combining such rows gives the sum above less 2^23,
// rounding included: its upper 16 bits are out - 128.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "resize/bicubic.cc"
#include "simd/each_target.h"  // before all others

#include "plane.h"
#include "resize/axis.h"
#include "resize/cubic_tables.h"
#include "resize/picks-inl.h"
#include "simd/dispatch.h"
#include "simd/vector-inl.h"
#include "zelm_imageutil.h"

HWY_BEFORE_NAMESPACE();
namespace zelm {
namespace {
namespace HWY_NAMESPACE {

// Destination bytes of a strip: four rows of 32-bit lanes are kept, and stay in the
// first-level cache beside the tables.
constexpr size_t kCubicStripBytes = kStripBytes / 4;

// The four sample indices around `at`.
HWY_INLINE void findTaps(size_t (&index)[4], const Axis& axis, size_t at) {
  index[0] = at > 0 ? at - 1 : 0;
  for (size_t t = 1; t < 4; ++t) index[t] = axis.clamp(at + t - 1);
}

// Where one byte of a destination row comes from; kSample bytes make a sample.
struct Taps {
  size_t position[4];
  CubicTaps weights;
};
template <size_t kSample>
HWY_INLINE Taps tapsOf(const Axis& across, size_t byte) {
  const size_t column = byte / kSample;
  Taps taps;
  findTaps(taps.position, across, across.before(column));
  for (size_t& position : taps.position) position = position * kSample + byte % kSample;
  taps.weights = cubicTaps(across.weight(column));
  return taps;
}

template <size_t kSample>
class PlainColumns {
 public:
  PlainColumns(const Axis& across, size_t first, size_t bytes) : bytes_(bytes) {
    for (size_t i = 0; i < bytes; ++i) {
      const Taps taps = tapsOf<kSample>(across, first + i);
      for (size_t t = 0; t < 4; ++t) {
        position_[t][i] = static_cast<uint32_t>(taps.position[t]);
        weight_[t][i] = static_cast<int16_t>(taps.weights.tap[t]);
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

  void combineRows(uint8_t* to, const int32_t* const (&rows)[4],
                   const CubicTaps& weights) const {
    for (size_t i = 0; i < bytes_; ++i) {
      int32_t sum = 32768;
      for (size_t t = 0; t < 4; ++t) sum += weights.tap[t] * rows[t][i];
      const int32_t value = sum >> 16;
      to[i] = static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
    }
  }

 private:
  size_t bytes_;
  uint32_t position_[4][kCubicStripBytes];
  int16_t weight_[4][kCubicStripBytes];
};

#if ZELM_VECTORS
// A vector of destination bytes is filtered in two halves of 16-bit lanes.
template <size_t kPieces>
class VectorColumns {
 public:
  template <class TapsOf>
  VectorColumns(const TapsOf& tapsOfByte, size_t rowBytes, size_t bytes)
      : bytes_(bytes) {
    forEachGroup(bytes, [&](size_t h, size_t group, const auto& byteOf) HWY_ATTR {
      findGroup(&half_[h], group, rowBytes,
                [&](size_t lane) HWY_ATTR { return tapsOfByte(byteOf(lane)); });
    });
  }

  HWY_INLINE void filterRow(int32_t* to, const uint8_t* from) const {
    const size_t halves = 2 * vectorsFor(bytes_);
    for (size_t h = 0; h < halves; ++h) {
      const Half& table = half_[h];
      const Vec<I8> inner = centred(table.inner.pick(from));
      const Vec<I8> outer = centred(table.outer.pick(from));
      const auto products = [&](size_t i, Vec<I8> samples) HWY_ATTR {
        return pairProducts8(hn::Load(u8, table.weights[i]), samples);
      };
      const Vec<I16> x =
          hn::Sub(hn::Add(products(0, inner), hn::Set(i16, 128)), products(2, outer));
      const Vec<I16> z = products(1, inner);
      int32_t* lanes = to + h * (kBytes / 2);
      hn::Store(hn::BitCast(i32, hn::InterleaveLower(i16, x, z)), i32, lanes);
      hn::Store(hn::BitCast(i32, hn::InterleaveUpper(i16, x, z)), i32,
                lanes + kBytes / 4);
    }
  }

  HWY_INLINE void combineRows(uint8_t* to, const int32_t* const (&rows)[4],
                              const CubicTaps& weights) const {
    const auto weight = [&](size_t t) HWY_ATTR {
      return hn::Set(i16, static_cast<int16_t>(weights.tap[t]));
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
    const size_t bytes = bytes_, vectors = vectorsFor(bytes);
    for (size_t v = 0; v < vectors; ++v) {
      const size_t lane = v * kBytes;
      storeHalves(half(lane), half(lane + 2 * kLanes), to + vectorStart(v, bytes));
    }
  }

 private:
  // Samples 1 and 2, and 0 and 3, side by side; the halves of the inner weights, and
  // the outer ones, which are subtracted.
  struct Half {
    Picks<kPieces> inner, outer;
    alignas(64) uint8_t weights[3][kBytes];
  };

  template <class TapsOfLane>
  static HWY_INLINE void findGroup(Half* table, size_t group, size_t rowBytes,
                                   const TapsOfLane& tapsOfLane) {
    constexpr size_t kLanes = kPieceBytes / 2;
    Taps taps[kLanes];
    size_t lowest = SIZE_MAX;
    for (size_t i = 0; i < kLanes; ++i) {
      taps[i] = tapsOfLane(group * kLanes + i);
      if (taps[i].position[0] < lowest) lowest = taps[i].position[0];
    }
    table->inner.place(group, lowest, rowBytes);
    table->outer.place(group, lowest, rowBytes);
    for (size_t i = 0; i < kLanes; ++i) {
      for (size_t k = 0; k < 2; ++k) {
        const size_t byte = 2 * (group * kLanes + i) + k, outer = 3 * k;
        table->inner.set(byte, taps[i].position[1 + k]);
        table->outer.set(byte, taps[i].position[outer]);
        const int weight = taps[i].weights.tap[1 + k];
        table->weights[0][byte] = static_cast<uint8_t>(weight / 2);
        table->weights[1][byte] = static_cast<uint8_t>(weight - weight / 2);
        table->weights[2][byte] = static_cast<uint8_t>(-taps[i].weights.tap[outer]);
      }
    }
  }

  size_t bytes_;
  Half half_[2 * kCubicStripBytes / kBytes];
};
#endif  // ZELM_VECTORS

// The last four filtered rows: source row y is kept in place y mod 4, so the four
// rows around a position, being neighbours, never push each other out.
template <class Columns>
class FilteredRows {
 public:
  FilteredRows(const Region& from, const Columns& columns)
      : from_(from), columns_(columns) {}

  HWY_INLINE const int32_t* get(size_t y) {
    int32_t* row = rows_[y % 4];
    if (index_[y % 4] != y) {
      columns_.filterRow(row, from_.row(y));
      index_[y % 4] = y;
    }
    return row;
  }

 private:
  const Region& from_;
  const Columns& columns_;
  alignas(64) int32_t rows_[4][kCubicStripBytes];
  size_t index_[4] = {SIZE_MAX, SIZE_MAX, SIZE_MAX, SIZE_MAX};
};

template <size_t kSample>
struct Scaler : Planes {
  using Planes::Planes;

  HWY_INLINE void plain(size_t first, size_t bytes) const {
    scaleStrip(PlainColumns<kSample>(across, first, bytes), first);
  }
#if ZELM_VECTORS
  template <size_t kPieces>
  HWY_INLINE void vectors(size_t first, size_t bytes) const {
    const VectorColumns<kPieces> columns(
        [&](size_t i) HWY_ATTR { return tapsOf<kSample>(across, first + i); },
        from.columns * kSample, bytes);
    scaleStrip(columns, first);
  }
#endif

  template <class Columns>
  HWY_INLINE void scaleStrip(const Columns& columns, size_t first) const {
    FilteredRows<Columns> filtered(from, columns);
    for (size_t y = 0; y < to.rows; ++y) {
      size_t index[4];
      findTaps(index, down, down.before(y));
      const int32_t* const rows[4] = {filtered.get(index[0]), filtered.get(index[1]),
                                      filtered.get(index[2]), filtered.get(index[3])};
      columns.combineRows(to.row(y) + first, rows, cubicTaps(down.weight(y)));
    }
  }
};

void scaleLuma(const Region& to, const Region& from) {
  scaleInStrips<1>(Scaler<1>(to, from), kCubicStripBytes, 2, 4);
}
void scaleChroma(const Region& to, const Region& from) {
  scaleInStrips<2>(Scaler<2>(to, from), kCubicStripBytes, 2, 4);
}

}  // namespace HWY_NAMESPACE
}  // namespace
}  // namespace zelm
HWY_AFTER_NAMESPACE();

#include "simd/vbmi_pass.h"

#if HWY_ONCE
extern "C" void resize_cubic(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  scalePlane(ZELM_KERNEL(scaleLuma), lumaRegion(*dst), lumaRegion(*src), 1);
}

extern "C" void resize_cubicVU(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  scalePlane(ZELM_KERNEL(scaleChroma), chromaRegion(*dst), chromaRegion(*src), 2);
}
#endif  // HWY_ONCE
