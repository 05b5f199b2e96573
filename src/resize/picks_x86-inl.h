// Picks with the byte shuffles of x86, which act inside blocks of 16 bytes. Included by
// picks-inl.h, once per pass.
//
// Block b of a piece is loaded from a place of its own. A shuffle turns the piece into
// the wanted bytes that lie in it and zeros elsewhere; what the pieces give is joined
// by OR:
//   row      ..abcdefghijklmnop|qrstuvwxyz......      pieces 0 and 1 of a block
//   piece 0    a c e g i k m o 0 0 0 0 0 0 0 0
//   piece 1    0 0 0 0 0 0 0 0 q s u w y . . .
HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

template <size_t kPieces>
class Picks : public PickTable<kPieces, kPieces> {
 public:
  HWY_INLINE void set(size_t i, size_t position) {
    // Pieces that overlap may both supply the byte.
    for (size_t p = 0; p < kPieces; ++p) {
      const size_t offset = position - starts_[p][i / kPieceBytes];
      index_[p][i] = offset < kPieceBytes ? static_cast<uint8_t>(offset) : kNoByte;
    }
  }

  HWY_INLINE Vec<U8> pick(const uint8_t* row) const {
    const auto piece = [&](size_t p) HWY_ATTR {
      return loadBlocks([&](size_t block) HWY_ATTR { return row + starts_[p][block]; });
    };
    Vec<U8> result = pickInBlocks(piece(0), load(index_[0]));
    for (size_t p = 1; p < kPieces; ++p) {
      result = pickBeside(result, piece(p), load(index_[p]));
    }
    return result;
  }

 private:
  using PickTable<kPieces, kPieces>::index_;
  using PickTable<kPieces, kPieces>::starts_;
  static constexpr uint8_t kNoByte = 128;  // a shuffle makes it 0
};

// Packs the upper bytes of signed lanes, block by block.
HWY_INLINE Vec<I8> packUpperBytes(Vec<I16> first, Vec<I16> second) {
  return packSignedInBlocks(hn::ShiftRight<8>(first), hn::ShiftRight<8>(second));
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
