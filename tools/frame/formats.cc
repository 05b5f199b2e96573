// The table of formats.
#include "frame/formats.h"

#include <zelm_frames.h>

#include <algorithm>
#include <cctype>

#include "failure.h"

namespace zelm_tool {

const std::vector<Format>& allFormats() {
  static const std::vector<Format> formats = {
      {"yuv420p", {"i420", "iyuv", "yuv"}, ZELM_I420, "planar 4:2:0, planes Y, U, V"},
      {"yv12", {}, ZELM_YV12, "planar 4:2:0, planes Y, V, U"},
      {"nv12", {}, ZELM_NV12, "semi-planar 4:2:0, pairs U V"},
      {"nv21", {}, ZELM_NV21, "semi-planar 4:2:0, pairs V U"},
      {"yuv422p", {"i422"}, ZELM_I422, "planar 4:2:2, planes Y, U, V"},
      {"nv16", {}, ZELM_NV16, "semi-planar 4:2:2, pairs U V"},
      {"nv61", {}, ZELM_NV61, "semi-planar 4:2:2, pairs V U"},
      {"yuyv422", {"yuyv", "yuy2"}, ZELM_YUYV, "packed 4:2:2, bytes Y U Y V"},
      {"uyvy422", {"uyvy"}, ZELM_UYVY, "packed 4:2:2, bytes U Y V Y"},
      {"gray", {"grey", "gray8", "y8"}, ZELM_GRAY8, "luma alone"},
      {"rgb24", {"rgb888", "rgb"}, ZELM_RGB24, "bytes R G B"},
      {"bgr24", {"bgr888", "bgr"}, ZELM_BGR24, "bytes B G R"},
      {"rgba", {"rgba8888"}, ZELM_RGBA, "bytes R G B A; A is 255 where none is read"},
      {"bgra", {"bgra8888"}, ZELM_BGRA, "bytes B G R A; A is 255 where none is read"},
      {"rgb565", {"rgb565le"}, ZELM_RGB565, "little-endian words, red in bits 15-11"},
      {"bgr565", {"bgr565le"}, ZELM_BGR565, "little-endian words, red in bits 4-0"},
      {"tiled", {"nv12-tiled16"}, ZELM_TILED, "4:2:0 in 16x16 tiles, pairs U V"},
  };
  return formats;
}

bool Format::isRgb() const { return code >= ZELM_RGB24 && code <= ZELM_BGR565; }

bool Format::hasLumaPlane() const { return code <= ZELM_NV61 || code == ZELM_GRAY8; }

bool Format::hasRows() const { return code != ZELM_TILED; }

const Format* findFormat(std::string_view name) {
  const std::string wanted = lowerCase(name);
  if (wanted.empty()) return nullptr;
  for (const Format& format : allFormats()) {
    if (format.name == wanted) return &format;
    for (std::string_view alias : format.aliases) {
      if (alias == wanted) return &format;
    }
  }
  return nullptr;
}

std::string formatNames() {
  std::string names;
  for (const Format& format : allFormats()) {
    if (!names.empty()) names += ", ";
    names += format.name;
  }
  return names;
}

const Format& formatNamed(const std::string& name) {
  const Format* format = findFormat(name);
  if (format == nullptr) {
    fail("unknown format '", name, "'; known are ", formatNames());
  }
  return *format;
}

const Format& formatOf(uint32_t code) {
  for (const Format& format : allFormats()) {
    if (format.code == code) return format;
  }
  fail("no format has the number ", code);
}

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(tolower(c)); });
  return lower;
}

std::string suffixOf(std::string_view path) {
  const size_t dot = path.rfind('.');
  const size_t slash = path.rfind('/');
  if (dot == path.npos || (slash != path.npos && slash > dot)) return "";
  return lowerCase(path.substr(dot + 1));
}

}  // namespace zelm_tool
