// Reads raw frames and Y4M streams.
#include "frame_reader.h"

#include <algorithm>

#include "failure.h"

namespace zelm_tool {
namespace {

// The buffer grows by this much at a time while the first frame arrives.
constexpr size_t kPiece = size_t{1} << 22;

const Format& rawFormat(const InputOptions& options, const std::string& name) {
  if (!options.from.empty()) return formatNamed(options.from);
  const Format* format = findFormat(suffixOf(options.path));
  if (format == nullptr) {
    fail(name, ": this is no Y4M stream, so --from FORMAT is needed (",
         formatNames([](const Format& f) { return f.readable; }), ")");
  }
  return *format;
}

}  // namespace

FrameReader::FrameReader(const InputOptions& options)
    : source_(options.path),
      skip_(options.skip),
      limit_(options.frames == 0 ? UINT64_MAX : options.frames) {
  if (source_.startsWith(kY4mMagic)) {
    openY4m(options);
  } else {
    openRaw(options);
  }
  if (zelmFrameLayout(format_->code, size_.width, size_.height).size == 0) {
    fail(name(), ": frames of ", size_, ' ', format_->name, " are too large");
  }
  planes_ = filePlanes(*format_, size_, Layout::kSource);
  frame_ = std::make_unique<Frame>(format_->code, size_);
}

void FrameReader::openY4m(const InputOptions& options) {
  std::string line;
  source_.readLine(&line);
  y4m_ = parseY4mHeader(name(), line);
  size_ = y4m_->size;
  format_ = &formatNamed("yuv420p");
  if (!options.from.empty() && options.from != "y4m" &&
      findFormat(options.from) != format_) {
    fail(name(), " is a Y4M stream, not ", options.from, ": omit --from");
  }
  if (!options.size.empty() && parseSize("--size", options.size) != size_) {
    fail("--size ", options.size, " does not match ", name(), ", a Y4M stream of ",
         size_, ": omit --size");
  }
  if (options.stride != 0) fail("--stride is for raw frames; rows of Y4M are packed");
}

void FrameReader::openRaw(const InputOptions& options) {
  if (options.from == "y4m") {
    fail(name(), " is no Y4M stream: it does not begin with ", kY4mMagic);
  }
  format_ = &rawFormat(options, name());
  if (options.size.empty()) {
    fail(name(), ": raw ", format_->name, " frames need --size WxH");
  }
  size_ = parseSize("--size", options.size);
  requireFrameSize("--size", size_);
  if (options.stride == 0) return;
  stride_ = options.stride;
  const std::vector<Plane> planes = filePlanes(*format_, size_, Layout::kSource);
  if (planes[0].rows == 1)
    fail("--stride: ", format_->name, " frames have no rows to pad");
  if (stride_ < planes[0].rowBytes) {
    fail("--stride ", stride_, " is too small: a row of ", size_, ' ', format_->name,
         " has ", planes[0].rowBytes, " bytes");
  }
  if (planes.size() == 3 && stride_ % 2 != 0) {
    fail("--stride ", stride_, " must be even for ", format_->name,
         ": chroma rows lie half as far apart");
  }
}

void FrameReader::limitToOne() {
  if (limit_ != UINT64_MAX && limit_ > 1) {
    fail("--frames ", limit_, ": a PNG holds one frame; for more the name needs a ",
         "number, such as out-%03d.png");
  }
  limit_ = 1;
}

Frame* FrameReader::next() {
  const uint64_t first = skip_;
  for (; skip_ > 0; --skip_) {
    if (!readFrame()) failEmpty(first);
  }
  if (limit_ == 0) return nullptr;
  if (!readFrame()) {
    if (!delivered_) failEmpty(first);
    return nullptr;
  }
  delivered_ = true;
  --limit_;
  return frame_.get();
}

void FrameReader::failEmpty(uint64_t skip) const {
  if (index_ == 0) fail(name(), ": there is no frame in it");
  fail("--skip ", skip, " leaves nothing of ", name(), ", which has ", index_,
       index_ == 1 ? " frame" : " frames");
}

bool FrameReader::readFrameLine() {
  std::string line;
  if (!source_.readLine(&line)) return false;
  if (line != "FRAME" && line.compare(0, 6, "FRAME ") != 0) {
    fail(name(), ": frame ", index_ + 1,
         " does not begin with FRAME; the Y4M stream is ", "damaged");
  }
  return true;
}

bool FrameReader::readFrame() {
  bytes_ = 0;
  if (y4m_ && !readFrameLine()) return false;
  for (const Plane& plane : planes_) {
    if (readRows(plane)) continue;
    if (bytes_ == 0 && !y4m_) return false;
    failShort();
  }
  if (swappedInFile(*format_, Layout::kSource)) {
    uint8_t* words = frame_->data();
    swapRedAndBlue(words, words, frame_->bytes());
  }
  ++index_;
  return true;
}

bool FrameReader::readRows(const Plane& plane) {
  if (stride_ == 0 && plane.stride == plane.rowBytes) {
    return take(plane.offset, plane.rowBytes * plane.rows);
  }
  const uint64_t fileStride = stride_ * plane.rowBytes / planes_[0].rowBytes;
  for (size_t row = 0; row < plane.rows; ++row) {
    if (!take(plane.offset + row * plane.stride, plane.rowBytes)) return false;
    const uint64_t padding = stride_ == 0 ? 0 : fileStride - plane.rowBytes;
    const uint64_t passed = source_.skip(padding);
    bytes_ += passed;
    // Cameras leave out the padding behind the very last row.
    const bool last = &plane == &planes_.back() && row + 1 == plane.rows;
    if (passed < padding && !last) return false;
  }
  return true;
}

bool FrameReader::take(size_t offset, size_t count) {
  while (count > 0) {
    const size_t piece = std::min(count, kPiece);
    uint8_t* buffer = frame_->reserve(offset + piece);
    const size_t got = source_.read(buffer + offset, piece);
    bytes_ += got;
    if (got < piece) return false;
    offset += piece;
    count -= piece;
  }
  return true;
}

void FrameReader::failShort() const {
  uint64_t whole = fileBytes(*format_, size_);
  if (stride_ != 0) {
    whole = 0;
    for (const Plane& plane : planes_) {
      whole += stride_ * plane.rowBytes / planes_[0].rowBytes * plane.rows;
    }
  }
  fail(name(), ": frame ", index_ + 1, " is cut short: ", bytes_, " of the ", whole,
       " bytes of ", size_, ' ', format_->name,
       y4m_ ? ""
            : "; the file's size must be a multiple of that, are --size and --from "
              "right?");
}

}  // namespace zelm_tool
