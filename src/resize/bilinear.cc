// Bilinear scaling of a luma plane, of chroma pairs, or of three-byte pixels:
//   H = (256 - wx) * left + wx * right          for two source rows, at most 65280
//   out = ((256 - wy) * H[upper] + wy * H[lower] + 32768) >> 16
// All of it is exact, so the order of the passes is free: rows are filtered
// horizontally, kept, and blended.
//
// Samples less 128 give H - 32768, which fits in int16, and so does that + 128: G, as
// rows are kept. With D = G[lower] - G[upper] then
//   out - 128 = (G[upper] + floor(wy * D / 256)) >> 8
// because G is whole. D needs 17 bits. Modulo 2^16 its unsigned product with wy / 256
// is too large by 256 * wy where D is negative; the sum fits in int16 again.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "resize/bilinear.cc"
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

constexpr int kBias = 128 - 32768;

// Where one byte of a destination row comes from; kSample bytes make a sample.
struct Tap {
  size_t left, right;
  unsigned weight;
};
template <size_t kSample>
HWY_INLINE Tap tapOf(const Axis& across, size_t byte) {
  const size_t column = byte / kSample, channel = byte % kSample;
  const size_t left = across.before(column);
  return {left * kSample + channel, across.clamp(left + 1) * kSample + channel,
          across.weight(column)};
}

template <size_t kSample>
class PlainColumns {
 public:
  static constexpr size_t kRowLanes = kStripBytes;

  PlainColumns(const Axis& across, size_t first, size_t bytes) : bytes_(bytes) {
    for (size_t i = 0; i < bytes; ++i) {
      const Tap tap = tapOf<kSample>(across, first + i);
      left_[i] = static_cast<uint32_t>(tap.left);
      step_[i] = static_cast<uint8_t>(tap.right - tap.left);
      weight_[i] = static_cast<uint16_t>(tap.weight);
    }
  }

  void filterRow(int16_t* to, const uint8_t* from) const {
    for (size_t i = 0; i < bytes_; ++i) {
      const int left = from[left_[i]], right = from[left_[i] + step_[i]];
      to[i] = static_cast<int16_t>(256 * left + weight_[i] * (right - left) + kBias);
    }
  }

  void blendRows(uint8_t* to, const int16_t* upper, const int16_t* lower,
                 unsigned weight) const {
    const int lowerWeight = static_cast<int>(weight);
    for (size_t i = 0; i < bytes_; ++i) {
      const int sum = upper[i] + ((lowerWeight * (lower[i] - upper[i])) >> 8);
      to[i] = static_cast<uint8_t>((sum >> 8) + 128);
    }
  }

 private:
  size_t bytes_;
  uint32_t left_[kStripBytes];
  uint8_t step_[kStripBytes];
  uint16_t weight_[kStripBytes];
};

#if ZELM_VECTORS
// A vector of destination bytes is filtered in two halves of 16-bit lanes.
template <size_t kPieces>
class VectorColumns {
 public:
  static constexpr size_t kRowLanes = kStripBytes;

  template <class TapOf>
  VectorColumns(const TapOf& tapOfByte, size_t rowBytes, size_t bytes) : bytes_(bytes) {
    forEachGroup(bytes, [&](size_t h, size_t group, const auto& byteOf) HWY_ATTR {
      findGroup(&half_[h], group, rowBytes,
                [&](size_t lane) HWY_ATTR { return tapOfByte(byteOf(lane)); });
    });
  }

  HWY_INLINE void filterRow(int16_t* to, const uint8_t* from) const {
    const size_t halves = 2 * vectorsFor(bytes_);
    for (size_t h = 0; h < halves; ++h) {
      hn::Store(asI16(filter(h, from)), i16, to + h * (kBytes / 2));
    }
  }

#if ZELM_NEON
  // Addresses are moved on instead of computed, which saves a third of the
  // instructions.
  HWY_INLINE void blendRows(uint8_t* to, const int16_t* upper, const int16_t* lower,
                            unsigned weight) const {
    auto a = reinterpret_cast<const uint8_t*>(upper);
    auto b = reinterpret_cast<const uint8_t*>(lower);
    const auto moveBack = [&](size_t n) { to -= n; };
    if (weight == 0) {
      inMovingBlocks(
          bytes_, kBytes,
          [&]() HWY_ATTR {
            const uint8x16x2_t row = take32(a);
            put16(to, roundedUpperBytes(lanes(row.val[0]), lanes(row.val[1])).raw);
          },
          moveBack);
      return;
    }
    const uint16x4_t weights = rowWeights(weight);
    inMovingBlocks(
        bytes_, kBytes,
        [&]() HWY_ATTR {
          const uint8x16x2_t above = take32(a), below = take32(b);
          const auto half = [&](int h) HWY_ATTR {
            return blend(lanes(above.val[h]), lanes(below.val[h]), weights);
          };
          put16(to, packInBlocks(half(0), half(1)).raw);
        },
        moveBack);
  }

  // The same without keeping filtered rows.
  HWY_INLINE void scaleRow(uint8_t* to, const uint8_t* upper, const uint8_t* lower,
                           unsigned weight) const {
    const size_t bytes = bytes_, vectors = vectorsFor(bytes);
    if (weight == 0) {
      for (size_t v = 0; v < vectors; ++v) {
        const Vec<U16> first = filter(2 * v, upper), second = filter(2 * v + 1, upper);
        store(roundedUpperBytes(first, second), to + vectorStart(v, bytes));
      }
      return;
    }
    const uint16x4_t weights = rowWeights(weight);
    for (size_t v = 0; v < vectors; ++v) {
      Vec<I16> half[2];
      for (size_t h = 0; h < 2; ++h) {
        const Vec<U16> above = filter(2 * v + h, upper);
        half[h] = blend(above, filter(2 * v + h, lower), weights);
      }
      store(packInBlocks(half[0], half[1]), to + vectorStart(v, bytes));
    }
  }
#else
  HWY_INLINE void blendRows(uint8_t* to, const int16_t* upper, const int16_t* lower,
                            unsigned weight) const {
    blendHalves(to, weight, [&](size_t h, Vec<I16>* a, Vec<I16>* b) HWY_ATTR {
      *a = hn::Load(i16, upper + h * (kBytes / 2));
      *b = hn::Load(i16, lower + h * (kBytes / 2));
    });
  }

  // The same without keeping filtered rows.
  HWY_INLINE void scaleRow(uint8_t* to, const uint8_t* upper, const uint8_t* lower,
                           unsigned weight) const {
    blendHalves(to, weight, [&](size_t h, Vec<I16>* a, Vec<I16>* b) HWY_ATTR {
      *a = filter(h, upper);
      *b = filter(h, lower);
    });
  }
#endif

 private:
  struct Half {
    Picks<kPieces> picks;
    alignas(64) uint8_t weights[kBytes];
  };

  // Left and right samples side by side. A weight of 256 is no byte, so where one
  // sample counts alone it is taken twice, with 128 each.
  template <class TapOfLane>
  static HWY_INLINE void findGroup(Half* table, size_t group, size_t rowBytes,
                                   const TapOfLane& tapOfLane) {
    constexpr size_t kLanes = kPieceBytes / 2;
    Tap taps[kLanes];
    size_t lowest = SIZE_MAX;
    for (size_t i = 0; i < kLanes; ++i) {
      taps[i] = tapOfLane(group * kLanes + i);
      if (taps[i].left < lowest) lowest = taps[i].left;
    }
    table->picks.place(group, lowest, rowBytes);
    for (size_t i = 0; i < kLanes; ++i) {
      const size_t left = leftPlace(group * kLanes + i), right = left + kRightPlace;
      const unsigned weight = taps[i].weight;
      const bool alone = weight % 256 == 0;
      table->picks.set(left, weight == 256 ? taps[i].right : taps[i].left);
      table->picks.set(right, weight == 0 ? taps[i].left : taps[i].right);
      table->weights[left] = static_cast<uint8_t>(alone ? 128 : 256 - weight);
      table->weights[right] = static_cast<uint8_t>(alone ? 128 : weight);
    }
  }

#if ZELM_NEON
  // Products of unsigned bytes are at hand, so rows are kept as H, and halves of picks
  // are the left and the right samples.
  static constexpr size_t kRightPlace = 8;
  static size_t leftPlace(size_t lane) { return lane; }

  HWY_INLINE Vec<U16> filter(size_t h, const uint8_t* from) const {
    const uint8x16_t samples = half_[h].picks.pick(from).raw;
    const uint8x16_t weights = vld1q_u8(half_[h].weights);
    const uint16x8_t left = vmull_u8(vget_low_u8(samples), vget_low_u8(weights));
    return Vec<U16>{vmlal_u8(left, vget_high_u8(samples), vget_high_u8(weights))};
  }

  static HWY_INLINE Vec<U16> lanes(uint8x16_t bytes) { return asU16(Vec<U8>{bytes}); }

  // Of the upper row, then of the lower one.
  static HWY_INLINE uint16x4_t rowWeights(unsigned weight) {
    return vset_lane_u16(static_cast<uint16_t>(256 - weight),
                         vdup_n_u16(static_cast<uint16_t>(weight)), 0);
  }

  static HWY_INLINE Vec<I16> blend(Vec<U16> upper, Vec<U16> lower, uint16x4_t weights) {
    const uint16x8_t a = upper.raw, b = lower.raw;
    const uint32x4_t first = vmlal_lane_u16(vmull_lane_u16(vget_low_u16(a), weights, 0),
                                            vget_low_u16(b), weights, 1);
    const uint32x4_t second = vmlal_lane_u16(
        vmull_lane_u16(vget_high_u16(a), weights, 0), vget_high_u16(b), weights, 1);
    return asI16(roundedUpperHalves(Vec<U32>{first}, Vec<U32>{second}));
  }
#else
  static constexpr size_t kRightPlace = 1;
  static size_t leftPlace(size_t lane) { return 2 * lane; }

  HWY_INLINE Vec<I16> filter(size_t h, const uint8_t* from) const {
    const Half& table = half_[h];
    const Vec<I16> sums =
        pairProducts8(hn::Load(u8, table.weights), centred(table.picks.pick(from)));
    return hn::Add(sums, hn::Set(i16, 128));
  }

  template <class LoadRows>
  HWY_INLINE void blendHalves(uint8_t* to, unsigned weight,
                              const LoadRows& loadRows) const {
    const Vec<U16> by = hn::Set(u16, static_cast<uint16_t>(256 * weight));
    const auto blend = [&](size_t h) HWY_ATTR {
      Vec<I16> a, b;
      loadRows(h, &a, &b);
      const Vec<I16> product = asI16(hn::MulHigh(asU16(hn::Sub(b, a)), by));
      return subtractWhereLess(hn::Add(a, product), b, a, asI16(by));
    };
    const size_t bytes = bytes_, vectors = vectorsFor(bytes);
    for (size_t v = 0; v < vectors; ++v) {
      storeUpperBytes(blend(2 * v), blend(2 * v + 1), to + vectorStart(v, bytes));
    }
  }
#endif  // ZELM_NEON

  size_t bytes_;
  Half half_[2 * kStripBytes / kBytes];
};
#endif  // ZELM_VECTORS

// The last two filtered rows: when a plane is enlarged, every source row is filtered
// once.
template <class Columns>
class FilteredRows {
 public:
  FilteredRows(const Region& from, const Columns& columns)
      : from_(from), columns_(columns) {}

  // Row y, filtered. The row asked for before stays valid.
  HWY_INLINE const int16_t* get(size_t y) {
    if (index_[newest_] == y) return rows_[newest_];
    newest_ ^= 1;
    if (index_[newest_] != y) {
      columns_.filterRow(rows_[newest_], from_.row(y));
      index_[newest_] = y;
    }
    return rows_[newest_];
  }

 private:
  const Region& from_;
  const Columns& columns_;
  alignas(64) int16_t rows_[2][Columns::kRowLanes];
  size_t index_[2] = {SIZE_MAX, SIZE_MAX};
  int newest_ = 0;
};

// The source rows of a destination row. A weight of 256 means the lower row alone.
struct RowTap {
  size_t upper, lower;
  unsigned weight;

  HWY_INLINE RowTap(const Axis& down, size_t y) : weight(down.weight(y) % 256) {
    const size_t first = down.before(y) + down.weight(y) / 256;
    upper = down.clamp(first);
    lower = weight == 0 ? upper : down.clamp(first + 1);
  }
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
        [&](size_t i) HWY_ATTR { return tapOf<kSample>(across, first + i); },
        from.columns * kSample, bytes);
    // Where reducing leaves little of a filtered row to use again, none is kept.
    if (2 * from.rows < 3 * to.rows) {
      scaleStrip(columns, first);
    } else {
      for (size_t y = 0; y < to.rows; ++y) {
        const RowTap tap(down, y);
        columns.scaleRow(to.row(y) + first, from.row(tap.upper), from.row(tap.lower),
                         tap.weight);
      }
    }
  }
#endif

  template <class Columns>
  HWY_INLINE void scaleStrip(const Columns& columns, size_t first) const {
    FilteredRows<Columns> rows(from, columns);
    for (size_t y = 0; y < to.rows; ++y) {
      const RowTap tap(down, y);
      const int16_t* upper = rows.get(tap.upper);
      columns.blendRows(to.row(y) + first, upper, rows.get(tap.lower), tap.weight);
    }
  }
};

template <size_t kSample>
HWY_INLINE void scaleSamples(const Region& to, const Region& from) {
  scaleInStrips<kSample>(Scaler<kSample>(to, from), kStripBytes, 2, 2);
}

void scaleLuma(const Region& to, const Region& from) { scaleSamples<1>(to, from); }
void scaleChroma(const Region& to, const Region& from) { scaleSamples<2>(to, from); }
void scale3Channels(const Region& to, const Region& from) { scaleSamples<3>(to, from); }

}  // namespace HWY_NAMESPACE
}  // namespace
}  // namespace zelm
HWY_AFTER_NAMESPACE();

#include "simd/vbmi_pass.h"

#if HWY_ONCE
extern "C" void resize_linear(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  scalePlane(ZELM_KERNEL(scaleLuma), lumaRegion(*dst), lumaRegion(*src), 1);
}

extern "C" void resize_linearVU(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  scalePlane(ZELM_KERNEL(scaleChroma), chromaRegion(*dst), chromaRegion(*src), 2);
}

// The destination is a packed block at `data`.
extern "C" void resize_linear3ch(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  const size_t columns = dst->roiWidth;
  const Region to = {dst->data, 3 * columns, columns, dst->roiHeight};
  scalePlane(ZELM_KERNEL(scale3Channels), to, packedRegion(*src, 3), 3);
}
#endif  // HWY_ONCE
