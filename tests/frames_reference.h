// The plain rules of docs/frames.md that zelm_frames is compared with: one sample at a
// time, sharing nothing with the library but the public header.
#ifndef ZELM_TESTS_FRAMES_REFERENCE_H
#define ZELM_TESTS_FRAMES_REFERENCE_H

#include "zelm_frames.h"

namespace frames_reference {

// How a format shares and stores its samples.
struct Format {
  const char* name;
  int planes;        // 1, 2 or 3
  int across, down;  // pixels that share a chroma sample; 0 where there is no chroma
  int channels;      // bytes of a pixel of RGB formats, 2 for words; 0 for YUV
  bool separate;     // whether U and V have a plane each
};

// The format's description. Other numbers have no planes.
const Format& formatOf(uint32_t format);

// The rows that a plane of a whole frame has, and the bytes of a row without padding,
// with a step of `step` bytes (0: the format's own). Tiled planes have rows of tiles.
struct Extent {
  size_t rows, rowBytes;
};
Extent extentOf(uint32_t format, uint32_t width, uint32_t height, int plane,
                int step = 0);

// Writes what the library has to write. Frames and edit have to be valid.
void convert(const ZelmFrame& dst, const ZelmFrame& src, const ZelmEdit& edit);

}  // namespace frames_reference

#endif  // ZELM_TESTS_FRAMES_REFERENCE_H
