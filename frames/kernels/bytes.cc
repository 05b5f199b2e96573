// Rows of bytes: every second one, means of two rows.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "frames/kernels/bytes.cc"
#include "simd/each_target.h"  // before all others

#include "frames/kernels/bytes.h"
#include "simd/dispatch.h"
#include "simd/vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

void firstBytes(uint8_t* to, const uint8_t* from, size_t bytes) {
  size_t done = 0;
#if ZELM_VECTORS
  // All but the last byte, behind which nothing may be read.
  done = inBlocks(bytes - 1, kBytes, [&](size_t i) HWY_ATTR {
    store(loadPairs(from + 2 * i).first, to + i);
  });
#endif
  for (size_t i = done; i < bytes; ++i) to[i] = from[2 * i];
}

void secondBytes(uint8_t* to, const uint8_t* from, size_t bytes) {
  size_t done = 0;
#if ZELM_VECTORS
  done = inBlocks(bytes, kBytes, [&](size_t i) HWY_ATTR {
    store(loadPairs(from + 2 * i).second, to + i);
  });
#endif
  for (size_t i = done; i < bytes; ++i) to[i] = from[2 * i + 1];
}

void meanRow(uint8_t* to, const uint8_t* a, const uint8_t* b, size_t bytes) {
  size_t done = 0;
#if ZELM_VECTORS
  done = inBlocks(bytes, kBytes, [&](size_t i) HWY_ATTR {
    store(hn::AverageRound(load(a + i), load(b + i)), to + i);
  });
#endif
  for (size_t i = done; i < bytes; ++i) {
    to[i] = static_cast<uint8_t>((a[i] + b[i] + 1) >> 1);
  }
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#include "simd/vbmi_pass.h"

#if HWY_ONCE
namespace zelm {

TakeBytes* firstBytesKernel() { return ZELM_KERNEL(firstBytes); }
TakeBytes* secondBytesKernel() { return ZELM_KERNEL(secondBytes); }
MeanRow* meanRowKernel() { return ZELM_KERNEL(meanRow); }

}  // namespace zelm
#endif  // HWY_ONCE
