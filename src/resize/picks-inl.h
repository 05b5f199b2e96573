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
namespace zelm::HWY_NAMESPACE {
namespace {

#if ZELM_VECTORS

constexpr size_t kPieceBytes = ZELM_VBMI ? kBytes : 16;
constexpr size_t kGroups = kBytes / kPieceBytes;

// Whether it pays to look for runs, which are loaded without a shuffle. Where one
// lookup takes from two pieces the branch costs more.
constexpr bool kRuns = !ZELM_VBMI && !ZELM_NEON;

// Whether two pieces lie side by side even where the row ends, so that one load takes
// both.
constexpr bool kWindows = ZELM_IS_AVX2;

// What a vector is made of: where the pieces of each of its groups begin, and for each
// of kLookups lookups which bytes they give.
template <size_t kPieces, size_t kLookups>
class PickTable {
 public:
  // To be called for a group before its bytes are set: `lowest` is where the lowest of
  // them lies in the row.
  HWY_INLINE void place(size_t group, size_t lowest, size_t rowBytes) {
    if (kWindows && kPieces == 2) {
      const size_t last = rowBytes - 2 * kPieceBytes;
      starts_[0][group] = static_cast<uint32_t>(lowest < last ? lowest : last);
      starts_[1][group] = starts_[0][group] + kPieceBytes;
      return;
    }
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

  // Returns where the first piece begins.
  HWY_INLINE size_t start() const { return starts_[0][0]; }

  // A run is made of first pieces as they are: byte i of the vector lies i bytes behind
  // the start of its piece.
  HWY_INLINE bool isInRun(size_t i, size_t position) const {
    return position == starts_[0][i / kPieceBytes] + i % kPieceBytes;
  }
  HWY_INLINE Vec<U8> loadRun(const uint8_t* row) const {
    return loadBlocks([&](size_t block) HWY_ATTR { return row + starts_[0][block]; });
  }

 protected:
  alignas(kBytes) uint8_t index_[kLookups][kBytes];
  uint32_t starts_[kPieces][kGroups];
};

#endif  // ZELM_VECTORS

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

// Picks<pieces> is a PickTable. Its set(i, position) says where byte i of the vector
// lies in the row, its pick(row) returns the vector.
#if ZELM_VBMI
#include "resize/picks_vbmi-inl.h"
#elif ZELM_NEON
#include "resize/picks_neon-inl.h"
#elif ZELM_VECTORS
#include "resize/picks_x86-inl.h"
#endif

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

#if ZELM_VECTORS

template <size_t kPieces>
using PieceCount = std::integral_constant<size_t, kPieces>;

// Calls body(PieceCount<n>()) with as many pieces as `span` bytes need. Returns false
// if they need more than four.
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

// Returns the most source bytes that `bytes` bytes of a destination row can span when
// each is made of `taps` samples side by side.
template <size_t kSample>
HWY_INLINE size_t spanOf(const Axis& across, size_t bytes, size_t taps) {
  // The bytes need not begin with a sample, so three-byte samples may be cut on both
  // sides.
  const size_t samples = kSample == 3 ? (bytes + 2) / 3 + 1 : bytes / kSample;
  return (across.before(samples - 1) + 1 + taps) * kSample;
}

// A vector of bytes is computed in two halves of 16-bit lanes, which are packed.
// Packing works within pieces, so a half makes every other half of a piece. With pieces
// of 16 bytes:
//   half 0   bytes  0..7           16..23           32..39          48..55
//   half 1   bytes         8..15            24..31          40..47          56..63
// With VBMI, where a piece is a vector, these are its lower and its upper half, so the
// source bytes of a half lie close together.
HWY_INLINE size_t byteOfLane(size_t half, size_t lane) {
  constexpr size_t kLanes = kPieceBytes / 2;
  return lane / kLanes * kPieceBytes + half * kLanes + lane % kLanes;
}

// Packs two such halves, which hold bytes less 128, saturating, and stores the bytes.
HWY_INLINE void storeHalves(Vec<I16> first, Vec<I16> second, uint8_t* to) {
  Vec<U8> bytes = asU8(packSignedInBlocks(first, second));
  if (kPieceBytes > 16) bytes = joinBlocks(bytes);
  store(hn::Xor(bytes, hn::Set(u8, 128)), to);
}

// Returns samples less 128, as signed bytes.
HWY_INLINE Vec<I8> centred(Vec<U8> samples) {
  return hn::BitCast(i8, hn::Xor(samples, hn::Set(u8, 128)));
}

// Returns the number of vectors that cover `bytes` bytes.
HWY_INLINE size_t vectorsFor(size_t bytes) { return (bytes + kBytes - 1) / kBytes; }

// Returns where a vector begins. The last one is moved back so that it ends with the
// bytes.
HWY_INLINE size_t vectorStart(size_t vector, size_t bytes) {
  const size_t start = vector * kBytes, last = bytes - kBytes;
#if ZELM_NEON
  return start + kBytes <= bytes ? start : last;  // of this GCC makes a branch
#else
  return start < last ? start : last;  // and of this a conditional move
#endif
}

#endif  // ZELM_VECTORS

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // include guard
