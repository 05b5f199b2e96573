// Frames and streams for tests of the program, and what the libraries make of them.
#ifndef ZELM_TESTS_TOOL_FRAMES_H
#define ZELM_TESTS_TOOL_FRAMES_H

#include <gtest/gtest.h>
#include <zelm_frames.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

struct FormatCase {
  uint32_t code;         // a ZelmFormat
  const char* names[4];  // the first is the program's own
  size_t bytes;          // of a frame of 7x5
};
extern const std::vector<FormatCase> kFormats;

// A frame with packed rows.
struct Picture {
  uint32_t format;
  uint32_t width, height;
  std::string bytes;
  uint32_t colour = ZELM_BT601_FULL;
};

// A frame of zeros, in tiles with neutral chroma behind the edges.
Picture blank(uint32_t format, uint32_t width, uint32_t height,
              uint32_t colour = ZELM_BT601_FULL);
// What libzelm_frames makes of the first frame, put into the second.
std::string converted(const Picture& from, Picture to, ZelmEdit edit = {});

// What libzelm_imageutil makes of full-range NV21 frames.
std::string convertedNv21(std::string source, int width, int height, uint32_t format);

// Turned clockwise by hand, sample by sample, and then mirrored.
std::string turned(const std::string& plane, uint32_t width, uint32_t height,
                   uint32_t sampleBytes, uint32_t turn, bool mirror);

// The formulas of colours with real numbers: kr and kb of the matrix.
struct Colours {
  double kr, kb;
  bool full;
};
using Triple = std::array<double, 3>;
Triple rgbOf(const Triple& yuv, const Colours& colours);
Triple yuvOf(const Triple& rgb, const Colours& colours);

// A stream of 4:2:0 frames that are one colour all over.
std::string uniformY4m(const std::string& header, uint32_t width, uint32_t height,
                       const Triple& yuv);
std::string uniformRaw(uint32_t width, uint32_t height, const Triple& yuv);
// Three frames of 8x4 whose samples tell their plane and their frame; the second has
// parameters.
std::string smallY4m();
std::string firstLine(const std::string& stream);

// Says where bytes differ, in few words.
::testing::AssertionResult sameBytes(const std::string& actual,
                                     const std::string& expected);
std::string repeat(const std::string& text, size_t times);
// Bytes that look like noise, the same for every run.
std::string noise(size_t count, uint32_t seed = 1);

// A PNG of these samples, of `depth` bits per channel; of 16 bits 257 times as large.
// `channels` is 1, 2, 3 or 4. A gamma above 0 is put into a chunk.
std::string pngOf(const std::string& pixels, uint32_t width, uint32_t height,
                  int channels, int depth = 8, double gamma = 0);
// One whose pixels are numbers of the palette's colours, which have three bytes each.
std::string pngWithPalette(const std::string& pixels, uint32_t width, uint32_t height,
                           const std::string& palette);
// The samples of a PNG that has so many channels.
std::string pixelsOf(const std::string& png, int channels);

#endif  // ZELM_TESTS_TOOL_FRAMES_H
