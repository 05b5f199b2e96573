// Parses and prints the headers of Y4M streams.
#include "y4m.h"

#include <sstream>

#include "failure.h"

namespace zelm_tool {
namespace {

uint32_t parseSide(const std::string& input, const std::string& tag) {
  const std::string digits = tag.substr(1);
  if (digits.empty() || digits.size() > 9 ||
      digits.find_first_not_of("0123456789") != std::string::npos) {
    fail(input, ": the Y4M header's ", tag, " is no width or height");
  }
  return static_cast<uint32_t>(std::stoul(digits));
}

void requireChroma420(const std::string& input, const std::string& tag) {
  if (tag != "C420" && tag != "C420jpeg" && tag != "C420mpeg2" && tag != "C420paldv") {
    fail(input, ": Y4M with chroma ", tag,
         " cannot be read, only 4:2:0 of 8 bits (C420, C420jpeg, C420mpeg2, "
         "C420paldv); ffmpeg -pix_fmt yuv420p makes it");
  }
}

}  // namespace

Y4mHeader parseY4mHeader(const std::string& input, const std::string& line) {
  Y4mHeader header;
  std::istringstream words(line.substr(sizeof kY4mMagic - 1));
  for (std::string tag; words >> tag;) {
    if (tag[0] == 'W') {
      header.size.width = parseSide(input, tag);
    } else if (tag[0] == 'H') {
      header.size.height = parseSide(input, tag);
    } else {
      if (tag[0] == 'C') requireChroma420(input, tag);
      header.tags.push_back(tag);
    }
  }
  requireFrameSize(input + ": Y4M frames of", header.size);
  return header;
}

std::string formatY4mHeader(const Y4mHeader& header) {
  std::ostringstream line;
  line << kY4mMagic << 'W' << header.size.width << " H" << header.size.height;
  for (const std::string& tag : header.tags) line << ' ' << tag;
  return line.str();
}

Y4mHeader newY4mHeader(Size size) {
  return {size, {"F25:1", "Ip", "A1:1", "C420jpeg", "XCOLORRANGE=FULL"}};
}

void turnAspect(Y4mHeader* header) {
  for (std::string& tag : header->tags) {
    const size_t colon = tag.find(':');
    if (tag[0] == 'A' && colon != std::string::npos) {
      tag = "A" + tag.substr(colon + 1) + ":" + tag.substr(1, colon - 1);
    }
  }
}

}  // namespace zelm_tool
