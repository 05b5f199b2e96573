// A frame in memory, laid out as the library reads and writes it.
#ifndef ZELM_TOOLS_FRAME_H
#define ZELM_TOOLS_FRAME_H

#include <zelm_imageutil.h>

#include <cstdint>
#include <vector>

#include "geometry.h"

namespace zelm_tool {

// A frame and its buffer. The buffer starts empty and may grow with the data that
// arrives, so that a header alone cannot make the program take much memory.
class Frame {
 public:
  Frame(uint32_t code, Size size) : code_(code), size_(size) {}

  uint32_t code() const { return code_; }
  Size size() const { return size_; }
  size_t bytes() const {
    return zelmFrameLayout(code_, size_.width, size_.height).size;
  }

  // The first `count` bytes of the buffer, which grows to hold them.
  uint8_t* reserve(size_t count) {
    if (buffer_.size() < count) buffer_.resize(count);
    return buffer_.data();
  }
  const uint8_t* data() const { return buffer_.data(); }
  // The whole buffer; black, unless something has been put into it.
  uint8_t* data();

  ImageStruct record(const Region& region);

 private:
  void fillBlack();

  uint32_t code_;
  Size size_;
  std::vector<uint8_t> buffer_;
};

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_FRAME_H
