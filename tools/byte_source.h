// The bytes of an input, with a look ahead.
#ifndef ZELM_TOOLS_BYTE_SOURCE_H
#define ZELM_TOOLS_BYTE_SOURCE_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

namespace zelm_tool {

// Bytes of a file or, for "-", of standard input, with a look ahead.
class ByteSource {
 public:
  explicit ByteSource(const std::string& path);

  const std::string& name() const { return name_; }
  // Whether the next bytes are `text`; consumes nothing.
  bool startsWith(const std::string& text);
  // Reads up to `count` bytes; fewer only at the end.
  size_t read(uint8_t* to, size_t count);
  // Passes over up to `count` bytes; fewer only at the end.
  uint64_t skip(uint64_t count);
  // Reads up to a newline, which is not part of the result. False at the end of the
  // input; fails when the line is longer than any header has reason to be.
  bool readLine(std::string* line);

 private:
  void requireNoError() const;

  std::string name_;
  std::unique_ptr<FILE, void (*)(FILE*)> file_;
  std::string ahead_;
};

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_BYTE_SOURCE_H
