// Picks with the table lookups of NEON. Included by picks-inl.h, once per pass.
//
// A vector is one piece of 16 bytes, and a lookup takes from two pieces at once:
//   index    0..15     16..31      from 32 on
//   gives    piece 0   piece 1     0 (vtbl), or what stood there before (vtbx)
// Pieces 2 and 3 are looked up by a second index into what pieces 0 and 1 gave.
HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

template <size_t kPieces>
class Picks : public PickTable<kPieces, (kPieces + 1) / 2> {
 public:
  HWY_INLINE void set(size_t i, size_t position) {
    for (size_t p = 0; p < kPieces; p += 2) index_[p / 2][i] = kNoByte;
    // Pieces that overlap may both supply the byte.
    for (size_t p = 0; p < kPieces; ++p) {
      const size_t offset = position - starts_[p][0];
      if (offset < 16) index_[p / 2][i] = static_cast<uint8_t>(16 * (p % 2) + offset);
    }
  }

  HWY_INLINE Vec<U8> pick(const uint8_t* row) const {
    const auto piece = [&](size_t p) HWY_ATTR { return load(row + starts_[p][0]); };
    const auto index = [&](size_t p) HWY_ATTR { return load(index_[p / 2]); };
    if (kPieces == 1) return pickInBlocks(piece(0), index(0));
    const Vec<U8> low = pickFromTwo(piece(0), piece(kPieces > 1), index(0));
    if (kPieces == 2) return low;
    if (kPieces == 3) return pickBeside(low, piece(kPieces - 1), index(kPieces - 1));
    return pickFromTwoBeside(low, piece(kPieces - 2), piece(kPieces - 1),
                             index(kPieces - 1));
  }

 private:
  using PickTable<kPieces, (kPieces + 1) / 2>::index_;
  using PickTable<kPieces, (kPieces + 1) / 2>::starts_;
  static constexpr uint8_t kNoByte = 128;
};

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
