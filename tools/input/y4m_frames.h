// The frames of a Y4M stream.
#ifndef ZELM_TOOLS_INPUT_Y4M_FRAMES_H
#define ZELM_TOOLS_INPUT_Y4M_FRAMES_H

#include "input/file_frames.h"

namespace zelm_tool {

class Y4mFrames : public FileFrames {
 public:
  Y4mFrames(std::unique_ptr<ByteSource> bytes, const InputOptions& options);

  const char* container() const override { return "Y4M"; }
  const Y4mHeader* y4m() const override { return &header_; }

 protected:
  const uint8_t* readFrame(Buffer* buffer) override;
  bool skipFrame() override;
  uint64_t bytesInFile() const override;

 private:
  bool readFrameLine();

  Y4mHeader header_;
};

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_INPUT_Y4M_FRAMES_H
