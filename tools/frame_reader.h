// The frames of an input, one after the other.
#ifndef ZELM_TOOLS_FRAME_READER_H
#define ZELM_TOOLS_FRAME_READER_H

#include <memory>
#include <optional>

#include "byte_source.h"
#include "formats.h"
#include "frame.h"
#include "options.h"
#include "y4m.h"

namespace zelm_tool {

// Frames of a raw file or a Y4M stream, one at a time, laid out as the library
// reads them.
class FrameReader {
 public:
  explicit FrameReader(const InputOptions& options);

  const std::string& name() const { return source_.name(); }
  const Format& format() const { return *format_; }
  Size size() const { return size_; }
  const std::optional<Y4mHeader>& y4m() const { return y4m_; }
  // For outputs that hold one frame; fails when the user has asked for more.
  void limitToOne();

  // The next frame, valid until the next call; nullptr after the last one. Fails on
  // a frame that is cut short and on an input without any frame.
  Frame* next();

 private:
  void openY4m(const InputOptions& options);
  void openRaw(const InputOptions& options);
  bool readFrame();
  bool readFrameLine();
  bool readRows(const Plane& plane);
  bool take(size_t offset, size_t count);
  [[noreturn]] void failShort() const;
  [[noreturn]] void failEmpty(uint64_t skip) const;

  ByteSource source_;
  const Format* format_ = nullptr;
  Size size_;
  std::optional<Y4mHeader> y4m_;
  uint64_t stride_ = 0;  // 0: rows are packed
  uint64_t skip_;
  uint64_t limit_;
  bool delivered_ = false;
  uint64_t index_ = 0;  // frames read or skipped
  uint64_t bytes_ = 0;  // of the frame being read
  std::vector<Plane> planes_;
  std::unique_ptr<Frame> frame_;
};

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_FRAME_READER_H
