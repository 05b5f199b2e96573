// PNG pictures that are written.
#ifndef ZELM_TOOLS_OUTPUT_PNG_PICTURE_H
#define ZELM_TOOLS_OUTPUT_PNG_PICTURE_H

#include <cstdint>
#include <vector>

#include "frame/formats.h"
#include "frame/geometry.h"

namespace zelm_tool {

// Whether a PNG can hold frames of this format.
bool fitsPng(const Format& format);
// The file that holds these pixels, with packed rows.
std::vector<uint8_t> encodePng(const Format& format, Size size, const uint8_t* pixels);

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_OUTPUT_PNG_PICTURE_H
