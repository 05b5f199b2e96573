// A tile of bytes transposed on 32-bit Arm. Included by quarter_turn.cc in each of its
// passes.
#include "simd/vector-inl.h"

#if ZELM_ARMV7

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// Transposes blocks of 2 x 2 lanes: every odd lane of a changes places with the even
// lane of b before it.
//   a   a0 a1 a2 a3 ...          a   a0 b0 a2 b2 ...
//   b   b0 b1 b2 b3 ...   gives  b   a1 b1 a3 b3 ...
template <class Lanes, class Transpose>
HWY_INLINE void transposePairs(Transpose transpose, uint8x16_t& a, uint8x16_t& b) {
  const auto both = transpose(reinterpret_cast<Lanes>(a), reinterpret_cast<Lanes>(b));
  a = reinterpret_cast<uint8x16_t>(both.val[0]);
  b = reinterpret_cast<uint8x16_t>(both.val[1]);
}

// Makes 16 rows of 8 samples, as many as fit in the registers.
HWY_INLINE void transposeBytes(uint8_t* to, ptrdiff_t toStride, const uint8_t* from,
                               ptrdiff_t fromStride) {
  uint8x16_t v[8];
  for (uint8x16_t& row : v) {
    row = vld1q_u8(from);
    from += fromStride;
  }
  // Blocks of 2 x 2 bytes are transposed, then 2 x 2 of those blocks, then 2 x 2 of the
  // larger ones.
  transposePairs<uint8x16_t>(vtrnq_u8, v[0], v[1]);
  transposePairs<uint8x16_t>(vtrnq_u8, v[2], v[3]);
  transposePairs<uint8x16_t>(vtrnq_u8, v[4], v[5]);
  transposePairs<uint8x16_t>(vtrnq_u8, v[6], v[7]);
  transposePairs<uint16x8_t>(vtrnq_u16, v[0], v[2]);
  transposePairs<uint16x8_t>(vtrnq_u16, v[1], v[3]);
  transposePairs<uint16x8_t>(vtrnq_u16, v[4], v[6]);
  transposePairs<uint16x8_t>(vtrnq_u16, v[5], v[7]);
  for (int i = 0; i < 4; ++i) transposePairs<uint32x4_t>(vtrnq_u32, v[i], v[i + 4]);
  for (int i = 0; i < 16; ++i) {
    vst1_u8(to, i < 8 ? vget_low_u8(v[i]) : vget_high_u8(v[i - 8]));
    to += toStride;
  }
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // ZELM_ARMV7
