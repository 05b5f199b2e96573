// Frames in one buffer.
#include "frames/format.h"

namespace {

using namespace zelm;

constexpr size_t kLargestAlignment = 4096;

bool isAlignment(size_t alignment) {
  return (alignment & (alignment - 1)) == 0 && alignment <= kLargestAlignment;
}

bool isSize(uint32_t width, uint32_t height) {
  return width >= 1 && width <= kLargestSide && height >= 1 && height <= kLargestSide;
}

// Calls use(plane, offset, stride, bytes) for each plane; returns the bytes of all.
template <class Use>
uint64_t layOut(const Format& format, uint32_t width, uint32_t height,
                size_t rowAlignment, const Use& use) {
  const size_t mask = rowAlignment > 1 ? rowAlignment - 1 : 0;
  uint64_t offset = 0;
  for (int p = 0; p < format.planes; ++p) {
    const PlaneExtent extent = planeExtent(format, p, width, height);
    const size_t stride = (extent.rowBytes + mask) & ~mask;
    const uint64_t bytes = uint64_t{extent.rows} * stride;
    use(p, offset, stride, bytes);
    offset += bytes;
  }
  return offset;
}

}  // namespace

extern "C" size_t zelmFrameBytes(uint32_t format, uint32_t width, uint32_t height,
                                 size_t rowAlignment) {
  const Format* known = findFormat(format);
  if (known == nullptr || !isSize(width, height) || !isAlignment(rowAlignment))
    return 0;
  const auto ignore = [](int, uint64_t, size_t, uint64_t) {};
  const uint64_t bytes = layOut(*known, width, height, rowAlignment, ignore);
  return bytes <= static_cast<uint64_t>(PTRDIFF_MAX) ? static_cast<size_t>(bytes) : 0;
}

extern "C" int zelmFrameInit(ZelmFrame* frame, uint32_t format, uint32_t width,
                             uint32_t height, void* buffer, size_t size,
                             size_t rowAlignment) {
  if (frame == nullptr) return ZELM_NULL;
  *frame = {};
  if (buffer == nullptr) return ZELM_NULL;
  const Format* known = findFormat(format);
  if (known == nullptr) return ZELM_BAD_FORMAT;
  if (!isSize(width, height)) return ZELM_BAD_SIZE;
  const size_t needed = zelmFrameBytes(format, width, height, rowAlignment);
  if (needed == 0 || size < needed) return ZELM_BAD_PLANE;

  frame->format = format;
  frame->width = width;
  frame->height = height;
  frame->colour = ZELM_BT601_FULL;
  auto* bytes = static_cast<uint8_t*>(buffer);
  layOut(*known, width, height, rowAlignment,
         [&](int p, uint64_t offset, size_t stride, uint64_t planeBytes) {
           frame->planes[p] = {bytes + offset, static_cast<ptrdiff_t>(stride), 0,
                               static_cast<size_t>(planeBytes)};
         });
  return ZELM_OK;
}
