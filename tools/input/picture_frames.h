// Pictures as inputs: PNG, PPM and PGM, also several of the same size in one stream.
#ifndef ZELM_TOOLS_INPUT_PICTURE_FRAMES_H
#define ZELM_TOOLS_INPUT_PICTURE_FRAMES_H

#include <vector>

#include "input/file_frames.h"

namespace zelm_tool {

// How many first bytes tell that it is a picture.
constexpr size_t kPictureBytes = 8;
bool beginsLikePng(std::string_view start);
bool beginsLikePnm(std::string_view start);

// What both kinds have in common: a header of every picture, which must say what the
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

class PngFrames : public PictureFrames {
 public:
  PngFrames(std::unique_ptr<ByteSource> bytes, const InputOptions& options);

 protected:
  const uint8_t* readFrame(Buffer* buffer) override;

 private:
  bool readFile();
  void append(size_t count);

  std::vector<uint8_t> file_;  // the picture that comes next
};

class PnmFrames : public PictureFrames {
 public:
  PnmFrames(std::unique_ptr<ByteSource> bytes, const InputOptions& options);

 protected:
  const uint8_t* readFrame(Buffer* buffer) override;

 private:
  void readHeader();
  uint32_t readNumber();

  bool headerRead_ = false;
};

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_INPUT_PICTURE_FRAMES_H
