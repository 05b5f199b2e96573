// What readers of pictures have in common.
#include "input/picture_frames.h"

#include "failure.h"

namespace zelm_tool {

PictureFrames::PictureFrames(std::unique_ptr<ByteSource> source,
                             const InputOptions& options, const char* name)
    : FileFrames(std::move(source), options), pictureName_(name), options_(options) {}

void PictureFrames::setPicture(const Format& format, Size size) {
  if (kind().format != nullptr) {
    if (kind().format == &format && kind().size == size) return;
    fail(name(), ": picture ", number(), " is ", size, ' ', format.name,
         ", those before it are ", kind().size, ' ', kind().format->name);
  }
  if (!options_.from.empty() && lowerCase(options_.from) != lowerCase(pictureName_)) {
    fail(name(), " is a ", pictureName_, " picture, not ", options_.from,
         ": omit --from");
  }
  requireFrameSize(name() + ": a picture of", size);
  if (!options_.size.empty() && parseSize("--size", options_.size) != size) {
    fail("--size ", options_.size, " does not match ", name(), ", a picture of ", size,
         ": omit --size");
  }
  if (options_.stride != 0)
    fail("--stride is for raw frames; rows of pictures are packed");
  FrameKind kind;
  kind.format = &format;
  kind.size = size;
  kind.requireMakeable();
  setKind(kind);
  chooseColour({Range::kFull, Matrix::kBt601}, Range::kFull, Matrix::kBt601);
}

bool PictureFrames::skipFrame() {
  Buffer unused;
  return readFrame(&unused) != nullptr;
}

}  // namespace zelm_tool
