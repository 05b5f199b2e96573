// The bytes of an input, with a look ahead.
#ifndef ZELM_TOOLS_INPUT_BYTE_SOURCE_H
#define ZELM_TOOLS_INPUT_BYTE_SOURCE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/frame.h"
#include "input/mapped_file.h"

namespace zelm_tool {

// Bytes of a file or, for "-", of standard input. Regular files are mapped, so that
// passing over bytes costs nothing; pipes and devices are read.
class ByteSource {
 public:
  explicit ByteSource(const std::string& path);
  ~ByteSource();
  ByteSource(const ByteSource&) = delete;
  ByteSource& operator=(const ByteSource&) = delete;

  const std::string& name() const { return name_; }
  // Up to `count` next bytes, fewer only at the end; consumes nothing. Valid until the
  // next call of anything.
  std::string_view peek(size_t count);
  // Where the next bytes lie: in the file's mapping, or in `buffer`. There are `*got`,
  // fewer than `count` only at the end. Memory is taken as bytes arrive.
  const uint8_t* take(size_t count, Buffer* buffer, size_t* got);
  // Passes over up to `count` bytes; fewer only at the end.
  uint64_t skip(uint64_t count);
  // Reads up to a newline, which is not part of the result. False at the end of the
  // input; fails when the line is longer than any header has reason to be.
  bool readLine(std::string* line);

  // The bytes that are left, of a mapped file.
  std::optional<uint64_t> left() const;
  // Fails when a mapped file has lost bytes since it was opened.
  void requireWhole() const;
  // Lets a read that waits in another thread, and all later ones, end the input.
  void stop();
  int descriptor() const { return descriptor_; }

 private:
  size_t readSome(uint8_t* to, size_t count);
  bool lookFurther();             // false at the end of the input
  std::string_view seen() const;  // the next bytes, as far as they are here

  std::string name_;
  const int descriptor_;
  const MappedFile file_;
  size_t position_ = 0;         // in the file
  std::vector<uint8_t> ahead_;  // of what is read: from aheadStart_ on
  size_t aheadStart_ = 0;
  int stop_[2] = {-1, -1};  // a pipe that becomes readable when reading is to stop
};

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_INPUT_BYTE_SOURCE_H
