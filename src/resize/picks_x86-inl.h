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

using Block = hn::Full128<uint8_t>;

// Loads into a register. The compiler would load again for each use, as part of the
// instruction, and where a load crosses a cache line that counts twice.
HWY_INLINE Vec<U8> loadOnce(const uint8_t* from) {
  Vec<U8> bytes = load(from);
  asm("" : "+x"(bytes.raw));
  return bytes;
}

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

  // Sets the bytes of a group that is placed at `lowest`, by how far behind that they
  // lie, at most 63. Adding 112 makes 128 or more of what lies in another piece, and
  // leaves the lower four bits as they are.
  HWY_INLINE void setGroup(size_t group, size_t lowest, hn::VFromD<Block> offsets) {
    const Block block;
    for (size_t p = 0; p < kPieces; ++p) {
      const auto start = static_cast<uint8_t>(starts_[p][group] - lowest);
      const auto inPiece = hn::Sub(offsets, hn::Set(block, start));
      hn::Store(hn::SaturatedAdd(inPiece, hn::Set(block, 112)), block,
                index_[p] + 16 * group);
    }
  }

  // Tells whether the group is its first piece as it is.
  HWY_INLINE bool isGroupInRun(size_t group) const {
    const Block block;
    return hn::AllTrue(
        block, hn::Eq(hn::Load(block, index_[0] + 16 * group), hn::Iota(block, 0)));
  }

  HWY_INLINE Vec<U8> pick(const uint8_t* row) const {
    return pick(row, starts_, [&](size_t p) HWY_ATTR { return load(index_[p]); });
  }

  // What pick needs, in registers.
  class Held {
   public:
    explicit HWY_INLINE Held(const Picks& picks) {
      for (size_t p = 0; p < kPieces; ++p) {
        index_[p] = load(picks.index_[p]);
        for (size_t b = 0; b < kGroups; ++b) starts_[p][b] = picks.starts_[p][b];
      }
    }
    // The bytes of each block in another order.
    HWY_INLINE Held(const Picks& picks, Vec<U8> order) : Held(picks) {
      for (Vec<U8>& index : index_) index = pickInBlocks(index, order);
    }
    HWY_INLINE Vec<U8> pick(const uint8_t* row) const {
      return Picks::pick(row, starts_, [&](size_t p) HWY_ATTR { return index_[p]; });
    }
    // The first block alone.
    HWY_INLINE hn::VFromD<Block> pickBlock(const uint8_t* row) const {
      const Block block;
      auto result = hn::Zero(block);
      for (size_t p = 0; p < kPieces; ++p) {
        const auto piece = hn::LoadU(block, row + starts_[p][0]);
        result =
            hn::Or(result, hn::TableLookupBytesOr0(piece, hn::LowerHalf(index_[p])));
      }
      return result;
    }

   private:
    Vec<U8> index_[kPieces];
    size_t starts_[kPieces][kGroups];
  };

 private:
  template <class Starts, class Index>
  static HWY_INLINE Vec<U8> pick(const uint8_t* row, const Starts& starts,
                                 const Index& index) {
    if constexpr (kWindows && kPieces == 2) {
      const Vec<U8> a = loadOnce(row + starts[0][0]);
      const Vec<U8> b = loadOnce(row + starts[0][kGroups - 1]);
      return pickBeside(pickInBlocks(hn::ConcatLowerLower(u8, b, a), index(0)),
                        hn::ConcatUpperUpper(u8, b, a), index(1));
    }
    const auto piece = [&](size_t p) HWY_ATTR {
      return loadBlocks([&](size_t block) HWY_ATTR { return row + starts[p][block]; });
    };
    Vec<U8> result = pickInBlocks(piece(0), index(0));
    for (size_t p = 1; p < kPieces; ++p) {
      result = pickBeside(result, piece(p), index(p));
    }
    return result;
  }

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
