// The table of all stages and the calls that each of them is tried with.
#ifndef ZELM_TESTS_STAGES_H
#define ZELM_TESTS_STAGES_H

#include <ostream>

#include "harness.h"

namespace harness {

// How the bytes of a frame lie in its buffer.
enum class Layout {
  kLuma,           // one plane
  kSemi420,        // chroma pairs of 4:2:0 at uvOffset
  kSemi420Packed,  // the same, directly behind the luma
  kSemi422,        // chroma pairs of 4:2:2 at uvOffset
  kPlanarRead,     // the chroma planes at uvOffset
  kPlanarWritten,  // rows and planes rounded up to 16 bytes
  kPacked2,        // two bytes for each pixel
  kPacked3,        // three bytes for each pixel
  kPacked4,        // four bytes for each pixel
  kTiledRead,      // 16 x 16 tiles, chroma at uvOffset
  kTiledWritten,   // the same, directly behind the luma
  kBlock3          // the region alone, three bytes for each pixel
};

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
  reference::Stage *product, *expected;
  Layout src, dst;
  Fit fit;
  uint64_t digest;  // of all that the library writes in the cases below
};

Call callOf(const Stage& stage);

inline void PrintTo(const Stage& stage, std::ostream* out) { *out << stage.name; }

struct Size {
  int w, h;
};
struct Sizes {
  Size dst, src;
};

// Regions that fit together, made of two sizes. The second one is that of the source
// for scalers, and for box averages the columns and rows that are left over in the
// source.
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
