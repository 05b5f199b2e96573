// Frames that begin black.
#include "frame.h"

#include <cstring>

namespace zelm_tool {

uint8_t* Frame::data() {
  const bool fresh = buffer_.empty();
  reserve(bytes());
  if (fresh) fillBlack();
  return buffer_.data();
}

// The new bytes are zeros: only chroma and alpha remain to be set.
void Frame::fillBlack() {
  const size_t luma = zelmFrameLayout(code_, size_.width, size_.height).uvOffset;
  if (luma != 0) memset(buffer_.data() + luma, 128, buffer_.size() - luma);
  if (code_ == FORMAT_RGBA8888) {
    for (size_t i = 3; i < buffer_.size(); i += 4) buffer_[i] = 255;
  }
}

ImageStruct Frame::record(const Region& region) {
  ImageStruct frame = zelmWholeFrame(code_, size_.width, size_.height, data());
  frame.roiX = static_cast<int32_t>(region.x);
  frame.roiY = static_cast<int32_t>(region.y);
  frame.roiWidth = static_cast<uint16_t>(region.size.width);
  frame.roiHeight = static_cast<uint16_t>(region.size.height);
  return frame;
}

}  // namespace zelm_tool
