// How the samples of a layer are read from the source's planes.
#ifndef ZELM_FRAMES_READ_H_
#define ZELM_FRAMES_READ_H_

#include <cstddef>
#include <cstdint>

#include "frames/format.h"
#include "frames/rect.h"
#include "frames/scratch.h"
#include "plane.h"

namespace zelm {

// What lies in the rows of a plane.
enum class Storage {
  kSamples,      // the layer's samples side by side
  kFirstBytes,   // their bytes, with another byte behind each
  kSecondBytes,  // the same, with the other one before it
  kTiles,
  kWords565  // pixels; the layer's samples are R, G, B, A
};

// Which rows are read: all of them, the mean of every two, or the upper one.
enum class Rows { kAll, kMeans, kUpper };

// A layer in the source region.
struct LayerReader {
  Region plane;  // the region, or, of tiles, the whole plane
  size_t sample = 1;
  Storage storage = Storage::kSamples;
  Rows rows = Rows::kAll;
  RgbLayout rgb = RgbLayout::kRgb24;                   // of words
  size_t tileColumn = 0, tileRow = 0, rowsOfTile = 0;  // where a region of tiles begins

  // Returns where the rectangle lies: in place, in `sink`, if that is not null, or in
  // scratch memory.
  Region read(const Rect& rect, Scratch& scratch, const Region* sink) const;

  // The scratch memory that read() takes besides that of its result.
  static size_t extraScratch(size_t rowBytes) {
    return 2 * Scratch::bytesFor(rowBytes, 1);
  }

 private:
  const uint8_t* row(uint8_t* to, size_t y, size_t column, size_t columns) const;
};

// The layers of a source.
struct SourceLayers {
  LayerReader luma;       // or pixels
  LayerReader chroma[2];  // pairs, or U and V
  bool pairs;
  bool uFirst;  // of pairs
};

// Finds the layers of a region. `chromaRows` says what 4:2:2 becomes.
SourceLayers layersOf(const ZelmFrame& frame, const Format& format, const Rect& region,
                      Rows chromaRows);

}  // namespace zelm

#endif  // ZELM_FRAMES_READ_H_
