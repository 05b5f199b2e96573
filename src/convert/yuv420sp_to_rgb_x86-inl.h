// Semi-planar 4:2:0 to packed RGB on x86. Included by yuv420sp_to_rgb.cc, which says
// what is computed, in each of its passes.
#include "convert/yuv420sp_to_rgb.h"
#include "simd/vector-inl.h"

#if ZELM_X86

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// kBytes pixels: G in order, R and B as pairs of the left and of the right pixels.
//   rbLeft    R0 B0 R2 B2 R4 B4 ...
//   rbRight   R1 B1 R3 B3 R5 B5 ...
//   g         G0 G1 G2 G3 G4 G5 ...
struct RgbBytes {
  Vec<U8> rbLeft, rbRight, g;
};

// Computes in 16-bit lanes that hold the first and the second chroma byte in turn, so
// that a 32-bit lane holds a pair. With S = the sum of two rows, left pixels see
// 2 S - 512 and right ones S + S[next] - 512; the factor 2 is left to the coefficients.
class RgbKernel {
 public:
  HWY_INLINE explicit RgbKernel(const ChromaRows& chroma)
      : chroma_(chroma),
        rowWeights_(
            hn::BitCast(i8, hn::Set(u32, chroma.loneFirst ? 0x01010002 : 0x00020101))),
        rb_(chroma.uFirst ? alternate(14516, 11485) : alternate(11485, 14516)),
        g_(chroma.uFirst ? alternate(-5638, -11700) : alternate(-11700, -5638)) {}

  // Converts kBytes pixels, and reads one pair further.
  HWY_INLINE RgbBytes pixels(const uint8_t* luma, size_t at) const {
    const Vec<U8> own = load(chroma_.own + at), other = load(chroma_.other + at);
    const Vec<U8> ownNext = load(chroma_.own + at + 2);
    const Vec<U8> otherNext = load(chroma_.other + at + 2);
    const Vec<U8> y = load(luma + at), zero = hn::Zero(u8);
    const Channels lower =
        channels(hn::InterleaveLower(u8, own, other),
                 hn::InterleaveLower(u8, ownNext, otherNext),
                 asI16(hn::InterleaveLower(u8, y, zero)), twice<0>(y), twice<1>(y));
    const Channels upper =
        channels(hn::InterleaveUpper(u8, own, other),
                 hn::InterleaveUpper(u8, ownNext, otherNext),
                 asI16(hn::InterleaveUpper(u8, y, zero)), twice<8>(y), twice<9>(y));
    RgbBytes bytes = {packInBlocks(lower.rbLeft, upper.rbLeft),
                      packInBlocks(lower.rbRight, upper.rbRight),
                      packInBlocks(lower.g, upper.g)};
    if (chroma_.uFirst) {
      bytes.rbLeft = swapPairs(bytes.rbLeft);
      bytes.rbRight = swapPairs(bytes.rbRight);
    }
    return bytes;
  }

 private:
  struct Channels {
    Vec<I16> rbLeft, rbRight, g;
  };

  // Spreads bytes kFirst, kFirst + 2, ... to two 16-bit lanes each:
  //   y0 y1 y2 y3 ...   gives   y0 0  y0 0  y2 0  y2 0 ...
  template <uint8_t kFirst>
  static HWY_INLINE Vec<I16> twice(Vec<U8> y) {
    constexpr uint8_t k0 = kFirst, k1 = k0 + 2, k2 = k0 + 4, k3 = k0 + 6;
    alignas(16) static constexpr uint8_t kPicks[16] = {
        k0, 128, k0, 128, k1, 128, k1, 128, k2, 128, k2, 128, k3, 128, k3, 128};
    return asI16(pickInBlocks(y, everyBlock(kPicks)));
  }

  // Computes half a vector. The two chroma rows come interleaved, those of the pairs
  // and those of the next pairs.
  HWY_INLINE Channels channels(Vec<U8> rows, Vec<U8> nextRows, Vec<I16> y,
                               Vec<I16> yLeft, Vec<I16> yRight) const {
    const Vec<I16> middle = hn::Set(i16, 256);
    const Vec<I16> left = hn::Sub(pairProducts8(rows, rowWeights_), middle);
    const Vec<I16> right =
        hn::Add(hn::Sub(left, middle), pairProducts8(nextRows, rowWeights_));
    const Vec<I16> rb2 = hn::Add(rb_, rb_), g2 = hn::Add(g_, g_);
    const Vec<I32> half = hn::Set(i32, 1 << 15);
    return {hn::Add(yLeft, hn::MulFixedPoint15(left, rb2)),
            hn::Add(yRight, hn::MulFixedPoint15(right, rb_)),
            hn::Add(y, upperHalves(addPairProducts(half, left, g2),
                                   addPairProducts(half, right, g_)))};
  }

  const ChromaRows& chroma_;
  Vec<I8> rowWeights_;
  Vec<I16> rb_, g_;  // coefficients of right pixels
};

// RGB565 of pixels whose R and B lie side by side in one vector, and G in the upper
// bytes of another.
HWY_INLINE Vec<U8> words565(Vec<U8> rb, Vec<U8> g0) {
  const Vec<U16> r = hn::And(hn::ShiftRight<3>(asU16(rb)), hn::Set(u16, 0x001F));
  const Vec<U16> g = hn::And(hn::ShiftRight<5>(asU16(g0)), hn::Set(u16, 0x07E0));
  return asU8(hn::Or3(r, g, hn::And(asU16(rb), hn::Set(u16, 0xF800))));
}

#if !ZELM_VBMI
HWY_INLINE void storePixels(Rgba8888, uint8_t* to, const RgbBytes& c) {
  const Vec<U8> alpha = hn::Set(u8, 255), g = splitTwice(c.g);
  const Vec<U16> left = asU16(splitTwice(c.rbLeft));
  const Vec<U16> right = asU16(splitTwice(c.rbRight));
  const Vec<U8> rb0 = asU8(hn::InterleaveLower(u16, left, right));
  const Vec<U8> rb1 = asU8(hn::InterleaveUpper(u16, left, right));
  const Vec<U8> ga0 = hn::InterleaveLower(u8, g, alpha);
  const Vec<U8> ga1 = hn::InterleaveUpper(u8, g, alpha);
  store(hn::InterleaveLower(u8, rb0, ga0), to);
  store(hn::InterleaveUpper(u8, rb0, ga0), to + kBytes);
  store(hn::InterleaveLower(u8, rb1, ga1), to + 2 * kBytes);
  store(hn::InterleaveUpper(u8, rb1, ga1), to + 3 * kBytes);
}

HWY_INLINE void storePixels(Rgb888, uint8_t* to, const RgbBytes& c) {
  // Each of three blocks takes R and B of some left and some right pixels, and G.
  constexpr uint8_t z = 128;
  alignas(16) static constexpr uint8_t kLeft[3][16] = {
      {0, z, 1, z, z, z, 2, z, 3, z, z, z, 4, z, 5, z},
      {z, z, 6, z, 7, z, z, z, 8, z, 9, z, z, z, 10, z},
      {11, z, z, z, 12, z, 13, z, z, z, 14, z, 15, z, z, z}};
  alignas(16) static constexpr uint8_t kRight[3][16] = {
      {z, z, z, 0, z, 1, z, z, z, 2, z, 3, z, z, z, 4},
      {z, 5, z, z, z, 6, z, 7, z, z, z, 8, z, 9, z, z},
      {z, 10, z, 11, z, z, z, 12, z, 13, z, z, z, 14, z, 15}};
  alignas(16) static constexpr uint8_t kGreen[3][16] = {
      {z, 0, z, z, 1, z, z, 2, z, z, 3, z, z, 4, z, z},
      {5, z, z, 6, z, z, 7, z, z, 8, z, z, 9, z, z, 10},
      {z, z, 11, z, z, 12, z, z, 13, z, z, 14, z, z, 15, z}};
  const auto block = [&](size_t i) HWY_ATTR {
    return hn::Or3(pickInBlocks(c.rbLeft, everyBlock(kLeft[i])),
                   pickInBlocks(c.rbRight, everyBlock(kRight[i])),
                   pickInBlocks(c.g, everyBlock(kGreen[i])));
  };
  storeBlocksInTurn(block(0), block(1), block(2), to);
}

HWY_INLINE void storePixels(Rgb565, uint8_t* to, const RgbBytes& c) {
  const Vec<U8> g = splitBlocks(c.g), zero = hn::Zero(u8);
  const Vec<U16> left = asU16(splitBlocks(c.rbLeft));
  const Vec<U16> right = asU16(splitBlocks(c.rbRight));
  store(words565(asU8(hn::InterleaveLower(u16, left, right)),
                 hn::InterleaveLower(u8, zero, g)),
        to);
  store(words565(asU8(hn::InterleaveUpper(u16, left, right)),
                 hn::InterleaveUpper(u8, zero, g)),
        to + kBytes);
}
#endif

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#include "convert/yuv420sp_to_rgb_vbmi-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

template <class Format>
HWY_INLINE size_t convertBlocks(uint8_t* to, const uint8_t* luma,
                                const ChromaRows& chroma, size_t pairs) {
  const RgbKernel kernel(chroma);
  return inBlocks(pairs, kBytes / 2, [&](size_t j) HWY_ATTR {
    storePixels(Format(), to + 2 * j * Format::kPixelBytes, kernel.pixels(luma, 2 * j));
  });
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // ZELM_X86
