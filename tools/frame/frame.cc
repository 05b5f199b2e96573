// Describes frames for the library.
#include "frame/frame.h"

#include <cstdlib>
#include <new>

#include "failure.h"

namespace zelm_tool {
namespace {

// Far above any frame there is, and so far below the end of all addresses that sums of
// sizes cannot overflow.
constexpr size_t kMostBytes = SIZE_MAX / 4 < UINT32_MAX ? SIZE_MAX / 4 : UINT32_MAX;

}  // namespace

std::vector<FrameKind::Rows> FrameKind::planes() const {
  const size_t packed = zelmFrameBytes(format->code, size.width, size.height, 1);
  static uint8_t start;
  ZelmFrame frame;
  zelmFrameInit(&frame, format->code, size.width, size.height, &start, packed, 1);
  std::vector<Rows> planes;
  for (const ZelmPlane& plane : frame.planes) {
    if (plane.data == nullptr) break;
    const size_t row = static_cast<size_t>(plane.stride);
    planes.push_back({plane.size / row, row, row});
  }
  if (stride != 0) {
    for (Rows& rows : planes) {
      const bool halved = planes.size() == 3 && &rows != planes.data();
      rows.stride = halved ? stride / 2 : stride;
    }
  }
  return planes;
}

void FrameKind::requireMakeable() const {
  const size_t packed = zelmFrameBytes(format->code, size.width, size.height, 1);
  if (packed == 0 || packed > kMostBytes || stride > kMostBytes / 2 / size.height) {
    fail("frames of ", size, ' ', format->name, " are too large: the most is ",
         kMostBytes, " bytes a frame");
  }
  if (stride == 0) return;
  if (!format->hasRows()) {
    fail("--stride: ", format->name, " frames have no rows to pad");
  }
  const std::vector<Rows> all = planes();
  if (all.size() == 3 && stride % 2 != 0) {
    fail("--stride ", stride, " must be even for ", format->name,
         ": chroma rows lie half as far apart");
  }
  for (const Rows& rows : all) {
    if (rows.stride >= rows.bytes) continue;
    fail("--stride ", stride, " is too small: a row of ", size, ' ', format->name,
         " has ", rows.bytes * stride / rows.stride, " bytes");
  }
}

size_t FrameKind::bytes() const {
  size_t bytes = 0;
  for (const Rows& rows : planes()) bytes += rows.stride * rows.count;
  return bytes;
}

size_t FrameKind::leastBytes() const {
  const Rows last = planes().back();
  return bytes() - (last.stride - last.bytes);
}

ZelmFrame FrameKind::at(const uint8_t* data) const {
  ZelmFrame frame = {format->code, size.width, size.height, colour, {}};
  ZelmPlane* plane = frame.planes;
  uint8_t* start = const_cast<uint8_t*>(data);
  for (const Rows& rows : planes()) {
    *plane++ = {start, static_cast<ptrdiff_t>(rows.stride), 0,
                rows.stride * (rows.count - 1) + rows.bytes};
    start += rows.stride * rows.count;
  }
  return frame;
}

Buffer::~Buffer() { free(data_); }

uint8_t* Buffer::reserve(size_t count) {
  if (count <= size_ && data_ != nullptr) return data_;
  void* grown = realloc(data_, count);
  if (grown == nullptr) throw std::bad_alloc();
  data_ = static_cast<uint8_t*>(grown);
  size_ = count;
  return data_;
}

}  // namespace zelm_tool
