// The rules of reading, scaling, turning, colour and writing, in the order in which a
// frame goes through them.
#include "frames_reference.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace frames_reference {
namespace {

// Samples of one layer. Chroma has the channels U and V, pixels have R, G, B and A.
struct Layer {
  Layer() : Layer(0, 0, 0) {}
  Layer(int wide, int high, int deep)
      : columns(wide),
        rows(high),
        channels(deep),
        bytes(static_cast<size_t>(wide) * high * deep) {}
  uint8_t& at(int x, int y, int c) {
    return bytes[(static_cast<size_t>(y) * columns + x) * channels + c];
  }
  int at(int x, int y, int c) const {
    return bytes[(static_cast<size_t>(y) * columns + x) * channels + c];
  }
  bool empty() const { return bytes.empty(); }

  int columns, rows, channels;
  std::vector<uint8_t> bytes;
};

// `main` is luma or pixels. Chroma is empty for pixels and for luma alone.
struct Picture {
  Layer main, chroma;
  bool pairedRows;  // chroma rows serve two rows of luma
};

uint8_t clamp(int64_t v) { return static_cast<uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v); }

int half(int n) { return (n + 1) / 2; }

bool isRgb(uint32_t format) { return formatOf(format).channels != 0; }
bool is420(uint32_t format) { return formatOf(format).down == 2; }

// ------------------------------------------------------------------ where bytes lie

// The bytes of a tiled plane in its order: tiles of 16 x `rows`, each in two halves
// that are 8 wide.
size_t tiledOffset(size_t column, size_t row, size_t rows) {
  return column / 16 * 16 * rows + column % 16 / 8 * 8 * rows + row % rows * 8 +
         column % 8;
}

uint8_t* rowOf(const ZelmPlane& plane, int row) {
  return plane.data + static_cast<ptrdiff_t>(row) * plane.stride;
}

uint8_t* lumaAt(const ZelmFrame& f, int x, int y) {
  const ZelmPlane& plane = f.planes[0];
  switch (f.format) {
    case ZELM_YUYV:
      return rowOf(plane, y) + 2 * x;
    case ZELM_UYVY:
      return rowOf(plane, y) + 2 * x + 1;
    case ZELM_TILED:
      return rowOf(plane, y / 16) +
             tiledOffset(static_cast<size_t>(x), static_cast<size_t>(y), 16);
    default:
      return rowOf(plane, y) + x;
  }
}

// Channel 0 is U and 1 is V.
uint8_t* chromaAt(const ZelmFrame& f, int x, int y, int channel) {
  const bool vFirst =
      f.format == ZELM_YV12 || f.format == ZELM_NV21 || f.format == ZELM_NV61;
  const int place = vFirst ? 1 - channel : channel;
  if (formatOf(f.format).separate) {
    const ZelmPlane& plane = f.planes[1 + place];
    return rowOf(plane, y) + static_cast<ptrdiff_t>(x) * std::max(1, plane.step);
  }
  switch (f.format) {
    case ZELM_YUYV:
      return rowOf(f.planes[0], y) + 4 * x + 1 + 2 * place;
    case ZELM_UYVY:
      return rowOf(f.planes[0], y) + 4 * x + 2 * place;
    case ZELM_TILED:
      return rowOf(f.planes[1], y / 8) +
             tiledOffset(static_cast<size_t>(2 * x + place), static_cast<size_t>(y), 8);
    default:
      return rowOf(f.planes[1], y) + 2 * x + place;
  }
}

uint8_t* pixelAt(const ZelmFrame& f, int x, int y) {
  return rowOf(f.planes[0], y) +
         static_cast<ptrdiff_t>(x) * formatOf(f.format).channels;
}

// Whether blue is where the formats of the other order have red.
bool blueFirst(uint32_t format) {
  return format == ZELM_BGR24 || format == ZELM_BGRA || format == ZELM_BGR565;
}

void readPixel(const ZelmFrame& f, int x, int y, uint8_t (&rgba)[4]) {
  const uint8_t* p = pixelAt(f, x, y);
  const int channels = formatOf(f.format).channels;
  if (channels == 2) {
    const int word = p[0] | p[1] << 8;
    const int high = word >> 11, middle = word >> 5 & 63, low = word & 31;
    rgba[0] = static_cast<uint8_t>(high << 3 | high >> 2);
    rgba[1] = static_cast<uint8_t>(middle << 2 | middle >> 4);
    rgba[2] = static_cast<uint8_t>(low << 3 | low >> 2);
  } else {
    std::copy(p, p + 3, rgba);
  }
  rgba[3] = channels == 4 ? p[3] : 255;
  if (blueFirst(f.format)) std::swap(rgba[0], rgba[2]);
}

void writePixel(const ZelmFrame& f, int x, int y, const Layer& pixels, int column,
                int row) {
  uint8_t* p = pixelAt(f, x, y);
  const int channels = formatOf(f.format).channels;
  int rgba[4];
  for (int c = 0; c < 4; ++c) rgba[c] = pixels.at(column, row, c);
  if (blueFirst(f.format)) std::swap(rgba[0], rgba[2]);
  if (channels == 2) {
    const int word = rgba[0] >> 3 << 11 | rgba[1] >> 2 << 5 | rgba[2] >> 3;
    p[0] = static_cast<uint8_t>(word & 255);
    p[1] = static_cast<uint8_t>(word >> 8);
  } else {
    for (int c = 0; c < channels; ++c) p[c] = static_cast<uint8_t>(rgba[c]);
  }
}

// --------------------------------------------------------------------------- reading

Picture read(const ZelmFrame& f, int x0, int y0, int w, int h, bool to420) {
  Picture p;
  p.pairedRows = is420(f.format);
  p.main = Layer(w, h, isRgb(f.format) ? 4 : 1);
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) {
      if (isRgb(f.format)) {
        uint8_t rgba[4];
        readPixel(f, x0 + x, y0 + y, rgba);
        for (int c = 0; c < 4; ++c) p.main.at(x, y, c) = rgba[c];
      } else {
        p.main.at(x, y, 0) = *lumaAt(f, x0 + x, y0 + y);
      }
    }
  }
  if (formatOf(f.format).across == 0) return p;
  const int top = p.pairedRows ? y0 / 2 : y0;
  Layer all(half(w), p.pairedRows ? half(h) : h, 2);
  for (int y = 0; y < all.rows; ++y) {
    for (int x = 0; x < all.columns; ++x) {
      for (int c = 0; c < 2; ++c) {
        all.at(x, y, c) = *chromaAt(f, x0 / 2 + x, top + y, c);
      }
    }
  }
  if (p.pairedRows || !to420) {
    p.chroma = all;
    return p;
  }
  p.pairedRows = true;
  p.chroma = Layer(all.columns, half(h), 2);
  for (int y = 0; y < p.chroma.rows; ++y) {
    const bool alone = f.format == ZELM_UYVY || 2 * y + 1 == h;
    for (int x = 0; x < all.columns; ++x) {
      for (int c = 0; c < 2; ++c) {
        const int a = all.at(x, 2 * y, c), b = alone ? a : all.at(x, 2 * y + 1, c);
        p.chroma.at(x, y, c) = static_cast<uint8_t>((a + b + 1) >> 1);
      }
    }
  }
  return p;
}

// --------------------------------------------------------------------------- scaling

int halvings(int w, int h, int toW, int toH) {
  if (w % 2 != 0 || h % 2 != 0) return 0;
  const int ratio = std::min(w / toW / 2 * 2, h / toH / 2 * 2);
  int n = 0;
  while (2 << n <= ratio) ++n;
  while (n > 0 && ((w >> n) % 2 != 0 || (h >> n) % 2 != 0)) --n;
  return n;
}

// Means of boxes with sides of 2^shift samples.
Layer reduced(const Layer& in, int shift) {
  Layer out(in.columns >> shift, in.rows >> shift, in.channels);
  const int side = 1 << shift;
  for (int y = 0; y < out.rows; ++y) {
    for (int x = 0; x < out.columns; ++x) {
      for (int c = 0; c < out.channels; ++c) {
        int sum = 0;
        for (int i = 0; i < side * side; ++i) {
          sum += in.at(side * x + i % side, side * y + i / side, c);
        }
        out.at(x, y, c) = static_cast<uint8_t>(sum >> 2 * shift);
      }
    }
  }
  return out;
}

// The four samples along one axis that a sample is made of, and their weights in 1/256.
struct Taps {
  int index[4];
  int64_t weight[4];
};

Taps tapsOf(int i, int from, int to, uint32_t filter) {
  uint64_t step = 0;
  if (to > 1) {
    const double ratio = static_cast<double>(from - 1) / (to - 1);
    step = static_cast<uint64_t>(std::floor(0.5 + ratio * 4294967296.0));
  }
  const uint64_t p = static_cast<uint64_t>(i) * step;
  const int64_t f = static_cast<int64_t>((p % 4294967296u + (1u << 23)) >> 24);
  const int64_t near = ((256 - f) * (256 - f) * f + 32768) >> 16;
  const int64_t far = (f * f * (256 - f) + 32768) >> 16;
  Taps taps = {{}, {0, 256, 0, 0}};
  uint64_t first = p >> 32;
  switch (filter) {
    case ZELM_NEAREST:
      first = (p + (uint64_t{1} << 31)) >> 32;
      break;
    case ZELM_LINEAR:
      taps = {{}, {0, 256 - f, f, 0}};
      break;
    default:
      taps = {{}, {-near, 256 - f + near, f + far, -far}};
  }
  for (int k = 0; k < 4; ++k) {
    taps.index[k] = static_cast<int>(
        std::clamp<int64_t>(static_cast<int64_t>(first) - 1 + k, 0, from - 1));
  }
  return taps;
}

Layer scaled(const Layer& in, int columns, int rows, uint32_t filter) {
  if (in.columns == columns && in.rows == rows) return in;
  Layer out(columns, rows, in.channels);
  std::vector<Taps> across;
  for (int x = 0; x < columns; ++x) {
    across.push_back(tapsOf(x, in.columns, columns, filter));
  }
  for (int y = 0; y < rows; ++y) {
    const Taps down = tapsOf(y, in.rows, rows, filter);
    for (int x = 0; x < columns; ++x) {
      for (int c = 0; c < in.channels; ++c) {
        int64_t sum = 0;
        for (int a = 0; a < 4; ++a) {
          for (int b = 0; b < 4; ++b) {
            sum += down.weight[a] * across[x].weight[b] *
                   in.at(across[x].index[b], down.index[a], c);
          }
        }
        out.at(x, y, c) = clamp((sum + 32768) >> 16);
      }
    }
  }
  return out;
}

void scale(Picture* p, int w, int h, const ZelmEdit& edit, bool mayReduce) {
  if (p->main.columns == w && p->main.rows == h) return;
  int n = mayReduce ? halvings(p->main.columns, p->main.rows, w, h) : 0;
  while (n > 0) {
    const int shift = std::min(n, 2);
    p->main = reduced(p->main, shift);
    p->chroma = reduced(p->chroma, shift);
    n -= shift;
  }
  p->main = scaled(p->main, w, h, edit.lumaFilter);
  if (p->chroma.empty()) return;
  p->chroma =
      scaled(p->chroma, half(w), p->pairedRows ? half(h) : h, edit.chromaFilter);
}

// --------------------------------------------------------------------------- turning

Layer turned(const Layer& s, uint32_t turn, bool mirror) {
  const int w = s.columns, h = s.rows;
  const bool quarter = turn == 90 || turn == 270;
  Layer out(quarter ? h : w, quarter ? w : h, s.channels);
  for (int y = 0; y < out.rows; ++y) {
    for (int column = 0; column < out.columns; ++column) {
      const int x = mirror ? out.columns - 1 - column : column;
      for (int c = 0; c < s.channels; ++c) {
        out.at(column, y, c) =
            static_cast<uint8_t>(turn == 0     ? s.at(x, y, c)
                                 : turn == 90  ? s.at(y, h - 1 - x, c)
                                 : turn == 180 ? s.at(w - 1 - x, h - 1 - y, c)
                                               : s.at(w - 1 - y, x, c));
      }
    }
  }
  return out;
}

// ---------------------------------------------------------------------------- colour

// By ZelmColour.
struct ToRgb {
  int o, cy, crv, cgu, cgv, cbu;
};
constexpr ToRgb kToRgb[] = {
    {0, 16384, 22970, 5638, 11700, 29032}, {16, 19077, 26149, 6419, 13320, 33050},
    {0, 16384, 25802, 3069, 7670, 30402},  {16, 19077, 29372, 3494, 8731, 34610},
    {0, 16384, 24160, 2696, 9361, 30825},  {16, 19077, 27503, 3069, 10657, 35090},
};
struct ToYuv {
  int o, y[3], u[3], v[3];  // of R, G, B
};
constexpr ToYuv kToYuv[] = {
    {0, {4899, 9617, 1868}, {-2765, -5427, 8192}, {8192, -6860, -1332}},
    {16, {4207, 8260, 1604}, {-2428, -4768, 7196}, {7196, -6026, -1170}},
    {0, {3483, 11718, 1183}, {-1877, -6315, 8192}, {8192, -7441, -751}},
    {16, {2991, 10064, 1016}, {-1649, -5547, 7196}, {7196, -6536, -660}},
    {0, {4304, 11108, 972}, {-2288, -5904, 8192}, {8192, -7533, -659}},
    {16, {3696, 9541, 834}, {-2010, -5186, 7196}, {7196, -6617, -579}},
};

void toRgb(Picture* p, uint32_t colour) {
  const ToRgb& k = kToRgb[colour];
  const Layer &luma = p->main, &chroma = p->chroma;
  Layer out(luma.columns, luma.rows, 4);
  for (int y = 0; y < out.rows; ++y) {
    for (int x = 0; x < out.columns; ++x) {
      int64_t u = 0, v = 0;
      if (!chroma.empty()) {
        const int i = x / 2, j = p->pairedRows ? y / 2 : y;
        const bool inside = i > 0 && i < chroma.columns - 1;
        const int right = x % 2 == 1 && inside ? i + 1 : i;
        const bool between = p->pairedRows && j > 0 && j < chroma.rows - 1;
        const int rowU = between && y % 2 == 1 ? j + 1 : j;
        const int rowV = between && y % 2 == 0 ? j - 1 : j;
        for (const int column : {i, right}) {
          u += chroma.at(column, j, 0) + chroma.at(column, rowU, 0) - 256;
          v += chroma.at(column, j, 1) + chroma.at(column, rowV, 1) - 256;
        }
      }
      const int64_t grey = int64_t{4} * k.cy * (luma.at(x, y, 0) - k.o) + 32768;
      out.at(x, y, 0) = clamp((grey + k.crv * v) >> 16);
      out.at(x, y, 1) = clamp((grey - k.cgu * u - k.cgv * v) >> 16);
      out.at(x, y, 2) = clamp((grey + k.cbu * u) >> 16);
      out.at(x, y, 3) = 255;
    }
  }
  p->main = out;
  p->chroma = Layer();
}

int64_t weighted(const int (&weights)[3], const Layer& pixels, int x, int y) {
  int64_t sum = 0;
  for (int c = 0; c < 3; ++c) sum += int64_t{weights[c]} * pixels.at(x, y, c);
  return sum;
}

// `down` is how many rows share chroma; 0 where there is to be none.
void toYuv(Picture* p, uint32_t colour, int down) {
  const ToYuv& k = kToYuv[colour];
  const Layer pixels = p->main;
  const int w = pixels.columns, h = pixels.rows;
  p->main = Layer(w, h, 1);
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) {
      p->main.at(x, y, 0) =
          clamp((weighted(k.y, pixels, x, y) + k.o * 16384 + 8192) >> 14);
    }
  }
  if (down == 0) return;
  p->pairedRows = down == 2;
  p->chroma = Layer(half(w), down == 2 ? half(h) : h, 2);
  for (int j = 0; j < p->chroma.rows; ++j) {
    for (int i = 0; i < p->chroma.columns; ++i) {
      int64_t u = 0, v = 0;
      int n = 0;
      for (int y = down * j; y < std::min(h, down * (j + 1)); ++y) {
        for (int x = 2 * i; x < std::min(w, 2 * i + 2); ++x, ++n) {
          u += weighted(k.u, pixels, x, y) + 128 * 16384 + 8192;
          v += weighted(k.v, pixels, x, y) + 128 * 16384 + 8192;
        }
      }
      const int shift = 14 + (n == 4 ? 2 : n == 2 ? 1 : 0);
      p->chroma.at(i, j, 0) = clamp(u >> shift);
      p->chroma.at(i, j, 1) = clamp(v >> shift);
    }
  }
}

struct Description {
  double kr, kb, luma, chroma;  // what one step of luma and chroma is in full range
  int o;
};

Description describe(uint32_t colour) {
  const double matrices[][2] = {{0.299, 0.114}, {0.2126, 0.0722}, {0.2627, 0.0593}};
  const bool limited = colour % 2 == 1;
  return {matrices[colour / 2][0], matrices[colour / 2][1], limited ? 255.0 / 219 : 1.0,
          limited ? 255.0 / 224 : 1.0, limited ? 16 : 0};
}

void changeColour(Picture* p, uint32_t from, uint32_t to, bool sameMatrix) {
  const Description s = describe(from),
                    d = describe(sameMatrix ? to % 2 + from / 2 * 2 : to);
  const double kg = 1 - s.kr - s.kb, kg2 = 1 - d.kr - d.kb;
  const double ry = s.luma / d.luma, rc = s.chroma / d.chroma, rx = s.chroma / d.luma;
  const double v = 2 * (1 - s.kr), u = 2 * (1 - s.kb);
  const double gv = -v * s.kr / kg, gu = -u * s.kb / kg;
  const double bigB = kg2 * gu + d.kb * u, bigC = d.kr * v + kg2 * gv;
  const double v2 = 2 * (1 - d.kr), u2 = 2 * (1 - d.kb);
  const auto fixed = [](double x) {
    return static_cast<int64_t>(std::llround(x * 16384));
  };
  const int64_t a = fixed(ry), b = fixed(rx * bigB), c = fixed(rx * bigC);
  const int64_t dd = fixed(rc * (u - bigB) / u2), e = fixed(-rc * bigC / u2);
  const int64_t f = fixed(-rc * bigB / v2), g = fixed(rc * (v - bigC) / v2);

  Layer &luma = p->main, &chroma = p->chroma;
  for (int y = 0; y < luma.rows; ++y) {
    for (int x = 0; x < luma.columns; ++x) {
      const int j = p->pairedRows ? y / 2 : y;
      const int64_t cu = chroma.empty() ? 0 : chroma.at(x / 2, j, 0) - 128;
      const int64_t cv = chroma.empty() ? 0 : chroma.at(x / 2, j, 1) - 128;
      luma.at(x, y, 0) = clamp(
          (a * (luma.at(x, y, 0) - s.o) + b * cu + c * cv + d.o * 16384 + 8192) >> 14);
    }
  }
  for (int y = 0; y < chroma.rows; ++y) {
    for (int x = 0; x < chroma.columns; ++x) {
      const int64_t cu = chroma.at(x, y, 0) - 128, cv = chroma.at(x, y, 1) - 128;
      chroma.at(x, y, 0) = clamp((dd * cu + e * cv + 128 * 16384 + 8192) >> 14);
      chroma.at(x, y, 1) = clamp((f * cu + g * cv + 128 * 16384 + 8192) >> 14);
    }
  }
}

void expandRows(Picture* p) {
  const Layer in = p->chroma;
  p->chroma = Layer(in.columns, p->main.rows, 2);
  p->pairedRows = false;
  for (int y = 0; y < p->chroma.rows; ++y) {
    const int j = y / 2, next = y % 2 == 1 && j + 1 < in.rows ? j + 1 : j;
    for (int x = 0; x < in.columns; ++x) {
      for (int c = 0; c < 2; ++c) {
        p->chroma.at(x, y, c) =
            static_cast<uint8_t>((in.at(x, j, c) + in.at(x, next, c)) >> 1);
      }
    }
  }
}

void changeToDestination(Picture* p, const ZelmFrame& dst, const ZelmFrame& src) {
  const Format &to = formatOf(dst.format), &from = formatOf(src.format);
  if (to.channels != 0) {
    if (from.channels == 0) toRgb(p, src.colour);
    return;
  }
  if (from.channels != 0) {
    toYuv(p, dst.colour, to.down);
    return;
  }
  const bool grey = to.across == 0 || from.across == 0;
  changeColour(p, src.colour, dst.colour, grey);
  if (to.across != 0 && from.across == 0) {
    p->pairedRows = to.down == 2;
    p->chroma = Layer(half(p->main.columns),
                      to.down == 2 ? half(p->main.rows) : p->main.rows, 2);
    std::fill(p->chroma.bytes.begin(), p->chroma.bytes.end(), uint8_t{128});
  }
  if (to.down == 1 && p->pairedRows) expandRows(p);
}

// --------------------------------------------------------------------------- writing

void write(const ZelmFrame& f, int x0, int y0, const Picture& p) {
  for (int y = 0; y < p.main.rows; ++y) {
    for (int x = 0; x < p.main.columns; ++x) {
      if (isRgb(f.format)) {
        writePixel(f, x0 + x, y0 + y, p.main, x, y);
      } else {
        *lumaAt(f, x0 + x, y0 + y) = static_cast<uint8_t>(p.main.at(x, y, 0));
      }
    }
    const bool packed = f.format == ZELM_YUYV || f.format == ZELM_UYVY;
    if (packed && p.main.columns % 2 == 1) {
      const int last = p.main.columns - 1;
      *lumaAt(f, x0 + last + 1, y0 + y) = static_cast<uint8_t>(p.main.at(last, y, 0));
    }
  }
  const int top = is420(f.format) ? y0 / 2 : y0;
  for (int y = 0; y < p.chroma.rows; ++y) {
    for (int x = 0; x < p.chroma.columns; ++x) {
      for (int c = 0; c < 2; ++c) {
        *chromaAt(f, x0 / 2 + x, top + y, c) =
            static_cast<uint8_t>(p.chroma.at(x, y, c));
      }
    }
  }
}

ZelmRegion regionOf(const ZelmRegion& r, const ZelmFrame& f) {
  const bool whole = r.x == 0 && r.y == 0 && r.width == 0 && r.height == 0;
  return whole ? ZelmRegion{0, 0, f.width, f.height} : r;
}

}  // namespace

const Format& formatOf(uint32_t format) {
  static const Format formats[] = {
      {"none", 0, 0, 0, 0, false},   {"I420", 3, 2, 2, 0, true},
      {"YV12", 3, 2, 2, 0, true},    {"NV12", 2, 2, 2, 0, false},
      {"NV21", 2, 2, 2, 0, false},   {"I422", 3, 2, 1, 0, true},
      {"NV16", 2, 2, 1, 0, false},   {"NV61", 2, 2, 1, 0, false},
      {"YUYV", 1, 2, 1, 0, false},   {"UYVY", 1, 2, 1, 0, false},
      {"GRAY8", 1, 0, 0, 0, false},  {"RGB24", 1, 0, 0, 3, false},
      {"BGR24", 1, 0, 0, 3, false},  {"RGBA", 1, 0, 0, 4, false},
      {"BGRA", 1, 0, 0, 4, false},   {"RGB565", 1, 0, 0, 2, false},
      {"BGR565", 1, 0, 0, 2, false}, {"TILED", 2, 2, 2, 0, false},
  };
  return formats[format <= ZELM_TILED ? format : 0];
}

Extent extentOf(uint32_t format, uint32_t width, uint32_t height, int plane, int step) {
  const Format& f = formatOf(format);
  const size_t w = width, h = height, pairs = (w + 1) / 2;
  const size_t chromaRows = f.down == 2 ? (h + 1) / 2 : h;
  if (format == ZELM_TILED) {
    const size_t tiles = (w + 15) / 16;
    if (plane == 0) return {(h + 15) / 16, tiles * 256};
    return {(chromaRows + 7) / 8, tiles * 128};
  }
  if (format == ZELM_YUYV || format == ZELM_UYVY) return {h, 4 * pairs};
  if (f.channels != 0) return {h, w * static_cast<size_t>(f.channels)};
  if (plane == 0) return {h, w};
  if (!f.separate) return {chromaRows, 2 * pairs};
  return {chromaRows, (pairs - 1) * static_cast<size_t>(std::max(1, step)) + 1};
}

void convert(const ZelmFrame& dst, const ZelmFrame& src, const ZelmEdit& edit) {
  const ZelmRegion from = regionOf(edit.source, src);
  const ZelmRegion to = regionOf(edit.destination, dst);
  const auto number = [](uint32_t n) { return static_cast<int>(n); };
  const bool quarter = edit.turn == 90 || edit.turn == 270;
  Picture p = read(src, number(from.x), number(from.y), number(from.width),
                   number(from.height), is420(dst.format) || quarter);
  const bool withoutReduction =
      (src.format == ZELM_UYVY || src.format == ZELM_TILED) && is420(dst.format);
  scale(&p, number(quarter ? to.height : to.width),
        number(quarter ? to.width : to.height), edit, !withoutReduction);
  if (dst.format == ZELM_GRAY8) p.chroma = Layer();
  p.main = turned(p.main, edit.turn, edit.mirror == 1);
  p.chroma = turned(p.chroma, edit.turn, edit.mirror == 1);
  changeToDestination(&p, dst, src);
  write(dst, number(to.x), number(to.y), p);
}

}  // namespace frames_reference
