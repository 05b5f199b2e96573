// What holds of zelm_frames apart from the reference: the bytes of zelm_imageutil, the
// colours of the formulas in real numbers, turns that add up, all values of small
// spaces.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

#include "frames_harness.h"
#include "zelm_imageutil.h"

namespace frames_test {
namespace {

// ------------------------------------------------------------ the other library's
// bytes

struct Route {
  ImageFormat imageFrom, imageTo;
  ZelmFormat from, to;
};

constexpr Route kRoutes[] = {
    {FORMAT_YUV420SP, FORMAT_YUV420SP, ZELM_NV12, ZELM_NV12},
    {FORMAT_YUV420SP, FORMAT_YUV420SPVU, ZELM_NV12, ZELM_NV21},
    {FORMAT_YUV420SP, FORMAT_YUV422SP, ZELM_NV12, ZELM_NV16},
    {FORMAT_YUV420SP, FORMAT_YUV422SPVU, ZELM_NV12, ZELM_NV61},
    {FORMAT_YUV420SP, FORMAT_RGB565, ZELM_NV12, ZELM_BGR565},
    {FORMAT_YUV420SP, FORMAT_RGB888, ZELM_NV12, ZELM_RGB24},
    {FORMAT_YUV420SP, FORMAT_RGBA8888, ZELM_NV12, ZELM_RGBA},
    {FORMAT_YUV420SPVU, FORMAT_YUV420SP, ZELM_NV21, ZELM_NV12},
    {FORMAT_YUV420SPVU, FORMAT_YUV420SPVU, ZELM_NV21, ZELM_NV21},
    {FORMAT_YUV420SPVU, FORMAT_YUV422SP, ZELM_NV21, ZELM_NV16},
    {FORMAT_YUV420SPVU, FORMAT_YUV422SPVU, ZELM_NV21, ZELM_NV61},
    {FORMAT_YUV420SPVU, FORMAT_RGB565, ZELM_NV21, ZELM_BGR565},
    {FORMAT_YUV420SPVU, FORMAT_RGB888, ZELM_NV21, ZELM_RGB24},
    {FORMAT_YUV420SPVU, FORMAT_RGBA8888, ZELM_NV21, ZELM_RGBA},
    {FORMAT_YUV420SPVU, FORMAT_YUV420SPMB, ZELM_NV21, ZELM_TILED},
    {FORMAT_YUV422IUYVY, FORMAT_YUV420SPVU, ZELM_UYVY, ZELM_NV21},
    {FORMAT_YUV420SPMB, FORMAT_YUV420SPVU, ZELM_TILED, ZELM_NV21},
    {FORMAT_YUV420P, FORMAT_YUV420SPVU, ZELM_YV12, ZELM_NV21},
    {FORMAT_YUV420SPVU, FORMAT_YUV420P, ZELM_NV21, ZELM_YV12},
};

class FramesLikeImages : public testing::TestWithParam<Route> {};

TEST_P(FramesLikeImages, SameBytes) {
  const Route& route = GetParam();
  const bool planar =
      route.imageFrom == FORMAT_YUV420P || route.imageTo == FORMAT_YUV420P;
  const int methods[] = {RESIZE_LINEAR, RESIZE_NEAREST, RESIZE_CUBIC};
  Random random(17);
  const auto even = [&random](int limit) {
    return static_cast<uint32_t>(2 + random.below(limit) / 2 * 2);
  };
  for (int i = 0; i < 120; i += caseStep()) {
    // Planar frames are converted whole, and are laid out alike at these widths alone.
    uint32_t w = even(150), h = even(60), toW = even(70), toH = even(40);
    if (i % 3 == 0) toW = w, toH = h;
    if (i % 3 == 1) w = toW * (2 + even(6)), h = toH * (2 + even(6));
    if (planar) w = toW = 32 * (1 + w % 4), toH = h;
    const uint32_t x = planar ? 0 : even(20), y = planar ? 0 : even(20) - 2;
    OwnFrame src(route.from, w + x, h + y), dst(route.to, toW + y, toH + x);
    src.fill(static_cast<uint32_t>(i));
    dst.fill(99);
    Bytes expected = dst.bytes;
    ZelmEdit edit = {};
    edit.source = {x, y, w, h};
    edit.destination = {y, x, toW, toH};
    const int luma = random.below(3), chroma = random.below(3);
    edit.lumaFilter = static_cast<uint32_t>(luma);
    edit.chromaFilter = static_cast<uint32_t>(chroma);
    convert(&dst, src, edit);

    const auto record = [](ImageFormat format, const OwnFrame& f, const ZelmRegion& r,
                           uint8_t* data) {
      ImageStruct image = zelmWholeFrame(format, f.frame.width, f.frame.height, data);
      EXPECT_EQ(image.dataSize, f.bytes.size());
      image.roiX = static_cast<int>(r.x), image.roiY = static_cast<int>(r.y);
      image.roiWidth = static_cast<uint16_t>(r.width);
      image.roiHeight = static_cast<uint16_t>(r.height);
      return image;
    };
    ASSERT_EQ(Zelm_Resize_and_Convert(
                  record(route.imageFrom, src, edit.source, src.bytes.data()),
                  record(route.imageTo, dst, edit.destination, expected.data()),
                  methods[luma], methods[chroma], 0),
              RESULT_OK);
    ASSERT_TRUE(dst.bytes == expected)
        << i << ": (" << x << ", " << y << ") " << w << " x " << h << " to " << toW
        << " x " << toH << ", filters " << luma << " " << chroma << ", from byte "
        << std::mismatch(expected.begin(), expected.end(), dst.bytes.begin()).first -
               expected.begin();
  }
}

INSTANTIATE_TEST_SUITE_P(, FramesLikeImages, testing::ValuesIn(kRoutes),
                         [](const auto& info) {
                           const auto name = [](uint32_t format) {
                             return frames_reference::formatOf(format).name;
                           };
                           return std::string(name(info.param.from)) + "to" +
                                  name(info.param.to);
                         });

// -------------------------------------------------------------------------------
// colour

using Colour = std::array<double, 3>;

struct Description {
  explicit Description(uint32_t colour)
      : kr(colour < 2   ? 0.299
           : colour < 4 ? 0.2126
                        : 0.2627),
        kb(colour < 2   ? 0.114
           : colour < 4 ? 0.0722
                        : 0.0593),
        limited(colour % 2 == 1) {}

  Colour toRgb(const Colour& yuv) const {
    const double y = limited ? (yuv[0] - 16) * 255 / 219 : yuv[0];
    const double cb = (yuv[1] - 128) * (limited ? 255.0 / 224 : 1);
    const double cr = (yuv[2] - 128) * (limited ? 255.0 / 224 : 1);
    const double r = y + 2 * (1 - kr) * cr, b = y + 2 * (1 - kb) * cb;
    return {r, (y - kr * r - kb * b) / (1 - kr - kb), b};
  }
  Colour toYuv(const Colour& rgb) const {
    const double y = kr * rgb[0] + (1 - kr - kb) * rgb[1] + kb * rgb[2];
    const double scale = limited ? 224.0 / 255 : 1;
    return {limited ? 16 + y * 219 / 255 : y,
            128 + scale * (rgb[2] - y) / (2 * (1 - kb)),
            128 + scale * (rgb[0] - y) / (2 * (1 - kr))};
  }

  double kr, kb;
  bool limited;
};

// Whether a channel is at most 1 from its value in real numbers, held to 0 to 255.
bool near(uint8_t channel, double exact) {
  return std::abs(channel - std::clamp(exact, 0.0, 255.0)) <= 1;
}

// A grid with both ends, in steps of at most 17.
constexpr int kGrid[] = {0,   8,   16,  17,  33,  50,  67,  84,  101, 118, 127, 128,
                         129, 144, 161, 178, 195, 212, 223, 235, 240, 241, 254, 255};

// One colour for every two by two pixels: all that the grid has.
std::vector<std::array<uint8_t, 3>> gridColours() {
  std::vector<std::array<uint8_t, 3>> colours;
  for (const int a : kGrid) {
    for (const int b : kGrid) {
      for (const int c : kGrid) {
        colours.push_back({static_cast<uint8_t>(a), static_cast<uint8_t>(b),
                           static_cast<uint8_t>(c)});
      }
    }
  }
  return colours;
}

class FramesColours : public testing::TestWithParam<uint32_t> {};

// Rows of one chroma sample and all luma values.
TEST_P(FramesColours, YuvToRgbIsNearTheFormula) {
  const Description description(GetParam());
  OwnFrame src(ZELM_I420, 256, 2, GetParam()), dst(ZELM_RGB24, 256, 2);
  OwnFrame expected(ZELM_RGB24, 256, 2);
  for (uint32_t i = 0; i < 512; ++i) src.bytes[i] = static_cast<uint8_t>(i);
  for (const int u : kGrid) {
    for (const int v : kGrid) {
      std::fill_n(src.frame.planes[1].data, 128, static_cast<uint8_t>(u));
      std::fill_n(src.frame.planes[2].data, 128, static_cast<uint8_t>(v));
      convert(&dst, src);
      frames_reference::convert(expected.frame, src.frame, {});
      ASSERT_TRUE(dst.bytes == expected.bytes) << "U " << u << ", V " << v;
      for (int y = 0; y < 256; ++y) {
        const Colour exact = description.toRgb(
            {static_cast<double>(y), static_cast<double>(u), static_cast<double>(v)});
        for (size_t c = 0; c < 3; ++c) {
          const uint8_t channel = dst.bytes[static_cast<size_t>(y) * 3 + c];
          ASSERT_TRUE(near(channel, exact[c]))
              << "YUV " << y << " " << u << " " << v << ": channel " << c << " is "
              << int{channel} << " instead of " << exact[c];
        }
      }
    }
  }
}

TEST_P(FramesColours, RgbToYuvIsNearTheFormulaAndKeepsGrey) {
  const Description description(GetParam());
  const auto colours = gridColours();
  const uint32_t count = static_cast<uint32_t>(colours.size());
  OwnFrame src(ZELM_RGB24, 2 * count, 2), dst(ZELM_I420, 2 * count, 2, GetParam());
  for (size_t i = 0; i < 4 * colours.size(); ++i) {
    const auto& colour = colours[i % (2 * count) / 2];
    std::copy(colour.begin(), colour.end(), &src.bytes[3 * i]);
  }
  convert(&dst, src);
  for (size_t i = 0; i < count; ++i) {
    const Colour exact = description.toYuv({static_cast<double>(colours[i][0]),
                                            static_cast<double>(colours[i][1]),
                                            static_cast<double>(colours[i][2])});
    const uint8_t yuv[] = {dst.frame.planes[0].data[2 * i], dst.frame.planes[1].data[i],
                           dst.frame.planes[2].data[i]};
    const bool grey = colours[i][0] == colours[i][1] && colours[i][1] == colours[i][2];
    for (size_t c = 0; c < 3; ++c) {
      ASSERT_TRUE(near(yuv[c], exact[c]) && (!grey || c == 0 || yuv[c] == 128))
          << "RGB " << int{colours[i][0]} << " " << int{colours[i][1]} << " "
          << int{colours[i][2]} << ": channel " << c << " is " << int{yuv[c]}
          << " instead of " << exact[c];
    }
  }
}

TEST_P(FramesColours, YuvToYuvIsNearTheFormula) {
  const Description from(GetParam());
  const auto colours = gridColours();
  const uint32_t count = static_cast<uint32_t>(colours.size());
  OwnFrame src(ZELM_I422, 2 * count, 1, GetParam());
  for (size_t i = 0; i < count; ++i) {
    src.frame.planes[0].data[2 * i] = src.frame.planes[0].data[2 * i + 1] =
        colours[i][0];
    src.frame.planes[1].data[i] = colours[i][1];
    src.frame.planes[2].data[i] = colours[i][2];
  }
  for (uint32_t colour = 0; colour < kColours; ++colour) {
    const Description to(colour);
    OwnFrame dst(ZELM_I422, 2 * count, 1, colour);
    convert(&dst, src);
    for (size_t i = 0; i < count; ++i) {
      const Colour exact = to.toYuv(from.toRgb({static_cast<double>(colours[i][0]),
                                                static_cast<double>(colours[i][1]),
                                                static_cast<double>(colours[i][2])}));
      const uint8_t yuv[] = {dst.frame.planes[0].data[2 * i],
                             dst.frame.planes[1].data[i], dst.frame.planes[2].data[i]};
      for (size_t c = 0; c < 3; ++c) {
        ASSERT_TRUE(near(yuv[c], exact[c]))
            << "to colour " << colour << ", YUV " << int{colours[i][0]} << " "
            << int{colours[i][1]} << " " << int{colours[i][2]} << ": channel " << c
            << " is " << int{yuv[c]} << " instead of " << exact[c];
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(, FramesColours, testing::Range(0u, kColours));

TEST(FramesValues, EveryWordOf565) {
  for (uint32_t from : {ZELM_RGB565, ZELM_BGR565}) {
    OwnFrame words(from, 256, 256), pixels(ZELM_RGB24, 256, 256), back(from, 256, 256);
    const auto fill = [](uint8_t* bytes, size_t size, size_t) {
      for (size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<uint8_t>(i % 2 == 0 ? i / 2 : i / 512);
      }
    };
    fill(words.bytes.data(), words.bytes.size(), 0);
    convert(&pixels, words);
    convert(&back, pixels);
    EXPECT_TRUE(back.bytes == words.bytes);
    for (uint32_t to = 1; to <= kFormats; ++to) {
      const Case c = {layOut(to, 256, 256), layOut(from, 256, 256), {}};
      const harness::Text wrong =
          Comparison(c, fill).run(convertAtOnce, Comparison::Guard::kBehind);
      EXPECT_TRUE(wrong.empty()) << wrong;
    }
  }
}

// ------------------------------------------------------------------- turns and mirrors

struct Move {
  uint32_t turn, mirror;
};

// What a frame becomes when it is moved again and again.
OwnFrame moved(const OwnFrame& frame, std::initializer_list<Move> moves) {
  const uint32_t format = frame.frame.format;
  uint32_t w = frame.frame.width, h = frame.frame.height;
  OwnFrame result(format, w, h);
  const OwnFrame* from = &frame;
  for (const Move& move : moves) {
    if (move.turn % 180 != 0) std::swap(w, h);
    OwnFrame to(format, w, h);
    ZelmEdit edit = {};
    edit.turn = move.turn;
    edit.mirror = move.mirror;
    convert(&to, *from, edit);
    result = std::move(to);
    from = &result;
  }
  return result;
}

TEST(FramesTurns, AddUp) {
  for (uint32_t format = 1; format <= kFormats; ++format) {
    const frames_reference::Format& kind = frames_reference::formatOf(format);
    const bool quarters = kind.across == kind.down;  // not 4:2:2, which loses chroma
    for (const uint32_t width : {1u, 2u, 15u, 34u, 64u, 131u}) {
      OwnFrame noise(format, width, 37);
      noise.fill(width);
      // Padding of tiles and of odd packed rows is zero, or what the library makes it.
      const OwnFrame frame = moved(noise, {{0, 0}});
      EXPECT_TRUE(moved(frame, {{0, 1}, {0, 1}}).bytes == frame.bytes) << format;
      EXPECT_TRUE(moved(frame, {{180, 0}, {180, 0}}).bytes == frame.bytes) << format;
      EXPECT_TRUE(moved(frame, {{180, 1}, {180, 1}}).bytes == frame.bytes) << format;
      if (!quarters) continue;
      EXPECT_TRUE(moved(frame, {{90, 0}, {90, 0}, {90, 0}, {90, 0}}).bytes ==
                  frame.bytes)
          << format;
      EXPECT_TRUE(moved(frame, {{90, 0}, {90, 0}}).bytes ==
                  moved(frame, {{180, 0}}).bytes)
          << format;
      EXPECT_TRUE(moved(frame, {{90, 0}, {180, 0}}).bytes ==
                  moved(frame, {{270, 0}}).bytes)
          << format;
      EXPECT_TRUE(moved(frame, {{90, 0}, {0, 1}}).bytes ==
                  moved(frame, {{90, 1}}).bytes)
          << format;
    }
  }
  // Which way they go: a quarter turn takes the left column to the top row.
  OwnFrame frame(ZELM_GRAY8, 3, 2);
  std::iota(frame.bytes.begin(), frame.bytes.end(), uint8_t{1});
  EXPECT_EQ(moved(frame, {{90, 0}}).bytes, (Bytes{4, 1, 5, 2, 6, 3}));
  EXPECT_EQ(moved(frame, {{90, 1}}).bytes, (Bytes{1, 4, 2, 5, 3, 6}));
  EXPECT_EQ(moved(frame, {{0, 1}}).bytes, (Bytes{3, 2, 1, 6, 5, 4}));
}

}  // namespace
}  // namespace frames_test
