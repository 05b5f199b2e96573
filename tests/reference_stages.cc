// The rules of the stages.
#include "reference.h"

#include <algorithm>

namespace reference {
namespace {

Plane luma(const ImageStruct& i) {
  const size_t offset = static_cast<size_t>(i.roiY) * i.width + i.roiX;
  return {i.data + offset, i.width, i.roiHeight, i.roiWidth, 1};
}

Plane chromaAt(const ImageStruct& i, size_t plane) {
  const size_t offset = plane + static_cast<size_t>(i.roiY / 2) * i.width + i.roiX;
  return {i.data + offset, i.width, i.roiHeight / 2, i.roiWidth / 2, 2};
}

Plane chroma(const ImageStruct& i) { return chromaAt(i, i.uvOffset); }

Plane packed(const ImageStruct& i, int channels) {
  const size_t offset = static_cast<size_t>(i.roiY) * i.width + i.roiX;
  return {i.data + offset * channels, static_cast<size_t>(i.width) * channels,
          i.roiHeight, i.roiWidth, channels};
}

// A buffer that holds nothing but the region.
Plane block(const ImageStruct& i, int channels) {
  return {i.data, static_cast<size_t>(i.roiWidth) * channels, i.roiHeight, i.roiWidth,
          channels};
}

int64_t clamp(int64_t v, int64_t low, int64_t high) {
  return v < low ? low : v > high ? high : v;
}

uint8_t byte(int64_t v) { return static_cast<uint8_t>(v); }

// ------------------------------------------------------------------------ colour

void toRgb(const ImageStruct& dst, const ImageStruct& src, int bytesPerPixel) {
  const Plane y = luma(src), uv = chroma(src), out = packed(dst, bytesPerPixel);
  const int u = src.format == FORMAT_YUV420SP ? 0 : 1, v = 1 - u;
  const int rows = uv.rows, pairs = uv.columns;
  for (int r = 0; r < 2 * rows; ++r) {
    for (int x = 0; x < 2 * pairs; ++x) {
      const int k = r / 2, j = x / 2;
      const bool innerRow = k >= 1 && k <= rows - 2, lower = r % 2 == 1;
      const bool innerPair = j >= 1 && j <= pairs - 2;
      const int right = x % 2 == 1 && innerPair ? j + 1 : j;
      const int uRow = lower && innerRow ? k + 1 : k;
      const int vRow = !lower && innerRow ? k - 1 : k;
      const int64_t us = 16 * (uv.at(k, j, u) + uv.at(k, right, u) + uv.at(uRow, j, u) +
                               uv.at(uRow, right, u)) -
                         8192;
      const int64_t vs = 16 * (uv.at(k, j, v) + uv.at(k, right, v) + uv.at(vRow, j, v) +
                               uv.at(vRow, right, v)) -
                         8192;
      const int64_t yf = y.at(r, x) * 1048576LL + 524288;
      const int64_t red = yf + 22970 * vs, blue = yf + 29032 * us;
      const int64_t green = yf - 5638 * us - 11700 * vs;
      if (bytesPerPixel == 2) {
        const int64_t word = clamp(red >> 23, 0, 31) | clamp(green >> 22, 0, 63) << 5 |
                             clamp(blue >> 23, 0, 31) << 11;
        out.at(r, x, 0) = byte(word & 255);
        out.at(r, x, 1) = byte(word >> 8);
      } else {
        out.at(r, x, 0) = byte(clamp(red >> 20, 0, 255));
        out.at(r, x, 1) = byte(clamp(green >> 20, 0, 255));
        out.at(r, x, 2) = byte(clamp(blue >> 20, 0, 255));
        if (bytesPerPixel == 4) out.at(r, x, 3) = 255;
      }
    }
  }
}

int scaledChroma(int64_t c) {
  const int64_t magnitude = ((c < 0 ? -c : c) + 2048) >> 14;
  return static_cast<int>(c >= 0 ? 128 + magnitude : 128 - magnitude);
}

// ------------------------------------------------------------------------ layout

void copyPlane(const Plane& out, const Plane& in, int exchange = 0) {
  for (int r = 0; r < in.rows; ++r) {
    for (int x = 0; x < in.columns; ++x) {
      for (int c = 0; c < in.channels; ++c) out.at(r, x, c) = in.at(r, x, c ^ exchange);
    }
  }
}

void expandTo422(const ImageStruct& dst, const ImageStruct& src, int exchange) {
  copyPlane(luma(dst), luma(src));
  const Plane in = chroma(src);
  Plane out = chroma(dst);
  out.origin =
      dst.data + dst.uvOffset + static_cast<size_t>(dst.roiY) * dst.width + dst.roiX;
  for (int r = 0; r < 2 * in.rows; ++r) {
    const int k = r / 2, next = r % 2 == 1 && k + 1 < in.rows ? k + 1 : k;
    for (int j = 0; j < in.columns; ++j) {
      for (int c = 0; c < 2; ++c) {
        out.at(r, j, c ^ exchange) = byte((in.at(k, j, c) + in.at(next, j, c)) >> 1);
      }
    }
  }
}

// Calls move(linear offset, tiled offset) for every byte of a W x H frame's planes,
// both counted from the start of their plane.
template <class Luma, class Chroma>
void forTiles(size_t w, size_t h, Luma moveLuma, Chroma moveChroma) {
  const size_t tilesPerRow = (w + 15) / 16;
  for (size_t y = 0; y < h; ++y) {
    for (size_t x = 0; x < w; ++x) {
      moveLuma(y * w + x, y / 16 * tilesPerRow * 256 + x / 16 * 256 +
                              128 * (x % 16 / 8) + 8 * (y % 16) + x % 8);
    }
  }
  for (size_t k = 0; k < h / 2; ++k) {
    for (size_t b = 0; b < w; ++b) {
      const size_t other = b % 2 == 0 ? b + 1 : b - 1;
      moveChroma(k * w + other, k / 8 * tilesPerRow * 128 + b / 16 * 128 +
                                    64 * (b % 16 / 8) + 8 * (k % 8) + b % 8);
    }
  }
}

// ----------------------------------------------------------------------- scaling

// How far apart two neighbours of the destination are in the source, in 2^-32 samples.
uint64_t stepOf(int source, int destination) {
  if (destination <= 1) return 0;
  const double ratio = static_cast<double>(source - 1) / (destination - 1);
  return static_cast<uint64_t>(0.5 + ratio * 4294967296.0);
}

struct Position {
  int index;   // the sample at or before the position
  int weight;  // of the next sample, in 1/256
};

Position positionOf(uint64_t step, int i) {
  const uint64_t accumulator = step * static_cast<uint64_t>(i);
  const uint64_t fraction = accumulator & 0xFFFFFFFFu;
  return {static_cast<int>(accumulator >> 32),
          static_cast<int>((fraction + (1u << 23)) >> 24)};
}

int limited(int i, int extent) { return std::max(0, std::min(i, extent - 1)); }

// Four weights for the samples index - 1 to index + 2.
struct Taps {
  int64_t weight[4];
};

Taps linearTaps(int f) { return {{0, 256 - f, f, 0}}; }

Taps cubicTaps(int f) {
  const int far = (f * f * (256 - f) + 32768) / 65536;
  const int near = (f * (256 - f) * (256 - f) + 32768) / 65536;
  return {{-near, 256 - f + near, f + far, -far}};
}

void scaleFiltered(const Plane& out, const Plane& in, Taps (*taps)(int)) {
  if (in.rows == 0 || in.columns == 0) return;
  const uint64_t stepY = stepOf(in.rows, out.rows);
  const uint64_t stepX = stepOf(in.columns, out.columns);
  for (int j = 0; j < out.rows; ++j) {
    const Position y = positionOf(stepY, j);
    const Taps wy = taps(y.weight);
    for (int i = 0; i < out.columns; ++i) {
      const Position x = positionOf(stepX, i);
      const Taps wx = taps(x.weight);
      for (int c = 0; c < in.channels; ++c) {
        int64_t sum = 0;
        for (int b = 0; b < 4; ++b) {
          const int column = limited(x.index - 1 + b, in.columns);
          int64_t vertical = 0;
          for (int a = 0; a < 4; ++a) {
            vertical +=
                wy.weight[a] * in.at(limited(y.index - 1 + a, in.rows), column, c);
          }
          sum += wx.weight[b] * vertical;
        }
        out.at(j, i, c) = byte(clamp((sum + 32768) >> 16, 0, 255));
      }
    }
  }
}

void boxAverage(const Plane& out, const Plane& in, int k) {
  for (int j = 0; j < out.rows; ++j) {
    for (int i = 0; i < out.columns; ++i) {
      for (int c = 0; c < out.channels; ++c) {
        int sum = 0;
        for (int a = 0; a < k; ++a) {
          for (int b = 0; b < k; ++b) sum += in.at(k * j + a, k * i + b, c);
        }
        out.at(j, i, c) = byte(sum / (k * k));
      }
    }
  }
}

template <class Sample>
void turn(const Plane& out, const Plane& in, bool quarter, Sample sample) {
  const int rows = quarter ? in.columns : in.rows;
  const int columns = quarter ? in.rows : in.columns;
  for (int y = 0; y < rows; ++y) {
    for (int x = 0; x < columns; ++x) out.at(y, x) = sample(in, x, y);
  }
}

}  // namespace

void scaleNearest(const Plane& out, const Plane& in) {
  if (in.rows == 0 || in.columns == 0) return;
  const uint64_t stepY = stepOf(in.rows, out.rows);
  const uint64_t stepX = stepOf(in.columns, out.columns);
  for (int j = 0; j < out.rows; ++j) {
    for (int i = 0; i < out.columns; ++i) {
      const int y = static_cast<int>((0x80000000u + j * stepY) >> 32);
      const int x = static_cast<int>((0x80000000u + i * stepX) >> 32);
      for (int c = 0; c < in.channels; ++c) {
        out.at(j, i, c) = in.at(limited(y, in.rows), limited(x, in.columns), c);
      }
    }
  }
}

void scaleLinear(const Plane& out, const Plane& in) {
  scaleFiltered(out, in, linearTaps);
}
void scaleCubic(const Plane& out, const Plane& in) {
  scaleFiltered(out, in, cubicTaps);
}

void convYUV420SP_RGBA8888(ImageStruct* dst, ImageStruct* src) { toRgb(*dst, *src, 4); }
void convYUV420SP_RGB888(ImageStruct* dst, ImageStruct* src) { toRgb(*dst, *src, 3); }
void convYUV420SP_RGB565(ImageStruct* dst, ImageStruct* src) { toRgb(*dst, *src, 2); }

void convYUV420SP_YUV420SP(ImageStruct* dst, ImageStruct* src) {
  copyPlane(luma(*dst), luma(*src));
  copyPlane(chroma(*dst), chroma(*src));
}
void convYUV420SP_VU2UV(ImageStruct* dst, ImageStruct* src) {
  copyPlane(luma(*dst), luma(*src));
  copyPlane(chroma(*dst), chroma(*src), 1);
}
void convYUV420SP_YUV422SP(ImageStruct* dst, ImageStruct* src) {
  expandTo422(*dst, *src, 0);
}
void convYUV420SP_YUV422SP_VU2UV(ImageStruct* dst, ImageStruct* src) {
  expandTo422(*dst, *src, 1);
}

void resize_nearest(ImageStruct* dst, ImageStruct* src) {
  scaleNearest(luma(*dst), luma(*src));
}
void resize_nearestVU(ImageStruct* dst, ImageStruct* src) {
  scaleNearest(chroma(*dst), chroma(*src));
}
void resize_linear(ImageStruct* dst, ImageStruct* src) {
  scaleLinear(luma(*dst), luma(*src));
}
void resize_linearVU(ImageStruct* dst, ImageStruct* src) {
  scaleLinear(chroma(*dst), chroma(*src));
}
void resize_linear3ch(ImageStruct* dst, ImageStruct* src) {
  scaleLinear(block(*dst, 3), packed(*src, 3));
}
void resize_cubic(ImageStruct* dst, ImageStruct* src) {
  scaleCubic(luma(*dst), luma(*src));
}
void resize_cubicVU(ImageStruct* dst, ImageStruct* src) {
  scaleCubic(chroma(*dst), chroma(*src));
}

void resize_averageOfPixel2_420LP(ImageStruct* dst, ImageStruct* src) {
  boxAverage(luma(*dst), luma(*src), 2);
  boxAverage(chroma(*dst), chroma(*src), 2);
}
void resize_averageOfPixel4_420LP(ImageStruct* dst, ImageStruct* src) {
  boxAverage(luma(*dst), luma(*src), 4);
  boxAverage(chroma(*dst), chroma(*src), 4);
}

// Each rotation names the source sample of the destination's column x and row y.
void rotate0_Y(ImageStruct* dst, ImageStruct* src) {
  copyPlane(luma(*dst), luma(*src));
}
void rotate90_Y(ImageStruct* dst, ImageStruct* src) {
  turn(luma(*dst), luma(*src), true,
       [](auto s, int x, int y) { return s.at(s.rows - 1 - x, y); });
}
void rotate180_Y(ImageStruct* dst, ImageStruct* src) {
  turn(luma(*dst), luma(*src), false,
       [](auto s, int x, int y) { return s.at(s.rows - 1 - y, s.columns - 1 - x); });
}
void rotate270_Y(ImageStruct* dst, ImageStruct* src) {
  turn(luma(*dst), luma(*src), true,
       [](auto s, int x, int y) { return s.at(x, s.columns - 1 - y); });
}

void convYUV420SP_YUV420P(ImageStruct* dst, ImageStruct* src) {
  const size_t w = dst->width, h = dst->height;
  const size_t lumaStride = upTo16(w), chromaStride = upTo16(lumaStride / 2);
  for (size_t i = 0; i < area(*src); ++i) dst->data[i] = src->data[i];
  const uint8_t* pair = src->data + src->uvOffset;
  uint8_t* first = dst->data + h * lumaStride;
  uint8_t* second = first + h * chromaStride / 2;
  for (size_t k = 0; k < h / 2; ++k) {
    for (size_t j = 0; j < w / 2; ++j, pair += 2) {
      first[k * chromaStride + j] = pair[0];
      second[k * chromaStride + j] = pair[1];
    }
  }
}

void convYUV420P_YUV420SP(ImageStruct* dst, ImageStruct* src) {
  const size_t a = area(*src);
  const uint8_t* first = src->data + src->uvOffset;
  const uint8_t* second = first + a / 4;
  for (size_t i = 0; i < a; ++i) dst->data[i] = src->data[i];
  for (size_t k = 0; k < a / 2; ++k) {
    dst->data[dst->uvOffset + k] = k % 2 == 0 ? first[k / 2] : second[(k - 1) / 2];
  }
}

void convYUV422IUYVY_YUV420SPVU(ImageStruct* dst, ImageStruct* src) {
  const Plane in = packed(*src, 2), y = luma(*dst), vu = chromaAt(*dst, area(*dst));
  for (int r = 0; r < src->roiHeight / 2 * 2; ++r) {
    for (int j = 0; j < src->roiWidth / 2; ++j) {
      y.at(r, 2 * j) = in.at(r, 2 * j, 1);
      y.at(r, 2 * j + 1) = in.at(r, 2 * j + 1, 1);
      if (r % 2 == 0) {
        vu.at(r / 2, j, 0) = in.at(r, 2 * j + 1, 0);
        vu.at(r / 2, j, 1) = in.at(r, 2 * j, 0);
      }
    }
  }
}

void convRGB565_YUV420SPVU(ImageStruct* dst, ImageStruct* src) {
  const Plane in = packed(*src, 2), y = luma(*dst), vu = chromaAt(*dst, area(*dst));
  for (int r = 0; r < in.rows; ++r) {
    for (int x = 0; x < (in.columns + 1) / 2 * 2; ++x) {
      const int column = std::min(x, in.columns - 1);
      const int word = in.at(r, column, 0) | in.at(r, column, 1) << 8;
      const int r5 = word >> 11, g6 = word >> 5 & 63, b5 = word & 31;
      const int64_t red = r5 << 3 | r5 >> 2;
      const int64_t green = g6 << 2 | g6 >> 4;
      const int64_t blue = b5 << 3 | b5 >> 2;
      y.at(r, x) = byte((4897 * red + 9611 * green + 1876 * blue + 2048) >> 14);
      if (r % 2 == 0 && x % 2 == 0) {
        const int64_t cr = 8192 * red - 6860 * green - 1332 * blue;
        const int64_t cb = 8192 * blue - 5427 * green - 2765 * red;
        vu.at(r / 2, x / 2, 0) = byte(scaledChroma(cr));
        vu.at(r / 2, x / 2, 1) = byte(scaledChroma(cb));
      }
    }
  }
}

void convYUV420SPMB_YUV420SPVU(ImageStruct* dst, ImageStruct* src) {
  const uint8_t* from = src->data;
  uint8_t* to = dst->data;
  const size_t read = src->uvOffset, written = area(*dst);
  forTiles(
      src->roiWidth, src->roiHeight,
      [=](size_t linear, size_t tiled) { to[linear] = from[tiled]; },
      [=](size_t linear, size_t tiled) { to[written + linear] = from[read + tiled]; });
}

void convYUV420SPVU_YUV420SPMB(ImageStruct* dst, ImageStruct* src) {
  const uint8_t* from = src->data;
  uint8_t* to = dst->data;
  const size_t read = src->uvOffset, written = upTo16(dst->width) * upTo16(dst->height);
  forTiles(
      src->roiWidth, src->roiHeight,
      [=](size_t linear, size_t tiled) { to[tiled] = from[linear]; },
      [=](size_t linear, size_t tiled) { to[written + tiled] = from[read + linear]; });
}

}  // namespace reference
