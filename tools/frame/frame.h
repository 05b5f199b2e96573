// Frames in memory, laid out as in their files.
#ifndef ZELM_TOOLS_FRAME_FRAME_H
#define ZELM_TOOLS_FRAME_FRAME_H

#include <zelm_frames.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "frame/formats.h"
#include "frame/geometry.h"

namespace zelm_tool {

// What all frames of an input or an output have in common.
struct FrameKind {
  const Format* format = nullptr;
  Size size;
  uint32_t colour = ZELM_BT601_FULL;
  uint32_t stride = 0;  // bytes from row to row where rows are padded; 0: they are not

  // Fails when such a frame cannot be held in memory, or the stride is none.
  void requireMakeable() const;
  // Of a frame in its file, with all padding.
  size_t bytes() const;
  // Of a frame whose very last row has no padding behind it.
  size_t leastBytes() const;
  // The frame that begins at `data`, of which nothing is written if it is a source.
  ZelmFrame at(const uint8_t* data) const;

 private:
  struct Rows {
    size_t count, bytes, stride;
  };
  // The rows of each plane; of tiles: of each row of tiles.
  std::vector<Rows> planes() const;
};

// Bytes that grow and keep what is in them.
class Buffer {
 public:
  Buffer() = default;
  ~Buffer();
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;

  // The first `count` bytes; what has not been written yet is not set.
  uint8_t* reserve(size_t count);
  uint8_t* data() { return data_; }

 private:
  uint8_t* data_ = nullptr;
  size_t size_ = 0;
};

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_FRAME_FRAME_H
