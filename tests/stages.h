// The table of all stages and the calls each of them is tried with.
#ifndef ZELM_TESTS_STAGES_H
#define ZELM_TESTS_STAGES_H

#include <ostream>

#include "harness.h"

namespace harness {

// Semi-planar chroma lies at uvOffset, packed at width * height; a block is the region
// alone, three bytes per pixel.
// clang-format off
enum class Layout {
  kLuma, kSemi420, kSemi420Packed, kSemi422, kPlanarRead, kPlanarWritten, kPacked2,
  kPacked3, kPacked4, kTiledRead, kTiledWritten, kBlock3
};
// clang-format on

// How the sizes of the two regions depend on each other.
enum class Fit {
  kSame,           // equal, even
  kSameAny,        // equal, odd ones as well
  kTurned,         // width and height exchanged, odd ones as well
  kFrame,          // equal frames, regions without effect
  kTiles,          // equal frames, region origins without effect
  kWholeGroups,    // odd source widths lose a column
  kDoubledLast,    // odd source widths gain a column
  kBox2,           // source at least twice as large
  kBox4,           // source at least four times as large
  kScaledSamples,  // any two sizes
  kScaledPairs     // any two sizes in chroma pairs
};

struct Stage {
  const char* name;
  StageFunction product, expected;
  Layout src, dst;
  Fit fit;
  uint64_t digest;  // of all that the library writes in the cases below
};

inline void PrintTo(const Stage& stage, std::ostream* out) { *out << stage.name; }

struct Size {
  int w, h;
};
struct Sizes {
  Size dst, src;
};

// Regions that fit together, made of two sizes. The second is the source's for scalers
// and what the source has too much for box averages.
Sizes regionsOf(Fit fit, Size size, Size other);
// A frame around a region, with or without margins around it.
Frame makeFrame(Layout layout, Fit fit, Size region, bool margins, Random* random);

struct Case {
  Frame dst, src;
  Content content;
  uint32_t seed;
};

const std::vector<Stage>& stages();
std::vector<Case> casesOf(const Stage& stage);

}  // namespace harness

#endif  // ZELM_TESTS_STAGES_H
