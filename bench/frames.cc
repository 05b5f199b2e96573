// Memory, content and layouts of the frames that are measured.
#include "frames.h"

#include <stdlib.h>
#include <sys/mman.h>

#include <algorithm>
#include <cmath>
#include <new>
#include <vector>

#include "reference.h"

namespace bench {
namespace {

constexpr size_t kLargePage = size_t{1} << 21;

size_t up(size_t n, size_t unit) { return (n + unit - 1) / unit * unit; }

class Painter {
 public:
  Painter(int width, int height) {
    for (int c = 0; c < 3; ++c) {
      const double shift = 2.1 * c;
      for (int x = 0; x < width; ++x) across_[c].push_back(std::sin(x / 23.0 + shift));
      for (int y = 0; y < height; ++y) down_[c].push_back(std::cos(y / 19.0 - shift));
    }
  }

  uint8_t at(int x, int y, int channel) {
    noise_ = noise_ * 1664525u + 1013904223u;
    return static_cast<uint8_t>(126 + 50 * across_[channel][static_cast<size_t>(x)] +
                                40 * down_[channel][static_cast<size_t>(y)] +
                                (noise_ >> 29));
  }

 private:
  std::vector<double> across_[3], down_[3];
  uint32_t noise_ = 1;
};

}  // namespace

Buffer::Buffer(size_t size, Role role)
    : memory_(nullptr, free), start_(nullptr), size_(size) {
  const size_t offsets[] = {0, 2112, 1088};  // of a source, a destination, in between
  const size_t all = up(size + 4096, kLargePage);
  memory_.reset(static_cast<uint8_t*>(aligned_alloc(kLargePage, all)));
  if (memory_ == nullptr) throw std::bad_alloc();
  madvise(memory_.get(), all, MADV_HUGEPAGE);
  memset(memory_.get(), 0x5A, all);
  start_ = memory_.get() + offsets[role];
}

Frame::Frame(const ImageStruct& like, Buffer::Role role, size_t atLeast)
    : buffer(std::make_shared<Buffer>(std::max<size_t>(like.dataSize, atLeast), role)),
      record(like) {
  record.data = buffer->data();
}

ImageStruct shape(uint32_t format, int width, int height) {
  return zelmWholeFrame(format, static_cast<uint32_t>(width),
                        static_cast<uint32_t>(height), nullptr);
}

void paint(const Frame& frame) {
  const int w = frame.record.width, h = frame.record.height;
  uint8_t* out = frame.record.data;
  Painter painter(w, h);
  const auto plane = [&](int columns, int rows, int channel) {
    for (int y = 0; y < rows; ++y) {
      for (int x = 0; x < columns; ++x) *out++ = painter.at(x, y, channel);
    }
  };
  // Samples of several channels that follow each other in memory.
  const auto interleaved = [&](int groups, int rows, std::initializer_list<int> order) {
    for (int y = 0; y < rows; ++y) {
      for (int x = 0; x < groups; ++x) {
        for (int channel : order) *out++ = painter.at(x, y, channel);
      }
    }
  };
  switch (frame.record.format) {
    case FORMAT_YUV420P:
      plane(w, h, 0);
      plane(w / 2, h / 2, 1);
      plane(w / 2, h / 2, 2);
      break;
    case FORMAT_YUV422IUYVY:
      interleaved(w / 2, h, {1, 0, 2, 0});
      break;
    case FORMAT_RGB888:
      interleaved(w, h, {0, 1, 2});
      break;
    case FORMAT_RGB565:
      for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
          const int word = painter.at(x, y, 0) >> 3 << 11 |
                           painter.at(x, y, 1) >> 2 << 5 | painter.at(x, y, 2) >> 3;
          *out++ = static_cast<uint8_t>(word);
          *out++ = static_cast<uint8_t>(word >> 8);
        }
      }
      break;
    case FORMAT_YUV420SPMB: {
      Frame linear(shape(FORMAT_YUV420SPVU, w, h), Buffer::kBetween);
      paint(linear);
      ImageStruct tiled = frame.record;
      reference::convYUV420SPVU_YUV420SPMB(&tiled, &linear.record);
      break;
    }
    default:
      plane(w, h, 0);
      interleaved(w / 2, h / 2, {1, 2});
  }
}

PlanarChroma planarSource(const ImageStruct& frame) {
  uint8_t* first = frame.data + frame.uvOffset;
  return {first, first + frame.width * frame.height / 4, frame.width / 2};
}

PlanarChroma planarDestination(const ImageStruct& frame) {
  const size_t lumaStride = up(frame.width, 16), stride = up(lumaStride / 2, 16);
  uint8_t* first = frame.data + frame.height * lumaStride;
  return {first, first + frame.height * stride / 2, static_cast<int>(stride)};
}

}  // namespace bench
