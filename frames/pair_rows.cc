// The chroma pairs of a shaped source, row by row.
#include "frames/pair_rows.h"

#include "convert/pairs.h"
#include "frames/kernels/recolour.h"

namespace zelm {

PairRows::PairRows(const Region (&chroma)[2], bool pairs, bool uFirst, size_t first,
                   const YuvToYuv* weights, Scratch& scratch)
    : chroma_{chroma[0], chroma[1]},
      pairs_(pairs),
      uFirst_(uFirst),
      first_(first),
      weights_(weights) {
  if (!pairs) joined_.rows = scratch.take(2, chroma[0].columns, kKept);
  if (weights != nullptr) recoloured_.rows = scratch.take(2, chroma[0].columns, kKept);
}

const uint8_t* PairRows::original(size_t y) {
  if (pairs_) return chroma_[0].row(y - first_);
  return joined_.get(y, [&](uint8_t* row) {
    const uint8_t *u = chroma_[0].row(y - first_), *v = chroma_[1].row(y - first_);
    const size_t pairs = chroma_[0].columns;
    joinPairsKernel(pairs)(row, uFirst_ ? u : v, uFirst_ ? v : u, pairs, false);
  });
}

const uint8_t* PairRows::get(size_t y) {
  if (weights_ == nullptr) return original(y);
  return recoloured_.get(y, [&](uint8_t* row) {
    const size_t pairs = chroma_[0].columns;
    recolourPairsKernel(pairs)(row, original(y), uFirst_, pairs, *weights_);
  });
}

}  // namespace zelm
