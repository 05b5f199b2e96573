// The formats of pixels that rows of RGB are written in. Their first channel is red, or
// blue where a layout has blue first.
#ifndef ZELM_SRC_CONVERT_PIXEL_FORMATS_H_
#define ZELM_SRC_CONVERT_PIXEL_FORMATS_H_

#include <cstddef>
#include <cstdint>

namespace zelm {
namespace {

struct Rgb888 {
  static constexpr size_t kPixelBytes = 3;
  static inline void put(uint8_t* to, uint8_t r, uint8_t g, uint8_t b) {
    to[0] = r;
    to[1] = g;
    to[2] = b;
  }
};

struct Rgba8888 {
  static constexpr size_t kPixelBytes = 4;
  static inline void put(uint8_t* to, uint8_t r, uint8_t g, uint8_t b) {
    Rgb888::put(to, r, g, b);
    to[3] = 255;
  }
};

// The first channel lies in the low bits.
struct Rgb565 {
  static constexpr size_t kPixelBytes = 2;
  static inline void put(uint8_t* to, uint8_t r, uint8_t g, uint8_t b) {
    const unsigned word = (r >> 3) | (g >> 2) << 5 | (b >> 3) << 11;
    to[0] = static_cast<uint8_t>(word);
    to[1] = static_cast<uint8_t>(word >> 8);
  }
};

}  // namespace
}  // namespace zelm

#endif  // ZELM_SRC_CONVERT_PIXEL_FORMATS_H_
