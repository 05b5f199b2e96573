// Where a region lies in a plane. This is the only place that computes it.
#ifndef ZELM_SRC_PLANE_H_
#define ZELM_SRC_PLANE_H_

#include <cstddef>
#include <cstdint>

#include "simd/copy.h"
#include "zelm_imageutil.h"

namespace zelm {

// A rectangle of samples in memory. A sample is one luma byte, one chroma pair
// or one packed pixel; `stride` is the distance of two rows in bytes, which is negative
// where the rows are stored from the bottom up.
struct Region {
  uint8_t* origin;
  ptrdiff_t stride;
  size_t columns;
  size_t rows;

  uint8_t* row(size_t y) const { return origin + static_cast<ptrdiff_t>(y) * stride; }
  bool empty() const { return columns == 0 || rows == 0; }
};

// The region of the luma plane, or of a format with one plane, of `bytes` bytes per
// pixel.
inline Region packedRegion(const ImageStruct& image, size_t bytes) {
  const ptrdiff_t stride = static_cast<ptrdiff_t>(image.width * bytes);
  return {image.data + image.roiY * stride + image.roiX * static_cast<ptrdiff_t>(bytes),
          stride, image.roiWidth, image.roiHeight};
}

inline Region lumaRegion(const ImageStruct& image) { return packedRegion(image, 1); }

// The region of interleaved 4:2:0 chroma that starts `offset` bytes into the buffer.
// Its column is a position in bytes: it is even, so it names a whole pair.
inline Region chromaRegionAt(const ImageStruct& image, size_t offset) {
  const ptrdiff_t stride = image.width;
  return {image.data + offset + (image.roiY >> 1) * stride + image.roiX, stride,
          static_cast<size_t>(image.roiWidth >> 1),
          static_cast<size_t>(image.roiHeight >> 1)};
}

// The region of the chroma of a semi-planar 4:2:0 frame.
inline Region chromaRegion(const ImageStruct& image) {
  return chromaRegionAt(image, image.uvOffset);
}

// The same where chroma follows a luma plane of width x height, whatever uvOffset says.
inline Region chromaRegionBehindLuma(const ImageStruct& image) {
  return chromaRegionAt(image, static_cast<size_t>(image.width) * image.height);
}

// How many rows a kernel is given, and how many bytes each has.
struct RowSpan {
  size_t rows;
  size_t bytes;
};

// Joins rows that have no gaps between them on both sides into one long row.
inline RowSpan joinRows(const Region& to, const Region& from, size_t rows,
                        size_t bytes) {
  const ptrdiff_t packed = static_cast<ptrdiff_t>(bytes);
  if (to.stride == packed && from.stride == packed) return {1, rows * bytes};
  return {rows, bytes};
}

// With `stream` the caller finishes streaming.
inline void copyRows(const Region& to, const Region& from, size_t rows, size_t bytes,
                     bool stream = false) {
  const RowSpan span = joinRows(to, from, rows, bytes);
  for (size_t y = 0; y < span.rows; ++y) {
    copyBytes(to.row(y), from.row(y), span.bytes, stream);
  }
}

// The bytes of the luma plane. The multiplication cannot overflow in 64 bits.
inline uint64_t lumaBytes(const ImageStruct& image) {
  return static_cast<uint64_t>(image.width) * image.height;
}

// The bytes of tiled luma, whose edge tiles are stored whole.
inline uint64_t tiledLumaBytes(uint32_t width, uint32_t height) {
  return uint64_t{256} * ((width + 15) / 16) * ((height + 15) / 16);
}

}  // namespace zelm

#endif  // ZELM_SRC_PLANE_H_
