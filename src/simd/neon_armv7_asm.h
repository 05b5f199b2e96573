// The helpers of simd/neon.h in assembly for GCC and 32-bit Arm: all the assembly there
// is. What each helper does is said in simd/neon_intrinsics.h. In operands, %q is a
// whole register, %e and %f are its lower and its upper half, and %h is a list of two
// registers.
#ifndef ZELM_SRC_SIMD_NEON_ARMV7_ASM_H_
#define ZELM_SRC_SIMD_NEON_ARMV7_ASM_H_

#include <arm_neon.h>

#include <cstddef>
#include <cstdint>

namespace zelm {

inline uint8x16_t take16(const uint8_t*& from) {
  uint8x16_t v;
  asm("vld1.8 {%e0, %f0}, [%1]!" : "=w"(v), "+r"(from) : : "memory");
  return v;
}
inline uint8x16_t take16(const uint8_t*& from, size_t stride) {
  uint8x16_t v;
  asm("vld1.8 {%e0, %f0}, [%1], %2" : "=w"(v), "+r"(from) : "r"(stride) : "memory");
  return v;
}
inline uint8x16x2_t take32(const uint8_t*& from) {
  uint8x16x2_t v;
  asm("vld1.8 %h0, [%1]!" : "=w"(v), "+r"(from) : : "memory");
  return v;
}
inline uint8x16x2_t takePairs(const uint8_t*& from) {
  uint8x16x2_t v;
  asm("vld2.8 %h0, [%1]!" : "=w"(v), "+r"(from) : : "memory");
  return v;
}
inline uint8x16_t takeEightPairs(const uint8_t*& from) {
  uint8x16_t v;
  asm("vld2.8 {%e0, %f0}, [%1]!" : "=w"(v), "+r"(from) : : "memory");
  return v;
}
inline uint8x16_t takeHalves(const uint8_t*& low, const uint8_t*& high) {
  uint8x16_t v;
  asm("vld1.8 {%e0}, [%1]!\n\tvld1.8 {%f0}, [%2]!"
      : "=&w"(v), "+r"(low), "+r"(high)
      :
      : "memory");
  return v;
}

inline void put16(uint8_t*& to, uint8x16_t v) {
  asm volatile("vst1.8 {%e1, %f1}, [%0]!" : "+r"(to) : "w"(v) : "memory");
}
inline void put16(uint8_t*& to, size_t stride, uint8x16_t v) {
  asm volatile("vst1.8 {%e1, %f1}, [%0], %2"
               : "+r"(to)
               : "w"(v), "r"(stride)
               : "memory");
}
inline void put32(uint8_t*& to, uint8x16x2_t v) {
  asm volatile("vst1.8 %h1, [%0]!" : "+r"(to) : "w"(v) : "memory");
}
inline void putPairs(uint8_t*& to, uint8x16x2_t v) {
  asm volatile("vst2.8 %h1, [%0]!" : "+r"(to) : "w"(v) : "memory");
}
// Only named registers can lie two apart.
inline void putThrees(uint8_t*& to, uint8x16_t a, uint8x16_t b, uint8x16_t c) {
  register uint8x16_t first asm("q8") = a;
  register uint8x16_t second asm("q9") = b;
  register uint8x16_t third asm("q10") = c;
  asm volatile(
      "vst3.8 {d16, d18, d20}, [%0]!\n\t"
      "vst3.8 {d17, d19, d21}, [%0]!"
      : "+r"(to)
      : "w"(first), "w"(second), "w"(third)
      : "memory");
}
inline void putFours(uint8_t*& to, uint8x16_t a, uint8x16_t b, uint8x16_t c,
                     uint8x16_t d) {
  register uint8x16_t first asm("q8") = a;
  register uint8x16_t second asm("q9") = b;
  register uint8x16_t third asm("q10") = c;
  register uint8x16_t fourth asm("q11") = d;
  asm volatile(
      "vst4.8 {d16, d18, d20, d22}, [%0]!\n\t"
      "vst4.8 {d17, d19, d21, d23}, [%0]!"
      : "+r"(to)
      : "w"(first), "w"(second), "w"(third), "w"(fourth)
      : "memory");
}
inline void putHalves(uint8_t*& low, uint8_t*& high, uint8x16_t v) {
  asm volatile("vst1.8 {%e2}, [%0]!\n\tvst1.8 {%f2}, [%1]!"
               : "+r"(low), "+r"(high)
               : "w"(v)
               : "memory");
}

// One instruction reverses eight bytes and puts them in their place.
inline void reverse64(uint8_t*& to, const uint8_t*& from) {
  asm volatile(
      "vld1.8 {d16-d19}, [%1]!\n\t"
      "vld1.8 {d20-d23}, [%1]\n\t"
      "vrev64.8 d31, d16\n\t"
      "vrev64.8 d30, d17\n\t"
      "vrev64.8 d29, d18\n\t"
      "vrev64.8 d28, d19\n\t"
      "vrev64.8 d27, d20\n\t"
      "vrev64.8 d26, d21\n\t"
      "vrev64.8 d25, d22\n\t"
      "vrev64.8 d24, d23\n\t"
      "vst1.8 {d24-d27}, [%0]!\n\t"
      "vst1.8 {d28-d31}, [%0]!"
      : "+r"(to), "+r"(from)
      :
      : "memory", "q8", "q9", "q10", "q11", "q12", "q13", "q14", "q15");
  from -= 96;
}

inline uint8x16_t narrowSaturating(int16x8_t a, int16x8_t b) {
  uint8x16_t both;
  asm("vqmovun.s16 %e0, %q1\n\tvqmovun.s16 %f0, %q2" : "=&w"(both) : "w"(a), "w"(b));
  return both;
}
template <int kShift>
inline uint8x16_t narrowShifted(uint16x8_t a, uint16x8_t b) {
  uint8x16_t both;
  asm("vshrn.i16 %e0, %q1, %3\n\tvshrn.i16 %f0, %q2, %3"
      : "=&w"(both)
      : "w"(a), "w"(b), "i"(kShift));
  return both;
}
inline uint8x16_t narrowUpper(uint16x8_t a, uint16x8_t b) {
  uint8x16_t both;
  asm("vrshrn.i16 %e0, %q1, #8\n\tvrshrn.i16 %f0, %q2, #8"
      : "=&w"(both)
      : "w"(a), "w"(b));
  return both;
}
inline uint16x8_t narrowUpper(uint32x4_t a, uint32x4_t b) {
  uint16x8_t both;
  asm("vrshrn.i32 %e0, %q1, #16\n\tvrshrn.i32 %f0, %q2, #16"
      : "=&w"(both)
      : "w"(a), "w"(b));
  return both;
}

inline uint16x8_t addNeighbours(uint16x8_t a, uint16x8_t b) {
  uint16x8_t both;
  asm("vpadd.i16 %e0, %e1, %f1\n\tvpadd.i16 %f0, %e2, %f2"
      : "=&w"(both)
      : "w"(a), "w"(b));
  return both;
}
inline uint16x8_t addBlocks(uint8x16_t a, uint8x16_t b) {
  uint16x8_t sums;
  asm("vpaddl.u8 %q0, %q1\n\tvpadal.u8 %q0, %q2" : "=&w"(sums) : "w"(a), "w"(b));
  return sums;
}

inline uint8x16_t halvesInTurn(uint8x16_t v) {
  asm("vzip.8 %e0, %f0" : "+w"(v));
  return v;
}

inline uint8x16_t lookUp(uint8x16_t v, uint8x16_t index) {
  uint8x16_t found;
  asm("vtbl.8 %e0, {%e1, %f1}, %e2\n\tvtbl.8 %f0, {%e1, %f1}, %f2"
      : "=&w"(found)
      : "w"(v), "w"(index));
  return found;
}
inline uint8x16_t lookUpOr(uint8x16_t others, uint8x16_t v, uint8x16_t index) {
  asm("vtbx.8 %e0, {%e1, %f1}, %e2\n\tvtbx.8 %f0, {%e1, %f1}, %f2"
      : "+&w"(others)
      : "w"(v), "w"(index));
  return others;
}
inline uint8x16_t lookUp(uint8x16_t a, uint8x16_t b, uint8x16_t index) {
  const uint8x16x2_t table = {{a, b}};
  uint8x16_t found;
  asm("vtbl.8 %e0, %h1, %e2\n\tvtbl.8 %f0, %h1, %f2"
      : "=&w"(found)
      : "w"(table), "w"(index));
  return found;
}
inline uint8x16_t lookUpOr(uint8x16_t others, uint8x16_t a, uint8x16_t b,
                           uint8x16_t index) {
  const uint8x16x2_t table = {{a, b}};
  asm("vtbx.8 %e0, %h1, %e2\n\tvtbx.8 %f0, %h1, %f2"
      : "+&w"(others)
      : "w"(table), "w"(index));
  return others;
}

}  // namespace zelm

#endif  // ZELM_SRC_SIMD_NEON_ARMV7_ASM_H_
