// Writes raw frames, Y4M streams, pictures and digests.
#include "output/frame_writer.h"

#include <nettle/md5.h>

#include "output/output_file.h"
#include "output/png_picture.h"

namespace zelm_tool {
namespace {

// One file with all frames: raw, Y4M or PPM/PGM, which differ in what stands once
// at the start and before every frame.
class StreamWriter : public FrameWriter {
 public:
  StreamWriter(const Target& target, int input, const std::string& start,
               std::string before)
      : FrameWriter(std::move(before)), file_(target.path, input) {
    file_.write(start.data(), start.size());
  }

  void write(Piece piece, uint64_t) override { file_.write(piece.data, piece.size); }
  void finish() override { file_.commit(); }

 private:
  OutputFile file_;
};

// A file for every frame.
class NumberedWriter : public FrameWriter {
 public:
  NumberedWriter(Target target, int input, std::string before)
      : FrameWriter(std::move(before)), target_(std::move(target)), input_(input) {}

  void write(Piece piece, uint64_t number) override {
    OutputFile file(numberedName(target_, number), input_);
    file.write(piece.data, piece.size);
    file.commit();
  }
  void finish() override {}

 private:
  const Target target_;
  const int input_;
};

// Encodes before another writer writes.
template <class Writer>
class PngWriter : public Writer {
 public:
  template <class... Args>
  explicit PngWriter(const FrameKind& kind, const Args&... args)
      : Writer(args...), kind_(kind) {}

  Piece encode(Piece frame, uint64_t, std::vector<uint8_t>* own) const override {
    *own = encodePng(*kind_.format, kind_.size, frame.data);
    return {own->data(), own->size()};
  }

 private:
  const FrameKind kind_;
};

// A line per frame on standard output: its number and the digest of its bytes.
class Md5Writer : public FrameWriter {
 public:
  Piece encode(Piece frame, uint64_t number, std::vector<uint8_t>* own) const override {
    md5_ctx context;
    md5_init(&context);
    md5_update(&context, frame.size, frame.data);
    uint8_t digest[MD5_DIGEST_SIZE];
    md5_digest(&context, sizeof digest, digest);
    std::string line = std::to_string(number) + " ";
    for (uint8_t byte : digest) {
      for (int nibble : {byte >> 4, byte & 15}) line += "0123456789abcdef"[nibble];
    }
    line += '\n';
    own->assign(line.begin(), line.end());
    return {own->data(), own->size()};
  }
  void write(Piece line, uint64_t) override { file_.write(line.data, line.size); }
  void finish() override { file_.commit(); }

 private:
  OutputFile file_{"-", -1};
};

std::string pnmHeader(const FrameKind& kind) {
  const char* magic = kind.format->code == ZELM_GRAY8 ? "P5\n" : "P6\n";
  return magic + std::to_string(kind.size.width) + " " +
         std::to_string(kind.size.height) + "\n255\n";
}

}  // namespace

Piece FrameWriter::encode(Piece frame, uint64_t, std::vector<uint8_t>*) const {
  return {frame.data - before_.size(), frame.size + before_.size()};
}

std::unique_ptr<FrameWriter> openWriter(const Target& target, const FrameKind& kind,
                                        const Y4mHeader& header, int input) {
  if (target.md5) return std::make_unique<Md5Writer>();
  std::string start, before;
  switch (target.container) {
    case Container::kPng:
      if (target.numbered) {
        return std::make_unique<PngWriter<NumberedWriter>>(kind, target, input, before);
      }
      return std::make_unique<PngWriter<StreamWriter>>(kind, target, input, start,
                                                       before);
    case Container::kPnm:
      before = pnmHeader(kind);
      if (target.numbered) {
        return std::make_unique<NumberedWriter>(target, input, before);
      }
      break;
    case Container::kY4m:
      start = header.line() + '\n';
      before = std::string(kY4mFrame) + '\n';
      break;
    case Container::kRaw:
      break;
  }
  return std::make_unique<StreamWriter>(target, input, start, before);
}

}  // namespace zelm_tool
