// Writes frames to where they go.
#ifndef ZELM_TOOLS_OUTPUT_FRAME_WRITER_H
#define ZELM_TOOLS_OUTPUT_FRAME_WRITER_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "frame/frame.h"
#include "frame/y4m.h"
#include "output/target.h"

namespace zelm_tool {

// Bytes that are written for a frame.
struct Piece {
  const uint8_t* data;
  size_t size;
};

// Frames are encoded by any threads at the same time, and then written in order: the
// system writes to a file for one thread at a time, so more would only wait.
class FrameWriter {
 public:
  virtual ~FrameWriter() = default;

  // What stands in front of every frame, and is to lie in front of it in memory.
  const std::string& before() const { return before_; }
  // What is to be written of a frame: the frame with what lies before it, or something
  // that is put into `own`. `number` counts from 1 on, with the input's first number.
  virtual Piece encode(Piece frame, uint64_t number, std::vector<uint8_t>* own) const;
  virtual void write(Piece piece, uint64_t number) = 0;
  // Makes the output visible under its name.
  virtual void finish() = 0;

 protected:
  explicit FrameWriter(std::string before = "") : before_(std::move(before)) {}

 private:
  const std::string before_;
};

// `header` is used for a Y4M target only; `input` is the input's descriptor, or -1: the
// output must be another file.
std::unique_ptr<FrameWriter> openWriter(const Target& target, const FrameKind& kind,
                                        const Y4mHeader& header, int input);

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_OUTPUT_FRAME_WRITER_H
