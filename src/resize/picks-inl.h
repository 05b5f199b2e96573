// Picks: gathers bytes of a source row in an order that is fixed beforehand. Included
// once per instruction set.
//
// Every group of kPieceBytes bytes of a vector is picked out of one to four pieces of
// that size, which follow each other in the row. The last pieces are moved back so that
// they end with the row; a row has at least kPieceBytes bytes. A piece is a block of 16
// bytes, and picking is one shuffle per piece, on Arm one table lookup per two pieces;
// with VBMI a piece is a whole vector.
//   row      ................................................
//   pieces        |--- 0 ---|--- 1 ---|      of group 0
//                               |--- 0 ---|--- 1 ---|      of group 1
#if ZELM_VBMI || defined(ZELM_SRC_RESIZE_PICKS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#if !ZELM_VBMI
#ifdef ZELM_SRC_RESIZE_PICKS_INL_H_
#undef ZELM_SRC_RESIZE_PICKS_INL_H_
#else
#define ZELM_SRC_RESIZE_PICKS_INL_H_
#endif
#endif

#include "resize/axis.h"
#include "simd/vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm {
namespace {
namespace HWY_NAMESPACE {

// What a scaler works on. Columns lie the same for all rows.
struct Planes {
  const Region& to;
  const Region& from;
  const Axis across, down;

  Planes(const Region& destination, const Region& source)
      : to(destination),
        from(source),
        across(source.columns, destination.columns),
        down(source.rows, destination.rows) {}
};

#if ZELM_VECTORS

constexpr size_t kPieceBytes = ZELM_VBMI ? kBytes : 16;
constexpr size_t kGroups = kBytes / kPieceBytes;

// Where the pieces of each group of a vector begin.
template <size_t kPieces>
class Pieces {
 public:
  // To be called for a group before its bytes are set: `lowest` is where the lowest of
  // them lies in the row.
  HWY_INLINE void place(size_t group, size_t lowest, size_t rowBytes) {
    const size_t last = rowBytes - kPieceBytes;
    for (size_t p = 0; p < kPieces; ++p) {
      const size_t at = lowest + kPieceBytes * p;
      starts_[p][group] = static_cast<uint32_t>(at < last ? at : last);
    }
  }

  // Prefetches the pieces of a row. Where rows are left out the processor does not
  // guess which one is next.
  HWY_INLINE void prefetch(const uint8_t* row) const {
    __builtin_prefetch(row + starts_[0][0]);
    if (kBytes > 16) __builtin_prefetch(row + starts_[kPieces - 1][kGroups - 1]);
  }

 protected:
  uint32_t starts_[kPieces][kGroups];
};

#endif  // ZELM_VECTORS

}  // namespace HWY_NAMESPACE
}  // namespace
}  // namespace zelm
HWY_AFTER_NAMESPACE();

// Picks<pieces>: which bytes of the pieces a vector is made of. set(i, position) says
// where byte i of the vector lies in the row, pick(row) returns the vector.
#if ZELM_VBMI
#include "resize/picks_vbmi-inl.h"
#elif ZELM_NEON
#include "resize/picks_neon-inl.h"
#elif ZELM_VECTORS
#include "resize/picks_x86-inl.h"
#endif

HWY_BEFORE_NAMESPACE();
namespace zelm {
namespace {
namespace HWY_NAMESPACE {

#if ZELM_VECTORS

template <size_t kPieces>
using PieceCount = std::integral_constant<size_t, kPieces>;

// Calls body(PieceCount<n>()) with as many pieces as `span` bytes need. False if no
// number does.
template <class Body>
HWY_INLINE bool withPieces(size_t span, const Body& body) {
  const size_t pieces = (span + kPieceBytes - 1) / kPieceBytes;
  if (pieces <= 1) {
    body(PieceCount<1>());
  } else if (pieces == 2) {
    body(PieceCount<2>());
  } else if (pieces == 3) {
    body(PieceCount<3>());
  } else if (pieces == 4) {
    body(PieceCount<4>());
  }
  return pieces <= 4;
}

// The most source bytes that `bytes` bytes of a destination row can span when each is
// made of `taps` samples side by side.
template <size_t kSample>
HWY_INLINE size_t spanOf(const Axis& across, size_t bytes, size_t taps) {
  // So many bytes belong to at most so many samples.
  const size_t samples = kSample == 3 ? (bytes + 2) / 3 + 1 : bytes / kSample;
  return (across.before(samples - 1) + 1 + taps) * kSample;
}

// A vector of bytes is computed in two halves of 16-bit lanes and packed again. A half
// makes every other half piece of the vector, because packing works within pieces; with
// a piece of 16 bytes:
//   half 0   bytes  0..7           16..23           32..39          48..55
//   half 1   bytes         8..15            24..31          40..47          56..63
// With VBMI, where a piece is a vector, these are its lower and its upper half, so the
// source bytes of a half lie close together.
HWY_INLINE size_t byteOfLane(size_t half, size_t lane) {
  constexpr size_t kLanes = kPieceBytes / 2;
  return lane / kLanes * kPieceBytes + half * kLanes + lane % kLanes;
}

// Packs two such halves into bytes less 128, limits them, and stores the bytes.
HWY_INLINE void storeHalves(Vec<I16> first, Vec<I16> second, uint8_t* to) {
  Vec<U8> bytes = asU8(packSignedInBlocks(first, second));
  if (kPieceBytes > 16) bytes = joinBlocks(bytes);
  store(hn::Xor(bytes, hn::Set(u8, 128)), to);
}

// Samples less 128, as signed bytes.
HWY_INLINE Vec<I8> centred(Vec<U8> samples) {
  return hn::BitCast(i8, hn::Xor(samples, hn::Set(u8, 128)));
}

// Vectors that cover `bytes` bytes, the last one moved back to end with them.
HWY_INLINE size_t vectorsFor(size_t bytes) { return (bytes + kBytes - 1) / kBytes; }
HWY_INLINE size_t vectorStart(size_t vector, size_t bytes) {
  const size_t start = vector * kBytes;
  return start + kBytes <= bytes ? start : bytes - kBytes;
}

// Calls body(h, group, byteOf) for every group of every half h of the vectors that
// cover `bytes` bytes; byteOf(lane) is the byte of the row that a lane of the half
// makes.
template <class Body>
HWY_INLINE void forEachGroup(size_t bytes, const Body& body) {
  for (size_t h = 0; h < 2 * vectorsFor(bytes); ++h) {
    const size_t start = vectorStart(h / 2, bytes);
    const auto byteOf = [=](size_t lane)
                            HWY_ATTR { return start + byteOfLane(h % 2, lane); };
    for (size_t group = 0; group < kGroups; ++group) body(h, group, byteOf);
  }
}

#endif  // ZELM_VECTORS

// Lets a scaler make its destination in strips of at most `stripBytes` bytes of every
// row: by scaler.vectors<pieces>(first, bytes) if rows are long enough for vectors and
// sources lie close enough together, otherwise by scaler.plain(first, bytes). A
// destination byte is made of `picksPerByte` picks from as many samples as `taps`.
template <size_t kSample, class Scaler>
HWY_INLINE void scaleInStrips(const Scaler& scaler, size_t stripBytes,
                              [[maybe_unused]] size_t picksPerByte,
                              [[maybe_unused]] size_t taps) {
  const size_t rowBytes = scaler.to.columns * kSample;
  for (size_t first = 0; first < rowBytes; first += stripBytes) {
    const size_t rest = rowBytes - first;
    const size_t bytes = rest < stripBytes ? rest : stripBytes;
#if ZELM_VECTORS
    const size_t span =
        spanOf<kSample>(scaler.across, kPieceBytes / picksPerByte, taps);
    if (bytes >= kBytes && scaler.from.columns * kSample >= kPieceBytes &&
        withPieces(span, [&](auto pieces) HWY_ATTR {
          scaler.template vectors<pieces>(first, bytes);
        })) {
      continue;
    }
#endif
    scaler.plain(first, bytes);
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace
}  // namespace zelm
HWY_AFTER_NAMESPACE();

#endif  // include guard
