// Raw frames: bytes without any header.
#ifndef ZELM_TOOLS_INPUT_RAW_FRAMES_H
#define ZELM_TOOLS_INPUT_RAW_FRAMES_H

#include "input/file_frames.h"

namespace zelm_tool {

class RawFrames : public FileFrames {
 public:
  RawFrames(std::unique_ptr<ByteSource> bytes, const InputOptions& options);

  const char* container() const override { return "raw"; }

 protected:
  const uint8_t* readFrame(Buffer* buffer) override { return takeFrame(buffer, true); }
  bool skipFrame() override;
  uint64_t bytesInFile() const override { return kind().bytes(); }
};

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_INPUT_RAW_FRAMES_H
