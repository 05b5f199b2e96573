// What an x86-64 processor says of itself, without the compiler's help.
#ifndef ZELM_TESTS_ASK_PROCESSOR_H
#define ZELM_TESTS_ASK_PROCESSOR_H

#include <cpuid.h>

#include <algorithm>
#include <initializer_list>

#include "simd/instruction_set.h"

namespace zelm {

inline ProcessorFeatures askProcessor() {
  unsigned a, b, c, d, b7, c7, saved = 0;
  if (__get_cpuid(1, &a, &b, &c, &d) == 0) return {};
  const auto all = [](unsigned word, std::initializer_list<int> bits) {
    return std::all_of(bits.begin(), bits.end(),
                       [word](int bit) { return (word >> bit & 1) != 0; });
  };
  const unsigned c1 = c;
  // The registers that the operating system saves: upper halves, masks, upper zmm.
  if (all(c1, {27})) asm volatile("xgetbv" : "=a"(saved), "=d"(d) : "c"(0));
  if (__get_cpuid_count(7, 0, &a, &b7, &c7, &d) == 0) b7 = c7 = 0;
  const bool ymm = all(saved, {1, 2}), zmm = ymm && all(saved, {5, 6, 7});
  return {all(c1, {9, 19, 20}), ymm && all(c1, {12}) && all(b7, {3, 5, 8}),
          zmm && all(b7, {16, 17, 30, 31}), zmm && all(c7, {1, 11})};
}

}  // namespace zelm

#endif  // ZELM_TESTS_ASK_PROCESSOR_H
