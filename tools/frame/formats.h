// The formats that the program knows, under the names that other programs use.
#ifndef ZELM_TOOLS_FRAME_FORMATS_H
#define ZELM_TOOLS_FRAME_FORMATS_H

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zelm_tool {

struct Format {
  std::string_view name;
  std::array<std::string_view, 3> aliases;
  uint32_t code;  // a ZelmFormat
  std::string_view about;

  bool isRgb() const;
  // Whether luma has a plane of rows to itself.
  bool hasLumaPlane() const;
  // Whether rows lie one behind the other, so that they can be padded.
  bool hasRows() const;
};

// In whatever file or picture they lie, frames have one of these.
const std::vector<Format>& allFormats();
// By a name or an alias, in upper or lower case; nullptr if unknown.
const Format* findFormat(std::string_view name);
const Format& formatNamed(const std::string& name);  // fails if unknown
const Format& formatOf(uint32_t code);               // a ZelmFormat
std::string formatNames();                           // "yuv420p, yv12, ..."

std::string lowerCase(std::string_view text);
// What follows the last dot of a file name, in lower case; empty when there is none.
std::string suffixOf(std::string_view path);

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_FRAME_FORMATS_H
