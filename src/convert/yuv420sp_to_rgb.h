// Semi-planar 4:2:0 to packed RGB: what a row is made of, and the formats of pixels.
#ifndef ZELM_SRC_CONVERT_YUV420SP_TO_RGB_H_
#define ZELM_SRC_CONVERT_YUV420SP_TO_RGB_H_

#include <cstddef>
#include <cstdint>

namespace zelm {
namespace {

// The chroma of one luma row. One byte of each pair, the lone one, is taken from the
// row itself; the other byte is averaged with that of the `other` row.
struct ChromaRows {
  const uint8_t* own;
  const uint8_t* other;
  bool uFirst;     // pairs are U, V
  bool loneFirst;  // the lone byte is the first one
};

struct Rgba8888 {
  static constexpr size_t kPixelBytes = 4;
  static inline void put(uint8_t* to, uint8_t r, uint8_t g, uint8_t b) {
    to[0] = r;
    to[1] = g;
    to[2] = b;
    to[3] = 255;
  }
};

struct Rgb888 {
  static constexpr size_t kPixelBytes = 3;
  static inline void put(uint8_t* to, uint8_t r, uint8_t g, uint8_t b) {
    to[0] = r;
    to[1] = g;
    to[2] = b;
  }
};

// Red lies in the low bits.
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

#endif  // ZELM_SRC_CONVERT_YUV420SP_TO_RGB_H_
