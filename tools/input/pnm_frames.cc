// Reads portable pixmaps and graymaps.
#include <cctype>

#include "failure.h"
#include "input/file_kinds.h"
#include "input/picture_frames.h"

namespace zelm_tool {
namespace {

bool isSpace(char c) { return isspace(static_cast<unsigned char>(c)) != 0; }
bool isDigit(char c) { return isdigit(static_cast<unsigned char>(c)) != 0; }

class PnmFrames : public PictureFrames {
 public:
  PnmFrames(std::unique_ptr<ByteSource> source, const InputOptions& options);
  const uint8_t* readFrame(Buffer* buffer) override;

 private:
  void readHeader();
  uint32_t readNumber();

  bool headerRead_ = false;
};

PnmFrames::PnmFrames(std::unique_ptr<ByteSource> bytes, const InputOptions& options)
    : PictureFrames(std::move(bytes), options,
                    suffixOf(options.path) == "pgm" ? "PGM" : "PPM") {
  readHeader();
}

// A number with blanks and comments before it.
uint32_t PnmFrames::readNumber() {
  uint32_t value = 0;
  int digits = 0;
  bool comment = false;
  for (;;) {
    const std::string_view next = source().peek(1);
    if (next.empty())
      fail(name(), ": the header of picture ", number(), " is cut short");
    const char c = next[0];
    if (comment) {
      comment = c != '\n';
    } else if (isDigit(c)) {
      value = value * 10 + static_cast<uint32_t>(c - '0');
      if (++digits > 8) break;
    } else if (digits > 0) {
      return value;
    } else if (c == '#') {
      comment = true;
    } else if (!isSpace(c)) {
      break;
    }
    source().skip(1);
  }
  fail(name(), ": the header of picture ", number(), " is damaged");
}

void PnmFrames::readHeader() {
  const std::string_view start = source().peek(kPictureBytes);
  if (!beginsLikePnm(start)) {
    fail(name(), ": picture ", number(), " does not begin like a PPM or PGM");
  }
  const uint32_t format = start[1] == '5' ? ZELM_GRAY8 : ZELM_RGB24;
  source().skip(2);
  const uint32_t width = readNumber(), height = readNumber(), most = readNumber();
  if (most != 255) {
    fail(name(), ": its samples go up to ", most, ", only 255 can be read; ",
         "ffmpeg -pix_fmt rgb24 makes that");
  }
  source().skip(1);
  setPicture(formatOf(format), {width, height});
  headerRead_ = true;
}

const uint8_t* PnmFrames::readFrame(Buffer* buffer) {
  if (!headerRead_) {
    if (source().peek(1).empty()) return nullptr;
    readHeader();
  }
  headerRead_ = false;
  return takeFrame(buffer, false);
}

}  // namespace

bool beginsLikePnm(std::string_view start) {
  return start.size() >= 4 && start[0] == 'P' && (start[1] == '5' || start[1] == '6') &&
         isSpace(start[2]) && (isDigit(start[3]) || start[3] == '#');
}

std::unique_ptr<FrameSource> openPnm(std::unique_ptr<ByteSource> source,
                                     const InputOptions& options) {
  return std::make_unique<PnmFrames>(std::move(source), options);
}

}  // namespace zelm_tool
