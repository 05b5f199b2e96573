// Reads bytes of files and of standard input.
#include "input/byte_source.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "failure.h"
#include "pipe.h"

namespace zelm_tool {
namespace {

constexpr size_t kMaxLine = 4096;
// How far a pipe is read ahead for headers and lines.
constexpr size_t kAhead = 16384;
// A buffer grows by this much at a time while bytes arrive.
constexpr size_t kPiece = size_t{1} << 22;

int openInput(const std::string& path) {
  return path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC);
}

}  // namespace

ByteSource::ByteSource(const std::string& path)
    : name_(path == "-" ? "standard input" : path),
      descriptor_(openInput(path)),
      file_(descriptor_) {
  if (descriptor_ < 0) fail(name_, ": cannot be opened: ", strerror(errno));
  if (file_) {
    const off_t start = lseek(descriptor_, 0, SEEK_CUR);
    position_ = std::min(file_.size(), static_cast<size_t>(std::max<off_t>(start, 0)));
    return;
  }
  enlargePipe(descriptor_);
  if (pipe2(stop_, O_CLOEXEC) != 0) fail(name_, ": cannot be read: ", strerror(errno));
}

// Standard input belongs to the whole program and stays open.
ByteSource::~ByteSource() {
  if (descriptor_ != STDIN_FILENO && descriptor_ >= 0) close(descriptor_);
  for (int end : stop_) {
    if (end >= 0) close(end);
  }
}

// Waits for bytes, or for stop(). Files that cannot be waited for are always ready.
size_t ByteSource::readSome(uint8_t* to, size_t count) {
  for (;;) {
    pollfd waiting[2] = {{descriptor_, POLLIN, 0}, {stop_[0], POLLIN, 0}};
    if (poll(waiting, 2, -1) < 0 && errno == EINTR) continue;
    if (waiting[1].revents != 0) return 0;
    const ssize_t got = ::read(descriptor_, to, count);
    if (got >= 0) return static_cast<size_t>(got);
    if (errno != EINTR && errno != EAGAIN) {
      fail(name_, ": cannot be read: ", strerror(errno));
    }
  }
}

bool ByteSource::lookFurther() {
  ahead_.erase(ahead_.begin(), ahead_.begin() + static_cast<ptrdiff_t>(aheadStart_));
  aheadStart_ = 0;
  const size_t before = ahead_.size();
  ahead_.resize(before + kAhead);
  const size_t got = readSome(ahead_.data() + before, kAhead);
  ahead_.resize(before + got);
  return got > 0;
}

std::string_view ByteSource::seen() const {
  if (file_) {
    const char* start = reinterpret_cast<const char*>(file_.data() + position_);
    return {start, file_.size() - position_};
  }
  const char* start = reinterpret_cast<const char*>(ahead_.data() + aheadStart_);
  return {start, ahead_.size() - aheadStart_};
}

std::string_view ByteSource::peek(size_t count) {
  while (seen().size() < count) {
    if (file_ || !lookFurther()) break;
  }
  return seen().substr(0, count);
}

const uint8_t* ByteSource::take(size_t count, Buffer* buffer, size_t* got) {
  if (file_) {
    const uint8_t* start = file_.data() + position_;
    *got = std::min(count, file_.size() - position_);
    position_ += *got;
    return start;
  }
  size_t have = std::min(count, ahead_.size() - aheadStart_);
  uint8_t* bytes = buffer->reserve(std::min(count, have + kPiece));
  if (have > 0) memcpy(bytes, ahead_.data() + aheadStart_, have);
  aheadStart_ += have;
  while (have < count) {
    const size_t room = std::min(count, have + kPiece);
    bytes = buffer->reserve(room);
    const size_t more = readSome(bytes + have, room - have);
    if (more == 0) break;
    have += more;
  }
  *got = have;
  return bytes;
}

uint64_t ByteSource::skip(uint64_t count) {
  if (file_) {
    const uint64_t passed = std::min<uint64_t>(count, file_.size() - position_);
    position_ += static_cast<size_t>(passed);
    return passed;
  }
  Buffer scratch;
  uint64_t passed = 0;
  while (passed < count) {
    size_t got;
    take(static_cast<size_t>(std::min<uint64_t>(count - passed, kAhead)), &scratch,
         &got);
    if (got == 0) break;
    passed += got;
  }
  return passed;
}

bool ByteSource::readLine(std::string* line) {
  size_t end, length = 0;
  for (;;) {
    const std::string_view bytes = peek(length + 1);
    if (bytes.size() == length) {  // the input ends here
      end = length;
      break;
    }
    end = seen().substr(0, kMaxLine + 1).find('\n', length);
    if (end != std::string_view::npos) break;
    length = std::min(seen().size(), kMaxLine + 1);
    if (length > kMaxLine) {
      fail(name_, ": a header line is longer than ", kMaxLine,
           " bytes; this is no Y4M stream, or a damaged one");
    }
  }
  const bool complete = end < seen().size();
  line->assign(seen().substr(0, end));
  skip(complete ? end + 1 : end);
  return complete || end > 0;
}

std::optional<uint64_t> ByteSource::left() const {
  if (!file_) return std::nullopt;
  return file_.size() - position_;
}

void ByteSource::requireWhole() const {
  if (file_ && file_.hasLost()) {
    fail(name_, ": is cut short: it lost bytes while it was read");
  }
}

void ByteSource::stop() {
  const char wake = 0;
  if (stop_[1] >= 0 && write(stop_[1], &wake, 1) != 1) return;
}

}  // namespace zelm_tool
