// Known values, and the small input spaces whole.
#include <gtest/gtest.h>

#include <cmath>

#include "harness.h"

namespace harness {
namespace {

ImageStruct record(int width, int height, int format = FORMAT_YUV420SP) {
  return zelmWholeFrame(static_cast<uint32_t>(format), static_cast<uint32_t>(width),
                        static_cast<uint32_t>(height), nullptr);
}

// A record of any size whose chroma follows the luma.
ImageStruct plane(int width, int height) {
  ImageStruct r = record(2, 2);
  r.width = r.roiWidth = static_cast<uint16_t>(width);
  r.height = r.roiHeight = static_cast<uint16_t>(height);
  r.uvOffset = static_cast<uint32_t>(width) * static_cast<uint32_t>(height);
  return r;
}

Bytes apply(StageFunction stage, ImageStruct dst, ImageStruct src, Bytes in,
            size_t size) {
  Bytes out(size, 0xEE);
  dst.data = out.data();
  src.data = in.data();
  stage(&dst, &src);
  return out;
}

// The library's output, which must be the reference's as well.
Bytes both(StageFunction product, StageFunction expected, const ImageStruct& dst,
           const ImageStruct& src, const Bytes& in, size_t size) {
  Bytes out = apply(product, dst, src, in, size);
  EXPECT_TRUE(out == apply(expected, dst, src, in, size)) << describe(src);
  return out;
}
#define BOTH(stage, ...) both(::stage, reference::stage, __VA_ARGS__)

void append(Bytes* bytes, std::initializer_list<Bytes> more) {
  for (const Bytes& m : more) bytes->insert(bytes->end(), m.begin(), m.end());
}

TEST(Values, CheckStruct) {
  struct {
    int width, height, x, y, w, h;
    uint32_t format;
    int code, afterX, afterY, afterW, afterH;
  } const table[] = {
      {640, 480, 3, 5, 101, 33, 2, 0, 2, 4, 100, 32},
      {640, 480, 640, 0, 1, 2, 2, 0, 640, 0, 0, 2},
      {640, 480, 640, 0, 2, 2, 2, -3, 640, 0, 2, 2},
      {640, 480, 641, 1, 1, 1, 2, -3, 641, 1, 1, 1},
      {640, 480, 1, 481, 1, 1, 2, -3, 1, 481, 1, 1},
      {640, 480, 1, -1, 1, 1, 2, -3, 1, -1, 1, 1},
      {640, 480, -1, 1, 1, 1, 2, -3, -1, 1, 1, 1},
      {640, 480, 1, 1, 640, 480, 1, 0, 0, 0, 640, 480},
      {640, 480, 3, 1, 640, 479, 1, -3, 2, 0, 640, 478},
      {640, 480, 1, 3, 639, 480, 1, -3, 0, 2, 638, 480},
      {640, 480, 1, 3, 641, 477, 1, 0, 0, 2, 640, 476},
      {641, 480, 9999, 0, 2, 2, 3, -2, 9999, 0, 2, 2},
      {640, 0, -5, 0, 2, 2, 2, -2, -5, 0, 2, 2},
      {0, 480, 0, 0, 0, 0, 2, -2, 0, 0, 0, 0},
      {640, 481, 0, 0, 2, 2, 2, -2, 0, 0, 2, 2},
      {640, 480, 1, 1, 3, 3, 8, -4, 0, 0, 2, 2},
      {640, 480, 0, 0, 642, 2, 8, -3, 0, 0, 642, 2},
      {65534, 65534, 65533, 65533, 1, 1, 4, 0, 65532, 65532, 0, 0},
      {2, 2, 2, 2, 65535, 0, 4, -3, 2, 2, 65534, 0},
  };
  uint8_t byte = 0;
  for (const auto& t : table) {
    for (auto check : {::checkStruct, reference::checkStruct}) {
      ImageStruct r = plane(t.width, t.height);
      r.data = &byte;
      r.format = t.format;
      r.roiX = t.x, r.roiY = t.y;
      r.roiWidth = static_cast<uint16_t>(t.w), r.roiHeight = static_cast<uint16_t>(t.h);
      SCOPED_TRACE(describe(r));
      EXPECT_EQ(check(&r), t.code);
      EXPECT_TRUE(r.roiX == t.afterX && r.roiY == t.afterY && r.roiWidth == t.afterW &&
                  r.roiHeight == t.afterH)
          << describe(r);
    }
  }
  ImageStruct r = record(2, 2);
  EXPECT_EQ(checkStruct(nullptr), RESULT_NULL);
  r.format = 8;
  EXPECT_EQ(checkStruct(&r), RESULT_NULL);
  r.data = &byte;
  for (uint32_t bit = 0; bit < 32; ++bit) {
    r.format = 1u << bit;
    const bool known = ((0x1001D37u & ~0x100u) | 0x100u) >> bit & 1;
    EXPECT_EQ(checkStruct(&r), known ? RESULT_OK : RESULT_BAD_FORMAT) << bit;
    r.format |= 1u << (bit + 1) % 32;
    EXPECT_EQ(checkStruct(&r), RESULT_BAD_FORMAT) << bit;
  }
  r.format = 0;
  EXPECT_EQ(checkStruct(&r), RESULT_BAD_FORMAT);
}

TEST(Values, Helpers) {
  const int table[][4] = {{5, 0, 3, 3},           {-1, 0, 3, 0}, {2, 0, 3, 2},
                          {1, 4, 2, 4},           {5, 4, 2, 2},  {-7, -9, -8, -8},
                          {3, 3, 3, 3},           {0, 0, 3, 0},  {3, 0, 3, 3},
                          {INT32_MIN, -1, 1, -1}, {4, 4, 2, 2}};
  for (const auto& t : table) EXPECT_EQ(clipping(t[0], t[1], t[2]), t[3]) << t[0];
  EXPECT_EQ(logn(2, 8), 3.0);
  EXPECT_EQ(logn(10, 1000), std::log(1000.0) / std::log(10.0));
  EXPECT_NE(logn(10, 1000), 3.0);
  EXPECT_TRUE(std::isinf(logn(1, 5)));
  EXPECT_TRUE(std::isnan(logn(1, 1)));
  EXPECT_EQ(logn(2, 0), -INFINITY);
}

TEST(Values, ReductionRate) {
  const int table[][5] = {
      {1280, 960, 320, 240, 2},  {1920, 1080, 640, 360, 1}, {1920, 1080, 176, 144, 2},
      {1000, 1000, 100, 100, 2}, {4096, 2160, 100, 100, 3}, {600, 400, 24, 24, 2},
      {6, 6, 2, 2, 0},           {640, 480, 400, 300, 0},   {640, 480, 2000, 1500, 0},
      {640, 480, 640, 480, 0},   {300, 300, 100, 100, 1},   {700, 700, 100, 100, 1},
      {560, 560, 80, 80, 2},     {640, 480, 320, 480, 0},   {65534, 65534, 2, 2, 0},
      {32768, 65534, 2, 2, 0},   {32768, 32768, 2, 2, 14},  {32768, 32768, 1, 1, 14},
      {640, 480, 0, 2, 0},       {640, 480, 2, 0, 0},       {0, 0, 2, 2, 0},
      {641, 480, 20, 20, 0},     {640, 481, 20, 20, 0},     {1280, 640, 320, 240, 1}};
  for (const auto& t : table) {
    ImageStruct src = plane(t[0], t[1]), dst = plane(t[2], t[3]);
    EXPECT_EQ(getReductionRate(&dst, &src), t[4]) << t[0] << " to " << t[2];
    EXPECT_EQ(reference::getReductionRate(&dst, &src), t[4]) << t[0] << " to " << t[2];
  }
  // Every ratio, where nothing stops the halving and where the extents do.
  for (int extent : {32768, 65534, 65520, 60480}) {
    for (int to = 1; to <= extent; to += 1 + to / 500) {
      ImageStruct src = plane(extent, extent), dst = plane(to, (to + 1) / 2);
      ASSERT_EQ(getReductionRate(&dst, &src), reference::getReductionRate(&dst, &src))
          << extent << " to " << to;
    }
  }
}

TEST(Values, CheckRotateParam) {
  struct {
    int mode, rotation, dstWidth, dstHeight, code;
  } const table[] = {{1, 0, 6, 4, 0},    {1, 2, 6, 4, 0},         {1, 1, 4, 6, 0},
                     {1, 4, 4, 6, 0},    {1, 1, 6, 4, -11},       {1, 4, 6, 4, -11},
                     {1, 0, 4, 6, -11},  {1, 2, 6, 6, -11},       {1, 1, 4, 8, -11},
                     {1, 0, 6, 5, -11},  {1, 3, 1, 1, -9},        {1, -1, 6, 4, -9},
                     {1, 5, 6, 4, -9},   {0, 7, 1, 1, -10},       {2, 0, 6, 4, -10},
                     {-1, 0, 6, 4, -10}, {1, INT32_MIN, 6, 4, -9}};
  for (const auto& t : table) {
    ImageStruct src = plane(6, 4), dst = plane(t.dstWidth, t.dstHeight);
    for (auto check : {::checkRotateParam, reference::checkRotateParam}) {
      EXPECT_EQ(check(&src, &dst, t.mode, t.rotation), t.code)
          << "mode " << t.mode << ", rotation " << t.rotation;
    }
  }
}

TEST(Values, ScaledLines) {
  struct {
    int method;
    Bytes in, out;
  } const table[] = {
      {RESIZE_NEAREST, {0, 1, 2, 3}, {0, 1, 1, 2, 2, 3, 3}},
      {RESIZE_NEAREST, {0, 1, 2, 3, 4, 5, 6, 7}, {0, 4, 7}},
      {RESIZE_NEAREST, {5, 4, 3, 2, 1, 0}, {5, 4, 3, 2, 1, 0}},
      {RESIZE_NEAREST, {9, 1, 2, 3, 4}, {9}},
      {RESIZE_LINEAR, {0, 255}, {0, 64, 128, 191, 255}},
      {RESIZE_LINEAR, {0, 100, 200, 255}, {0, 50, 100, 150, 200, 228, 255}},
      {RESIZE_LINEAR, {0, 128, 0}, {0, 86, 86, 0}},
      {RESIZE_LINEAR, {0, 1, 2, 10, 21, 5, 6, 99}, {0, 16, 99}},
      {RESIZE_CUBIC, {0, 0, 255, 255}, {0, 0, 0, 128, 255, 255, 255}},
      {RESIZE_CUBIC, {0, 100, 200, 100}, {0, 38, 100, 175, 200, 163, 100}},
      {RESIZE_CUBIC, {7, 9}, {7}},
      {RESIZE_CUBIC, {7}, {7, 7, 7}},
  };
  for (const auto& t : table) {
    const int n = static_cast<int>(t.in.size()), m = static_cast<int>(t.out.size());
    Bytes pairsIn(2 * n * 4), pairsOut;  // luma left out: chroma from byte 0
    for (int i = 0; i < n; ++i) pairsIn[2 * i] = t.in[i], pairsIn[2 * i + 1] = 77;
    for (uint8_t b : t.out) pairsOut.insert(pairsOut.end(), {b, 77});
    ImageStruct dst = plane(2 * m, 2), src = plane(2 * n, 2);
    dst.uvOffset = src.uvOffset = 0;
    const size_t size = 2 * t.out.size();
    SCOPED_TRACE(testing::PrintToString(t.out));
#define LINES(stage)                                                           \
  EXPECT_EQ(BOTH(stage, plane(m, 1), plane(n, 1), t.in, t.out.size()), t.out); \
  EXPECT_EQ(BOTH(stage, plane(1, m), plane(1, n), t.in, t.out.size()), t.out); \
  EXPECT_EQ(BOTH(stage##VU, dst, src, pairsIn, size), pairsOut)
    if (t.method == RESIZE_NEAREST) {
      LINES(resize_nearest);
    } else if (t.method == RESIZE_LINEAR) {
      LINES(resize_linear);
    } else {
      LINES(resize_cubic);
    }
  }
}

TEST(Values, Colours) {
  struct {
    int y, u, v;
    Bytes rgb;
    int word;
  } const table[] = {
      {76, 85, 255, {254, 0, 0}, 31},
      {29, 255, 107, {0, 0, 254}, 31 << 11},
      {128, 0, 0, {0, 255, 0}, 63 << 5},
      {128, 255, 255, {255, 0, 255}, 31 | 31 << 11},
      {235, 128, 128, {235, 235, 235}, 29 | 58 << 5 | 29 << 11},
      {16, 128, 128, {16, 16, 16}, 2 | 4 << 5 | 2 << 11},
  };
  for (const auto& t : table) {
    for (uint32_t format : {2u, 4u, 0u}) {
      Bytes in(64 * 3 / 2, static_cast<uint8_t>(t.y)), rgb, rgba, words;
      const bool uFirst = format == FORMAT_YUV420SP;
      for (size_t i = 64; i < in.size(); i += 2) {
        in[i] = static_cast<uint8_t>(uFirst ? t.u : t.v);
        in[i + 1] = static_cast<uint8_t>(uFirst ? t.v : t.u);
      }
      for (int i = 0; i < 64; ++i) {
        append(&rgb, {t.rgb});
        append(&rgba, {t.rgb, {255}});
        append(&words, {{uint8_t(t.word & 255), uint8_t(t.word >> 8)}});
      }
      ImageStruct src = plane(8, 8);
      src.format = format;
      EXPECT_EQ(BOTH(convYUV420SP_RGB888, plane(8, 8), src, in, 192), rgb);
      EXPECT_EQ(BOTH(convYUV420SP_RGBA8888, plane(8, 8), src, in, 256), rgba);
      EXPECT_EQ(BOTH(convYUV420SP_RGB565, plane(8, 8), src, in, 128), words);
    }
  }
  const int packed[][6] = {{31, 63, 31, 255, 128, 128}, {0, 0, 0, 0, 128, 128},
                           {31, 0, 0, 76, 255, 85},     {0, 63, 0, 149, 22, 44},
                           {0, 0, 31, 29, 108, 255},    {16, 32, 16, 130, 128, 128}};
  for (const auto& t : packed) {
    const int word = t[0] << 11 | t[1] << 5 | t[2];
    const uint8_t low = static_cast<uint8_t>(word),
                  high = static_cast<uint8_t>(word >> 8);
    const uint8_t y = static_cast<uint8_t>(t[3]);
    // Only the upper left pixel reaches the chroma; the others are blue here.
    const Bytes out{
        y, 29, 29, 29, static_cast<uint8_t>(t[4]), static_cast<uint8_t>(t[5])};
    EXPECT_EQ(BOTH(convRGB565_YUV420SPVU, plane(2, 2), plane(2, 2),
                   Bytes({low, high, 31, 0, 31, 0, 31, 0}), 6),
              out);
  }
}

TEST(Values, Layouts) {
  EXPECT_EQ(BOTH(convYUV422IUYVY_YUV420SPVU, plane(2, 2), plane(2, 2),
                 Bytes({10, 20, 30, 40, 50, 60, 70, 80}), 6),
            Bytes({20, 40, 60, 80, 30, 10}));
  const Bytes six{1, 2, 3, 4, 5, 6};
  EXPECT_EQ(BOTH(rotate0_Y, plane(3, 2), plane(3, 2), six, 6), six);
  EXPECT_EQ(BOTH(rotate180_Y, plane(3, 2), plane(3, 2), six, 6),
            Bytes({6, 5, 4, 3, 2, 1}));
  EXPECT_EQ(BOTH(rotate90_Y, plane(2, 3), plane(3, 2), six, 6),
            Bytes({4, 1, 5, 2, 6, 3}));
  EXPECT_EQ(BOTH(rotate270_Y, plane(2, 3), plane(3, 2), six, 6),
            Bytes({3, 6, 2, 5, 1, 4}));

  // Means are rounded down.
  Bytes block(24, 10);
  block[5] = 25;
  EXPECT_EQ(BOTH(resize_averageOfPixel4_420LP, plane(1, 1), plane(4, 4), block, 1),
            Bytes({10}));
  EXPECT_EQ(BOTH(resize_averageOfPixel2_420LP, plane(1, 1), plane(2, 2),
                 Bytes({1, 2, 2, 2, 0, 0}), 1),
            Bytes({1}));

  // 4:2:2: four chroma rows to eight.
  Bytes chroma{0xA9, 0xEA, 0xE7, 0x07, 0x82, 0x56, 0xAF, 0xD7}, in(16, 3), luma(16, 3);
  append(&in, {chroma});
  Bytes kept = luma, swapped = luma;
  append(&kept, {{0xA9, 0xEA, 0xC8, 0x78, 0xE7, 0x07, 0xB4, 0x2E},
                 {0x82, 0x56, 0x98, 0x96, 0xAF, 0xD7, 0xAF, 0xD7}});
  append(&swapped, {{0xEA, 0xA9, 0x78, 0xC8, 0x07, 0xE7, 0x2E, 0xB4},
                    {0x56, 0x82, 0x96, 0x98, 0xD7, 0xAF, 0xD7, 0xAF}});
  EXPECT_EQ(BOTH(convYUV420SP_YUV422SP, plane(2, 8), plane(2, 8), in, 32), kept);
  EXPECT_EQ(BOTH(convYUV420SP_YUV422SP_VU2UV, plane(2, 8), plane(2, 8), in, 32),
            swapped);

  // Planar planes: where they start and which padding stays untouched.
  const size_t planar[][5] = {{32, 4, 128, 160, 192},
                              {40, 6, 288, 384, 480},
                              {100, 4, 448, 576, 704},
                              {176, 2, 352, 448, 544}};
  for (const auto& t : planar) {
    const size_t w = t[0], h = t[1];
    Bytes frame(w * h * 3 / 2, 1);
    for (size_t i = w * h; i < frame.size(); ++i) frame[i] = i % 2 == 0 ? 2 : 3;
    ImageStruct r = plane(static_cast<int>(w), static_cast<int>(h));
    const Bytes out = BOTH(convYUV420SP_YUV420P, r, r, frame, t[4]);
    const size_t rowBytes = 2 * (t[3] - t[2]) / h;
    for (size_t i = 0; i < out.size(); ++i) {
      const int value = i < w * h                                    ? 1
                        : i < t[2] || (i - t[2]) % rowBytes >= w / 2 ? 0xEE
                        : i < t[3]                                   ? 2
                                                                     : 3;
      ASSERT_EQ(int{out[i]}, value) << w << " x " << h << ", byte " << i;
    }
    EXPECT_EQ(zelmFrameLayout(FORMAT_YUV420P, r.width, r.height).size, t[4]);
  }

  // Tiles: single samples and where they go.
  const int marks[][3] = {
      {0, 0, 0}, {8, 0, 128}, {0, 1, 8}, {16, 0, 256}, {39, 23, 1343}};
  for (const auto& m : marks) {
    Bytes frame(40 * 24 * 3 / 2);
    frame[static_cast<size_t>(m[1] * 40 + m[0])] = 9;
    frame[960] = 200, frame[961] = 50;
    const Bytes tiles =
        BOTH(convYUV420SPVU_YUV420SPMB, plane(40, 24), plane(40, 24), frame, 2304);
    EXPECT_EQ(tiles[static_cast<size_t>(m[2])], 9) << m[0] << ", " << m[1];
    EXPECT_EQ(tiles[1536], 50);
    EXPECT_EQ(tiles[1537], 200);
    ImageStruct tiled = plane(40, 24);
    tiled.uvOffset = 1536;
    EXPECT_EQ(
        BOTH(convYUV420SPMB_YUV420SPVU, plane(40, 24), tiled, tiles, frame.size()),
        frame);
  }
}

TEST(Whole, EverySingleColour) {
  const ImageStruct frame = plane(128, 2);
  Bytes in(128 * 3);
  for (int y = 0; y < 256; ++y) in[static_cast<size_t>(y)] = static_cast<uint8_t>(y);
  for (int uv = 0; uv < 65536; ++uv) {
    for (size_t i = 256; i < 384; i += 2) {
      in[i] = static_cast<uint8_t>(uv), in[i + 1] = static_cast<uint8_t>(uv >> 8);
    }
    const Bytes rgba = apply(::convYUV420SP_RGBA8888, frame, frame, in, 1024);
    const Bytes rgb = apply(::convYUV420SP_RGB888, frame, frame, in, 768);
    const Bytes words = apply(::convYUV420SP_RGB565, frame, frame, in, 512);
    // The formula once more, at full scale.
    const int64_t us = 64 * (uv & 255) - 8192, vs = 64 * (uv >> 8) - 8192;
    for (int64_t y = 0; y < 256; ++y) {
      const int64_t yf = (y << 20) + (1 << 19);
      const int64_t sums[] = {yf + 22970 * vs, yf - 5638 * us - 11700 * vs,
                              yf + 29032 * us};
      int value[3];
      for (int c = 0; c < 3; ++c) {
        value[c] = clipping(static_cast<int>(sums[c] >> 20), 0, 255);
      }
      const size_t i = static_cast<size_t>(y);
      const int word = value[0] >> 3 | value[1] >> 2 << 5 | value[2] >> 3 << 11;
      ASSERT_TRUE(rgba[4 * i] == value[0] && rgba[4 * i + 1] == value[1] &&
                  rgba[4 * i + 2] == value[2] && rgba[4 * i + 3] == 255 &&
                  rgb[3 * i] == value[0] && rgb[3 * i + 1] == value[1] &&
                  rgb[3 * i + 2] == value[2] && words[2 * i] == (word & 255) &&
                  words[2 * i + 1] == word >> 8)
          << "Y " << y << ", U " << (uv & 255) << ", V " << (uv >> 8);
    }
  }
}

TEST(Whole, EveryChromaSum) {
  // Chroma that repeats every two rows and pairs: all inner pixels see the same sum
  // of four, and there is one for every luma value.
  const ImageStruct frame = plane(36, 36);
  Bytes in(36 * 54);
  for (size_t i = 0; i < 1296; ++i) {
    in[i] = static_cast<uint8_t>(i / 72 * 16 + i % 36 / 2);
  }
  const auto quarter = [](int sum, size_t which) {
    return static_cast<uint8_t>((sum + static_cast<int>(which)) / 4);
  };
  for (int sum = 0; sum <= 1020; ++sum) {
    for (int other : {0, 1, 511, 514, 1019, 1020, 1020 - sum}) {
      for (size_t k = 0; k < 18; ++k) {
        for (size_t j = 0; j < 18; ++j) {
          const size_t which = k % 2 * 2 + j % 2;
          in[1296 + k * 36 + 2 * j] = quarter(sum, which);
          in[1296 + k * 36 + 2 * j + 1] = quarter(other, which);
        }
      }
      BOTH(convYUV420SP_RGBA8888, frame, frame, in, 5184);
      if (sum % 4 == 1) {
        BOTH(convYUV420SP_RGB565, frame, frame, in, 2592);
      }
      if (HasFailure()) return;
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

TEST(Whole, EveryMean) {
  Bytes in(256 * 4 + 512);
  for (size_t b = 0; b < 256; ++b) {
    for (size_t a = 0; a < 256; ++a) {
      in[1024 + a] = static_cast<uint8_t>(a), in[1280 + a] = static_cast<uint8_t>(b);
    }
    BOTH(convYUV420SP_YUV422SP, plane(256, 4), plane(256, 4), in, 2048);
    BOTH(convYUV420SP_YUV422SP_VU2UV, plane(256, 4), plane(256, 4), in, 2048);
  }
}

TEST(Whole, EveryLinearWeight) {
  // Two samples to 257: the weights of the second are 0 to 256.
  Bytes across(512), down(512);
  for (size_t a = 0; a < 256; ++a) {
    for (size_t b = 0; b < 256; ++b) {
      across[2 * b] = down[b] = static_cast<uint8_t>(a);
      across[2 * b + 1] = down[256 + b] = static_cast<uint8_t>(b);
    }
    BOTH(resize_linear, plane(257, 256), plane(2, 256), across, 257 * 256);
    BOTH(resize_linear, plane(256, 257), plane(256, 2), down, 257 * 256);
    if (HasFailure()) return;
  }
}

TEST(Whole, CubicWeightsOnExtremes) {
  // Rows of 0 and 255 in every combination of four columns and four rows, sampled at
  // every weight between the middle two.
  for (int pattern = 0; pattern < 256; ++pattern) {
    Bytes in(16);
    for (int i = 0; i < 16; ++i) {
      const bool row = pattern >> (i / 4) & 1, column = pattern >> (4 + i % 4) & 1;
      in[static_cast<size_t>(i)] = row != column ? 255 : 0;
    }
    BOTH(resize_cubic, plane(769, 13), plane(4, 4), in, 769 * 13);
    BOTH(resize_cubic, plane(13, 769), plane(4, 4), in, 769 * 13);
    if (HasFailure()) return;
  }
}

TEST(Layout, FrameSizes) {
  struct {
    uint32_t format, width, height;
    size_t size;
    uint32_t uvOffset;
  } const table[] = {{FORMAT_YUV420P, 100, 4, 704, 400},
                     {FORMAT_YUV420SP, 6, 4, 36, 24},
                     {FORMAT_YUV420SPVU, 6, 4, 36, 24},
                     {FORMAT_YUV422SP, 6, 4, 48, 24},
                     {FORMAT_YUV422SPVU, 6, 4, 48, 24},
                     {FORMAT_YUV422IUYVY, 6, 4, 48, 0},
                     {FORMAT_RGB565, 6, 4, 48, 0},
                     {FORMAT_RGB888, 6, 4, 72, 0},
                     {FORMAT_RGBA8888, 6, 4, 96, 0},
                     {FORMAT_YUV420SPMB, 40, 24, 2304, 1536},
                     {FORMAT_YUV420SPMB, 64, 32, 3072, 2048},
                     {FORMAT_YUV420SP, 3, 2, 0, 0},
                     {FORMAT_YUV420SP, 0, 2, 0, 0},
                     {FORMAT_YUV420SP, 2, 65536, 0, 0},
                     {FORMAT_RGB888 | FORMAT_RGB565, 2, 2, 0, 0},
                     {8, 2, 2, 0, 0}};
  for (const auto& t : table) {
    const ZelmFrameLayout layout = zelmFrameLayout(t.format, t.width, t.height);
    EXPECT_EQ(layout.size, t.size) << t.format << ": " << t.width << " x " << t.height;
    EXPECT_EQ(layout.uvOffset, t.uvOffset) << t.format;
  }
  const bool wide = sizeof(void*) == 8;
  EXPECT_EQ(zelmFrameLayout(FORMAT_RGBA8888, 65534, 65534).size,
            wide ? size_t{65534} * 65534 * 4 : 0);
  EXPECT_EQ(sizeof(ImageStruct), wide ? 88u : 80u);
  EXPECT_EQ(offsetof(ImageStruct, data), wide ? 40u : 36u);
}

}  // namespace
}  // namespace harness
