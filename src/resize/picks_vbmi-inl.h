// Picks with VBMI, whose permutations take bytes from anywhere in one or two vectors.
// Included by picks-inl.h in the pass with VBMI.
//
// A piece is a whole vector of 64 bytes, and an index counts through the pieces:
//   index    0..63     64..127     128..191    192..255
//   piece    0         1           2           3
// The permutation of two vectors looks at the lower seven bits of an index, so pieces 0
// and 1 are picked by one, 2 and 3 by another, and the highest bit chooses between
// them.
HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

template <size_t kPieces>
class Picks : public PickTable<kPieces, 1> {
 public:
  HWY_INLINE void set(size_t i, size_t position) {
    size_t p = 0;
    while (p + 1 < kPieces && position - starts_[p][0] >= kPieceBytes) ++p;
    index_[0][i] = static_cast<uint8_t>(kPieceBytes * p + position - starts_[p][0]);
  }

  HWY_INLINE Vec<U8> pick(const uint8_t* row) const {
    const __m512i index = _mm512_load_si512(index_[0]);
    const auto piece = [&](size_t p) HWY_ATTR { return load(row + starts_[p][0]).raw; };
    if (kPieces == 1) return {_mm512_permutexvar_epi8(index, piece(0))};
    const __m512i low = _mm512_permutex2var_epi8(piece(0), index, piece(kPieces > 1));
    if (kPieces == 2) return {low};
    const __mmask64 upper = _mm512_movepi8_mask(index);
    if (kPieces == 3) {
      return {_mm512_mask_permutexvar_epi8(low, upper, index, piece(kPieces - 1))};
    }
    const __m512i high =
        _mm512_permutex2var_epi8(piece(kPieces - 2), index, piece(kPieces - 1));
    return {_mm512_mask_blend_epi8(upper, low, high)};
  }

 private:
  using PickTable<kPieces, 1>::index_;
  using PickTable<kPieces, 1>::starts_;
};

// Packs the upper bytes of signed lanes, first's and then second's.
HWY_INLINE Vec<I8> packUpperBytes(Vec<I16> first, Vec<I16> second) {
  return hn::BitCast(i8, everySecond<1>(asU8(first), asU8(second)));
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
