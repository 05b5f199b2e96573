// The table of formats and the layout of their frames in files.
#include "formats.h"

#include <zelm_imageutil.h>

#include "failure.h"

namespace zelm_tool {
namespace {

#define ZELM_CODE(name) name, #name

size_t roundUp16(size_t value) { return (value + 15) / 16 * 16; }

std::vector<Plane> planarPlanes(const Format& format, Size size, Layout layout) {
  const size_t w = size.width, h = size.height;
  size_t stride = w / 2, v = w * h, u = v + w * h / 4;
  if (layout == Layout::kDestination) {
    stride = roundUp16(roundUp16(w) / 2);
    v = h * roundUp16(w);
    u = v + h * stride / 2;
  }
  const size_t first = format.order == Order::kUThenV ? u : v;
  const size_t second = format.order == Order::kUThenV ? v : u;
  return {{0, w, h, w}, {first, w / 2, h / 2, stride}, {second, w / 2, h / 2, stride}};
}

}  // namespace

const std::vector<Format>& allFormats() {
  static const std::vector<Format> formats = {
      {"yuv420p",
       {"i420", "iyuv", "yuv"},
       ZELM_CODE(FORMAT_YUV420P),
       Order::kUThenV,
       true,
       true,
       "planar 4:2:0, Y U V"},
      {"yv12",
       {},
       ZELM_CODE(FORMAT_YUV420P),
       Order::kVThenU,
       true,
       true,
       "planar 4:2:0, Y V U"},
      {"nv12",
       {},
       ZELM_CODE(FORMAT_YUV420SP),
       Order::kAsLibrary,
       true,
       true,
       "semi-planar 4:2:0, pairs U V"},
      {"nv21",
       {},
       ZELM_CODE(FORMAT_YUV420SPVU),
       Order::kAsLibrary,
       true,
       true,
       "semi-planar 4:2:0, pairs V U"},
      {"nv16",
       {},
       ZELM_CODE(FORMAT_YUV422SP),
       Order::kAsLibrary,
       false,
       true,
       "semi-planar 4:2:2, pairs U V"},
      {"nv61",
       {},
       ZELM_CODE(FORMAT_YUV422SPVU),
       Order::kAsLibrary,
       false,
       true,
       "semi-planar 4:2:2, pairs V U"},
      {"uyvy422",
       {"uyvy"},
       ZELM_CODE(FORMAT_YUV422IUYVY),
       Order::kAsLibrary,
       true,
       false,
       "packed 4:2:2, U Y V Y"},
      {"rgb565",
       {"rgb565le"},
       ZELM_CODE(FORMAT_RGB565),
       Order::kRedHigh,
       true,
       true,
       "16-bit words, red in bits 15-11"},
      {"bgr565",
       {"bgr565le"},
       ZELM_CODE(FORMAT_RGB565),
       Order::kRedLow,
       true,
       true,
       "16-bit words, red in bits 4-0"},
      {"rgb24",
       {"rgb888", "rgb"},
       ZELM_CODE(FORMAT_RGB888),
       Order::kAsLibrary,
       false,
       true,
       "bytes R G B"},
      {"rgba",
       {"rgba8888"},
       ZELM_CODE(FORMAT_RGBA8888),
       Order::kAsLibrary,
       false,
       true,
       "bytes R G B A, A is 255"},
      {"tiled",
       {"nv12-tiled16"},
       ZELM_CODE(FORMAT_YUV420SPMB),
       Order::kAsLibrary,
       true,
       true,
       "4:2:0 in 16x16 tiles, pairs U V"},
      {"gray",
       {"grey", "y8"},
       ZELM_CODE(FORMAT_YUV420SPVU),
       Order::kLumaOnly,
       false,
       true,
       "the luma plane alone"},
  };
  return formats;
}

const Format* findFormat(std::string_view name) {
  for (const Format& format : allFormats()) {
    if (format.name == name) return &format;
    for (std::string_view alias : format.aliases) {
      if (!alias.empty() && alias == name) return &format;
    }
  }
  return nullptr;
}

std::string formatNames(bool (*wanted)(const Format&)) {
  std::string names;
  for (const Format& format : allFormats()) {
    if (!wanted(format)) continue;
    if (!names.empty()) names += ", ";
    names += format.name;
  }
  return names;
}

const Format& formatNamed(const std::string& name) {
  const Format* format = findFormat(name);
  if (format == nullptr) {
    fail("unknown format '", name, "'; known are ",
         formatNames([](const Format&) { return true; }));
  }
  return *format;
}

std::string_view suffixOf(std::string_view path) {
  const size_t dot = path.rfind('.');
  const size_t slash = path.rfind('/');
  if (dot == path.npos || (slash != path.npos && slash > dot)) return "";
  return path.substr(dot + 1);
}

std::vector<Plane> filePlanes(const Format& format, Size size, Layout layout) {
  const size_t w = size.width, h = size.height;
  const ZelmFrameLayout memory = zelmFrameLayout(format.code, w, h);
  if (format.order == Order::kLumaOnly) return {{0, w, h, w}};
  switch (format.code) {
    case FORMAT_YUV420P:
      return planarPlanes(format, size, layout);
    case FORMAT_YUV420SPMB:
      return {{0, memory.size, 1, memory.size}};
    case FORMAT_YUV420SP:
    case FORMAT_YUV420SPVU:
    case FORMAT_YUV422SP:
    case FORMAT_YUV422SPVU:
      return {{0, w, h, w}, {w * h, w, memory.size / w - h, w}};
    default:
      return {{0, memory.size / h, h, memory.size / h}};
  }
}

uint64_t fileBytes(const Format& format, Size size) {
  uint64_t bytes = 0;
  for (const Plane& plane : filePlanes(format, size, Layout::kSource)) {
    bytes += uint64_t{plane.rowBytes} * plane.rows;
  }
  return bytes;
}

void requireMakeable(const Format& format, Size size) {
  const size_t bytes = zelmFrameLayout(format.code, size.width, size.height).size;
  if (bytes != 0 && bytes <= UINT32_MAX) return;
  fail("frames of ", size, ' ', format.name, " are too large: the most is ", UINT32_MAX,
       " bytes a frame");
}

void swapRedAndBlue(const uint8_t* from, uint8_t* to, size_t bytes) {
  for (size_t i = 0; i + 1 < bytes; i += 2) {
    const unsigned word = from[i] | from[i + 1] << 8;
    const unsigned swapped = word >> 11 | (word & 0x07E0) | (word & 0x1F) << 11;
    to[i] = static_cast<uint8_t>(swapped);
    to[i + 1] = static_cast<uint8_t>(swapped >> 8);
  }
}

bool swappedInFile(const Format& format, Layout layout) {
  return layout == Layout::kSource ? format.order == Order::kRedLow
                                   : format.order == Order::kRedHigh;
}

}  // namespace zelm_tool
