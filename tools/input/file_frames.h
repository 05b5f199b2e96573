// Frames of files and pipes: which of them are taken.
#ifndef ZELM_TOOLS_INPUT_FILE_FRAMES_H
#define ZELM_TOOLS_INPUT_FILE_FRAMES_H

#include <string>

#include "input/byte_source.h"
#include "input/frame_source.h"

namespace zelm_tool {

// The frames that --skip and --frames leave; how frames lie in a file is told by what
// is made of this.
class FileFrames : public FrameSource {
 public:
  FileFrames(std::unique_ptr<ByteSource> source, const InputOptions& options);

  const FrameKind& kind() const override { return kind_; }
  InputColour colour() const override { return colour_; }
  bool isPicture() const override { return kind_.format->isRgb(); }
  int descriptor() const override { return source_->descriptor(); }
  std::optional<uint64_t> count() const override;
  uint64_t firstNumber() const override { return firstNumber_; }
  void limitToOne() override;
  const uint8_t* next(Buffer* buffer) override;
  void requireWhole() const override { source_->requireWhole(); }
  void stop() override { source_->stop(); }

 protected:
  // The next frame's bytes; nullptr at the end of the input.
  virtual const uint8_t* readFrame(Buffer* buffer) = 0;
  // Passes over a frame; false at the end of the input.
  virtual bool skipFrame() = 0;
  // How many bytes each frame has in the file; 0 if they differ.
  virtual uint64_t bytesInFile() const = 0;

  ByteSource& source() { return *source_; }
  const std::string& name() const { return source_->name(); }
  // The number of the frame that is read now, from 1 on, for messages.
  uint64_t number() const { return index_ + 1; }
  void setKind(const FrameKind& kind) { kind_ = kind; }
  // Of YUV, what the user has said, a header says and is usual; RGB has none.
  void chooseColour(const ColourRequest& stated, Range usualRange, Matrix usualMatrix);
  // Takes the bytes of a whole frame and fails on fewer; nullptr if there are none and
  // the input may end here.
  const uint8_t* takeFrame(Buffer* buffer, bool mayEnd);

 private:
  [[noreturn]] void failEmpty(uint64_t skip) const;

  std::unique_ptr<ByteSource> source_;
  FrameKind kind_;
  InputColour colour_;
  ColourRequest asked_;
  bool colourWasAsked_;
  uint64_t skip_ = 0;
  uint64_t limit_ = UINT64_MAX;
  uint64_t firstNumber_ = 1;
  bool delivered_ = false;
  uint64_t index_ = 0;  // frames read or passed over
};

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_INPUT_FILE_FRAMES_H
