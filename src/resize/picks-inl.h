// Gathering bytes of a source row in an order fixed beforehand. Included once per
// instruction set.
//
// Every group of kPieceBytes bytes of a vector is picked out of up to four pieces
// of that size, which follow each other in the row. The last pieces are moved back so
// that they end with the row; a row has at least kPieceBytes bytes. A piece is a block
// of 16 bytes, and picking is one shuffle per piece, on Arm one lookup per two; with
// VBMI it is a whole vector.
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

#if ZELM_VBMI
constexpr size_t kPieceBytes = kBytes;
#else
constexpr size_t kPieceBytes = 16;
#endif
constexpr size_t kGroups = kBytes / kPieceBytes;

// Where the pieces of a vector begin, and which of their bytes it is made of.
template <size_t kPieces>
class Picks {
 public:
  // Group by group: first where the group's lowest byte lies in the row, then what each
  // byte of the group is.
  HWY_INLINE void place(size_t group, size_t lowest, size_t rowBytes) {
    const size_t last = rowBytes - kPieceBytes;
    for (size_t p = 0; p < kPieces; ++p) {
      const size_t at = lowest + kPieceBytes * p;
      begin_[p][group] = static_cast<uint32_t>(at < last ? at : last);
    }
  }
  // Asks for a row's bytes early. Where rows are left out the processor does not guess
  // which one is next.
  HWY_INLINE void prefetch(const uint8_t* row) const {
    __builtin_prefetch(row + begin_[0][0]);
    if (kBytes > 16) __builtin_prefetch(row + begin_[kPieces - 1][kGroups - 1]);
  }
#if ZELM_VBMI
  HWY_INLINE void set(size_t i, size_t position) {
    size_t p = 0;
    while (p + 1 < kPieces && position - begin_[p][0] >= kPieceBytes) ++p;
    index_[i] = static_cast<uint8_t>(kPieceBytes * p + position - begin_[p][0]);
  }

  HWY_INLINE Vec<U8> pick(const uint8_t* row) const {
    const __m512i index = _mm512_load_si512(index_);
    const auto piece = [&](size_t p) HWY_ATTR { return load(row + begin_[p][0]).raw; };
    if (kPieces == 1) return {_mm512_permutexvar_epi8(index, piece(0))};
    const __m512i low = _mm512_permutex2var_epi8(piece(0), index, piece(kPieces > 1));
    if (kPieces == 2) return {low};
    // The highest bit of an index, which permutations ignore, tells the pair of pieces.
    const __mmask64 upper = _mm512_movepi8_mask(index);
    if (kPieces == 3) {
      return {_mm512_mask_permutexvar_epi8(low, upper, index, piece(kPieces - 1))};
    }
    const __m512i high =
        _mm512_permutex2var_epi8(piece(kPieces - 2), index, piece(kPieces - 1));
    return {_mm512_mask_blend_epi8(upper, low, high)};
  }
#elif ZELM_NEON
  HWY_INLINE void set(size_t i, size_t position) {
    for (size_t p = 0; p < kPieces; p += 2) index_[p / 2][i] = kNoByte;
    // Pieces that overlap may both supply the byte.
    for (size_t p = 0; p < kPieces; ++p) {
      const size_t offset = position - begin_[p][0];
      if (offset < 16) index_[p / 2][i] = static_cast<uint8_t>(16 * (p % 2) + offset);
    }
  }

  HWY_INLINE Vec<U8> pick(const uint8_t* row) const {
    const auto index = [&](size_t p) HWY_ATTR { return load(index_[p / 2]); };
    if (kPieces == 1) return pickInBlocks(piece(row, 0), index(0));
    const Vec<U8> low = pickFromTwo(piece(row, 0), piece(row, kPieces > 1), index(0));
    if (kPieces == 2) return low;
    if (kPieces == 3)
      return pickBeside(low, piece(row, kPieces - 1), index(kPieces - 1));
    return pickFromTwoBeside(low, piece(row, kPieces - 2), piece(row, kPieces - 1),
                             index(kPieces - 1));
  }
#else
  HWY_INLINE void set(size_t i, size_t position) {
    // Pieces that overlap may both supply the byte.
    for (size_t p = 0; p < kPieces; ++p) {
      const size_t offset = position - begin_[p][i / 16];
      index_[p][i] = offset < 16 ? static_cast<uint8_t>(offset) : kNoByte;
    }
  }

  HWY_INLINE Vec<U8> pick(const uint8_t* row) const {
    Vec<U8> result = pickInBlocks(piece(row, 0), load(index_[0]));
    for (size_t p = 1; p < kPieces; ++p) {
      result = pickBeside(result, piece(row, p), load(index_[p]));
    }
    return result;
  }
#endif

 private:
#if ZELM_VBMI
  alignas(64) uint8_t index_[kBytes];
#else
  static constexpr uint8_t kNoByte = 128;  // for a shuffle: 0

  HWY_INLINE Vec<U8> piece(const uint8_t* row, size_t p) const {
    return loadBlocks([&](size_t block) HWY_ATTR { return row + begin_[p][block]; });
  }

  // On Arm one lookup takes from two pieces.
  static constexpr size_t kLookups = ZELM_NEON ? (kPieces + 1) / 2 : kPieces;
  alignas(kBytes) uint8_t index_[kLookups][kBytes];
#endif
  uint32_t begin_[kPieces][kGroups];
};

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

// A vector of bytes is computed in two halves of 16-bit lanes and packed again. Halves
// are made such that packing in blocks needs no permutation, or, with VBMI, such that
// the source bytes of a half lie close together.
HWY_INLINE size_t byteOfLane(size_t half, size_t lane) {
#if ZELM_VBMI
  return half * (kBytes / 2) + lane;
#else
  return lane / 8 * 16 + half * 8 + lane % 8;
#endif
}

// Bytes less 128 out of such halves, limited; they are stored.
HWY_INLINE void storeHalves(Vec<I16> first, Vec<I16> second, uint8_t* to) {
  Vec<U8> bytes = asU8(packSignedInBlocks(first, second));
#if ZELM_VBMI
  bytes = joinBlocks(bytes);
#endif
  store(hn::Xor(bytes, hn::Set(u8, 128)), to);
}

// The upper bytes of such halves, plus 128; they are stored.
HWY_INLINE void storeUpperBytes(Vec<I16> first, Vec<I16> second, uint8_t* to) {
#if ZELM_VBMI
  const Vec<U8> bytes = everySecond<1>(asU8(first), asU8(second));
  store(hn::Xor(bytes, hn::Set(u8, 128)), to);
#else
  storeHalves(hn::ShiftRight<8>(first), hn::ShiftRight<8>(second), to);
#endif
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
