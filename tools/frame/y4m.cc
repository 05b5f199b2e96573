// Parses and prints the headers of Y4M streams.
#include "frame/y4m.h"

#include <algorithm>
#include <sstream>

#include "failure.h"

namespace zelm_tool {
namespace {

constexpr char kRange[] = "XCOLORRANGE=";
constexpr char kMatrix[] = "XCOLORMATRIX=";
constexpr char kSubsampling[] = "XYSCSS=";  // says the chroma tag's meaning again

struct Chroma {
  const char* tag;
  uint32_t format;
};

// The first of a format is the one that is written.
constexpr Chroma kChroma[] = {{"420jpeg", ZELM_I420},  {"420", ZELM_I420},
                              {"420mpeg2", ZELM_I420}, {"420paldv", ZELM_I420},
                              {"422", ZELM_I422},      {"mono", ZELM_GRAY8}};

uint32_t parseSide(const std::string& input, const std::string& tag) {
  const std::string digits = tag.substr(1);
  if (digits.empty() || digits.size() > 9 ||
      digits.find_first_not_of("0123456789") != std::string::npos) {
    fail(input, ": the Y4M header's ", tag, " is no width or height");
  }
  return static_cast<uint32_t>(std::stoul(digits));
}

const Format& parseChroma(const std::string& input, const std::string& tag) {
  for (const Chroma& chroma : kChroma) {
    if (tag == chroma.tag) return formatOf(chroma.format);
  }
  fail(input, ": Y4M with chroma C", tag,
       " cannot be read, only 4:2:0, 4:2:2 and luma alone of 8 bits (C420, C420jpeg, "
       "C420mpeg2, C420paldv, C422, Cmono); ffmpeg -pix_fmt yuv420p makes it");
}

bool beginsWith(const std::string& text, const std::string& start) {
  return text.compare(0, start.size(), start) == 0;
}

}  // namespace

bool fitsY4m(const Format& format) {
  return std::any_of(std::begin(kChroma), std::end(kChroma),
                     [&](const Chroma& c) { return c.format == format.code; });
}

Y4mHeader::Y4mHeader()
    : format_(&formatOf(ZELM_I420)), tags_{"F25:1", "Ip", "A1:1", "C420jpeg"} {}

Y4mHeader::Y4mHeader(const std::string& input, const std::string& line)
    : format_(&formatOf(ZELM_I420)) {
  std::istringstream words(line.substr(std::min(line.size(), sizeof kY4mMagic - 1)));
  for (std::string tag; words >> tag;) {
    if (tag[0] == 'W') {
      size_.width = parseSide(input, tag);
    } else if (tag[0] == 'H') {
      size_.height = parseSide(input, tag);
    } else {
      if (tag[0] == 'C') {
        format_ = &parseChroma(input, tag.substr(1));
        remove("C");  // of several the last one holds
      }
      tags_.push_back(tag);
    }
  }
  requireFrameSize(input + ": Y4M frames of", size_);
}

ColourRequest Y4mHeader::colour() const {
  ColourRequest stated;
  if (const std::string* tag = find(kRange)) {
    const std::string range = lowerCase(tag->substr(sizeof kRange - 1));
    if (range == "full") stated.range = Range::kFull;
    if (range == "limited") stated.range = Range::kLimited;
  }
  if (const std::string* tag = find(kMatrix)) {
    const std::string matrix = lowerCase(tag->substr(sizeof kMatrix - 1));
    for (Matrix m : {Matrix::kBt601, Matrix::kBt709, Matrix::kBt2020}) {
      if (matrix == lowerCase(nameOf(m))) stated.matrix = m;
    }
  }
  return stated;
}

Ratio Y4mHeader::rate() const { return ratio("F"); }
Ratio Y4mHeader::aspect() const { return ratio("A"); }
void Y4mHeader::setRate(Ratio rate) { set("F", formatRatio(rate)); }
void Y4mHeader::setAspect(Ratio aspect) { set("A", formatRatio(aspect)); }

void Y4mHeader::setFrames(const FrameKind& kind) {
  size_ = kind.size;
  if (format_ != kind.format) {
    format_ = kind.format;
    for (const Chroma& chroma : kChroma) {
      if (chroma.format != format_->code) continue;
      set("C", chroma.tag);
      break;
    }
    remove(kSubsampling);
  }
  const Range range = rangeOf(kind.colour);
  const Matrix matrix = matrixOf(kind.colour);
  set(kRange, range == Range::kFull ? "FULL" : "LIMITED");
  remove(kMatrix);
  if (format_->code != ZELM_GRAY8 && matrix != usualMatrix(size_))
    set(kMatrix, nameOf(matrix));
}

std::string Y4mHeader::line() const {
  std::ostringstream line;
  line << kY4mMagic << 'W' << size_.width << " H" << size_.height;
  for (const std::string& tag : tags_) line << ' ' << tag;
  return line.str();
}

bool Y4mHeader::operator==(const Y4mHeader& other) const {
  return size_ == other.size_ && format_ == other.format_ && tags_ == other.tags_;
}

const std::string* Y4mHeader::find(const std::string& name) const {
  for (const std::string& tag : tags_) {
    if (beginsWith(tag, name)) return &tag;
  }
  return nullptr;
}

Ratio Y4mHeader::ratio(const std::string& name) const {
  Ratio ratio;
  const std::string* tag = find(name);
  if (tag == nullptr || !parseRatio(tag->substr(name.size()), &ratio)) return {};
  return ratio;
}

void Y4mHeader::set(const std::string& name, const std::string& value) {
  for (std::string& tag : tags_) {
    if (!beginsWith(tag, name)) continue;
    tag = name + value;
    return;
  }
  tags_.push_back(name + value);
}

void Y4mHeader::remove(const std::string& name) {
  tags_.erase(std::remove_if(tags_.begin(), tags_.end(),
                             [&](const std::string& t) { return beginsWith(t, name); }),
              tags_.end());
}

}  // namespace zelm_tool
