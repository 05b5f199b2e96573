// YUV to packed RGB: how pixels are put together and stored with VBMI.
// Included by yuv_to_rgb_x86-inl.h.
#if ZELM_VBMI

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

constexpr size_t kAhead = 3072;  // how far ahead destination lines are prefetched

// Where the bytes of pixels come from. Pixels are made of channels R, G, B, A (which is
// 255) and 0.
template <char... kChannels>
struct PixelPlaces {
  static constexpr size_t kPixelBytes = sizeof...(kChannels);
  alignas(64) uint8_t rb[kPixelBytes * kBytes];  // left pixels', then right pixels'
  alignas(64) uint8_t g[kPixelBytes * kBytes];
  uint64_t isRb[kPixelBytes], isG[kPixelBytes];

  constexpr PixelPlaces() : rb(), g(), isRb(), isG() {
    constexpr char kNames[] = {kChannels...};
    for (size_t i = 0; i < kPixelBytes * kBytes; ++i) {
      const size_t pixel = i / kPixelBytes;
      const char name = kNames[i % kPixelBytes];
      const size_t left = pixel / 2 * 2 + (name == 'B' ? 1 : 0);
      const bool rOrB = name == 'R' || name == 'B';
      rb[i] = static_cast<uint8_t>(rOrB          ? left + pixel % 2 * kBytes
                                   : name == 'A' ? 255
                                                 : 0);
      g[i] = static_cast<uint8_t>(pixel);
      isRb[i / kBytes] |= static_cast<uint64_t>(rOrB) << (i % kBytes);
      isG[i / kBytes] |= static_cast<uint64_t>(name == 'G') << (i % kBytes);
    }
  }
};

// Makes vector v of such bytes by one permutation of R and B and one of G.
template <char... kChannels>
HWY_INLINE Vec<U8> pixelBytes(const RgbBytes& c, size_t v) {
  static constexpr PixelPlaces<kChannels...> kPlaces;
  // Where the mask is 0 the index itself is kept.
  const __m512i rb = _mm512_mask2_permutex2var_epi8(
      c.rbLeft.raw, load(kPlaces.rb + v * kBytes).raw, kPlaces.isRb[v], c.rbRight.raw);
  return Vec<U8>{_mm512_mask_permutexvar_epi8(
      rb, kPlaces.isG[v], load(kPlaces.g + v * kBytes).raw, c.g.raw)};
}

template <char... kChannels>
HWY_INLINE void storePrefetching(uint8_t* to, const RgbBytes& c) {
  for (size_t v = 0; v < sizeof...(kChannels); ++v) {
    prefetchForWriting(to + v * kBytes + kAhead);
    store(pixelBytes<kChannels...>(c, v), to + v * kBytes);
  }
}

HWY_INLINE void storePixels(Rgba8888, uint8_t* to, const RgbBytes& c) {
  storePrefetching<'R', 'G', 'B', 'A'>(to, c);
}

HWY_INLINE void storePixels(Rgb888, uint8_t* to, const RgbBytes& c) {
  storePrefetching<'R', 'G', 'B'>(to, c);
}

HWY_INLINE void storePixels(Rgb565, uint8_t* to, const RgbBytes& c) {
  for (size_t v = 0; v < 2; ++v) {
    store(words565(pixelBytes<'R', 'B'>(c, v), pixelBytes<'0', 'G'>(c, v)),
          to + v * kBytes);
  }
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // ZELM_VBMI
