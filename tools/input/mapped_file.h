// Files whose bytes are read where the system keeps them.
#ifndef ZELM_TOOLS_INPUT_MAPPED_FILE_H
#define ZELM_TOOLS_INPUT_MAPPED_FILE_H

#include <cstddef>
#include <cstdint>

namespace zelm_tool {

// The bytes that a regular file had when it was opened. One that becomes shorter while
// it is read does not end the program: zeros stand for what it lost, and hasLost()
// tells.
class MappedFile {
 public:
  // Maps nothing if the descriptor is no regular file, or one that cannot be mapped.
  explicit MappedFile(int descriptor);
  ~MappedFile();
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  explicit operator bool() const { return data_ != nullptr; }
  const uint8_t* data() const { return data_; }
  size_t size() const { return size_; }
  bool hasLost() const;

 private:
  const int descriptor_;
  const uint8_t* data_ = nullptr;
  size_t size_ = 0;
};

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_INPUT_MAPPED_FILE_H
