// What readers of pictures have in common.
#ifndef ZELM_TOOLS_INPUT_PICTURE_FRAMES_H
#define ZELM_TOOLS_INPUT_PICTURE_FRAMES_H

#include "input/file_frames.h"

namespace zelm_tool {

// Pictures in one stream: a header of every picture, which must say what the
// first one said.
class PictureFrames : public FileFrames {
 public:
  PictureFrames(std::unique_ptr<ByteSource> source, const InputOptions& options,
                const char* name);

  const char* container() const override { return pictureName_; }
  bool isPicture() const override { return true; }

 protected:
  bool skipFrame() override;
  uint64_t bytesInFile() const override { return 0; }
  // To be called in the constructor, and for every later picture.
  void setPicture(const Format& format, Size size);

 private:
  const char* const pictureName_;
  const InputOptions options_;
};

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_INPUT_PICTURE_FRAMES_H
