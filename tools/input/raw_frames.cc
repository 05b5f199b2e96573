// Reads raw frames.
#include "failure.h"
#include "input/file_frames.h"
#include "input/file_kinds.h"

namespace zelm_tool {
namespace {

const Format& rawFormat(const InputOptions& options, const std::string& name) {
  if (!options.from.empty()) return formatNamed(options.from);
  const Format* format = findFormat(suffixOf(options.path));
  if (format == nullptr) {
    fail(name, ": this is no Y4M stream and no picture, so --from FORMAT is needed (",
         formatNames(), ")");
  }
  return *format;
}

class RawFrames : public FileFrames {
 public:
  RawFrames(std::unique_ptr<ByteSource> source, const InputOptions& options);

  const char* container() const override { return "raw"; }

 protected:
  const uint8_t* readFrame(Buffer* buffer) override { return takeFrame(buffer, true); }
  bool skipFrame() override;
  uint64_t bytesInFile() const override { return kind().bytes(); }
};

RawFrames::RawFrames(std::unique_ptr<ByteSource> bytes, const InputOptions& options)
    : FileFrames(std::move(bytes), options) {
  FrameKind kind;
  kind.format = &rawFormat(options, name());
  if (options.size.empty()) {
    fail(name(), ": raw ", kind.format->name, " frames need --size WxH");
  }
  kind.size = parseSize("--size", options.size);
  requireFrameSize("--size", kind.size);
  kind.stride = options.stride;
  kind.requireMakeable();
  setKind(kind);
  chooseColour({}, Range::kFull, Matrix::kBt601);
  // A file's size tells early that something is wrong with it, or with the options.
  const uint64_t left = source().left().value_or(0), rest = left % kind.bytes();
  if (rest != 0 && rest < kind.leastBytes()) {
    fail(name(), ": its last frame is cut short: ", rest, " of the ", kind.bytes(),
         " bytes of ", kind.size, ' ', kind.format->name,
         "; the file's size must be a multiple of that, are --size and --from right?");
  }
}

bool RawFrames::skipFrame() {
  return source().skip(kind().bytes()) >= kind().leastBytes();
}

}  // namespace

std::unique_ptr<FrameSource> openRaw(std::unique_ptr<ByteSource> source,
                                     const InputOptions& options) {
  return std::make_unique<RawFrames>(std::move(source), options);
}

}  // namespace zelm_tool
