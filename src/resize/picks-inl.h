// Gathering bytes of a source row in an order fixed beforehand. Included once per
// instruction set.
//
// Every block of 16 bytes of a vector is picked, by one shuffle each, out of kLoads
// pieces of 16 bytes that follow each other in the row. The last pieces are moved back
// so that they end with the row; a row has at least 16 bytes.
#if defined(ZELM_SRC_RESIZE_PICKS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZELM_SRC_RESIZE_PICKS_INL_H_
#undef ZELM_SRC_RESIZE_PICKS_INL_H_
#else
#define ZELM_SRC_RESIZE_PICKS_INL_H_
#endif

#include "simd/vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm {
namespace {
namespace HWY_NAMESPACE {

// Bytes of a destination row that tables are made for at a time, so that they and the
// filtered rows fit on a small stack.
constexpr size_t kStripBytes = 2048;

#if ZELM_VECTORS

constexpr size_t kStripVectors = kStripBytes / kBytes;
constexpr uint8_t kNoByte = 128;  // for a shuffle: 0

// Where the pieces of a vector begin.
template <size_t kLoads>
struct Pieces {
  uint32_t begin[kLoads][kBlocks];

  HWY_INLINE void place(size_t block, size_t lowest, size_t rowBytes) {
    const size_t last = rowBytes - 16;
    for (size_t l = 0; l < kLoads; ++l) {
      const size_t at = lowest + 16 * l;
      begin[l][block] = static_cast<uint32_t>(at < last ? at : last);
    }
  }
};

// Which byte of its block's pieces each byte of a vector is.
template <size_t kLoads>
struct Picks {
  alignas(64) uint8_t index[kLoads][kBytes];

  // Byte `i` comes from `position`; pieces that overlap may both supply it.
  HWY_INLINE void set(const Pieces<kLoads>& pieces, size_t i, size_t position) {
    for (size_t l = 0; l < kLoads; ++l) {
      const size_t offset = position - pieces.begin[l][i / 16];
      index[l][i] = offset < 16 ? static_cast<uint8_t>(offset) : kNoByte;
    }
  }
  HWY_INLINE void setZero(size_t i) {
    for (size_t l = 0; l < kLoads; ++l) index[l][i] = kNoByte;
  }
};

template <size_t kLoads>
struct LoadedPieces {
  Vec<U8> piece[kLoads];

  HWY_INLINE LoadedPieces(const uint8_t* row, const Pieces<kLoads>& pieces) {
    for (size_t l = 0; l < kLoads; ++l) {
      piece[l] = loadBlocks(
          [&](size_t block) HWY_ATTR { return row + pieces.begin[l][block]; });
    }
  }
  HWY_INLINE Vec<U8> pick(const Picks<kLoads>& picks) const {
    Vec<U8> result = pickInBlocks(piece[0], load(picks.index[0]));
    for (size_t l = 1; l < kLoads; ++l) {
      result = hn::Or(result, pickInBlocks(piece[l], load(picks.index[l])));
    }
    return result;
  }
};

// Vectors that cover `bytes` bytes, the last one moved back to end with them.
HWY_INLINE size_t vectorsFor(size_t bytes) { return (bytes + kBytes - 1) / kBytes; }
HWY_INLINE size_t vectorStart(size_t vector, size_t bytes) {
  const size_t start = vector * kBytes;
  return start + kBytes <= bytes ? start : bytes - kBytes;
}

#endif  // ZELM_VECTORS

}  // namespace HWY_NAMESPACE
}  // namespace
}  // namespace zelm
HWY_AFTER_NAMESPACE();

#endif  // include guard
