// What a fuzzer's frames hold.
#ifndef ZELM_FUZZ_CONTENT_H
#define ZELM_FUZZ_CONTENT_H

#include "input.h"

namespace fuzz {

// Noise from a seed, or the rest of the input again and again.
inline void fill(uint8_t* to, size_t size, Input* input) {
  const uint32_t seed = input->byte();
  const size_t given = input->left();
  if (seed % 2 == 0 && given > 0) {
    for (size_t i = 0; i < size; ++i) to[i] = input->rest()[i % given];
  } else {
    uint32_t state = seed * 2654435761u + 1;
    for (size_t i = 0; i < size; ++i) {
      state = state * 1664525u + 1013904223u;
      to[i] = seed % 4 == 1 ? static_cast<uint8_t>(state >> 24)
                            : static_cast<uint8_t>(state >> 31 ? 255 : 0);
    }
  }
}

}  // namespace fuzz

#endif  // ZELM_FUZZ_CONTENT_H
