// Headers of Y4M streams.
#ifndef ZELM_TOOLS_Y4M_H
#define ZELM_TOOLS_Y4M_H

#include <string>
#include <vector>

#include "geometry.h"

namespace zelm_tool {

constexpr char kY4mMagic[] = "YUV4MPEG2 ";

// The header of a Y4M stream. What is not needed here passes through unread.
struct Y4mHeader {
  Size size;
  std::vector<std::string> tags;  // frame rate, aspect, interlacing, chroma, others
};

// Fails in words, naming `input`, when it is damaged or not 8-bit 4:2:0.
Y4mHeader parseY4mHeader(const std::string& input, const std::string& line);
// The header, without its newline, for frames of this size.
std::string formatY4mHeader(const Y4mHeader& header);
// The header for frames that did not come from a Y4M stream: 25 frames per second
// and the library's own colours, full range.
Y4mHeader newY4mHeader(Size size);
// Exchanges the two numbers of the pixel aspect, for a quarter turn.
void turnAspect(Y4mHeader* header);

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_Y4M_H
