// Writes raw frames, Y4M streams, pictures and digests.
#include "frame_writer.h"

#include <nettle/md5.h>

#include <cinttypes>
#include <functional>

#include "failure.h"
#include "output_file.h"
#include "picture.h"

namespace zelm_tool {
namespace {

using Sink = std::function<void(const uint8_t*, size_t)>;

// Hands the frame's bytes to `sink` in the order of a file.
class FrameSerializer {
 public:
  FrameSerializer(const Format& format, Size size)
      : planes_(filePlanes(format, size, Layout::kDestination)),
        swapped_(swappedInFile(format, Layout::kDestination)) {}

  void serialize(const Frame& frame, const Sink& sink) {
    for (const Plane& plane : planes_) {
      if (plane.stride == plane.rowBytes && !swapped_) {
        sink(frame.data() + plane.offset, plane.rowBytes * plane.rows);
        continue;
      }
      for (size_t row = 0; row < plane.rows; ++row) {
        sink(fileRow(frame.data() + plane.offset + row * plane.stride, plane.rowBytes),
             plane.rowBytes);
      }
    }
  }

 private:
  const uint8_t* fileRow(const uint8_t* row, size_t bytes) {
    if (!swapped_) return row;
    scratch_.resize(bytes);
    swapRedAndBlue(row, scratch_.data(), bytes);
    return scratch_.data();
  }

  std::vector<Plane> planes_;
  bool swapped_;
  std::vector<uint8_t> scratch_;
};

// One file with all frames: raw, Y4M or PPM/PGM, which differ in what stands once
// at the start and before every frame.
class StreamWriter : public FrameWriter {
 public:
  StreamWriter(const Target& target, Size size, std::string start, std::string each)
      : file_(target.path),
        serializer_(*target.format, size),
        start_(std::move(start)),
        each_(std::move(each)) {}

  void write(const Frame& frame) override {
    file_.write(start_);
    start_.clear();
    file_.write(each_);
    serializer_.serialize(
        frame, [this](const uint8_t* data, size_t count) { file_.write(data, count); });
  }
  void finish() override { file_.commit(); }

 private:
  OutputFile file_;
  FrameSerializer serializer_;
  std::string start_;
  std::string each_;
};

class PngWriter : public FrameWriter {
 public:
  PngWriter(const Target& target, Size size) : target_(target), size_(size) {
    if (!target.numbered) file_.emplace(target.path);
  }

  void write(const Frame& frame) override {
    const std::vector<uint8_t> png = encodePng(*target_.format, size_, frame.data());
    if (target_.numbered) file_.emplace(numberedName(++count_));
    file_->write(png.data(), png.size());
    if (target_.numbered) file_->commit();
  }
  void finish() override {
    if (!target_.numbered) file_->commit();
  }

 private:
  std::string numberedName(uint64_t number) const {
    const size_t percent = target_.path.find('%');
    const size_t end = target_.path.find('d', percent);
    const size_t width =
        strtoul(target_.path.substr(percent + 1, end).c_str(), nullptr, 10);
    std::string digits = std::to_string(number);
    if (digits.size() < width) digits.insert(0, width - digits.size(), '0');
    return target_.path.substr(0, percent) + digits + target_.path.substr(end + 1);
  }

  const Target target_;
  const Size size_;
  uint64_t count_ = 0;
  std::optional<OutputFile> file_;
};

// A line per frame on standard output: its number and the digest of its bytes.
class Md5Writer : public FrameWriter {
 public:
  Md5Writer(const Format& format, Size size) : serializer_(format, size) {}

  void write(const Frame& frame) override {
    md5_ctx context;
    md5_init(&context);
    serializer_.serialize(frame, [&context](const uint8_t* data, size_t count) {
      md5_update(&context, count, data);
    });
    uint8_t digest[MD5_DIGEST_SIZE];
    md5_digest(&context, sizeof digest, digest);
    std::string line = std::to_string(++count_) + " ";
    for (uint8_t byte : digest) {
      for (int nibble : {byte >> 4, byte & 15}) line += "0123456789abcdef"[nibble];
    }
    file_.write(line + "\n");
  }
  void finish() override { file_.commit(); }

 private:
  OutputFile file_{"-"};
  FrameSerializer serializer_;
  uint64_t count_ = 0;
};

std::string pnmHeader(const Target& target, Size size) {
  const char* magic = target.format->order == Order::kLumaOnly ? "P5\n" : "P6\n";
  return magic + std::to_string(size.width) + " " + std::to_string(size.height) +
         "\n255\n";
}

}  // namespace

std::unique_ptr<FrameWriter> openWriter(const Target& target, Size size,
                                        const std::optional<Y4mHeader>& header) {
  if (target.md5) return std::make_unique<Md5Writer>(*target.format, size);
  std::string start, each;
  switch (target.container) {
    case Container::kPng:
      return std::make_unique<PngWriter>(target, size);
    case Container::kY4m: {
      Y4mHeader own = header.value_or(newY4mHeader(size));
      own.size = size;
      start = formatY4mHeader(own) + "\n";
      each = "FRAME\n";
      break;
    }
    case Container::kPnm:
      each = pnmHeader(target, size);
      break;
    case Container::kRaw:
      break;
  }
  return std::make_unique<StreamWriter>(target, size, start, each);
}

}  // namespace zelm_tool
