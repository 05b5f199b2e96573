// Known values, and every value where there are few enough to try them all.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "harness.h"

namespace harness {
namespace {

using reference::Stage;

// A record of any size whose chroma follows the luma.
ImageStruct plane(int width, int height) {
  ImageStruct r = zelmWholeFrame(FORMAT_YUV420SP, 2, 2, nullptr);
  r.width = r.roiWidth = static_cast<uint16_t>(width);
  r.height = r.roiHeight = static_cast<uint16_t>(height);
  r.uvOffset = static_cast<uint32_t>(width) * static_cast<uint32_t>(height);
  return r;
}

Bytes apply(Stage* stage, ImageStruct dst, ImageStruct src, Bytes in, size_t size) {
  Bytes out(size, 0xEE);
  dst.data = out.data();
  src.data = in.data();
  stage(&dst, &src);
  return out;
}

// The library's output, which must equal that of the reference.
Bytes both(Stage* product, Stage* expected, const ImageStruct& dst,
           const ImageStruct& src, const Bytes& in, size_t size) {
  Bytes out = apply(product, dst, src, in, size);
  EXPECT_TRUE(out == apply(expected, dst, src, in, size)) << describe(src);
  return out;
}
#define BOTH(stage, ...) both(::stage, reference::stage, __VA_ARGS__)

Bytes joined(Bytes bytes, const Bytes& more, int times = 1) {
  for (; times > 0; --times) bytes.insert(bytes.end(), more.begin(), more.end());
  return bytes;
}

TEST(Values, CheckStruct) {
  struct {
    int width, height, x, y, w, h, format, code;
    int after[4];
  } const table[] = {
      {640, 480, 3, 5, 101, 33, 2, 0, {2, 4, 100, 32}},
      {640, 480, 640, 0, 1, 2, 2, 0, {640, 0, 0, 2}},
      {640, 480, 640, 0, 2, 2, 2, -3, {640, 0, 2, 2}},
      {640, 480, 641, 1, 1, 1, 2, -3, {641, 1, 1, 1}},
      {640, 480, 1, 481, 1, 1, 2, -3, {1, 481, 1, 1}},
      {640, 480, 1, -1, 1, 1, 2, -3, {1, -1, 1, 1}},
      {640, 480, -1, 1, 1, 1, 2, -3, {-1, 1, 1, 1}},
      {640, 480, 3, 1, 640, 479, 1, -3, {2, 0, 640, 478}},
      {640, 480, 1, 3, 639, 480, 1, -3, {0, 2, 638, 480}},
      {640, 480, 1, 3, 641, 477, 1, 0, {0, 2, 640, 476}},
      {641, 480, 9999, 0, 2, 2, 3, -2, {9999, 0, 2, 2}},
      {640, 481, 3, 3, 3, 3, 3, -2, {3, 3, 3, 3}},
      {640, 0, -5, 0, 2, 2, 2, -2, {-5, 0, 2, 2}},
      {0, 480, 0, 0, 0, 0, 2, -2, {0, 0, 0, 0}},
      {640, 480, 1, 1, 3, 3, 8, -4, {0, 0, 2, 2}},
      {640, 480, 0, 0, 642, 2, 8, -3, {0, 0, 642, 2}},
      {65534, 65534, 65533, 65533, 1, 1, 4, 0, {65532, 65532, 0, 0}},
  };
  uint8_t byte = 0;
  for (const auto& t : table) {
    for (auto check : {::checkStruct, reference::checkStruct}) {
      ImageStruct r = plane(t.width, t.height);
      r.data = &byte;
      r.format = static_cast<uint32_t>(t.format);
      r.roiX = t.x, r.roiY = t.y;
      r.roiWidth = static_cast<uint16_t>(t.w), r.roiHeight = static_cast<uint16_t>(t.h);
      EXPECT_EQ(check(&r), t.code) << describe(r);
      EXPECT_TRUE(r.roiX == t.after[0] && r.roiY == t.after[1] &&
                  r.roiWidth == t.after[2] && r.roiHeight == t.after[3])
          << describe(r);
    }
  }
  ImageStruct r = plane(3, 2);
  EXPECT_EQ(checkStruct(nullptr), RESULT_NULL);
  EXPECT_EQ(checkStruct(&r), RESULT_NULL);
  r = plane(2, 2);
  r.data = &byte;
  for (uint32_t bit = 0; bit < 32; ++bit) {
    r.format = 1u << bit;
    const bool known = 0x1001D37u >> bit & 1;
    EXPECT_EQ(checkStruct(&r), known ? RESULT_OK : RESULT_BAD_FORMAT) << bit;
    r.format |= 1u << (bit + 1) % 32;
    EXPECT_EQ(checkStruct(&r), RESULT_BAD_FORMAT) << bit;
  }
}

TEST(Values, Helpers) {
  struct {
    int value, low, high, clipped;
  } const clips[] = {
      {5, 0, 3, 3}, {-1, 0, 3, 0}, {2, 0, 3, 2},
      {1, 4, 2, 4}, {5, 4, 2, 2},  {INT32_MIN, -1, 1, -1},
  };
  for (const auto& t : clips) {
    EXPECT_EQ(clipping(t.value, t.low, t.high), t.clipped) << t.value;
  }
  EXPECT_EQ(logn(2, 8), 3.0);
  EXPECT_EQ(logn(10, 1000), std::log(1000.0) / std::log(10.0));
  EXPECT_FALSE(std::isfinite(logn(1, 5)) || std::isfinite(logn(1, 1)));

  struct {
    int srcWidth, srcHeight, dstWidth, dstHeight, rate;
  } const reductions[] = {
      {1280, 960, 320, 240, 2},  {1920, 1080, 640, 360, 1}, {1920, 1080, 176, 144, 2},
      {1000, 1000, 100, 100, 2}, {4096, 2160, 100, 100, 3}, {600, 400, 24, 24, 2},
      {6, 6, 2, 2, 0},           {640, 480, 400, 300, 0},   {640, 480, 2000, 1500, 0},
      {300, 300, 100, 100, 1},   {560, 560, 80, 80, 2},     {640, 480, 320, 480, 0},
      {65534, 65534, 2, 2, 0},   {32768, 32768, 1, 1, 14},  {640, 480, 0, 2, 0},
      {640, 480, 2, 0, 0},       {641, 480, 20, 20, 0},     {640, 481, 20, 20, 0},
  };
  for (const auto& t : reductions) {
    ImageStruct src = plane(t.srcWidth, t.srcHeight);
    ImageStruct dst = plane(t.dstWidth, t.dstHeight);
    for (auto rate : {::getReductionRate, reference::getReductionRate}) {
      EXPECT_EQ(rate(&dst, &src), t.rate) << t.srcWidth << " to " << t.dstWidth;
    }
  }
  for (int extent : {32768, 65520, 60480}) {
    for (int to = 1; to <= extent; to += 1 + to / 500) {
      ImageStruct src = plane(extent, extent), dst = plane(to, (to + 1) / 2);
      ASSERT_EQ(getReductionRate(&dst, &src), reference::getReductionRate(&dst, &src))
          << extent << " to " << to;
    }
  }

  struct {
    int mode, rotation, dstWidth, dstHeight, code;  // for a source of 6 x 4
  } const turns[] = {
      {1, 0, 6, 4, 0},   {1, 2, 6, 4, 0},   {1, 1, 4, 6, 0},   {1, 4, 4, 6, 0},
      {1, 1, 6, 4, -11}, {1, 4, 6, 4, -11}, {1, 0, 4, 6, -11}, {1, 2, 6, 6, -11},
      {1, 1, 4, 8, -11}, {1, 4, 5, 6, -11}, {1, 3, 1, 1, -9},  {1, -1, 6, 4, -9},
      {1, 5, 6, 4, -9},  {0, 7, 1, 1, -10}, {2, 0, 6, 4, -10},
  };
  for (const auto& t : turns) {
    ImageStruct src = plane(6, 4), dst = plane(t.dstWidth, t.dstHeight);
    for (auto check : {::checkRotateParam, reference::checkRotateParam}) {
      EXPECT_EQ(check(&src, &dst, t.mode, t.rotation), t.code)
          << t.mode << ", " << t.rotation;
    }
  }
}

TEST(Values, ScaledLines) {
#define SCALER(stage) \
  { ::stage, reference::stage, ::stage##VU, reference::stage##VU }
  struct Scaler {
    Stage *luma, *lumaExpected, *chroma, *chromaExpected;
  } const nearest = SCALER(resize_nearest), linear = SCALER(resize_linear),
          cubic = SCALER(resize_cubic);
  struct {
    const Scaler& scaler;
    Bytes in, out;
  } const table[] = {
      {nearest, {0, 1, 2, 3}, {0, 1, 1, 2, 2, 3, 3}},
      {nearest, {0, 1, 2, 3, 4, 5, 6, 7}, {0, 4, 7}},
      {nearest, {9, 1, 2, 3, 4}, {9}},
      {linear, {0, 255}, {0, 64, 128, 191, 255}},
      {linear, {0, 100, 200, 255}, {0, 50, 100, 150, 200, 228, 255}},
      {linear, {0, 128, 0}, {0, 86, 86, 0}},
      {linear, {0, 1, 2, 10, 21, 5, 6, 99}, {0, 16, 99}},
      {cubic, {0, 0, 255, 255}, {0, 0, 0, 128, 255, 255, 255}},
      {cubic, {0, 100, 200, 100}, {0, 38, 100, 175, 200, 163, 100}},
      {cubic, {7, 9}, {7}},
      {cubic, {7}, {7, 7, 7}},
  };
  for (const auto& t : table) {
    const int n = static_cast<int>(t.in.size()), m = static_cast<int>(t.out.size());
    const Scaler& s = t.scaler;
    EXPECT_EQ(
        both(s.luma, s.lumaExpected, plane(m, 1), plane(n, 1), t.in, t.out.size()),
        t.out);
    EXPECT_EQ(
        both(s.luma, s.lumaExpected, plane(1, m), plane(1, n), t.in, t.out.size()),
        t.out);
    Bytes pairsIn, pairsOut;  // the line as the first bytes of pairs, no luma before it
    for (uint8_t b : t.in) pairsIn = joined(pairsIn, {b, 77});
    for (uint8_t b : t.out) pairsOut = joined(pairsOut, {b, 77});
    ImageStruct dst = plane(2 * m, 2), src = plane(2 * n, 2);
    dst.uvOffset = src.uvOffset = 0;
    EXPECT_EQ(both(s.chroma, s.chromaExpected, dst, src, pairsIn, pairsOut.size()),
              pairsOut);
  }
}

TEST(Values, Colours) {
  struct {
    uint8_t y, u, v;
    Bytes rgb;
    int word;
  } const colours[] = {
      {76, 85, 255, {254, 0, 0}, 31},
      {29, 255, 107, {0, 0, 254}, 31 << 11},
      {128, 0, 0, {0, 255, 0}, 63 << 5},
      {128, 255, 255, {255, 0, 255}, 31 | 31 << 11},
      {235, 128, 128, {235, 235, 235}, 29 | 58 << 5 | 29 << 11},
      {16, 128, 128, {16, 16, 16}, 2 | 4 << 5 | 2 << 11},
  };
  for (const auto& t : colours) {
    for (uint32_t format : {2u, 4u, 0u}) {
      ImageStruct src = plane(8, 8);
      src.format = format;
      const Bytes pair = format == 2 ? Bytes{t.u, t.v} : Bytes{t.v, t.u};
      const Bytes in = joined(Bytes(64, t.y), pair, 16);
      const Bytes word{static_cast<uint8_t>(t.word), static_cast<uint8_t>(t.word >> 8)};
      EXPECT_EQ(BOTH(convYUV420SP_RGB888, plane(8, 8), src, in, 192),
                joined({}, t.rgb, 64));
      EXPECT_EQ(BOTH(convYUV420SP_RGBA8888, plane(8, 8), src, in, 256),
                joined({}, joined(t.rgb, {255}), 64));
      EXPECT_EQ(BOTH(convYUV420SP_RGB565, plane(8, 8), src, in, 128),
                joined({}, word, 64));
    }
  }
  struct {
    int r5, g6, b5;
    uint8_t y, v, u;
  } const words[] = {
      {31, 63, 31, 255, 128, 128}, {0, 0, 0, 0, 128, 128},
      {31, 0, 0, 76, 255, 85},     {0, 63, 0, 149, 22, 44},
      {0, 0, 31, 29, 108, 255},    {16, 32, 16, 130, 128, 128},
  };
  for (const auto& t : words) {
    // Only the upper left pixel reaches the chroma; the others are blue here.
    const int word = t.r5 << 11 | t.g6 << 5 | t.b5;
    const Bytes first{static_cast<uint8_t>(word), static_cast<uint8_t>(word >> 8)};
    EXPECT_EQ(BOTH(convRGB565_YUV420SPVU, plane(2, 2), plane(2, 2),
                   joined(first, {31, 0}, 3), 6),
              Bytes({t.y, 29, 29, 29, t.v, t.u}));
  }
}

TEST(Values, Layouts) {
  EXPECT_EQ(BOTH(convYUV422IUYVY_YUV420SPVU, plane(2, 2), plane(2, 2),
                 Bytes({10, 20, 30, 40, 50, 60, 70, 80}), 6),
            Bytes({20, 40, 60, 80, 30, 10}));
  const ImageStruct wide = plane(3, 2), tall = plane(2, 3);
  const Bytes six{1, 2, 3, 4, 5, 6};
  EXPECT_EQ(BOTH(rotate0_Y, wide, wide, six, 6), six);
  EXPECT_EQ(BOTH(rotate180_Y, wide, wide, six, 6), Bytes({6, 5, 4, 3, 2, 1}));
  EXPECT_EQ(BOTH(rotate90_Y, tall, wide, six, 6), Bytes({4, 1, 5, 2, 6, 3}));
  EXPECT_EQ(BOTH(rotate270_Y, tall, wide, six, 6), Bytes({3, 6, 2, 5, 1, 4}));

  const Bytes sixteen = joined({25}, {10}, 23), four{1, 2, 2, 2, 0, 0};
  EXPECT_EQ(BOTH(resize_averageOfPixel4_420LP, plane(1, 1), plane(4, 4), sixteen, 1),
            Bytes({10}));
  EXPECT_EQ(BOTH(resize_averageOfPixel2_420LP, plane(1, 1), plane(2, 2), four, 1),
            Bytes({1}));

  const Bytes luma(16, 3);
  const Bytes in = joined(luma, {0xA9, 0xEA, 0xE7, 0x07, 0x82, 0x56, 0xAF, 0xD7});
  EXPECT_EQ(BOTH(convYUV420SP_YUV422SP, plane(2, 8), plane(2, 8), in, 32),
            joined(luma, {0xA9, 0xEA, 0xC8, 0x78, 0xE7, 0x07, 0xB4, 0x2E, 0x82, 0x56,
                          0x98, 0x96, 0xAF, 0xD7, 0xAF, 0xD7}));

  // Where the planes of a planar frame start and end.
  struct {
    uint32_t width, height, first, second, size;
  } const planar[] = {
      {32, 4, 128, 160, 192},
      {40, 6, 288, 384, 480},
      {100, 4, 448, 576, 704},
      {176, 2, 352, 448, 544},
  };
  for (const auto& t : planar) {
    const ImageStruct r = zelmWholeFrame(FORMAT_YUV420SPVU, t.width, t.height, nullptr);
    const Bytes frame =
        joined(Bytes(r.uvOffset, 1), {2, 3}, static_cast<int>(r.uvOffset / 4));
    const Bytes out = BOTH(convYUV420SP_YUV420P, r, r, frame, t.size);
    EXPECT_TRUE(out[r.uvOffset - 1] == 1 && out[t.first] == 2 && out[t.second] == 3)
        << t.width;
    EXPECT_EQ(zelmFrameLayout(FORMAT_YUV420P, t.width, t.height).size, t.size);
  }

  // Single samples and the bytes of the tiles they go to.
  struct {
    size_t x, y, tiled;
  } const marks[] = {{0, 0, 0}, {8, 0, 128}, {0, 1, 8}, {16, 0, 256}, {39, 23, 1343}};
  ImageStruct tiled = plane(40, 24);
  tiled.uvOffset = 1536;
  for (const auto& m : marks) {
    Bytes frame(40 * 24 * 3 / 2);
    frame[m.y * 40 + m.x] = 9;
    frame[960] = 200, frame[961] = 50;
    const Bytes tiles =
        BOTH(convYUV420SPVU_YUV420SPMB, plane(40, 24), plane(40, 24), frame, 2304);
    EXPECT_TRUE(tiles[m.tiled] == 9 && tiles[1536] == 50 && tiles[1537] == 200)
        << m.tiled;
    EXPECT_EQ(BOTH(convYUV420SPMB_YUV420SPVU, plane(40, 24), tiled, tiles, 1440),
              frame);
  }
}

TEST(Values, FrameSizes) {
  struct {
    uint32_t format, width, height, size, uvOffset;
  } const table[] = {
      {FORMAT_YUV420SPVU, 6, 4, 36, 24}, {FORMAT_YUV422SP, 6, 4, 48, 24},
      {FORMAT_YUV422SPVU, 6, 4, 48, 24}, {FORMAT_YUV422IUYVY, 6, 4, 48, 0},
      {FORMAT_RGB565, 6, 4, 48, 0},      {FORMAT_RGB888, 6, 4, 72, 0},
      {FORMAT_RGBA8888, 6, 4, 96, 0},    {FORMAT_YUV420SPMB, 40, 24, 2304, 1536},
      {FORMAT_YUV420SP, 3, 2, 0, 0},     {FORMAT_YUV420SP, 2, 0, 0, 0},
      {FORMAT_YUV420SP, 2, 65536, 0, 0}, {FORMAT_RGB888 | FORMAT_RGB565, 2, 2, 0, 0},
  };
  for (const auto& t : table) {
    const ZelmFrameLayout layout = zelmFrameLayout(t.format, t.width, t.height);
    EXPECT_TRUE(layout.size == t.size && layout.uvOffset == t.uvOffset)
        << t.format << ", " << t.width;
  }
  EXPECT_EQ(zelmFrameLayout(FORMAT_RGBA8888, 65534, 65534).size,
            sizeof(size_t) == 8 ? static_cast<size_t>(17178820624) : 0);
}

// Records of frames that cannot exist are refused, whatever the record's fields hold.
TEST(Values, PaddedAndImpossibleFrames) {
  uint8_t sample = 0;
  ImageStruct huge = zelmWholeFrame(FORMAT_YUV420SP, 70000, 720, &sample);
  EXPECT_EQ(checkStruct(&huge), RESULT_BAD_SIZE);
  huge = zelmWholeFrame(FORMAT_YUV420SP, 2, 65538, &sample);
  EXPECT_EQ(checkStruct(&huge), RESULT_BAD_SIZE);

  struct {
    uint32_t format, width, height, stride, columns;
  } const possible[] = {{FORMAT_YUV420SP, 6, 4, 8, 8},
                        {FORMAT_YUV422SPVU, 6, 4, 6, 6},
                        {FORMAT_RGB565, 6, 4, 16, 8},
                        {FORMAT_RGB888, 6, 4, 24, 8},
                        {FORMAT_RGBA8888, 6, 4, 32, 8}};
  for (const auto& t : possible) {
    ImageStruct r = zelmPaddedFrame(t.format, t.width, t.height, t.stride, 40, &sample);
    EXPECT_EQ(checkStruct(&r), RESULT_OK) << t.format;
    EXPECT_TRUE(r.width == t.columns && r.roiWidth == t.width && r.height == t.height &&
                r.roiHeight == t.height && r.uvOffset == 40)
        << t.format;
  }

  struct {
    uint32_t format, width, height, stride;
  } const impossible[] = {{FORMAT_YUV420SP, 6, 4, 4},
                          {FORMAT_YUV420SP, 6, 4, 7},
                          {FORMAT_RGB888, 6, 4, 20},
                          {FORMAT_RGBA8888, 6, 4, 28},
                          {FORMAT_YUV420SP, 5, 4, 8},
                          {FORMAT_YUV420SP, 6, 0, 8},
                          {FORMAT_YUV420SP, 6, 65538, 8},
                          {FORMAT_YUV420SP, 6, 4, 65536 + 8},
                          {FORMAT_YUV420SP, 65542, 4, 65544},
                          {FORMAT_YUV420P, 6, 4, 8},
                          {FORMAT_YUV420SPMB, 16, 16, 16},
                          {FORMAT_RGB565, 6, 4, 2 * 65536 + 16},
                          {7, 6, 4, 8}};
  for (const auto& t : impossible) {
    ImageStruct r = zelmPaddedFrame(t.format, t.width, t.height, t.stride, 40, &sample);
    EXPECT_TRUE(checkStruct(&r) == RESULT_BAD_SIZE && r.width == 0)
        << t.format << ", " << t.stride;
  }
}

TEST(Whole, EverySingleColour) {
  const ImageStruct frame = plane(128, 2);
  Bytes in(128 * 3);
  for (size_t y = 0; y < 256; ++y) in[y] = static_cast<uint8_t>(y);
  for (int uv = 0; uv < 65536 && !HasFailure(); ++uv) {
    for (size_t i = 256; i < 384; i += 2) {
      in[i] = static_cast<uint8_t>(uv), in[i + 1] = static_cast<uint8_t>(uv >> 8);
    }
    BOTH(convYUV420SP_RGBA8888, frame, frame, in, 1024);
    BOTH(convYUV420SP_RGB888, frame, frame, in, 768);
    BOTH(convYUV420SP_RGB565, frame, frame, in, 512);
  }
}

// Right pixels see sums of four samples of one channel, the averaged one, and twice the
// sum of two of the other. Here the first sum rises along the rows from 0 to 1020, the
// second down the frame.
void fillChromaSums(uint8_t* chroma, size_t pairs, size_t rows, bool exchanged) {
  for (size_t k = 0; k < rows; ++k) {
    const size_t down = std::min<size_t>(k > 0 ? k - 1 : 0, 510);
    for (size_t j = 0; j < pairs; ++j, chroma += 2) {
      chroma[exchanged] = static_cast<uint8_t>(((j + 1) / 2 + k % 2) / 2);
      chroma[!exchanged] = static_cast<uint8_t>((down + j % 2) / 2);
    }
  }
}

TEST(Whole, EveryPairOfChromaSums) {
  // Exchanging formats and bytes lets each channel play each part in both kinds of
  // rows. R depends on Y and V, B on Y and U, G is Y and a function of U and V: one
  // luma shows that function unclamped, the other one has every Y with every sum.
  const size_t pairs = 1022, rows = 513, pixels = 4 * pairs * rows;
  const ImageStruct dst = plane(2 * pairs, 2 * rows);
  for (int variant = 0; variant < 8; ++variant) {
    const bool everyLuma = (variant & 1) != 0, exchanged = (variant & 2) != 0;
    ImageStruct src = dst;
    src.format = variant & 4 ? FORMAT_YUV420SPVU : FORMAT_YUV420SP;
    Bytes in(pixels * 3 / 2);
    fillChromaSums(&in[4 * rows * pairs], pairs, rows, exchanged);
    for (size_t k = 0; k < rows; ++k) {
      const size_t down = std::min<size_t>(k > 0 ? k - 1 : 0, 510);
      for (size_t j = 0; j < pairs; ++j) {
        const bool dark = j + 2 * down >= 1024;
        const size_t y = everyLuma ? k + j : dark ? 192 : 64;
        for (size_t at : {4 * k * pairs, (4 * k + 2) * pairs}) {
          in[at + 2 * j] = in[at + 2 * j + 1] = static_cast<uint8_t>(y);
        }
      }
    }
    BOTH(convYUV420SP_RGBA8888, dst, src, in, 4 * pixels);
    BOTH(convYUV420SP_RGB888, dst, src, in, 3 * pixels);
    BOTH(convYUV420SP_RGB565, dst, src, in, 2 * pixels);
  }
}

// The same with every luma. As the reference would take minutes, the rule is written
// here once more, for the right pixels of that frame only.
TEST(Whole, EveryLumaWithEveryPairOfChromaSums) {
  const size_t pairs = 1022, rows = 513, width = 2 * pairs;
  const auto clamp = [](int value) { return std::min(255, std::max(0, value)); };
  const ImageStruct dst = plane(width, 2 * rows);
  ImageStruct src = dst;
  src.format = FORMAT_YUV420SPVU;
  for (const bool exchanged : {false, true}) {
    Bytes in(width * rows * 3), out(4 * width * 2 * rows);
    uint8_t* chroma = &in[width * 2 * rows];
    fillChromaSums(chroma, pairs, rows, exchanged);
    // What is added to Y, for both luma rows of a chroma row: V looks up, U looks down.
    struct Addends {
      int16_t r, g, b;
    };
    std::vector<Addends> addends(pairs * 2 * rows);
    for (size_t y = 2; y < 2 * rows - 2; ++y) {
      const uint8_t* own = chroma + y / 2 * width;
      const uint8_t* forV = y % 2 == 0 ? own - width : own;
      const uint8_t* forU = y % 2 == 1 ? own + width : own;
      for (size_t j = 1; j + 1 < pairs; ++j) {
        const size_t i = 2 * j;
        const int v = own[i] + own[i + 2] + forV[i] + forV[i + 2] - 512;
        const int u = own[i + 1] + own[i + 3] + forU[i + 1] + forU[i + 3] - 512;
        addends[y * pairs + j] = {
            static_cast<int16_t>((11485 * v + 16384) >> 15),
            static_cast<int16_t>((-2819 * u - 5850 * v + 16384) >> 15),
            static_cast<int16_t>((14516 * u + 16384) >> 15)};
      }
    }
    for (int luma = 0; luma < 256; ++luma) {
      std::fill_n(in.begin(), width * 2 * rows, static_cast<uint8_t>(luma));
      ImageStruct to = dst, from = src;
      to.data = out.data();
      from.data = in.data();
      convYUV420SP_RGBA8888(&to, &from);
      size_t wrong = 0;
      for (size_t y = 2; y < 2 * rows - 2; ++y) {
        const Addends* add = &addends[y * pairs];
        const uint8_t* pixel = &out[4 * y * width + 4];
        for (size_t j = 1; j + 1 < pairs; ++j) {
          wrong += pixel[8 * j] != clamp(luma + add[j].r);
          wrong += pixel[8 * j + 1] != clamp(luma + add[j].g);
          wrong += pixel[8 * j + 2] != clamp(luma + add[j].b);
        }
      }
      ASSERT_EQ(wrong, 0u) << "luma " << luma << ", exchanged " << exchanged;
    }
  }
}

TEST(Whole, EveryPackedWord) {
  Bytes in(512 * 512 * 2);  // every word fills 2 x 2 pixels
  for (size_t i = 0; i < 512 * 512; ++i) {
    const size_t word = i / 1024 * 256 + i % 512 / 2;
    in[2 * i] = static_cast<uint8_t>(word);
    in[2 * i + 1] = static_cast<uint8_t>(word >> 8);
  }
  BOTH(convRGB565_YUV420SPVU, plane(512, 512), plane(512, 512), in, 512 * 768);
}

// Exchanges rows and columns.
Bytes transposed(const Bytes& in, size_t columns) {
  const size_t rows = in.size() / columns;
  Bytes out(in.size());
  for (size_t i = 0; i < in.size(); ++i) out[i % columns * rows + i / columns] = in[i];
  return out;
}

TEST(Whole, EveryLinearWeight) {
  // A walk on which every two values follow each other, in pieces of 128 samples; 512
  // steps from one to the next have all weights from 0 to 256.
  Bytes walk;
  for (size_t a = 0; a < 256; ++a) {
    walk.push_back(static_cast<uint8_t>(a));
    for (size_t b = a + 1; b < 256; ++b) {
      walk =
          joined(std::move(walk), {static_cast<uint8_t>(a), static_cast<uint8_t>(b)});
    }
  }
  const int lines = 517, length = 127 * 512 + 1;
  Bytes in;
  for (size_t line = 0; line < lines; ++line) {
    for (size_t i = 0; i < 128; ++i) in.push_back(walk[(127 * line + i) % 65536]);
  }
  const size_t size = static_cast<size_t>(lines) * length;
  BOTH(resize_linear, plane(length, lines), plane(128, lines), in, size);
  BOTH(resize_linear, plane(lines, length), plane(lines, 128), transposed(in, 128),
       size);
}

TEST(Whole, EveryCubicWeightOnExtremes) {
  // 0 and 255 in every combination of four columns and four rows.
  const uint8_t bits[16] = {0, 0, 0, 0, 1, 0, 0, 1, 1, 0, 1, 0, 1, 1, 1, 1};
  Bytes in;
  for (size_t i = 0; i < 72 * 20; ++i) {
    in.push_back(bits[i / 72 % 16] != bits[i % 72 % 16] ? 255 : 0);
  }
  BOTH(resize_cubic, plane(71 * 512 + 1, 77), plane(72, 20), in, (71 * 512 + 1) * 77);
  BOTH(resize_cubic, plane(285, 19 * 512 + 1), plane(72, 20), in, 285 * (19 * 512 + 1));
}

}  // namespace
}  // namespace harness
