// The helpers of simd/neon.h in intrinsics, which say what each of them does.
#ifndef ZELM_SRC_SIMD_NEON_INTRINSICS_H_
#define ZELM_SRC_SIMD_NEON_INTRINSICS_H_

#include <arm_neon.h>

#include <cstddef>
#include <cstdint>

namespace zelm {

// Loads 16 or 32 bytes and moves `from` on behind them, or by a row's stride.
inline uint8x16_t take16(const uint8_t*& from) {
  const uint8x16_t v = vld1q_u8(from);
  from += 16;
  return v;
}
inline uint8x16_t take16(const uint8_t*& from, size_t stride) {
  const uint8x16_t v = vld1q_u8(from);
  from += stride;
  return v;
}
inline uint8x16x2_t take32(const uint8_t*& from) {
  const uint8x16x2_t v = {{vld1q_u8(from), vld1q_u8(from + 16)}};
  from += 32;
  return v;
}
// Deinterleaves 16 pairs: their first bytes, then their second bytes.
inline uint8x16x2_t takePairs(const uint8_t*& from) {
  const uint8x16x2_t v = vld2q_u8(from);
  from += 32;
  return v;
}
// The same for 8 pairs, in one register.
inline uint8x16_t takeEightPairs(const uint8_t*& from) {
  const uint8x8x2_t v = vld2_u8(from);
  from += 16;
  return vcombine_u8(v.val[0], v.val[1]);
}
// Loads 8 bytes from each of two places.
inline uint8x16_t takeHalves(const uint8_t*& low, const uint8_t*& high) {
  const uint8x16_t v = vcombine_u8(vld1_u8(low), vld1_u8(high));
  low += 8, high += 8;
  return v;
}

// The stores that are the opposite of these loads.
inline void put16(uint8_t*& to, uint8x16_t v) {
  vst1q_u8(to, v);
  to += 16;
}
inline void put16(uint8_t*& to, size_t stride, uint8x16_t v) {
  vst1q_u8(to, v);
  to += stride;
}
inline void put32(uint8_t*& to, uint8x16x2_t v) {
  vst1q_u8(to, v.val[0]);
  vst1q_u8(to + 16, v.val[1]);
  to += 32;
}
inline void putPairs(uint8_t*& to, uint8x16x2_t v) {
  vst2q_u8(to, v);
  to += 32;
}
// Interleaves three or four registers.
inline void putThrees(uint8_t*& to, uint8x16_t a, uint8x16_t b, uint8x16_t c) {
  const uint8x16x3_t v = {{a, b, c}};
  vst3q_u8(to, v);
  to += 48;
}
inline void putFours(uint8_t*& to, uint8x16_t a, uint8x16_t b, uint8x16_t c,
                     uint8x16_t d) {
  const uint8x16x4_t v = {{a, b, c, d}};
  vst4q_u8(to, v);
  to += 64;
}
inline void putHalves(uint8_t*& low, uint8_t*& high, uint8x16_t v) {
  vst1_u8(low, vget_low_u8(v));
  vst1_u8(high, vget_high_u8(v));
  low += 8, high += 8;
}

// Each lane narrowed to half its width, those of a first, then those of b.
inline uint8x16_t narrowSaturating(int16x8_t a, int16x8_t b) {
  return vcombine_u8(vqmovun_s16(a), vqmovun_s16(b));
}
template <int kShift>
inline uint8x16_t narrowShifted(uint16x8_t a, uint16x8_t b) {
  return vcombine_u8(vshrn_n_u16(a, kShift), vshrn_n_u16(b, kShift));
}
// The upper half of each lane, rounded.
inline uint8x16_t narrowUpper(uint16x8_t a, uint16x8_t b) {
  return vcombine_u8(vrshrn_n_u16(a, 8), vrshrn_n_u16(b, 8));
}
inline uint16x8_t narrowUpper(uint32x4_t a, uint32x4_t b) {
  return vcombine_u16(vrshrn_n_u32(a, 16), vrshrn_n_u32(b, 16));
}

// Sums of neighbouring lanes, of a's first, then of b's.
inline uint16x8_t addNeighbours(uint16x8_t a, uint16x8_t b) {
#if defined(__aarch64__)
  return vpaddq_u16(a, b);
#else
  return vcombine_u16(vpadd_u16(vget_low_u16(a), vget_high_u16(a)),
                      vpadd_u16(vget_low_u16(b), vget_high_u16(b)));
#endif
}
// Sums of 2 x 2 bytes: of neighbours in a, and below them in b.
inline uint16x8_t addBlocks(uint8x16_t a, uint8x16_t b) {
  return vpadalq_u8(vpaddlq_u8(a), b);
}

// Table lookups. The table is v, or a and then b; where an index points outside of it
// the result is 0, or the byte of `others`.
#if defined(__aarch64__)
inline uint8x16_t lookUp(uint8x16_t v, uint8x16_t index) {
  return vqtbl1q_u8(v, index);
}
inline uint8x16_t reverse16(uint8x16_t v) {
  alignas(16) static constexpr uint8_t kBackwards[16] = {15, 14, 13, 12, 11, 10, 9, 8,
                                                         7,  6,  5,  4,  3,  2,  1, 0};
  return lookUp(v, vld1q_u8(kBackwards));
}
inline uint8x16_t lookUpOr(uint8x16_t others, uint8x16_t v, uint8x16_t index) {
  return vqtbx1q_u8(others, v, index);
}
inline uint8x16_t lookUp(uint8x16_t a, uint8x16_t b, uint8x16_t index) {
  return vqtbl2q_u8({{a, b}}, index);
}
inline uint8x16_t lookUpOr(uint8x16_t others, uint8x16_t a, uint8x16_t b,
                           uint8x16_t index) {
  return vqtbx2q_u8(others, {{a, b}}, index);
}
#else
inline uint8x16_t reverse16(uint8x16_t v) {
  const uint8x16_t halves = vrev64q_u8(v);
  return vextq_u8(halves, halves, 8);
}
inline uint8x16_t lookUp(uint8x16_t v, uint8x16_t index) {
  const uint8x8x2_t table = {{vget_low_u8(v), vget_high_u8(v)}};
  return vcombine_u8(vtbl2_u8(table, vget_low_u8(index)),
                     vtbl2_u8(table, vget_high_u8(index)));
}
inline uint8x16_t lookUpOr(uint8x16_t others, uint8x16_t v, uint8x16_t index) {
  const uint8x8x2_t table = {{vget_low_u8(v), vget_high_u8(v)}};
  return vcombine_u8(vtbx2_u8(vget_low_u8(others), table, vget_low_u8(index)),
                     vtbx2_u8(vget_high_u8(others), table, vget_high_u8(index)));
}
inline uint8x8x4_t tableOf(uint8x16_t a, uint8x16_t b) {
  return {{vget_low_u8(a), vget_high_u8(a), vget_low_u8(b), vget_high_u8(b)}};
}
inline uint8x16_t lookUp(uint8x16_t a, uint8x16_t b, uint8x16_t index) {
  const uint8x8x4_t table = tableOf(a, b);
  return vcombine_u8(vtbl4_u8(table, vget_low_u8(index)),
                     vtbl4_u8(table, vget_high_u8(index)));
}
inline uint8x16_t lookUpOr(uint8x16_t others, uint8x16_t a, uint8x16_t b,
                           uint8x16_t index) {
  const uint8x8x4_t table = tableOf(a, b);
  return vcombine_u8(vtbx4_u8(vget_low_u8(others), table, vget_low_u8(index)),
                     vtbx4_u8(vget_high_u8(others), table, vget_high_u8(index)));
}
#endif

// Bytes of the lower and of the upper half in turn.
inline uint8x16_t halvesInTurn(uint8x16_t v) {
#if defined(__aarch64__)
  return vzip1q_u8(v, vextq_u8(v, v, 8));
#else
  const uint8x8x2_t both = vzip_u8(vget_low_u8(v), vget_high_u8(v));
  return vcombine_u8(both.val[0], both.val[1]);
#endif
}

// Reverses 64 bytes: the last of those at `from` comes first. `to` moves on, `from`
// moves back.
inline void reverse64(uint8_t*& to, const uint8_t*& from) {
  uint8x16_t v[4];
  for (int i = 0; i < 4; ++i) v[i] = reverse16(vld1q_u8(from + 16 * i));
  for (int i = 0; i < 4; ++i) vst1q_u8(to + 16 * i, v[3 - i]);
  to += 64;
  from -= 64;
}

}  // namespace zelm

#endif  // ZELM_SRC_SIMD_NEON_INTRINSICS_H_
