// Reads Y4M streams.
#include "failure.h"
#include "input/file_frames.h"
#include "input/file_kinds.h"

namespace zelm_tool {
namespace {

std::string firstLine(ByteSource& source) {
  std::string line;
  source.readLine(&line);
  return line;
}

class Y4mFrames : public FileFrames {
 public:
  Y4mFrames(std::unique_ptr<ByteSource> source, const InputOptions& options);

  const char* container() const override { return "Y4M"; }
  const Y4mHeader* y4m() const override { return &header_; }

 protected:
  const uint8_t* readFrame(Buffer* buffer) override;
  bool skipFrame() override;
  uint64_t bytesInFile() const override;

 private:
  bool readFrameLine();

  Y4mHeader header_;
};

Y4mFrames::Y4mFrames(std::unique_ptr<ByteSource> bytes, const InputOptions& options)
    : FileFrames(std::move(bytes), options), header_(name(), firstLine(source())) {
  FrameKind kind;
  kind.format = &header_.format();
  kind.size = header_.size();
  if (!options.from.empty() && lowerCase(options.from) != "y4m" &&
      findFormat(options.from) != kind.format) {
    fail(name(), " is a Y4M stream, not ", options.from, ": omit --from");
  }
  if (!options.size.empty() && parseSize("--size", options.size) != kind.size) {
    fail("--size ", options.size, " does not match ", name(), ", a Y4M stream of ",
         kind.size, ": omit --size");
  }
  if (options.stride != 0) fail("--stride is for raw frames; rows of Y4M are packed");
  kind.requireMakeable();
  setKind(kind);
  chooseColour(header_.colour(), Range::kLimited, usualMatrix(kind.size));
}

uint64_t Y4mFrames::bytesInFile() const {
  return sizeof kY4mFrame + kind().bytes();  // with the newline
}

bool Y4mFrames::readFrameLine() {
  std::string line;
  if (!source().readLine(&line)) return false;
  const size_t length = sizeof kY4mFrame - 1;
  if (line.compare(0, length, kY4mFrame) != 0 ||
      (line.size() > length && line[length] != ' ')) {
    fail(name(), ": frame ", number(), " does not begin with ", kY4mFrame,
         "; the Y4M stream is damaged");
  }
  return true;
}

const uint8_t* Y4mFrames::readFrame(Buffer* buffer) {
  return readFrameLine() ? takeFrame(buffer, false) : nullptr;
}

bool Y4mFrames::skipFrame() {
  return readFrameLine() && source().skip(kind().bytes()) == kind().bytes();
}

}  // namespace

std::unique_ptr<FrameSource> openY4m(std::unique_ptr<ByteSource> source,
                                     const InputOptions& options) {
  return std::make_unique<Y4mFrames>(std::move(source), options);
}

}  // namespace zelm_tool
