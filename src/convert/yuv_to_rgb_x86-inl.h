// YUV to packed RGB on x86. Included by yuv_to_rgb.cc, which says
// what is computed, in each of its passes.
#include "convert/pixel_formats.h"
#include "convert/yuv_to_rgb.h"
#include "simd/vector-inl.h"

#if ZELM_X86

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// kBytes pixels: G in order, R and B as pairs of the left and of the right pixels.
//   rbLeft    R0 B0 R2 B2 R4 B4 ...      or B before R, where blue comes first
//   rbRight   R1 B1 R3 B3 R5 B5 ...
//   g         G0 G1 G2 G3 G4 G5 ...
struct RgbBytes {
  Vec<U8> rbLeft, rbRight, g;
};

// The same as 16-bit lanes that are not clamped yet, for half as many pixels.
struct Channels {
  Vec<I16> rbLeft, rbRight, g;
};

// Makes weights for lanes that hold pairs in their order.
HWY_INLINE Vec<I16> pairWeights(bool uFirst, int u, int v) {
  return uFirst ? alternate(u, v) : alternate(v, u);
}

// What sums of chroma give with luma: a quarter of a vector of pixels in order.
//   rb    R0 B0 R1 B1 R2 B2 ...      or B before R, where blue comes first
//   g     .. G0 .. G1 .. G2 ...      the other lanes hold anything
struct PixelChannels {
  Vec<I16> rb, g;
};

// The weights of a description of colour, and what they make of half a vector of
// pixels. `halfLeft` and `right` are the differences u and v of left and right pixels,
// those of left ones halved, in the order of pairs; y is luma, yLeft and yRight that of
// left and right pixels, twice:
//   right    u1 v1 u3 v3 ...      y   Y0 Y1 Y2 Y3 ...      yRight   Y1 Y1 Y3 Y3 ...
template <bool kIsBt601Full>
class Weights;

// R and B are products of 16 bits, which stand in the order of pairs.
template <>
class Weights<true> {
 public:
  HWY_INLINE Weights(const YuvToRgb& colour, bool uFirst)
      : rb_(pairWeights(uFirst, colour.bu / 2, colour.rv / 2)),
        g_(pairWeights(uFirst, -colour.gu, -colour.gv)) {}

  static HWY_INLINE bool firstIsBlue(bool uFirst) { return uFirst; }

  HWY_INLINE Channels channels(Vec<I16> halfLeft, Vec<I16> right, Vec<I16> y,
                               Vec<I16> yLeft, Vec<I16> yRight) const {
    const Vec<I16> rb2 = hn::Add(rb_, rb_), g2 = hn::Add(g_, g_);
    const Vec<I32> half = hn::Set(i32, 1 << 15);
    return {hn::Add(yLeft, hn::MulFixedPoint15(halfLeft, rb2)),
            hn::Add(yRight, hn::MulFixedPoint15(right, rb_)),
            hn::Add(y, upperHalves(addPairProducts(half, halfLeft, g2),
                                   addPairProducts(half, right, g_)))};
  }

  // Of the differences u and v of pixels in order, and the luma of each of them, twice.
  HWY_INLINE PixelChannels channels(Vec<I16> sums, Vec<I16> y) const {
    const Vec<I32> half = hn::Set(i32, 1 << 15);
    return {hn::Add(y, hn::MulFixedPoint15(sums, rb_)),
            hn::Add(y, asI16(addPairProducts(half, sums, g_)))};
  }

 private:
  Vec<I16> rb_, g_;
};

// All channels are sums of 32 bits. A weight of B that is no int16 is halved, and its
// difference doubled.
template <>
class Weights<false> {
 public:
  HWY_INLINE Weights(const YuvToRgb& colour, bool uFirst)
      : Weights(colour, uFirst, colour.bu > INT16_MAX ? 2 : 1) {}

  static HWY_INLINE bool firstIsBlue(bool) { return false; }

  HWY_INLINE Channels channels(Vec<I16> halfLeft, Vec<I16> right, Vec<I16> y, Vec<I16>,
                               Vec<I16>) const {
    // A lane of 32 bits holds the luma of a left and a right pixel.
    const Vec<I16> y4 = hn::ShiftLeft<2>(y);
    const Vec<I32> left0 = addPairProducts(black_, y4, yLeft_);
    const Vec<I32> right0 = addPairProducts(black_, y4, yRight_);
    const Vec<I16> leftRb = hn::Mul(halfLeft, hn::Add(factors_, factors_));
    const Vec<I16> rightRb = hn::Mul(right, factors_);
    return {upperHalves(addPairProducts(left0, leftRb, r_),
                        addPairProducts(left0, leftRb, b_)),
            upperHalves(addPairProducts(right0, rightRb, r_),
                        addPairProducts(right0, rightRb, b_)),
            upperHalves(addPairProducts(left0, halfLeft, hn::Add(g_, g_)),
                        addPairProducts(right0, right, g_))};
  }

  HWY_INLINE PixelChannels channels(Vec<I16> sums, Vec<I16> y) const {
    const Vec<I32> y0 = addPairProducts(black_, hn::ShiftLeft<2>(y), yLeft_);
    const Vec<I16> rb = hn::Mul(sums, factors_);
    return {upperHalves(addPairProducts(y0, rb, r_), addPairProducts(y0, rb, b_)),
            asI16(addPairProducts(y0, sums, g_))};
  }

 private:
  HWY_INLINE Weights(const YuvToRgb& colour, bool uFirst, int blueFactor)
      : yLeft_(alternate(colour.y, 0)),
        yRight_(alternate(0, colour.y)),
        r_(pairWeights(uFirst, 0, colour.rv)),
        g_(pairWeights(uFirst, -colour.gu, -colour.gv)),
        b_(pairWeights(uFirst, colour.bu / blueFactor, 0)),
        factors_(pairWeights(uFirst, blueFactor, 1)),
        black_(hn::Set(i32, (1 << 15) - 4 * colour.y * colour.offset)) {}

  Vec<I16> yLeft_, yRight_, r_, g_, b_, factors_;
  Vec<I32> black_;
};

// Computes in 16-bit lanes that hold the first and the second chroma byte in turn, so
// that a 32-bit lane holds a pair. With S = the sum of two rows, left pixels see
// 2 S - 512 and right ones S + S[next] - 512; the factor 2 is left to the weights.
template <class Weights>
class RgbKernel {
 public:
  HWY_INLINE RgbKernel(const ChromaRows& chroma, const Weights& weights, bool blueFirst)
      : chroma_(chroma),
        weights_(weights),
        swapsRb_(weights.firstIsBlue(chroma.uFirst) != blueFirst),
        rowWeights_(hn::BitCast(
            i8, hn::Set(u32, chroma.loneFirst ? 0x01010002 : 0x00020101))) {}

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
    if (swapsRb_) {
      bytes.rbLeft = swapPairs(bytes.rbLeft);
      bytes.rbRight = swapPairs(bytes.rbRight);
    }
    return bytes;
  }

 private:
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
    const Vec<I16> halfLeft = hn::Sub(pairProducts8(rows, rowWeights_), middle);
    const Vec<I16> right =
        hn::Add(hn::Sub(halfLeft, middle), pairProducts8(nextRows, rowWeights_));
    return weights_.channels(halfLeft, right, y, yLeft, yRight);
  }

  const ChromaRows& chroma_;
  const Weights weights_;
  bool swapsRb_;
  Vec<I8> rowWeights_;
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

#include "convert/yuv_to_rgb_vbmi-inl.h"

#if ZELM_IS_AVX2
#include "convert/yuv_to_rgb_avx2-inl.h"
#else

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

constexpr bool kPutsFirstPair = false;

template <class Format, bool kIsBt601Full>
HWY_INLINE size_t convertBlocks(uint8_t* to, const uint8_t* luma,
                                const ChromaRows& chroma, size_t pixels,
                                const YuvToRgb& colour, bool blueFirst) {
  const Weights<kIsBt601Full> weights(colour, chroma.uFirst);
  const RgbKernel<Weights<kIsBt601Full> > kernel(chroma, weights, blueFirst);
  constexpr size_t kPairs = kBytes / 2;
  const size_t pairs = (pixels + 1) / 2 - 1;  // those that have a pair behind them
  if (pairs < kPairs) return 0;
  // Unlike inBlocks, this calls the kernel in one place, and so the compiler inlines
  // it.
  for (size_t j = 0; j < pairs; j += kPairs) {
    const size_t at = 2 * (j < pairs - kPairs ? j : pairs - kPairs);
    storePixels(Format(), to + at * Format::kPixelBytes, kernel.pixels(luma, at));
  }
  return pairs;
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif

#endif  // ZELM_X86
