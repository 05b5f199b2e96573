// How the samples of a layer are read from the source's planes.
#include "frames/read.h"

#include "frames/kernels/bytes.h"
#include "frames/kernels/pixels.h"
#include "frames/planes.h"
#include "frames/tiles.h"

namespace zelm {

// Returns `columns` samples of a row of the plane, in place or in `to`.
const uint8_t* LayerReader::row(uint8_t* to, size_t y, size_t column,
                                size_t columns) const {
  const size_t bytes = columns * sample;
  switch (storage) {
    case Storage::kFirstBytes:
      firstBytesKernel(bytes)(to, plane.row(y) + 2 * column * sample, bytes);
      return to;
    case Storage::kSecondBytes:
      secondBytesKernel(bytes)(to, plane.row(y) + 2 * column * sample, bytes);
      return to;
    case Storage::kTiles:
      TiledPlane{plane.origin, plane.stride, rowsOfTile}.readRow(
          to, tileRow + y, (tileColumn + column) * sample, bytes);
      return to;
    case Storage::kWords565:
      repackKernel(columns)(to, RgbLayout::kRgba, plane.row(y) + 2 * column, rgb,
                            columns);
      return to;
    default:
      return plane.row(y) + column * sample;
  }
}

Region LayerReader::read(const Rect& rect, Scratch& scratch, const Region* sink) const {
  const size_t bytes = rect.columns * sample;
  if (storage == Storage::kSamples && rows == Rows::kAll) {
    return {plane.row(rect.row) + rect.column * sample, plane.stride, rect.columns,
            rect.rows};
  }
  const Region to =
      sink != nullptr ? *sink : scratch.take(sample, rect.columns, rect.rows);
  if (rows == Rows::kAll) {
    for (size_t y = 0; y < rect.rows; ++y) {
      row(to.row(y), rect.row + y, rect.column, rect.columns);
    }
    return to;
  }
  uint8_t* upperRow = scratch.take(1, bytes, 1).origin;
  uint8_t* lowerRow = scratch.take(1, bytes, 1).origin;
  const auto mean = meanRowKernel(bytes);
  for (size_t y = 0; y < rect.rows; ++y) {
    const size_t from = 2 * (rect.row + y);
    const bool alone = rows == Rows::kUpper || from + 1 == plane.rows;
    const uint8_t* upper =
        row(alone ? to.row(y) : upperRow, from, rect.column, rect.columns);
    if (!alone) {
      mean(to.row(y), upper, row(lowerRow, from + 1, rect.column, rect.columns), bytes);
    } else if (upper != to.row(y)) {
      copyBytes(to.row(y), upper, bytes);
    }
  }
  return to;
}

SourceLayers layersOf(const ZelmFrame& frame, const Format& format, const Rect& region,
                      Rows chromaRows) {
  const FramePlanes planes = planesOf(frame, format, region);
  SourceLayers layers = {};
  layers.luma.plane = planes.first;
  layers.pairs = planes.pairs;
  layers.uFirst = planes.uFirst;
  for (int i = 0; i < 2; ++i) {
    layers.chroma[i].plane = planes.chroma[i];
    layers.chroma[i].sample = planes.pairs ? 2 : 1;
    if (planes.step[i] == 2 && !planes.pairs) {
      layers.chroma[i].storage = Storage::kFirstBytes;
    }
    layers.chroma[i].rows = chromaRows;
  }
  LayerReader &luma = layers.luma, &pairs = layers.chroma[0];
  switch (format.layout) {
    case Layout::kPacked:
      luma.storage = format.uFirst ? Storage::kSecondBytes : Storage::kFirstBytes;
      pairs.storage = format.uFirst ? Storage::kFirstBytes : Storage::kSecondBytes;
      pairs.plane = planes.first;
      pairs.sample = 2;
      layers.pairs = layers.uFirst = true;
      break;
    case Layout::kTiles:
      luma.storage = pairs.storage = Storage::kTiles;
      luma.tileColumn = region.column;
      luma.tileRow = region.row;
      luma.rowsOfTile = 16;
      pairs.tileColumn = region.column / 2;
      pairs.tileRow = region.row / 2;
      pairs.rowsOfTile = 8;
      break;
    case Layout::kPixels:
      luma.sample = format.bytes;
      break;
    case Layout::kWords565:
      luma.sample = 4;
      luma.storage = Storage::kWords565;
      luma.rgb = format.rgb;
      break;
    default:
      break;
  }
  return layers;
}

}  // namespace zelm
