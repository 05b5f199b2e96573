// The formats that the program knows, under the names that other programs use.
#ifndef ZELM_TOOLS_FORMATS_H
#define ZELM_TOOLS_FORMATS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "geometry.h"

namespace zelm_tool {

// How a frame's bytes in a file differ from the library's layout in memory.
enum class Order {
  kAsLibrary,
  kUThenV,    // planar, packed rows, U plane first
  kVThenU,    // planar, packed rows, V plane first
  kRedHigh,   // 16-bit words with red in bits 15-11
  kRedLow,    // 16-bit words with red in bits 4-0
  kLumaOnly,  // the luma plane alone
};

struct Format {
  std::string_view name;
  std::array<std::string_view, 3> aliases;
  uint32_t code;  // the library's ImageFormat
  std::string_view codeName;
  Order order;
  bool readable;  // the library converts from it
  bool writable;  // the library converts to it
  std::string_view about;
};

const std::vector<Format>& allFormats();
const Format* findFormat(std::string_view name);         // nullptr if unknown
const Format& formatNamed(const std::string& name);      // fails if unknown
std::string formatNames(bool (*wanted)(const Format&));  // "nv12, nv21, ..."

// What follows the last dot of a file name; empty when there is none.
std::string_view suffixOf(std::string_view path);

// The library lays out a planar frame differently when it reads and writes it.
enum class Layout { kSource, kDestination };

// Rows of a frame in memory that lie one after the other in its file.
struct Plane {
  size_t offset;
  size_t rowBytes;
  size_t rows;
  size_t stride;
};

// The planes of a frame, in the order of the file.
std::vector<Plane> filePlanes(const Format& format, Size size, Layout layout);
// Bytes of a frame in a file.
uint64_t fileBytes(const Format& format, Size size);
// Fails when the library's record cannot tell how many bytes such a frame has.
void requireMakeable(const Format& format, Size size);

// Exchanges red and blue of 16-bit words; the two orders are each other's mirror.
void swapRedAndBlue(const uint8_t* from, uint8_t* to, size_t bytes);
// Whether swapRedAndBlue() lies between file and memory.
bool swappedInFile(const Format& format, Layout layout);

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_FORMATS_H
