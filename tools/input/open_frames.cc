// Chooses the reader for an input by its first bytes.
#include <algorithm>

#include "failure.h"
#include "frame/y4m.h"
#include "input/file_kinds.h"
#include "input/foreign.h"

namespace zelm_tool {
namespace {

// The beginning of a PPM is so short that raw frames may have it, too.
bool isRawByName(const InputOptions& options) {
  const std::string name = options.from.empty() ? suffixOf(options.path) : options.from;
  return findFormat(name) != nullptr;
}

}  // namespace

void FrameSource::failMoreThanOne(uint64_t frames) {
  fail("--frames ", frames, ": a PNG holds one frame; for more the name needs a ",
       "number, such as out-%03d.png");
}

std::unique_ptr<FrameSource> openFrames(const InputOptions& options) {
  auto source = std::make_unique<ByteSource>(options.path);
  const size_t magic = sizeof kY4mMagic - 1;
  const std::string_view start =
      source->peek(std::max({magic, kForeignBytes, kPictureBytes}));
  if (start.substr(0, magic) == kY4mMagic) {
    return openY4m(std::move(source), options);
  }
  if (beginsLikePng(start)) {
    return openPng(std::move(source), options);
  }
  if (beginsLikePnm(start) && !isRawByName(options)) {
    return openPnm(std::move(source), options);
  }
  refuseForeign(options.path, start);
  const std::string from = lowerCase(options.from);
  if (from == "y4m") {
    fail(source->name(), " is no Y4M stream: it does not begin with ", kY4mMagic);
  }
  if (from == "png" || from == "ppm" || from == "pgm") {
    fail(source->name(), " is no ", from, " picture: it begins with other bytes");
  }
  return openRaw(std::move(source), options);
}

}  // namespace zelm_tool
