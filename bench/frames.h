// Frames for the benchmarks: memory that treats every contender alike, and content that
// looks like a picture.
#ifndef ZELM_BENCH_FRAMES_H
#define ZELM_BENCH_FRAMES_H

#include <memory>

#include "zelm_imageutil.h"

namespace bench {

// Memory in large pages where the system has them. Sources and destinations start at
// different places of a page, so that their addresses do not get in each other's way.
class Buffer {
 public:
  enum Role { kSource, kDestination, kBetween };
  Buffer(size_t size, Role role);

  uint8_t* data() const { return start_; }
  size_t size() const { return size_; }

 private:
  std::unique_ptr<uint8_t, void (*)(void*)> memory_;
  uint8_t* start_;
  size_t size_;
};

// A whole frame and its memory, which may be larger. Copies share the memory.
struct Frame {
  Frame(const ImageStruct& like, Buffer::Role role, size_t atLeast = 0);

  std::shared_ptr<Buffer> buffer;
  ImageStruct record;
};

// A record for a whole frame without memory.
ImageStruct shape(uint32_t format, int width, int height);

// Waves with a little noise in every plane or channel of the frame's format.
void paint(const Frame& frame);

// The chroma planes of a planar frame that is read or written.
struct PlanarChroma {
  uint8_t *first, *second;
  int stride;
};
PlanarChroma planarSource(const ImageStruct& frame);
PlanarChroma planarDestination(const ImageStruct& frame);

}  // namespace bench

#endif  // ZELM_BENCH_FRAMES_H
