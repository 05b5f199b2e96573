// The 16 x 16-tiled 4:2:0 layout, to and from linear semi-planar with pairs V, U.
//
// A tile holds its left 8 columns, row by row, then its right 8. Luma tiles have 16
// rows, chroma tiles 8; tiled pairs are U, V, so chroma is exchanged on the way.
// Bytes of an edge tile that lie outside the frame are neither read nor written.
#include <cstring>

#include "plane.h"
#include "zelm_imageutil.h"

namespace {

// One plane in both layouts: `columns` bytes by `rows` rows, which is also the
// linear stride, in tiles of 16 bytes by `tileRows` rows.
struct Planes {
  uint8_t* linear;
  uint8_t* tiled;
  size_t columns;
  size_t rows;
  size_t tileRows;
};

struct Keep {
  static void move(uint8_t* to, const uint8_t* from, size_t bytes) {
    std::memcpy(to, from, bytes);
  }
};

struct SwapPairs {
  static void move(uint8_t* to, const uint8_t* from, size_t bytes) {
    for (size_t i = 0; i < bytes; ++i) to[i] = from[i ^ 1];
  }
};

struct ToLinear {
  template <class Pairs>
  static void move(uint8_t* linear, uint8_t* tiled, size_t bytes) {
    Pairs::move(linear, tiled, bytes);
  }
};

struct ToTiled {
  template <class Pairs>
  static void move(uint8_t* linear, uint8_t* tiled, size_t bytes) {
    Pairs::move(tiled, linear, bytes);
  }
};

// Half a tile: up to 8 bytes of each of `rows` rows.
template <class Direction, class Pairs>
void moveHalf(uint8_t* linear, size_t stride, uint8_t* tiled, size_t rows,
              size_t bytes) {
  for (size_t y = 0; y < rows; ++y) {
    Direction::template move<Pairs>(linear + y * stride, tiled + 8 * y, bytes);
  }
}

template <class Direction, class Pairs>
void movePlane(const Planes& plane) {
  const size_t tileBytes = 16 * plane.tileRows, halfBytes = tileBytes / 2;
  uint8_t* tile = plane.tiled;
  for (size_t y = 0; y < plane.rows; y += plane.tileRows) {
    const size_t left = plane.rows - y;
    const size_t rows = left < plane.tileRows ? left : plane.tileRows;
    uint8_t* linear = plane.linear + y * plane.columns;
    for (size_t x = 0; x < plane.columns; x += 8) {
      const size_t bytes = plane.columns - x < 8 ? plane.columns - x : 8;
      uint8_t* half = tile + x / 16 * tileBytes + (x % 16 != 0 ? halfBytes : 0);
      moveHalf<Direction, Pairs>(linear + x, plane.columns, half, rows, bytes);
    }
    tile += (plane.columns + 15) / 16 * tileBytes;
  }
}

// The frame's size is the source region's. Source chroma is found by uvOffset, the
// destination's lies behind its luma.
template <class Direction>
void moveFrame(uint8_t* linearLuma, uint8_t* linearChroma, uint8_t* tiledLuma,
               uint8_t* tiledChroma, size_t width, size_t height) {
  movePlane<Direction, Keep>({linearLuma, tiledLuma, width, height, 16});
  movePlane<Direction, SwapPairs>({linearChroma, tiledChroma, width, height / 2, 8});
}

}  // namespace

extern "C" void convYUV420SPMB_YUV420SPVU(ImageStruct* dst, ImageStruct* src) {
  moveFrame<ToLinear>(dst->data, dst->data + zelm::lumaBytes(*dst), src->data,
                      src->data + src->uvOffset, src->roiWidth, src->roiHeight);
}

extern "C" void convYUV420SPVU_YUV420SPMB(ImageStruct* dst, ImageStruct* src) {
  moveFrame<ToTiled>(src->data, src->data + src->uvOffset, dst->data,
                     dst->data + zelm::tiledLumaBytes(dst->width, dst->height),
                     src->roiWidth, src->roiHeight);
}
