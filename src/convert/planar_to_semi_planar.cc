// Planar 4:2:0 to semi-planar: interleaves the chroma planes, which are packed one
// behind the other. Works on whole frames.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "convert/planar_to_semi_planar.cc"
#include "simd/each_target.h"  // before all others

#include "convert/pairs.h"
#include "convert/planar_to_semi_planar_neon-inl.h"
#include "plane.h"
#include "simd/dispatch.h"
#include "simd/streaming.h"
#include "simd/vector-inl.h"
#include "zelm_imageutil.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

#if ZELM_VECTORS && !ZELM_NEON
template <bool kStream>
HWY_INLINE size_t joinPairsInBlocks(uint8_t* to, const uint8_t* first,
                                    const uint8_t* second, size_t pairs) {
  return inBlocks(pairs, kBytes, [&](size_t j) HWY_ATTR {
    const Vec<U8> a = splitBlocks(load(first + j)), b = splitBlocks(load(second + j));
    store<kStream>(hn::InterleaveLower(u8, a, b), to + 2 * j);
    store<kStream>(hn::InterleaveUpper(u8, a, b), to + 2 * j + kBytes);
  });
}
#endif

template <bool kStream>
HWY_INLINE void joinPairs(uint8_t* to, const uint8_t* first, const uint8_t* second,
                          size_t pairs) {
  size_t done = 0;
#if ZELM_VECTORS
  done = joinPairsInBlocks<kStream>(to, first, second, pairs);
#endif
  for (size_t j = done; j < pairs; ++j) {
    to[2 * j] = first[j];
    to[2 * j + 1] = second[j];
  }
}
void joinPairsRow(uint8_t* to, const uint8_t* first, const uint8_t* second,
                  size_t pairs, bool stream) {
  (stream ? joinPairs<true> : joinPairs<false>)(to, first, second, pairs);
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
zelm::JoinPairsRow* zelm::joinPairsKernel(size_t pairs) {
  return ZELM_KERNEL_FOR(joinPairsRow, pairs);
}

extern "C" void convYUV420P_YUV420SP(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  const size_t luma = static_cast<size_t>(src->height) * src->width;
  const bool stream = worthStreaming(3 * luma);
  copyBytes(dst->data, src->data, luma, stream);
  const uint8_t* first = src->data + src->uvOffset;
  joinPairsKernel(luma / 4)(dst->data + dst->uvOffset, first, first + luma / 4,
                            luma / 4, stream);
  if (stream) finishStreaming();
}
#endif  // HWY_ONCE
