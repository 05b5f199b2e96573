// Sizes and regions in pixels, and their texts.
#ifndef ZELM_TOOLS_GEOMETRY_H
#define ZELM_TOOLS_GEOMETRY_H

#include <cstdint>
#include <ostream>
#include <string>

namespace zelm_tool {

struct Size {
  uint32_t width = 0;
  uint32_t height = 0;
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
Region parsePoint(const std::string& option, const std::string& text);   // X,Y

// Fails unless a frame of this size can exist: even, 2 to 65534 on both sides.
void requireFrameSize(const std::string& what, Size size);
// Fails unless the region is even, not empty and inside a frame of this size.
void requireInside(const std::string& what, const Region& region, Size frame);

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_GEOMETRY_H
