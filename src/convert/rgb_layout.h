// How packed RGB pixels lie in memory.
#ifndef ZELM_SRC_CONVERT_RGB_LAYOUT_H_
#define ZELM_SRC_CONVERT_RGB_LAYOUT_H_

#include <cstddef>

namespace zelm {

enum class RgbLayout {
  kRgb24,   // R, G, B
  kBgr24,   // B, G, R
  kRgba,    // R, G, B, A
  kBgra,    // B, G, R, A
  kRgb565,  // words with red in the high bits
  kBgr565   // words with red in the low bits
};

constexpr bool redFirst(RgbLayout layout) {
  return layout == RgbLayout::kRgb24 || layout == RgbLayout::kRgba;
}

// Whether blue lies before red in memory, or in the low bits of words.
constexpr bool blueFirst(RgbLayout layout) {
  return layout == RgbLayout::kBgr24 || layout == RgbLayout::kBgra ||
         layout == RgbLayout::kRgb565;
}

constexpr bool isWords565(RgbLayout layout) {
  return layout == RgbLayout::kRgb565 || layout == RgbLayout::kBgr565;
}

constexpr size_t pixelBytes(RgbLayout layout) {
  return isWords565(layout)                                         ? 2
         : layout == RgbLayout::kRgba || layout == RgbLayout::kBgra ? 4
                                                                    : 3;
}

}  // namespace zelm

#endif  // ZELM_SRC_CONVERT_RGB_LAYOUT_H_
