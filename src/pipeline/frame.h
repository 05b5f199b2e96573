// An intermediate 4:2:0 frame of a pipeline. It frees itself on every return.
#ifndef ZELM_SRC_PIPELINE_FRAME_H_
#define ZELM_SRC_PIPELINE_FRAME_H_

#include <cstdint>
#include <cstdlib>

#include "zelm_imageutil.h"

namespace zelm {

class Frame {
 public:
  Frame() = default;
  ~Frame() { std::free(buffer_); }
  Frame(const Frame&) = delete;
  Frame& operator=(const Frame&) = delete;

  // The frame's record. Set everything but `data`, then allocate.
  ImageStruct record = {};

  // Allocates a luma plane of `lumaBytes` and its chroma. Returns false when there is
  // no memory, or when the size cannot be expressed.
  bool allocate(uint64_t lumaBytes) {
    const uint64_t bytes = lumaBytes * 3 / 2;
    if (bytes > SIZE_MAX) return false;
    release();
    buffer_ = static_cast<uint8_t*>(std::malloc(static_cast<size_t>(bytes)));
    record.data = buffer_;
    record.dataSize = static_cast<uint32_t>(bytes);
    return buffer_ != nullptr;
  }

  void release() {
    std::free(buffer_);
    buffer_ = nullptr;
  }

 private:
  uint8_t* buffer_ = nullptr;
};

}  // namespace zelm

#endif  // ZELM_SRC_PIPELINE_FRAME_H_
