// Rows of luma and of chroma pairs from one colour description to another:
//   Y' = clamp((yy (Y - o) + yu (U - 128) + yv (V - 128) + o' * 2^14 + 2^13) >> 14)
//   U' = clamp((uu (U - 128) + uv (V - 128) + 128 * 2^14 + 2^13) >> 14), V' alike
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "frames/kernels/recolour.cc"
#include "simd/each_target.h"  // before all others

#include "frames/kernels/recolour.h"
#include "simd/dispatch.h"
#include "simd/vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

HWY_INLINE uint8_t rounded(int sum, int offset) {
  const int value = (sum + (offset * 2 + 1) * (1 << 13)) >> 14;
  return static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
}

#if ZELM_VECTORS
// Two 16-bit lanes side by side, for the lower and for the upper halves of blocks.
struct Interleaved {
  Vec<I16> lower, upper;
};
HWY_INLINE Interleaved interleave(Vec<I16> first, Vec<I16> second) {
  return {hn::InterleaveLower(i16, first, second),
          hn::InterleaveUpper(i16, first, second)};
}

// First and second bytes less an offset each.
HWY_INLINE Vec<I16> firstLess(Vec<U8> bytes, int offset) {
  return hn::Sub(asI16(lowBytes(bytes)), hn::Set(i16, static_cast<int16_t>(offset)));
}
HWY_INLINE Vec<I16> secondLess(Vec<U8> bytes, int offset) {
  return hn::Sub(asI16(highBytes(bytes)), hn::Set(i16, static_cast<int16_t>(offset)));
}

// (sum + products) >> 14 of 16-bit lanes, clamped to bytes.
HWY_INLINE Vec<U16> roundedBytes(Vec<I32> lower, Vec<I32> upper,
                                 const Interleaved& lanes, Vec<I16> weights) {
  const Vec<I16> value =
      narrowInBlocks(hn::ShiftRight<14>(addPairProducts(lower, lanes.lower, weights)),
                     hn::ShiftRight<14>(addPairProducts(upper, lanes.upper, weights)));
  return asU16(hn::Min(hn::Max(value, hn::Zero(i16)), hn::Set(i16, 255)));
}

HWY_INLINE Vec<U8> bytesInTurn(Vec<U16> first, Vec<U16> second) {
  return asU8(hn::Or(first, hn::ShiftLeft<8>(second)));
}
#endif  // ZELM_VECTORS

void recolourLumaRow(uint8_t* to, const uint8_t* luma, const uint8_t* pairs,
                     bool uFirst, size_t pixels, const YuvToYuv& weights) {
  const int first = uFirst ? weights.yu : weights.yv;
  const int second = uFirst ? weights.yv : weights.yu;
  size_t done = 0;
#if ZELM_VECTORS
  // Beside luma stands 16, and its weight is a 16th of what rounds.
  const Vec<I16> ofLuma = alternate(weights.yy, (weights.toOffset * 2 + 1) * (1 << 9));
  const Vec<I16> ofPairs = alternate(first, second), sixteen = hn::Set(i16, 16);
  done = 2 * inBlocks(pixels / 2, kBytes / 2, [&](size_t j) HWY_ATTR {
           const Vec<U8> y = load(luma + 2 * j);
           Vec<I32> lower = hn::Zero(i32), upper = hn::Zero(i32);
           if (pairs != nullptr) {
             const Vec<U8> c = load(pairs + 2 * j);
             const Interleaved both = interleave(firstLess(c, 128), secondLess(c, 128));
             lower = pairProducts(both.lower, ofPairs);
             upper = pairProducts(both.upper, ofPairs);
           }
           const Interleaved left =
               interleave(firstLess(y, weights.fromOffset), sixteen);
           const Interleaved right =
               interleave(secondLess(y, weights.fromOffset), sixteen);
           store(bytesInTurn(roundedBytes(lower, upper, left, ofLuma),
                             roundedBytes(lower, upper, right, ofLuma)),
                 to + 2 * j);
         });
#endif
  for (size_t x = done; x < pixels; ++x) {
    int sum = weights.yy * (luma[x] - weights.fromOffset);
    if (pairs != nullptr) {
      const uint8_t* pair = pairs + x / 2 * 2;
      sum += first * (pair[0] - 128) + second * (pair[1] - 128);
    }
    to[x] = rounded(sum, weights.toOffset);
  }
}

void recolourPairsRow(uint8_t* to, const uint8_t* pairs, bool uFirst, size_t count,
                      const YuvToYuv& weights) {
  // Of the first and of the second byte, in the first one and in the second one.
  const int inFirst[2] = {uFirst ? weights.uu : weights.vv,
                          uFirst ? weights.uv : weights.vu};
  const int inSecond[2] = {uFirst ? weights.vu : weights.uv,
                           uFirst ? weights.vv : weights.uu};
  size_t done = 0;
#if ZELM_VECTORS
  const Vec<I16> ofFirst = alternate(inFirst[0], inFirst[1]);
  const Vec<I16> ofSecond = alternate(inSecond[0], inSecond[1]);
  const Vec<I32> half = hn::Set(i32, (128 * 2 + 1) * (1 << 13));
  done = inBlocks(count, kBytes / 2, [&](size_t j) HWY_ATTR {
    const Vec<U8> c = load(pairs + 2 * j);
    const Interleaved both = interleave(firstLess(c, 128), secondLess(c, 128));
    store(bytesInTurn(roundedBytes(half, half, both, ofFirst),
                      roundedBytes(half, half, both, ofSecond)),
          to + 2 * j);
  });
#endif
  for (size_t i = 2 * done; i < 2 * count; i += 2) {
    const int first = pairs[i] - 128, second = pairs[i + 1] - 128;
    to[i] = rounded(inFirst[0] * first + inFirst[1] * second, 128);
    to[i + 1] = rounded(inSecond[0] * first + inSecond[1] * second, 128);
  }
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#include "simd/vbmi_pass.h"

#if HWY_ONCE
// A vector holds a byte of luma for each pixel, and two bytes for each pair.
zelm::RecolourLuma* zelm::recolourLumaKernel(size_t pixels) {
  return ZELM_KERNEL_FOR(recolourLumaRow, pixels);
}
zelm::RecolourPairs* zelm::recolourPairsKernel(size_t pairs) {
  return ZELM_KERNEL_FOR(recolourPairsRow, 2 * pairs);
}
#endif  // HWY_ONCE
