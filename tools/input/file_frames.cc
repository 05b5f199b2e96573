// Counts and chooses frames.
#include "input/file_frames.h"

#include <algorithm>
#include <charconv>

#include "failure.h"

namespace zelm_tool {
namespace {

bool scanNumber(std::string_view text, uint64_t* number) {
  const char* end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, *number);
  return error == std::errc() && rest == end;
}

// N, FIRST:COUNT, or FIRST: for all from there on.
void parseFrames(const std::string& text, uint64_t* first, uint64_t* count) {
  const size_t colon = text.find(':');
  const std::string_view all = text;
  bool good;
  if (colon == std::string::npos) {
    good = scanNumber(all, count);
  } else {
    good = scanNumber(all.substr(0, colon), first);
    const std::string_view rest = all.substr(colon + 1);
    if (!rest.empty()) good = good && scanNumber(rest, count);
  }
  if (!good || *count == 0) {
    fail("--frames ", text, ": expected how many, a whole number from 1 on, or ",
         "FIRST:COUNT with FIRST from 0 on, for example 100:50");
  }
}

}  // namespace

FileFrames::FileFrames(std::unique_ptr<ByteSource> source, const InputOptions& options)
    : source_(std::move(source)),
      asked_(parseColour("--", options.colour)),
      colourWasAsked_(asked_.range.has_value() || asked_.matrix.has_value()),
      skip_(options.skip) {
  if (options.frames.empty()) return;
  uint64_t first = 0;
  parseFrames(options.frames, &first, &limit_);
  if (options.frames.find(':') == std::string::npos) return;
  if (skip_ != 0) {
    fail("--skip ", skip_, " and --frames ", options.frames,
         " both say where to begin: omit --skip");
  }
  skip_ = first;
  firstNumber_ = first == UINT64_MAX ? first : first + 1;
}

void FileFrames::chooseColour(const ColourRequest& stated, Range usualRange,
                              Matrix usualMatrix) {
  if (kind_.format->isRgb()) {
    if (colourWasAsked_) {
      fail("--range and --matrix are for YUV frames; ", name(), " holds ",
           kind_.format->name);
    }
    return;
  }
  colour_ = chooseInputColour(asked_, stated, usualRange, usualMatrix);
  kind_.colour = colour_.colour;
}

std::optional<uint64_t> FileFrames::count() const {
  const std::optional<uint64_t> left = source_->left();
  const uint64_t bytes = bytesInFile();
  if (!left || bytes == 0) {
    if (limit_ == 1) return limit_;
    return std::nullopt;
  }
  // The padding of the last row may be missing.
  const uint64_t frames = (*left + (kind_.bytes() - kind_.leastBytes())) / bytes;
  return std::min(frames - std::min(frames, skip_), limit_);
}

void FileFrames::limitToOne() {
  if (limit_ != UINT64_MAX && limit_ > 1) failMoreThanOne(limit_);
  limit_ = 1;
}

const uint8_t* FileFrames::next(Buffer* buffer) {
  const uint64_t first = skip_;
  for (; skip_ > 0; --skip_, ++index_) {
    if (!skipFrame()) failEmpty(first);
  }
  if (limit_ == 0) return nullptr;
  const uint8_t* bytes = readFrame(buffer);
  if (bytes == nullptr) {
    if (!delivered_) failEmpty(first);
    return nullptr;
  }
  ++index_;
  delivered_ = true;
  --limit_;
  return bytes;
}

void FileFrames::failEmpty(uint64_t skip) const {
  if (index_ == 0) fail(name(), ": there is no frame in it");
  fail("passing over ", skip, " leaves nothing of ", name(), ", which has ", index_,
       index_ == 1 ? " frame" : " frames");
}

const uint8_t* FileFrames::takeFrame(Buffer* buffer, bool mayEnd) {
  const size_t whole = kind_.bytes();
  size_t got;
  const uint8_t* bytes = source_->take(whole, buffer, &got);
  if (got == whole || got >= kind_.leastBytes()) return bytes;
  if (got == 0 && mayEnd) return nullptr;
  fail(name(), ": frame ", number(), " is cut short: ", got, " of the ", whole,
       " bytes of ", kind_.size, ' ', kind_.format->name,
       mayEnd ? "; the file's size must be a multiple of that, are --size and --from "
                "right?"
              : "");
}

}  // namespace zelm_tool
