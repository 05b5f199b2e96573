// YUV to packed RGB with AVX2, in the order of pixels and two rows at a time. Included
// by yuv_to_rgb_x86-inl.h.
//
// Chroma becomes sums of two samples for every pixel, first and second bytes side by
// side as 16 bits:
//   left pixels   2 c         right pixels   c + next
// Of two chroma rows a and b, the lower luma row of a sees U of both and V of a twice,
// the upper one of b sees V of both and U of b twice. So both of them add to the sums
// of their own row the same third ones, which take U from b and V from a. As pixels are
// in order from there on, one saturating narrow and one shuffle make them.
#if HWY_TARGET == HWY_AVX2

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// Pixels that are made at a time, in two vectors of channels. Where pixels have four
// bytes, a vector holds the first or the second half of them; otherwise a block of the
// first vector is followed by that of the second one.
constexpr size_t kStep = 16;
constexpr size_t kLeastPixels = kStep;

template <class Format>
constexpr size_t pixelInLane(size_t vector, size_t lane) {
  return Format::kPixelBytes == 4 ? 8 * vector + lane
                                  : lane / 4 * 8 + 4 * vector + lane % 4;
}

// Which bytes of 16 become sums, and the luma of pixels. The second vector's load
// begins one pair further, but for a last step of a row, as no pair follows it.
template <class Format>
struct StepPicks {
  enum { kFirst, kInner, kLast };
  alignas(kBytes) uint8_t sums[2][3][kBytes];
  alignas(kBytes) uint8_t luma[2][kBytes];

  constexpr StepPicks() : sums(), luma() {
    for (size_t i = 0; i < 2 * kBytes; ++i) {
      const size_t vector = i / kBytes, at = i % kBytes;
      const size_t pixel = pixelInLane<Format>(vector, at / 4), pair = pixel / 2;
      for (size_t place = 0; place < 3; ++place) {
        const bool lone = place == kFirst  ? pair == 0
                          : place == kLast ? pair == 7
                                           : false;
        const size_t next = pixel % 2 == 1 && !lone ? pair + 1 : pair;
        const size_t from = vector == 1 && place != kLast ? 1 : 0;
        sums[vector][place][at] =
            static_cast<uint8_t>(2 * ((at % 2 == 1 ? next : pair) - from) + at / 2 % 2);
      }
      luma[vector][at] = at % 2 == 0 ? static_cast<uint8_t>(pixel) : 128;
    }
  }
};

// The bytes of pixels from R and B of four of them, and then 255 and G. `redFirst`
// tells whether R, or what stands in its place, comes before B. Behind three bytes per
// pixel the last four bytes stand once more.
template <class Format>
HWY_INLINE Vec<U8> packPixels(const PixelChannels& c, bool redFirst) {
  alignas(16) static constexpr uint8_t kFour[2][16] = {
      {1, 9, 0, 8, 3, 11, 2, 10, 5, 13, 4, 12, 7, 15, 6, 14},
      {0, 9, 1, 8, 2, 11, 3, 10, 4, 13, 5, 12, 6, 15, 7, 14}};
  alignas(16) static constexpr uint8_t kThree[2][16] = {
      {1, 9, 0, 3, 11, 2, 5, 13, 4, 7, 15, 6, 4, 7, 15, 6},
      {0, 9, 1, 2, 11, 3, 4, 13, 5, 6, 15, 7, 5, 6, 15, 7}};
  if (Format::kPixelBytes == 3) {
    return pickInBlocks(packInBlocks(c.rb, c.g), everyBlock(kThree[redFirst]));
  }
  const Vec<I16> alphaAndG = hn::OddEven(c.g, hn::Set(i16, INT16_MAX));
  return pickInBlocks(packInBlocks(c.rb, alphaAndG), everyBlock(kFour[redFirst]));
}

HWY_INLINE void storeStep(Rgba8888, uint8_t* to, const PixelChannels& a,
                          const PixelChannels& b, bool redFirst) {
  store(packPixels<Rgba8888>(a, redFirst), to);
  store(packPixels<Rgba8888>(b, redFirst), to + kBytes);
}

// A block holds 12 bytes. Those of a are stored with four bytes more, which b's
// overwrite; b's begin with the last four of a.
HWY_INLINE void storeStep(Rgb888, uint8_t* to, const PixelChannels& a,
                          const PixelChannels& b, bool redFirst) {
  const hn::Half<U8> block;
  const Vec<U8> even = packPixels<Rgb888>(a, redFirst);
  const Vec<U8> odd =
      hn::CombineShiftRightBytes<12>(u8, packPixels<Rgb888>(b, redFirst), even);
  hn::StoreU(hn::LowerHalf(even), block, to);
  hn::StoreU(hn::LowerHalf(odd), block, to + 8);
  hn::StoreU(hn::UpperHalf(block, even), block, to + 24);
  hn::StoreU(hn::UpperHalf(block, odd), block, to + 32);
}

HWY_INLINE void storeStep(Rgb565, uint8_t* to, const PixelChannels& a,
                          const PixelChannels& b, bool redFirst) {
  Vec<U8> rb = packInBlocks(a.rb, b.rb);
  if (!redFirst) rb = swapPairs(rb);
  store(words565(rb, packInBlocks(a.g, b.g)), to);
}

// Makes two luma rows or one, whose own chroma rows are own[i]. All of them add the
// second bytes of chroma row a and the first ones of b; where there are two, these are
// their own rows.
template <class Format, bool kIsBt601Full, size_t kRows>
HWY_INLINE void convertSteps(uint8_t* const (&to)[kRows],
                             const uint8_t* const (&luma)[kRows],
                             const uint8_t* const (&own)[kRows], const uint8_t* a,
                             const uint8_t* b, size_t pixels, const YuvToRgb& anyColour,
                             bool uFirst, bool blueFirst) {
  using Picks = StepPicks<Format>;
  static constexpr Picks kPicks;
  const Weights<kIsBt601Full> weights(kIsBt601Full ? kBt601Full : anyColour, uFirst);
  const bool redFirst = weights.firstIsBlue(uFirst) == blueFirst;
  const size_t even = pixels / 2 * 2;
  const auto sums = [](const uint8_t* pairs, Vec<U8> picks) HWY_ATTR {
    return asI16(pairSums(pickInBlocks(hn::LoadDup128(u8, pairs), picks)));
  };
  Vec<U8> picks[2] = {load(kPicks.sums[0][Picks::kFirst]),
                      load(kPicks.sums[1][Picks::kInner])};
  size_t from = 2;
  for (size_t x = 0;; x += kStep) {
    const bool isLast = x + kStep >= even;
    if (isLast) {
      x = even - kStep;
      if (pixels == even) {
        picks[1] = load(kPicks.sums[1][Picks::kLast]);
        from = 0;
      }
    }
    Vec<I16> differences[2][kRows];
    for (size_t v = 0; v < 2; ++v) {
      const size_t at = x + v * from;
      const Vec<I16> ofA = sums(a + at, picks[v]), ofB = sums(b + at, picks[v]);
      const Vec<I16> added = hn::Sub(hn::OddEven(ofA, ofB), hn::Set(i16, 512));
      if (kRows == 2) {
        differences[v][0] = hn::Add(ofA, added);
        differences[v][kRows - 1] = hn::Add(ofB, added);
      } else {
        differences[v][0] = hn::Add(sums(own[0] + at, picks[v]), added);
      }
    }
    for (size_t i = 0; i < kRows; ++i) {
      const Vec<U8> y = hn::LoadDup128(u8, luma[i] + x);
      const auto channels = [&](size_t v) HWY_ATTR {
        return weights.channels(differences[v][i],
                                asI16(pickInBlocks(y, load(kPicks.luma[v]))));
      };
      storeStep(Format(), to[i] + x * Format::kPixelBytes, channels(0), channels(1),
                redFirst);
    }
    if (isLast) return;
    picks[0] = load(kPicks.sums[0][Picks::kInner]);
  }
}

template <class Format, bool kIsBt601Full>
HWY_INLINE size_t convertBlocks(uint8_t* to, const uint8_t* luma,
                                const ChromaRows& chroma, size_t pixels,
                                const YuvToRgb& colour, bool blueFirst) {
  if (pixels < kStep) return 0;
  const uint8_t* const rows[] = {chroma.own, chroma.other};
  convertSteps<Format, kIsBt601Full, 1>({to}, {luma}, {chroma.own},
                                        rows[chroma.loneFirst], rows[!chroma.loneFirst],
                                        pixels, colour, chroma.uFirst, blueFirst);
  return pixels / 2;
}

template <class Format, bool kIsBt601Full>
HWY_INLINE size_t convertTwo(const TwoRows& rows, size_t pixels, const YuvToRgb& colour,
                             bool blueFirst) {
  if (pixels < kStep) return 0;
  const size_t a = rows.uFirst ? 0 : 1, b = 1 - a;
  convertSteps<Format, kIsBt601Full, 2>(
      {rows.to[a], rows.to[b]}, {rows.luma[a], rows.luma[b]},
      {rows.pairs[a], rows.pairs[b]}, rows.pairs[a], rows.pairs[b], pixels, colour,
      rows.uFirst, blueFirst);
  return pixels / 2;
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // HWY_AVX2
