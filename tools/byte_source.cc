// Reads bytes of files and of standard input.
#include "byte_source.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "failure.h"

namespace zelm_tool {
namespace {

constexpr size_t kMaxLine = 4096;

// Standard input belongs to the whole program and stays open.
void closeUnlessShared(FILE* file) {
  if (file != stdin) fclose(file);
}

}  // namespace

ByteSource::ByteSource(const std::string& path)
    : name_(path == "-" ? "standard input" : path),
      file_(path == "-" ? stdin : fopen(path.c_str(), "rb"), closeUnlessShared) {
  if (file_ == nullptr) fail(name_, ": cannot be opened: ", strerror(errno));
}

bool ByteSource::startsWith(const std::string& text) {
  while (ahead_.size() < text.size()) {
    const int byte = fgetc(file_.get());
    if (byte == EOF) {
      requireNoError();
      break;
    }
    ahead_.push_back(static_cast<char>(byte));
  }
  return ahead_.compare(0, text.size(), text) == 0;
}

size_t ByteSource::read(uint8_t* to, size_t count) {
  const size_t early = std::min(count, ahead_.size());
  memcpy(to, ahead_.data(), early);
  ahead_.erase(0, early);
  const size_t got = early + fread(to + early, 1, count - early, file_.get());
  if (got < count) requireNoError();
  return got;
}

void ByteSource::requireNoError() const {
  if (ferror(file_.get())) fail(name_, ": cannot be read: ", strerror(errno));
}

uint64_t ByteSource::skip(uint64_t count) {
  uint8_t scratch[16384];
  uint64_t passed = 0;
  while (passed < count) {
    const size_t want = std::min<uint64_t>(count - passed, sizeof scratch);
    const size_t got = read(scratch, want);
    passed += got;
    if (got < want) break;
  }
  return passed;
}

bool ByteSource::readLine(std::string* line) {
  line->clear();
  for (uint8_t byte; read(&byte, 1) == 1;) {
    if (byte == '\n') return true;
    if (line->size() == kMaxLine) {
      fail(name_, ": a header line is longer than ", kMaxLine,
           " bytes; this is no Y4M stream, or a damaged one");
    }
    line->push_back(static_cast<char>(byte));
  }
  return !line->empty();
}

}  // namespace zelm_tool
