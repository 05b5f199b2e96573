// Sizes and regions in pixels, and their texts.
#ifndef ZELM_TOOLS_FRAME_GEOMETRY_H
#define ZELM_TOOLS_FRAME_GEOMETRY_H

#include <cstdint>
#include <ostream>
#include <string>

namespace zelm_tool {

struct Size {
  uint32_t width = 0;
  uint32_t height = 0;
};

struct Point {
  uint32_t x = 0;
  uint32_t y = 0;
};

struct Region {
  uint32_t x = 0;
  uint32_t y = 0;
  Size size;
};

inline bool operator==(Size a, Size b) {
  return a.width == b.width && a.height == b.height;
}
inline bool operator!=(Size a, Size b) { return !(a == b); }
inline bool operator==(const Region& a, const Region& b) {
  return a.x == b.x && a.y == b.y && a.size == b.size;
}
inline Region wholeRegion(Size size) { return {0, 0, size}; }
inline Size turned(Size size) { return {size.height, size.width}; }

std::ostream& operator<<(std::ostream& out, Size size);
std::ostream& operator<<(std::ostream& out, const Region& region);

// The texts of options; `option` is named in the message when they are wrong.
Size parseSize(const std::string& option, const std::string& text);      // WxH
Region parseRegion(const std::string& option, const std::string& text);  // X,Y,WxH
Point parsePoint(const std::string& option, const std::string& text);    // X,Y

// The size that `text` asks for, of a picture that is now as large as `size`: WxH, Wx,
// xH, N% or fit:WxH. Sides that follow from others keep the aspect and become even.
Size parseResize(const std::string& option, const std::string& text, Size size);
bool isFit(const std::string& resize);

// Fails unless a frame of this size can exist: 1 to 65535 on both sides.
void requireFrameSize(const std::string& what, Size size);
// Fails unless the region is not empty and inside a frame of this size.
void requireInside(const std::string& what, const Region& region, Size frame);

// A fraction of positive numbers; 0:0 is one that is not known.
struct Ratio {
  uint64_t over = 0;
  uint64_t under = 0;
};

// "30000:1001", "30000/1001", "25" or "29.97"; false if it is none of these, or zero.
bool parseRatio(const std::string& text, Ratio* ratio);
std::string formatRatio(Ratio ratio);  // "30000:1001"
// The ratio times a over b in lowest terms; what is too large to be exact is rounded.
Ratio scaled(Ratio ratio, uint64_t a, uint64_t b);

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_FRAME_GEOMETRY_H
