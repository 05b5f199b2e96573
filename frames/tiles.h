// Rows of bytes in planes of tiles. A tile is 16 bytes wide, its left 8 columns lie
// before its right 8.
#ifndef ZELM_FRAMES_TILES_H_
#define ZELM_FRAMES_TILES_H_

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zelm {

struct TiledPlane {
  uint8_t* origin;
  ptrdiff_t stride;  // from one row of tiles to the next
  size_t tileRows;   // rows of a tile: 16 of luma, 8 of chroma

  // Calls move(bytes of the tile, bytes of the row, count) for the pieces that row `y`
  // consists of, from byte `first` on.
  template <class Move>
  void forPieces(size_t y, size_t first, size_t bytes, const Move& move) const {
    uint8_t* row =
        origin + static_cast<ptrdiff_t>(y / tileRows) * stride + 8 * (y % tileRows);
    for (size_t done = 0; done < bytes;) {
      const size_t at = first + done;
      const size_t room = 8 - at % 8, left = bytes - done;
      move(row + at / 8 * 8 * tileRows + at % 8, done, left < room ? left : room);
      done += left < room ? left : room;
    }
  }

  void readRow(uint8_t* to, size_t y, size_t first, size_t bytes) const {
    forPieces(y, first, bytes, [&](const uint8_t* tile, size_t at, size_t count) {
      copyPiece(to + at, tile, count);
    });
  }
  void writeRow(const uint8_t* from, size_t y, size_t first, size_t bytes) const {
    forPieces(y, first, bytes, [&](uint8_t* tile, size_t at, size_t count) {
      copyPiece(tile, from + at, count);
    });
  }

 private:
  static void copyPiece(uint8_t* to, const uint8_t* from, size_t count) {
    if (count == 8) {
      std::memcpy(to, from, 8);
    } else {
      std::memcpy(to, from, count);
    }
  }
};

}  // namespace zelm

#endif  // ZELM_FRAMES_TILES_H_
