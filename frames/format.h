// The pixel formats: what samples a frame has, and how its planes hold them.
#ifndef ZELM_FRAMES_FORMAT_H_
#define ZELM_FRAMES_FORMAT_H_

#include <cstddef>
#include <cstdint>

#include "convert/rgb_layout.h"
#include "zelm_frames.h"

namespace zelm {

// Sides of frames, in pixels, are 1 to this.
constexpr uint32_t kLargestSide = 65535;

// What is sampled how often.
enum class Sampling { kGray, k420, k422, kRgb };

// How planes hold chroma, or pixels.
enum class Layout {
  kNone,     // there is no chroma
  kPlanar,   // planes of U and V
  kPairs,    // a plane of pairs
  kPacked,   // chroma pairs and luma in turn
  kTiles,    // luma in tiles, pairs in tiles
  kPixels,   // pixels of three or four bytes
  kWords565  // pixels of 16 bits
};

struct Format {
  const char* name;
  Sampling sampling;
  Layout layout;
  bool uFirst;     // U comes before V; of packed formats: chroma comes before luma
  RgbLayout rgb;   // of kPixels and kWords565
  uint8_t planes;  // how many there are
  uint8_t bytes;   // of a pixel in the first plane

  bool isRgb() const { return sampling == Sampling::kRgb; }
  bool hasChroma() const {
    return sampling == Sampling::k420 || sampling == Sampling::k422;
  }
  // The columns (rows) of pixels that share a chroma sample.
  size_t columnsShared() const { return hasChroma() ? 2 : 1; }
  size_t rowsShared() const { return sampling == Sampling::k420 ? 2 : 1; }
};

// Returns null for a number that is no format's.
const Format* findFormat(uint32_t format);

inline size_t halfUp(size_t size) { return (size + 1) / 2; }

// The rows of a plane, and the bytes of one, without padding and with samples side by
// side. Rows of tiled planes are rows of tiles.
struct PlaneExtent {
  size_t rows, rowBytes;
};
PlaneExtent planeExtent(const Format& format, int plane, size_t width, size_t height);

// "Y", "U", "V", "UV" or "pixel".
const char* planeName(const Format& format, int plane);

// Tells whether a plane's samples may lie two bytes apart.
inline bool mayHaveSteps(const Format& format, int plane) {
  return format.layout == Layout::kPlanar && plane > 0;
}

}  // namespace zelm

#endif  // ZELM_FRAMES_FORMAT_H_
