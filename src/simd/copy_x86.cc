// Copying bytes on x86.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/copy_x86.cc"
#include "simd/each_target.h"  // before all others

#include "simd/copy.h"

#if ZELM_HIGHWAY && defined(__x86_64__)
#include <algorithm>

#include "simd/dispatch.h"
#include "simd/vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// Whole lines of the destination; what lies before and behind them is left to memcpy.
template <bool kStream>
void copyLines(uint8_t* to, const uint8_t* from, size_t bytes) {
  size_t done = 0;
#if ZELM_IS_AVX2
  constexpr size_t kTurn = 128, kAhead = 512;
  done = std::min(-reinterpret_cast<uintptr_t>(to) % 64, bytes);
  if (done > 0) std::memcpy(to, from, done);
  for (; done + kTurn <= bytes; done += kTurn) {
    Vec<U8> v[4];
    if constexpr (kStream) {
      __builtin_prefetch(from + std::min(done + kAhead, bytes));
      __builtin_prefetch(from + std::min(done + kAhead + 64, bytes));
    }
    for (size_t i = 0; i < 4; ++i) v[i] = load(from + done + i * kBytes);
    for (size_t i = 0; i < 4; ++i) {
      if constexpr (kStream) {
        hn::Stream(v[i], u8, to + done + i * kBytes);
      } else {
        hn::Store(v[i], u8, to + done + i * kBytes);
      }
    }
  }
#endif
  if (done < bytes) std::memcpy(to + done, from + done, bytes - done);
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zelm {

// Between these sizes the C library copies with one instruction for strings, which is
// slow to start.
void copyBytes(uint8_t* to, const uint8_t* from, size_t bytes, bool stream) {
  constexpr size_t kShort = 1024, kLong = 16384;
  if (bytes < kShort || (bytes > kLong && !stream)) {
    std::memcpy(to, from, bytes);
  } else if (stream) {
    ZELM_KERNEL(copyLines<true>)(to, from, bytes);
  } else {
    ZELM_KERNEL(copyLines<false>)(to, from, bytes);
  }
}

}  // namespace zelm
#endif  // HWY_ONCE
#endif
