// Copying bytes; on Arm also what kernels that do little more are made of. Their time
// is that of loads, stores and additions to addresses, so addresses are moved on by the
// loads and stores themselves.
#ifndef ZELM_SRC_SIMD_COPY_H_
#define ZELM_SRC_SIMD_COPY_H_

#include <cstddef>
#include <cstdint>
#include <cstring>

#if ZELM_HIGHWAY && defined(__ARM_NEON)
#include <arm_neon.h>
#define ZELM_NEON 1
#else
#define ZELM_NEON 0
#endif
// GCC for 32-bit Arm has no intrinsics for 32 bytes and likes to compute addresses
// anew.
#if ZELM_NEON && defined(__arm__) && !defined(__clang__)
#define ZELM_MOVING_BY_ASM 1
#else
#define ZELM_MOVING_BY_ASM 0
#endif

namespace zelm {

#if ZELM_NEON
inline uint8x16x2_t take32(const uint8_t*& from) {
  uint8x16x2_t v;
#if !ZELM_MOVING_BY_ASM
  v = {{vld1q_u8(from), vld1q_u8(from + 16)}};
  from += 32;
#else
  asm("vld1.8 %h0, [%1]!" : "=w"(v), "+r"(from) : : "memory");
#endif
  return v;
}
// The first and the second bytes of 16 pairs.
inline uint8x16x2_t takePairs(const uint8_t*& from) {
  uint8x16x2_t v;
#if !ZELM_MOVING_BY_ASM
  v = vld2q_u8(from);
  from += 32;
#else
  asm("vld2.8 %h0, [%1]!" : "=w"(v), "+r"(from) : : "memory");
#endif
  return v;
}
inline uint8x16_t take16(const uint8_t*& from) {
  uint8x16_t v;
#if !ZELM_MOVING_BY_ASM
  v = vld1q_u8(from);
  from += 16;
#else
  asm("vld1.8 {%e0, %f0}, [%1]!" : "=w"(v), "+r"(from) : : "memory");
#endif
  return v;
}
inline void put32(uint8_t*& to, uint8x16x2_t v) {
#if !ZELM_MOVING_BY_ASM
  vst1q_u8(to, v.val[0]);
  vst1q_u8(to + 16, v.val[1]);
  to += 32;
#else
  asm volatile("vst1.8 %h1, [%0]!" : "+r"(to) : "w"(v) : "memory");
#endif
}
inline void putPairs(uint8_t*& to, uint8x16x2_t v) {
#if !ZELM_MOVING_BY_ASM
  vst2q_u8(to, v);
  to += 32;
#else
  asm volatile("vst2.8 %h1, [%0]!" : "+r"(to) : "w"(v) : "memory");
#endif
}
inline void put16(uint8_t*& to, uint8x16_t v) {
#if !ZELM_MOVING_BY_ASM
  vst1q_u8(to, v);
  to += 16;
#else
  asm volatile("vst1.8 {%e1, %f1}, [%0]!" : "+r"(to) : "w"(v) : "memory");
#endif
}
// 16 bytes of a row, and on to the next one.
inline uint8x16_t take16(const uint8_t*& from, size_t stride) {
  uint8x16_t v;
#if !ZELM_MOVING_BY_ASM
  v = vld1q_u8(from);
  from += stride;
#else
  asm("vld1.8 {%e0, %f0}, [%1], %2" : "=w"(v), "+r"(from) : "r"(stride) : "memory");
#endif
  return v;
}
inline void put16(uint8_t*& to, size_t stride, uint8x16_t v) {
#if !ZELM_MOVING_BY_ASM
  vst1q_u8(to, v);
  to += stride;
#else
  asm volatile("vst1.8 {%e1, %f1}, [%0], %2"
               : "+r"(to)
               : "w"(v), "r"(stride)
               : "memory");
#endif
}
// 8 bytes each from or to two places.
inline uint8x16_t takeHalves(const uint8_t*& low, const uint8_t*& high) {
  uint8x16_t v;
#if !ZELM_MOVING_BY_ASM
  v = vcombine_u8(vld1_u8(low), vld1_u8(high));
  low += 8, high += 8;
#else
  asm("vld1.8 {%e0}, [%1]!\n\tvld1.8 {%f0}, [%2]!"
      : "=&w"(v), "+r"(low), "+r"(high)
      :
      : "memory");
#endif
  return v;
}
inline void putHalves(uint8_t*& low, uint8_t*& high, uint8x16_t v) {
#if !ZELM_MOVING_BY_ASM
  vst1_u8(low, vget_low_u8(v));
  vst1_u8(high, vget_high_u8(v));
  low += 8, high += 8;
#else
  asm volatile("vst1.8 {%e2}, [%0]!\n\tvst1.8 {%f2}, [%1]!"
               : "+r"(low), "+r"(high)
               : "w"(v)
               : "memory");
#endif
}

// Calls body() for blocks of `block` items; it moves its addresses on. Before the last
// block moveBack(n) takes them back by so many items that it ends at `count`. Gives the
// number of items done: all, or 0 if there is no whole block.
template <class Body, class MoveBack>
[[gnu::always_inline]] inline size_t inMovingBlocks(size_t count, size_t block,
                                                    const Body& body,
                                                    const MoveBack& moveBack) {
  if (count < block) return 0;
  size_t left = count;
  for (; left >= block; left -= block) body();
  if (left > 0) {
    moveBack(block - left);
    body();
  }
  return count;
}
#endif  // ZELM_NEON

// memcpy, but for large blocks on Arm, where that of the C library takes up to twice as
// many instructions.
inline void copyBytes(uint8_t* to, const uint8_t* from, size_t bytes) {
#if ZELM_NEON
  const size_t done = inMovingBlocks(
      bytes, 128,
      [&] {
        for (int i = 0; i < 2; ++i) {
          __builtin_prefetch(from + 256);
          const uint8x16x2_t a = take32(from), b = take32(from);
          put32(to, a);
          put32(to, b);
        }
      },
      [&](size_t n) { from -= n, to -= n; });
  if (done > 0) return;
#endif
  std::memcpy(to, from, bytes);
}

}  // namespace zelm

#endif  // ZELM_SRC_SIMD_COPY_H_
