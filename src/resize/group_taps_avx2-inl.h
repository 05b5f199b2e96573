// Where the bytes of a group of a scaled row come from, eight or sixteen samples at a
// time, for the tables of small frames: these take longer to make sample by sample than
// the frames themselves. Included by scaler-inl.h in the pass with AVX2.
//
// Positions are kept in 64-bit lanes relative to the first sample's source column, so
// upper halves are offsets and lower halves fractions. Lanes are in an order that makes
// the shuffles inside blocks bring the samples into theirs.
HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// How samples become bytes when a group begins with byte `phase` of one: which sample
// a lane belongs to, and which of its bytes it is.
template <size_t kSample, size_t kLaneBytes>
struct LanesOfSamples {
  alignas(16) uint8_t sample[kSample][16], byte[kSample][16];

  constexpr LanesOfSamples() : sample(), byte() {
    for (size_t phase = 0; phase < kSample; ++phase) {
      for (size_t i = 0; i < 16; ++i) {
        const size_t at = phase + i / kLaneBytes;
        sample[phase][i] =
            static_cast<uint8_t>(at / kSample * kLaneBytes + i % kLaneBytes);
        byte[phase][i] = static_cast<uint8_t>(at % kSample);
      }
    }
  }
};

template <size_t kSample>
class GroupTaps {
 public:
  explicit HWY_INLINE GroupTaps(const Axis& across)
      : across_(across),
        two_(_mm256_set1_epi64x(static_cast<int64_t>(2 * across.step))),
        near_(distances(across.step, 4)),
        far_(distances(across.step, 8)) {}

  // Bytes of a group, less `lowest`, the first byte of the group's first sample.
  struct Offsets {
    size_t lowest;
    hn::Vec128<uint8_t> offsets;
  };
  // Returns the nearest bytes for the 16 bytes of a row from `byte` on.
  HWY_INLINE Offsets nearest(size_t byte) const {
    const uint64_t at = across_.halfOn(byte / kSample);
    const size_t column = across_.clamp(static_cast<size_t>(at >> 32));
    const __m256i a = behind(at - (uint64_t{column} << 32), far_);
    const __m256i b = _mm256_add_epi64(a, two_), c = _mm256_add_epi64(b, two_);
    const __m256i d = _mm256_add_epi64(c, two_);
    const __m256i words = _mm256_packs_epi32(upper(a, b), upper(c, d));
    const __m128i bytes = _mm_packus_epi16(_mm256_castsi256_si128(words),
                                           _mm256_extracti128_si256(words, 1));
    const size_t most = across_.last - column;
    const __m128i last = _mm_set1_epi8(static_cast<char>(most < 255 ? most : 255));
    return {column * kSample,
            {toBytes<1>(_mm_min_epu8(bytes, last), byte % kSample, true)}};
  }

  // Left and right bytes side by side, and their weights, for the 8 bytes of a row from
  // `byte` on. Where one sample counts alone it is taken twice, with 128 each.
  struct Pairs {
    size_t lowest;
    hn::Vec128<uint8_t> offsets;
    __m128i weights;
    HWY_INLINE void storeWeights(uint8_t* to) const {
      _mm_store_si128(reinterpret_cast<__m128i*>(to), weights);
    }
  };
  HWY_INLINE Pairs bilinear(size_t byte) const {
    const uint64_t at = byte / kSample * across_.step;
    const size_t column = static_cast<size_t>(at >> 32), most = across_.last - column;
    const __m256i a = behind(at & 0xFFFFFFFF, near_), b = _mm256_add_epi64(a, two_);
    const __m256i left = upper(a, b);
    const __m256i right =
        _mm256_min_epi32(_mm256_add_epi32(left, _mm256_set1_epi32(1)),
                         _mm256_set1_epi32(static_cast<int>(most < 255 ? most : 255)));
    // Half of the fraction is rounded, as the whole of it would overflow.
    const __m256i half = _mm256_srli_epi32(lower(a, b), 1);
    const __m256i weight =
        _mm256_srli_epi32(_mm256_add_epi32(half, _mm256_set1_epi32(1 << 22)), 23);

    const __m256i whole = _mm256_set1_epi32(256);
    const __m256i onLeft = _mm256_cmpeq_epi32(weight, _mm256_setzero_si256());
    const __m256i onRight = _mm256_cmpeq_epi32(weight, whole);
    const __m256i first = _mm256_blendv_epi8(left, right, onRight);
    const __m256i second = _mm256_blendv_epi8(right, left, onLeft);
    const __m256i places = _mm256_or_si256(first, _mm256_slli_epi32(second, 8));
    // 256 - w and w, as bytes of a 16-bit lane: 256 + 255 w.
    const __m256i shares =
        _mm256_add_epi32(_mm256_sub_epi32(_mm256_slli_epi32(weight, 8), weight), whole);
    const __m256i weights = _mm256_blendv_epi8(shares, _mm256_set1_epi32(0x8080),
                                               _mm256_or_si256(onLeft, onRight));
    // Blocks hold places of four samples, then their weights.
    const __m256i blocks = _mm256_packus_epi32(places, weights);
    const __m256i sorted = _mm256_permute4x64_epi64(blocks, _MM_SHUFFLE(3, 1, 2, 0));
    const size_t phase = byte % kSample;
    return {column * kSample,
            {toBytes<2>(_mm256_castsi256_si128(sorted), phase, true)},
            toBytes<2>(_mm256_extracti128_si256(sorted, 1), phase, false)};
  }

 private:
  // How far behind sample 0 that one, sample 1, and those `apart` behind them lie.
  static HWY_INLINE __m256i distances(uint64_t step, uint64_t apart) {
    return _mm256_setr_epi64x(0, static_cast<int64_t>(step),
                              static_cast<int64_t>(apart * step),
                              static_cast<int64_t>((apart + 1) * step));
  }
  static HWY_INLINE __m256i behind(uint64_t at, __m256i distances) {
    return _mm256_add_epi64(_mm256_set1_epi64x(static_cast<int64_t>(at)), distances);
  }
  static HWY_INLINE __m256i upper(__m256i a, __m256i b) {
    return _mm256_castps_si256(_mm256_shuffle_ps(
        _mm256_castsi256_ps(a), _mm256_castsi256_ps(b), _MM_SHUFFLE(3, 1, 3, 1)));
  }
  static HWY_INLINE __m256i lower(__m256i a, __m256i b) {
    return _mm256_castps_si256(_mm256_shuffle_ps(
        _mm256_castsi256_ps(a), _mm256_castsi256_ps(b), _MM_SHUFFLE(2, 0, 2, 0)));
  }

  // Spreads lanes of kLaneBytes bytes, one for each sample, to one for each byte of
  // the samples. Offsets of samples become those of bytes.
  template <size_t kLaneBytes>
  static HWY_INLINE __m128i toBytes(__m128i samples, size_t phase, bool offsets) {
    if constexpr (kSample == 1) return samples;
    static constexpr LanesOfSamples<kSample, kLaneBytes> kLanes;
    const auto from = [](const uint8_t* bytes) HWY_ATTR {
      return _mm_load_si128(reinterpret_cast<const __m128i*>(bytes));
    };
    const __m128i spread = _mm_shuffle_epi8(samples, from(kLanes.sample[phase]));
    if (!offsets) return spread;
    __m128i bytes = from(kLanes.byte[phase]);
    for (size_t i = 0; i < kSample; ++i) bytes = _mm_add_epi8(bytes, spread);
    return bytes;
  }

  const Axis& across_;
  const __m256i two_, near_, far_;  // distances
};

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
