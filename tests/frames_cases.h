// Conversions to try: how two frames lie in memory, and what is asked for.
#ifndef ZELM_TESTS_FRAMES_CASES_H
#define ZELM_TESTS_FRAMES_CASES_H

#include <functional>

#include "comparison.h"
#include "zelm_frames.h"

namespace frames_test {

// Where the chroma planes of planar formats lie. Other formats have only kApart.
enum Chroma {
  kApart,        // each plane in memory of its own
  kApartStep2,   // the same, with a byte of nobody behind every sample but the last
  kMixedSteps,   // the same, with steps of 2 and 1
  kSideBySide,   // a row of the third plane behind each row of the second
  kPairsUV,      // a step of 2, U first, V one byte behind it
  kPairsVU,      // a step of 2, V first, U one byte behind it
  kAlmostPairs,  // a step of 2, the third plane one byte behind the second, but with
                 // rows that are twice as far apart
  kChromas
};

struct Style {
  size_t padding = 0;     // bytes between two rows
  unsigned bottomUp = 0;  // bit p: plane p is stored bottom-up
  Chroma chroma = kApart;
  bool sizes = true;  // whether the planes say how large they are
};

// A frame in up to three blocks of memory, which are exactly as large as its planes.
struct Layout {
  ZelmFrame frame;  // without pointers
  int blocks;
  size_t bytes[3];  // of each block
  size_t rows[3];   // bytes from one row of a block to the next
  struct {
    int block;
    size_t first;  // where the top row of a plane begins in its block
  } places[3];

  // The frame with its blocks at these addresses.
  ZelmFrame at(uint8_t* const (&memory)[3]) const;
};

Layout layOut(uint32_t format, uint32_t width, uint32_t height, uint32_t colour = 0,
              const Style& style = {});

struct Case {
  Layout dst, src;
  ZelmEdit edit;
};

// What somebody needs in order to make the case again.
harness::Text describe(const Case& c);

// Any valid case. `below(n)` returns a number from 0 to n - 1 for n up to 256.
Case anyCase(const std::function<int(int)>& below);

}  // namespace frames_test

#endif  // ZELM_TESTS_FRAMES_CASES_H
