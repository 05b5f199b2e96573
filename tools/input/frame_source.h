// The frames of an input, one after the other.
#ifndef ZELM_TOOLS_INPUT_FRAME_SOURCE_H
#define ZELM_TOOLS_INPUT_FRAME_SOURCE_H

#include <memory>
#include <optional>
#include <string>

#include "frame/frame.h"
#include "frame/y4m.h"
#include "options/options.h"

namespace zelm_tool {

// Where frames come from: a file, a pipe, or a picture that is drawn.
class FrameSource {
 public:
  virtual ~FrameSource() = default;

  virtual const FrameKind& kind() const = 0;
  // What of the frames' colour nobody has said.
  virtual InputColour colour() const = 0;
  // The header of a Y4M stream; nullptr of anything else.
  virtual const Y4mHeader* y4m() const { return nullptr; }
  virtual const char* container() const = 0;  // "raw", "Y4M", "PNG", ...
  // Whether it is a picture: full range, and no word about what video it should be.
  virtual bool isPicture() const { return false; }
  // What is read, to tell the same file from another; -1 of what is no file.
  virtual int descriptor() const { return -1; }
  // How many frames next() will give, as far as that can be told in advance.
  virtual std::optional<uint64_t> count() const = 0;
  // The number of the first of them, from 1 on.
  virtual uint64_t firstNumber() const { return 1; }
  // For outputs that hold one frame; fails when the user has asked for more.
  virtual void limitToOne() = 0;

  // The bytes of the next frame, in `buffer` or where the source keeps them; nullptr
  // after the last one. Fails on a frame that is cut short and on an input without any.
  virtual const uint8_t* next(Buffer* buffer) = 0;
  // Fails if what next() gave may no longer have been there when it was used.
  virtual void requireWhole() const {}
  // Ends a next() that waits in another thread.
  virtual void stop() {}

 protected:
  // For limitToOne(), when so many frames were asked for.
  [[noreturn]] static void failMoreThanOne(uint64_t frames);
};

// Opens what the options name. Fails in words on what holds no frames.
std::unique_ptr<FrameSource> openFrames(const InputOptions& options);

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_INPUT_FRAME_SOURCE_H
