// Reads PNG pictures.
#include <png.h>

#include <cstring>
#include <vector>

#include "failure.h"
#include "input/file_kinds.h"
#include "input/picture_frames.h"

namespace zelm_tool {
namespace {

constexpr uint8_t kSignature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr size_t kChunkStart = 8;  // length and type
constexpr size_t kChunkEnd = 4;    // check sum
// Bytes of the first chunk, in the file.
constexpr size_t kWidth = 16, kHeight = 20, kDepth = 24, kColours = 25, kHeaderEnd = 33;
constexpr size_t kPiece = size_t{1} << 20;
// What deflate can make of a byte at most.
constexpr uint64_t kMostExpansion = 1032;

uint32_t bigEndian(const uint8_t* at) {
  return uint32_t{at[0]} << 24 | at[1] << 16 | at[2] << 8 | at[3];
}

// Whether there is so much data that the header can be true: otherwise a few bytes
// could ask for any amount of memory.
bool isPlausible(const std::vector<uint8_t>& file) {
  constexpr uint32_t kChannels[] = {1, 0, 3, 1, 2, 0, 4};
  const uint8_t colours = file[kColours];
  if (colours >= sizeof kChannels / sizeof kChannels[0]) return false;
  const uint64_t bits =
      uint64_t{bigEndian(&file[kWidth])} * file[kDepth] * kChannels[colours];
  return (bits / 8 + 1) * bigEndian(&file[kHeight]) <= file.size() * kMostExpansion;
}

// What libpng is reading; freed on every way out.
struct Image : png_image {
  Image() : png_image() { version = PNG_IMAGE_VERSION; }
  ~Image() { png_image_free(this); }
};

bool isCritical(const std::string& chunkType) { return (chunkType[0] & 0x20) == 0; }

uint32_t formatOfPng(uint32_t flags) {
  const bool alpha = (flags & PNG_FORMAT_FLAG_ALPHA) != 0;
  if ((flags & PNG_FORMAT_FLAG_COLOR) != 0) return alpha ? ZELM_RGBA : ZELM_RGB24;
  return alpha ? ZELM_RGBA : ZELM_GRAY8;
}

uint32_t pngFormatOf(uint32_t format) {
  if (format == ZELM_GRAY8) return PNG_FORMAT_GRAY;
  return format == ZELM_RGBA ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB;
}

class PngFrames : public PictureFrames {
 public:
  PngFrames(std::unique_ptr<ByteSource> source, const InputOptions& options);

 protected:
  const uint8_t* readFrame(Buffer* buffer) override;

 private:
  bool readFile();
  void append(size_t count);

  std::vector<uint8_t> file_;  // the picture that comes next
};

PngFrames::PngFrames(std::unique_ptr<ByteSource> bytes, const InputOptions& options)
    : PictureFrames(std::move(bytes), options, "PNG") {
  readFile();
  Image image;
  if (!png_image_begin_read_from_memory(&image, file_.data(), file_.size())) {
    fail(name(), ": the PNG picture is damaged: ", image.message);
  }
  setPicture(formatOf(formatOfPng(image.format)), {image.width, image.height});
}

// A PNG is read chunk by chunk, so that another one can follow. Chunks that would
// change what the samples mean, such as gamma, are left out: samples are taken as they
// are.
bool PngFrames::readFile() {
  file_.clear();
  if (source().peek(1).empty()) return false;
  append(sizeof kSignature);
  if (!beginsLikePng({reinterpret_cast<const char*>(file_.data()), file_.size()})) {
    fail(name(), ": picture ", number(), " does not begin like a PNG");
  }
  for (bool last = false; !last;) {
    const size_t chunk = file_.size();
    append(kChunkStart);
    const std::string type(reinterpret_cast<const char*>(&file_[chunk + 4]), 4);
    last = type == "IEND";
    append(size_t{bigEndian(&file_[chunk])} + kChunkEnd);
    if (!isCritical(type) && type != "tRNS") file_.resize(chunk);
  }
  if (file_.size() < kHeaderEnd || memcmp(&file_[12], "IHDR", 4) != 0 ||
      !isPlausible(file_)) {
    fail(name(), ": the PNG picture is damaged");
  }
  return true;
}

void PngFrames::append(size_t count) {
  Buffer piece;
  while (count > 0) {
    size_t got;
    const size_t wanted = count < kPiece ? count : kPiece;
    const uint8_t* bytes = source().take(wanted, &piece, &got);
    if (got < wanted) fail(name(), ": the PNG picture is cut short");
    file_.insert(file_.end(), bytes, bytes + got);
    count -= got;
  }
}

const uint8_t* PngFrames::readFrame(Buffer* buffer) {
  if (file_.empty() && !readFile()) return nullptr;
  Image image;
  uint8_t* pixels = nullptr;
  if (png_image_begin_read_from_memory(&image, file_.data(), file_.size())) {
    setPicture(formatOf(formatOfPng(image.format)), {image.width, image.height});
    image.format = pngFormatOf(kind().format->code);
    image.flags |= PNG_IMAGE_FLAG_16BIT_sRGB;
    pixels = buffer->reserve(kind().bytes());
    if (!png_image_finish_read(&image, nullptr, pixels, 0, nullptr)) pixels = nullptr;
  }
  if (pixels == nullptr) {
    fail(name(), ": the PNG picture is damaged: ", image.message);
  }
  file_.clear();
  return pixels;
}

}  // namespace

bool beginsLikePng(std::string_view start) {
  return start.size() >= sizeof kSignature &&
         memcmp(start.data(), kSignature, sizeof kSignature) == 0;
}

std::unique_ptr<FrameSource> openPng(std::unique_ptr<ByteSource> source,
                                     const InputOptions& options) {
  return std::make_unique<PngFrames>(std::move(source), options);
}

}  // namespace zelm_tool
