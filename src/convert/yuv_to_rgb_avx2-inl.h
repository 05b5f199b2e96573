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
#include <type_traits>

#if ZELM_IS_AVX2

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {

namespace {

// Pixels that are made at a time, in two vectors of channels. Where pixels have four
// bytes, a vector holds the first or the second half of them; otherwise a block of the
// first vector is followed by that of the second one.
constexpr size_t kStep = 16;
constexpr bool kPutsFirstPair = true;

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

// How the bytes of four pixels are picked from four R and B, which come in turns, and
// four alpha and G. `redFirst` tells whether R, or what stands in its place, comes
// before B. Three bytes per pixel are the upper 12 of the first vector's blocks.
HWY_INLINE Vec<U8> byteOrder(Rgba8888, size_t, bool redFirst) {
  alignas(16) static constexpr uint8_t kOrder[2][16] = {
      {1, 9, 0, 8, 3, 11, 2, 10, 5, 13, 4, 12, 7, 15, 6, 14},
      {0, 9, 1, 8, 2, 11, 3, 10, 4, 13, 5, 12, 6, 15, 7, 14}};
  return everyBlock(kOrder[redFirst]);
}

HWY_INLINE Vec<U8> byteOrder(Rgb888, size_t vector, bool redFirst) {
  constexpr uint8_t z = 128;
  alignas(16) static constexpr uint8_t kOrder[2][2][16] = {
      {{z, z, z, z, 1, 9, 0, 3, 11, 2, 5, 13, 4, 7, 15, 6},
       {z, z, z, z, 0, 9, 1, 2, 11, 3, 4, 13, 5, 6, 15, 7}},
      {{1, 9, 0, 3, 11, 2, 5, 13, 4, 7, 15, 6, z, z, z, z},
       {0, 9, 1, 2, 11, 3, 4, 13, 5, 6, 15, 7, z, z, z, z}}};
  return everyBlock(kOrder[vector][redFirst]);
}

// Of words only R and B are picked, in turns.
HWY_INLINE Vec<U8> byteOrder(Rgb565, size_t, bool redFirst) {
  alignas(16) static constexpr uint8_t kOrder[2][16] = {
      {1, 0, 3, 2, 5, 4, 7, 6, 9, 8, 11, 10, 13, 12, 15, 14},
      {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}};
  return everyBlock(kOrder[redFirst]);
}

template <bool kStream, class D>
HWY_INLINE void store(D d, Vec<D> v, uint8_t* to) {
  kStream ? hn::Stream(v, d, to) : hn::StoreU(v, d, to);
}

// Stores the pixels of channels a and b; past the caches addresses have to be aligned.
template <bool kStream>
HWY_INLINE void storeStep(Rgba8888, uint8_t* to, const PixelChannels& a,
                          const PixelChannels& b, const Vec<U8> (&order)[2]) {
  const auto bytes = [&](const PixelChannels& c) HWY_ATTR {
    const Vec<I16> alphaAndG = hn::OddEven(c.g, hn::Set(i16, INT16_MAX));
    return pickInBlocks(packInBlocks(c.rb, alphaAndG), order[0]);
  };
  store<kStream>(u8, bytes(a), to);
  store<kStream>(u8, bytes(b), to + kBytes);
}

// With four bytes in each place, low and high are put together like this:
//   low    .. a0 a1 a2 | .. a3 a4 a5       high   b0 b1 b2 .. | b3 b4 b5 ..
//   heads  a0 a1 a2 b0 | a3 a4 a5 b3       tails  a2 b0 b1 b2 | a5 b3 b4 b5
//   memory a0 a1 a2 b0 | b1 b2 a3 a4 | a5 b3 b4 b5
template <bool kStream>
HWY_INLINE void storeStep(Rgb888, uint8_t* to, const PixelChannels& a,
                          const PixelChannels& b, const Vec<U8> (&order)[2]) {
  const hn::Half<U8> block;
  const Vec<U8> low = pickInBlocks(packInBlocks(a.rb, a.g), order[0]);
  const Vec<U8> high = pickInBlocks(packInBlocks(b.rb, b.g), order[1]);
  const Vec<U8> heads = hn::CombineShiftRightBytes<4>(u8, high, low);
  const Vec<U8> tails = hn::CombineShiftRightBytes<12>(u8, high, low);
  const auto middle = hn::CombineShiftRightBytes<8>(block, hn::UpperHalf(block, heads),
                                                    hn::LowerHalf(tails));
  store<kStream>(block, hn::LowerHalf(heads), to);
  store<kStream>(block, middle, to + 16);
  store<kStream>(block, hn::UpperHalf(block, tails), to + 32);
}

template <bool kStream>
HWY_INLINE void storeStep(Rgb565, uint8_t* to, const PixelChannels& a,
                          const PixelChannels& b, const Vec<U8> (&order)[2]) {
  const Vec<U8> rb = pickInBlocks(packInBlocks(a.rb, b.rb), order[0]);
  store<kStream>(u8, words565(rb, packInBlocks(a.g, b.g)), to);
}

// Makes two luma rows or one, whose own chroma rows are own[i]. All of them add the
// second bytes of chroma row a and the first ones of b; where there are two, these are
// their own rows.
template <class Format, bool kIsBt601Full, bool kStream, size_t kRows>
HWY_INLINE void convertSteps(uint8_t* const (&to)[kRows],
                             const uint8_t* const (&luma)[kRows],
                             const uint8_t* const (&own)[kRows], const uint8_t* a,
                             const uint8_t* b, size_t pixels, const YuvToRgb& anyColour,
                             bool uFirst, bool blueFirst) {
  using Picks = StepPicks<Format>;
  static constexpr Picks kPicks;
  const Weights<kIsBt601Full> weights(kIsBt601Full ? kBt601Full : anyColour, uFirst);
  const bool redFirst = weights.firstIsBlue(uFirst) == blueFirst;
  const Vec<U8> order[2] = {byteOrder(Format(), 0, redFirst),
                            byteOrder(Format(), 1, redFirst)};
  const auto sums = [](const uint8_t* pairs, Vec<U8> picks) HWY_ATTR {
    return asI16(pairSums(pickInBlocks(hn::LoadDup128(u8, pairs), picks)));
  };
  const auto step = [&](size_t x, size_t from, Vec<U8> picks0, Vec<U8> picks1,
                        auto stream) HWY_ATTR __attribute__((always_inline)) {
    Vec<I16> differences[2][kRows];
    for (size_t v = 0; v < 2; ++v) {
      const size_t at = x + v * from;
      const Vec<U8> picks = v == 0 ? picks0 : picks1;
      const Vec<I16> ofA = sums(a + at, picks), ofB = sums(b + at, picks);
      const Vec<I16> added = hn::Sub(hn::OddEven(ofA, ofB), hn::Set(i16, 512));
      if (kRows == 2) {
        differences[v][0] = hn::Add(ofA, added);
        differences[v][kRows - 1] = hn::Add(ofB, added);
      } else {
        differences[v][0] = hn::Add(sums(own[0] + at, picks), added);
      }
    }
    for (size_t i = 0; i < kRows; ++i) {
      const Vec<U8> y = hn::LoadDup128(u8, luma[i] + x);
      const auto channels = [&](size_t v) HWY_ATTR {
        return weights.channels(differences[v][i],
                                asI16(pickInBlocks(y, load(kPicks.luma[v]))));
      };
      storeStep<stream>(Format(), to[i] + x * Format::kPixelBytes, channels(0),
                        channels(1), order);
    }
  };

  const Vec<U8> inner = load(kPicks.sums[1][Picks::kInner]);
  const size_t last = pixels / 2 * 2 - kStep;
  Vec<U8> picks0 = load(kPicks.sums[0][Picks::kFirst]);
  for (size_t x = 0; x < last; x += kStep) {
    step(x, 2, picks0, inner, std::bool_constant<kStream>());
    picks0 = load(kPicks.sums[0][Picks::kInner]);
  }
  // Behind an even number of pixels there is no pair.
  const bool even = pixels % 2 == 0;
  step(last, even ? 0 : 2, picks0, even ? load(kPicks.sums[1][Picks::kLast]) : inner,
       std::false_type());
}

template <class Format, bool kIsBt601Full>
HWY_INLINE size_t convertBlocks(uint8_t* to, const uint8_t* luma,
                                const ChromaRows& chroma, size_t pixels,
                                const YuvToRgb& colour, bool blueFirst) {
  if (pixels < kStep) return 0;
  const uint8_t* const rows[] = {chroma.own, chroma.other};
  convertSteps<Format, kIsBt601Full, false, 1>(
      {to}, {luma}, {chroma.own}, rows[chroma.loneFirst], rows[!chroma.loneFirst],
      pixels, colour, chroma.uFirst, blueFirst);
  return pixels / 2;
}

// Makes all pixels of two rows but the last of an odd number, if they are long enough.
template <class Format, bool kIsBt601Full>
HWY_INLINE bool convertTwo(const TwoRows& rows, size_t pixels, const YuvToRgb& colour,
                           bool blueFirst) {
  if (pixels < kStep) return false;
  const auto convert = [&](auto stream) HWY_ATTR {
    const size_t a = rows.uFirst ? 0 : 1, b = 1 - a;
    convertSteps<Format, kIsBt601Full, stream, 2>(
        {rows.to[a], rows.to[b]}, {rows.luma[a], rows.luma[b]},
        {rows.pairs[a], rows.pairs[b]}, rows.pairs[a], rows.pairs[b], pixels, colour,
        rows.uFirst, blueFirst);
  };
  // Words do not gain: a step stores half a line of each row.
  const uintptr_t places =
      reinterpret_cast<uintptr_t>(rows.to[0]) | reinterpret_cast<uintptr_t>(rows.to[1]);
  if (kIsBt601Full && Format::kPixelBytes > 2 && rows.stream && places % kBytes == 0) {
    convert(std::true_type());
  } else {
    convert(std::false_type());
  }
  return true;
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // ZELM_IS_AVX2
