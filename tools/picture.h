// PNG pictures.
#ifndef ZELM_TOOLS_PICTURE_H
#define ZELM_TOOLS_PICTURE_H

#include <cstdint>
#include <vector>

#include "formats.h"
#include "geometry.h"

namespace zelm_tool {

// Whether a PNG can hold frames of this format: rgb24, rgba and gray.
bool fitsPng(const Format& format);
// A whole PNG file. `pixels` are packed rows.
std::vector<uint8_t> encodePng(const Format& format, Size size, const uint8_t* pixels);

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_PICTURE_H
