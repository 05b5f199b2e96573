// A fuzzer's input as a source of numbers.
#ifndef ZELM_FUZZ_INPUT_H
#define ZELM_FUZZ_INPUT_H

#include <stddef.h>
#include <stdint.h>

namespace fuzz {

// Reads from the front; behind the end there are zeros.
class Input {
 public:
  Input(const uint8_t* bytes, size_t size) : next_(bytes), end_(bytes + size) {}
  size_t left() const { return static_cast<size_t>(end_ - next_); }
  const uint8_t* rest() const { return next_; }
  uint8_t byte() { return next_ == end_ ? 0 : *next_++; }
  uint32_t word() {
    uint32_t word = 0;
    for (int i = 0; i < 4; ++i) word = word << 8 | byte();
    return word;
  }
  int below(int limit) { return byte() % limit; }
  // Mostly small, now and then up to `limit`, and around the widths of vectors.
  int extent(int limit) {
    const int kind = byte(), fine = byte();
    if (kind < 200) return fine % (limit < 20 ? limit + 1 : 20);
    if (kind < 250) return (kind % 4 * 32 + fine % 8) % (limit + 1);
    return (kind % 8 * 256 + fine) % (limit + 1);
  }

 private:
  const uint8_t *next_, *end_;
};

}  // namespace fuzz

#endif  // ZELM_FUZZ_INPUT_H
