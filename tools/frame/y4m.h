// Headers of Y4M streams.
#ifndef ZELM_TOOLS_FRAME_Y4M_H
#define ZELM_TOOLS_FRAME_Y4M_H

#include <string>
#include <vector>

#include "frame/colour.h"
#include "frame/frame.h"

namespace zelm_tool {

constexpr char kY4mMagic[] = "YUV4MPEG2 ";
constexpr char kY4mFrame[] = "FRAME";

// The header of a Y4M stream. What is not needed here passes through unread.
class Y4mHeader {
 public:
  // Of frames that did not come from a Y4M stream: 25 frames per second, square pixels.
  Y4mHeader();
  // Fails in words, naming `input`, when the line is damaged or describes other frames
  // than 4:2:0, 4:2:2 or luma alone of 8 bits.
  Y4mHeader(const std::string& input, const std::string& line);

  Size size() const { return size_; }
  const Format& format() const { return *format_; }
  ColourRequest colour() const;  // what it says of it
  Ratio rate() const;            // frames per second; 0:0 if it says none
  Ratio aspect() const;          // of a sample; 0:0 if it says none

  void setRate(Ratio rate);
  void setAspect(Ratio aspect);
  // Describes these frames from now on.
  void setFrames(const FrameKind& kind);

  // The header, without its newline.
  std::string line() const;
  bool operator==(const Y4mHeader& other) const;

 private:
  // What follows `name` in the tag that begins with it; nullptr if there is none.
  const std::string* find(const std::string& name) const;
  Ratio ratio(const std::string& name) const;
  void set(const std::string& name, const std::string& value);
  void remove(const std::string& name);

  Size size_;
  const Format* format_;
  std::vector<std::string> tags_;  // rate, aspect, interlacing, chroma, others
};

// Whether a Y4M stream can hold such frames.
bool fitsY4m(const Format& format);

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_FRAME_Y4M_H
