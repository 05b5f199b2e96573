// Conversion of frames, by way of other formats where the library has no direct one.
#ifndef ZELM_TOOLS_CONVERTER_H
#define ZELM_TOOLS_CONVERTER_H

#include <deque>
#include <vector>

#include "frame.h"
#include "geometry.h"

namespace zelm_tool {

struct Geometry {
  Size in;      // source frame
  Region crop;  // source region
  Size canvas;  // destination frame
  Region at;    // destination region
};

Geometry unchangedGeometry(Size size);

// Values of the library's ResizeMethod.
struct Methods {
  int luma;
  int chroma;
};

// The formats that a frame passes through, both ends included, each step a call of
// the library. Where the library has no way from one end to the other, the frame
// goes through FORMAT_YUV420SPVU.
std::vector<uint32_t> conversionRoute(uint32_t from, uint32_t to, bool sameGeometry);

// Whether the library can read, and write, such frames at all.
bool canConvertFrom(uint32_t code);
bool canConvertTo(uint32_t code);

// Converts frames of one geometry with Zelm_Resize_and_Convert.
class Converter {
 public:
  Converter(uint32_t from, uint32_t to, const Geometry& geometry, Methods methods);

  // The converted frame, valid until the next call. Outside of the destination
  // region it is black.
  Frame& convert(Frame& source);

 private:
  struct Step {
    Region from;
    Region to;
    Frame frame;  // what the step writes
  };

  Methods methods_;
  std::deque<Step> steps_;
};

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_CONVERTER_H
