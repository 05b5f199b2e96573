// RGB565 to luma and chroma on x86. Included by rgb565_in.cc, which says what is
// computed, in each of its passes.
#include "simd/vector-inl.h"

#if ZELM_X86

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// Two 8-bit values per 16-bit lane: R below G, and B below a constant factor.
//   rg   R0 G0 R1 G1 ...
//   b1   B0 k  B1 k  ...
struct RgbLanes {
  Vec<U8> rg, b1;
};
constexpr uint8_t kConstant = 128;
// The weight of the constant that makes the rounding, 2048.
constexpr int kRounding = 16;
static_assert(kConstant * kRounding == 2048, "an eighth of 2^14");

// Shifts each field to the top of its lane and multiplies it. The upper half of
// (field << 11) * 264 is field * 33 / 4, which repeats the top bits of 5 bits, and that
// of (field << 5) * 8320 is field * 65 / 16, which does so for 6.
HWY_INLINE RgbLanes load565(const uint8_t* from) {
  const Vec<U16> word = asU16(load(from)), by5 = hn::Set(u16, 264);
  const Vec<U16> r = hn::MulHigh(hn::And(word, hn::Set(u16, 0xF800)), by5);
  const Vec<U16> g =
      hn::MulHigh(hn::And(word, hn::Set(u16, 0x07E0)), hn::Set(u16, 8320));
  const Vec<U16> b = hn::MulHigh(hn::ShiftLeft<11>(word), by5);
  return {asU8(hn::Or(r, hn::ShiftLeft<8>(g))),
          asU8(hn::Or(b, hn::Set(u16, kConstant << 8)))};
}

// Weights for the pair of bytes in every lane, or for those in even and in odd lanes.
HWY_INLINE Vec<I8> weights(int first, int second) {
  const int pair = (first & 0xFF) | second * 256;
  return hn::BitCast(i8, hn::Set(i16, static_cast<int16_t>(pair)));
}
HWY_INLINE Vec<I8> weights(int evenFirst, int evenSecond, int oddFirst, int oddSecond) {
  return hn::BitCast(i8, hn::OddEven(asI16(weights(oddFirst, oddSecond)),
                                     asI16(weights(evenFirst, evenSecond))));
}

HWY_INLINE Vec<U16> lumaOf(const RgbLanes& c) {
  const Vec<I16> high =
      hn::Add(pairProducts8(c.rg, weights(19, 38)), pairProducts8(c.b1, weights(7, 0)));
  const Vec<I16> low = hn::Add(pairProducts8(c.rg, weights(33, -117)),
                               pairProducts8(c.b1, weights(84, kRounding)));
  return asU16(hn::ShiftRight<6>(hn::Add(high, hn::ShiftRight<8>(low))));
}

// The chroma of the pixels in even lanes, less 128: V in even lanes, U in odd ones.
HWY_INLINE Vec<I16> chromaOf(const RgbLanes& c) {
  alignas(16) static constexpr uint8_t kEvenLanes[16] = {0, 1, 0, 1, 4,  5,  4,  5,
                                                         8, 9, 8, 9, 12, 13, 12, 13};
  const Vec<U8> rg = pickInBlocks(c.rg, everyBlock(kEvenLanes));
  const Vec<U8> b1 = pickInBlocks(c.b1, everyBlock(kEvenLanes));
  const Vec<I16> high = hn::Add(pairProducts8(rg, weights(32, -27, -11, -21)),
                                pairProducts8(b1, weights(-5, 0, 32, 0)));
  const Vec<I16> low =
      hn::Add(pairProducts8(rg, weights(0, 52, 51, -51)),
              pairProducts8(b1, weights(-52, kRounding, 0, kRounding)));
  const Vec<I16> sum = hn::Add(high, hn::ShiftRight<8>(low));
  // Only negative sums have these bits.
  const Vec<I16> more =
      asI16(hn::And(hn::ShiftRight<10>(asU16(sum)), hn::Set(u16, 48)));
  return hn::ShiftRight<6>(hn::Add(sum, more));
}

// Only with AVX2 stores past the caches were seen to gain.
template <bool kStream>
HWY_INLINE void putLuma(uint8_t* luma, const RgbLanes& a, const RgbLanes& b) {
  store<kStream && ZELM_IS_AVX2>(pack(lumaOf(a), lumaOf(b)), luma);
}
template <bool kStream>
HWY_INLINE void putChroma(uint8_t* chroma, const RgbLanes& a, const RgbLanes& b) {
  const Vec<U8> pairs = asU8(packSignedInBlocks(chromaOf(a), chromaOf(b)));
  store<kStream && ZELM_IS_AVX2>(joinBlocks(hn::Xor(pairs, hn::Set(u8, 128))), chroma);
}
}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // ZELM_X86
