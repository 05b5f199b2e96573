// YUV to packed RGB with AVX2, by chroma rows that are expanded once. Included by
// yuv_to_rgb_x86-inl.h.
//
// A chroma row serves four luma rows: two of its own and one above and below, and each
// time its pairs would have to be spread to pixels. Instead they become sums of two
// samples for every pixel, u and v side by side as 16 bits, less 256:
//   left pixels   2 c - 256         right pixels   c + next - 256
// A luma row takes one of u and v from its own sums twice, and the other from its own
// and the other row's. As pixels are in order from there on, one saturating narrow and
// one shuffle make them.
#include <cstring>

#if HWY_TARGET == HWY_AVX2

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

constexpr size_t kVectorPixels = kBytes / 4;
constexpr size_t kVectorPairs = kVectorPixels / 2;
constexpr size_t kReach = kBytes / 2 / 2;  // pairs that a load takes
// Rows that are shorter are converted without sums. Where AVX2 is the compiler's own
// baseline, no narrower set stands in for them.
constexpr size_t kLeastPixels = 2 * kVectorPixels;

// Which bytes of 16 are added for a vector of pixels.
struct SumPicks {
  alignas(kBytes) uint8_t bytes[kBytes];

  constexpr SumPicks() : bytes() {
    for (size_t pixel = 0; pixel < kVectorPixels; ++pixel) {
      for (size_t byte = 0; byte < 2; ++byte) {
        const size_t own = pixel / 2 * 2 + byte;
        bytes[4 * pixel + 2 * byte] = static_cast<uint8_t>(own);
        bytes[4 * pixel + 2 * byte + 1] = static_cast<uint8_t>(own + pixel % 2 * 2);
      }
    }
  }
};

void expandChroma(int16_t* sums, const uint8_t* pairs, size_t pixels, RowEnds ends) {
  static constexpr SumPicks kPicks;
  const size_t count = (pixels + 1) / 2;
  const size_t inner = ends.last ? count - 1 : count;  // have a pair behind them
  const auto expand = [&](size_t pair, size_t back) HWY_ATTR {
    const Vec<U8> pick =
        hn::Add(load(kPicks.bytes), hn::Set(u8, static_cast<uint8_t>(2 * back)));
    const Vec<U8> bytes = hn::LoadDup128(u8, pairs + 2 * (pair - back));
    const Vec<I16> sum = asI16(pairSums(pickInBlocks(bytes, pick)));
    hn::StoreU(hn::Sub(sum, hn::Set(i16, 256)), i16, sums + 4 * pair);
  };
  size_t pair = 0;
  for (; pair + kReach <= inner + 1; pair += kVectorPairs) expand(pair, 0);
  // The last loads end with the row.
  for (; pair < inner; pair += kVectorPairs) {
    if (pair + kVectorPairs > inner) pair = inner - kVectorPairs;
    expand(pair, pair + kReach - (inner + 1));
  }
  if (ends.first) memcpy(sums + 2, sums, 4);
  if (ends.last) {
    int16_t* end = sums + 4 * (count - 1);
    for (size_t i = 0; i < 4; ++i) {
      end[i] = static_cast<int16_t>(2 * pairs[2 * (count - 1) + i % 2] - 256);
    }
  }
}

// The luma of a vector of pixels, each twice.
HWY_INLINE Vec<I16> lumaTwice(const uint8_t* luma) {
  alignas(kBytes) static constexpr uint8_t kTwice[kBytes] = {
      0, 128, 0, 128, 1, 128, 1, 128, 2, 128, 2, 128, 3, 128, 3, 128,
      4, 128, 4, 128, 5, 128, 5, 128, 6, 128, 6, 128, 7, 128, 7, 128};
  uint64_t eight;
  memcpy(&eight, luma, sizeof eight);
  const Vec<U8> bytes = asU8(hn::Set(hn::Repartition<uint64_t, U8>(), eight));
  return asI16(pickInBlocks(bytes, load(kTwice)));
}

// The bytes of pixels from R and B of four of them, and then 255 and G. `redFirst`
// tells whether R, or what stands in its place, comes before B.
template <class Format>
HWY_INLINE Vec<U8> packPixels(const PixelChannels& c, bool redFirst) {
  constexpr uint8_t z = 128;
  alignas(16) static constexpr uint8_t kFour[2][16] = {
      {1, 9, 0, 8, 3, 11, 2, 10, 5, 13, 4, 12, 7, 15, 6, 14},
      {0, 9, 1, 8, 2, 11, 3, 10, 4, 13, 5, 12, 6, 15, 7, 14}};
  alignas(16) static constexpr uint8_t kThree[2][16] = {
      {1, 9, 0, 3, 11, 2, 5, 13, 4, 7, 15, 6, z, z, z, z},
      {0, 9, 1, 2, 11, 3, 4, 13, 5, 6, 15, 7, z, z, z, z}};
  const Vec<I16> alphaAndG = hn::OddEven(c.g, hn::Set(i16, INT16_MAX));
  return pickInBlocks(
      packInBlocks(c.rb, alphaAndG),
      everyBlock((Format::kPixelBytes == 4 ? kFour : kThree)[redFirst]));
}

HWY_INLINE void storeTwo(Rgba8888, uint8_t* to, const PixelChannels& a,
                         const PixelChannels& b, bool redFirst) {
  store(packPixels<Rgba8888>(a, redFirst), to);
  store(packPixels<Rgba8888>(b, redFirst), to + kBytes);
}

// A block holds 12 bytes. All but the last one are stored with four bytes more, where
// the next one comes.
HWY_INLINE void storeTwo(Rgb888, uint8_t* to, const PixelChannels& a,
                         const PixelChannels& b, bool redFirst) {
  const hn::Half<U8> block;
  const Vec<U8> first = packPixels<Rgb888>(a, redFirst);
  const Vec<U8> second = packPixels<Rgb888>(b, redFirst);
  const auto last = hn::UpperHalf(block, second);
  hn::StoreU(hn::LowerHalf(first), block, to);
  hn::StoreU(hn::UpperHalf(block, first), block, to + 12);
  hn::StoreU(hn::LowerHalf(second), block, to + 24);
  hn::StoreU(hn::LowerHalf(last), hn::Full64<uint8_t>(), to + 36);
  const uint32_t end = hn::ExtractLane(hn::BitCast(hn::Full128<uint32_t>(), last), 2);
  memcpy(to + 44, &end, sizeof end);
}

HWY_INLINE void storeTwo(Rgb565, uint8_t* to, const PixelChannels& a,
                         const PixelChannels& b, bool redFirst) {
  Vec<U8> rb = packInBlocks(a.rb, b.rb);
  if (!redFirst) rb = swapPairs(rb);
  store(joinBlocks(words565(rb, packInBlocks(a.g, b.g))), to);
}

template <class Format, bool kIsBt601Full>
void convertSums(uint8_t* to, const uint8_t* luma, const ChromaSums& chroma,
                 size_t pixels, const YuvToRgb& colour, bool uFirst, bool blueFirst) {
  const Weights<kIsBt601Full> weights(colour, uFirst);
  const bool redFirst = weights.firstIsBlue(uFirst) == blueFirst;
  const auto channels = [&](size_t x) HWY_ATTR {
    const auto sums = [x](const int16_t* row)
                          HWY_ATTR { return hn::LoadU(i16, row + 2 * x); };
    return weights.channels(
        hn::Add(sums(chroma.own), hn::OddEven(sums(chroma.second), sums(chroma.first))),
        lumaTwice(luma + x));
  };
  inBlocks(pixels, kLeastPixels, [&](size_t x) HWY_ATTR {
    storeTwo(Format(), to + x * Format::kPixelBytes, channels(x),
             channels(x + kVectorPixels), redFirst);
  });
}

template <class Format, bool kBlueFirst>
void rgbRowOfSums(uint8_t* to, const uint8_t* luma, const ChromaSums& chroma,
                  size_t pixels, const YuvToRgb& colour, bool uFirst) {
  (colour.bt601Full ? convertSums<Format, true>
                    : convertSums<Format, false>)(to, luma, chroma, pixels, colour,
                                                  uFirst, kBlueFirst);
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // HWY_AVX2
