// Ranges and matrices: pixels against the formulas with real numbers, the line about
// what was assumed, the tags of Y4M.
#include <algorithm>

#include "tool_frames.h"
#include "tool_process.h"

namespace {

constexpr double kBt601[] = {0.299, 0.114}, kBt709[] = {0.2126, 0.0722},
                 kBt2020[] = {0.2627, 0.0593};
constexpr Colours kFull601 = {kBt601[0], kBt601[1], true},
                  kLimited601 = {kBt601[0], kBt601[1], false},
                  kFull709 = {kBt709[0], kBt709[1], true},
                  kLimited709 = {kBt709[0], kBt709[1], false},
                  kFull2020 = {kBt2020[0], kBt2020[1], true},
                  kLimited2020 = {kBt2020[0], kBt2020[1], false};
// Under all of these colours they are different pixels, by 3 and more.
const Triple kYuv = {100, 90, 180}, kRgb = {200, 40, 90};

// Every sample of the frame is the rounded number, or the one beside it.
void expectUniform(const std::string& bytes, const Triple& wanted, bool planar,
                   const std::string& what) {
  for (size_t i = 0; i < bytes.size(); ++i) {
    const size_t channel =
        planar ? (i >= bytes.size() * 2 / 3) + (i >= bytes.size() * 5 / 6) : i % 3;
    const int sample = static_cast<uint8_t>(bytes[i]);
    ASSERT_NEAR(sample, wanted[channel], 1) << what << ", byte " << i;
  }
  ASSERT_FALSE(bytes.empty()) << what;
}

TEST_F(ToolTest, VideoBecomesRgb) {
  struct Case {
    const char* what;
    uint32_t width, height;
    const char* tags;  // nullptr: raw frames
    std::string options;
    Colours colours;
  };
  for (const Case& c :
       {Case{"tag", 1280, 720, " XCOLORRANGE=LIMITED", "", kLimited709},
        Case{"no tag", 1280, 720, "", "", kLimited709},
        Case{"full", 1280, 2, " XCOLORRANGE=FULL", "", kFull709},
        Case{"high", 2, 720, "", "", kLimited709},
        Case{"small", 1278, 2, "", "", kLimited601},
        Case{"low", 2, 718, "", "", kLimited601},
        Case{"matrix tag", 8, 4, " XCOLORMATRIX=BT.2020", "", kLimited2020},
        Case{"unknown tags", 8, 4, " XCOLORRANGE=x XCOLORMATRIX=y", "", kLimited601},
        Case{"raw", 1280, 720, nullptr, "", kFull601},
        Case{"raw limited", 8, 4, nullptr, "--range limited", kLimited601},
        Case{"raw bt709", 8, 4, nullptr, "--matrix bt709", kFull709},
        Case{"auto", 8, 4, "", "--range auto --matrix Auto", kLimited601},
        Case{"asked", 8, 4, " XCOLORRANGE=LIMITED", "--range FULL --matrix BT2020",
             kFull2020}}) {
    std::string args = "convert - - --to rgb24";
    if (c.tags == nullptr) {
      args += " --from yuv420p --size " + std::to_string(c.width) + "x" +
              std::to_string(c.height);
    }
    args += " " + c.options;
    const auto rgb = [&](const Triple& yuv) {
      return runOk(args, c.tags == nullptr
                             ? uniformRaw(c.width, c.height, yuv)
                             : uniformY4m(c.tags, c.width, c.height, yuv));
    };
    expectUniform(rgb(kYuv), rgbOf(kYuv, c.colours), false, c.what);
    const size_t bytes = size_t{c.width} * c.height * 3;
    const double black = c.colours.full ? 0 : 16, white = c.colours.full ? 255 : 235;
    EXPECT_TRUE(sameBytes(rgb({white, 128, 128}), std::string(bytes, '\xFF')))
        << c.what;
    EXPECT_TRUE(sameBytes(rgb({black, 128, 128}), std::string(bytes, '\0'))) << c.what;
  }
}

TEST_F(ToolTest, YuvIsWrittenWithTheColoursAskedFor) {
  const std::string limited = uniformY4m("", 8, 4, kYuv);
  const std::string rgb = "P6 8 4 255\n" + repeat("\xC8\x28\x5A", 32);
  const std::string wide = "P6 1280 2 255\n" + repeat("\xC8\x28\x5A", 2560);
  struct Case {
    std::string input;
    std::string options;
    Triple yuv;
  };
  const Triple same = rgbOf(kYuv, kLimited601);
  for (const Case& c :
       {Case{limited, "--to yuv420p", kYuv},
        Case{limited, "--to yuv420p --to-range full", yuvOf(same, kFull601)},
        Case{limited, "--to yuv420p --to-matrix bt709", yuvOf(same, kLimited709)},
        Case{limited, "--to y4m --to-matrix bt2020 --to-range FULL",
             yuvOf(same, kFull2020)},
        Case{limited, "--to yuv420p --range full --to-range limited",
             yuvOf(rgbOf(kYuv, kFull601), kLimited601)},
        Case{rgb, "--to yuv420p", yuvOf(kRgb, kFull601)},
        Case{rgb, "--to y4m", yuvOf(kRgb, kLimited601)},
        Case{wide, "--to y4m", yuvOf(kRgb, kLimited709)},
        Case{wide, "--to yuv420p", yuvOf(kRgb, kFull601)},
        Case{rgb, "--to yuv420p --to-matrix bt2020 --to-range limited",
             yuvOf(kRgb, kLimited2020)}}) {
    std::string args = "convert - -";
    args += " " + c.options;
    std::string out = runOk(args, c.input);
    if (c.options.find("y4m") != std::string::npos) out.erase(0, out.find("FRAME") + 6);
    expectUniform(out, c.yuv, true, c.options);
  }
  // Gray pictures are full range, gray frames keep what they have.
  const std::string white = uniformY4m("", 8, 4, {235, 128, 128});
  EXPECT_EQ(runOk("convert - - --to pgm", white),
            "P5\n8 4\n255\n" + std::string(32, '\xFF'));
  runOk("convert - x.png --luma-only", white);
  EXPECT_EQ(pixelsOf(load("x.png"), 1), std::string(32, '\xFF'));
  EXPECT_EQ(runOk("convert - - --to gray", white), std::string(32, '\xEB'));
}

TEST_F(ToolTest, AssumptionsAreSaidWhereTheyMatter) {
  const std::string y4m = uniformY4m("", 8, 4, kYuv), rgb = "P6 8 4 255\n" + noise(96),
                    said =
                        uniformY4m(" XCOLORRANGE=FULL XCOLORMATRIX=BT.709", 8, 4, kYuv),
                    high = uniformY4m(" XCOLORRANGE=FULL", 1280, 2, kYuv),
                    raw = uniformRaw(8, 4, kYuv);
  const std::string read = "standard input is taken to have ",
                    written = "what is written has ",
                    range = "limited range; --range says otherwise",
                    matrix = "BT.601; --matrix says otherwise",
                    both = " range and BT.601; --range and --matrix say otherwise",
                    nothing;
  const std::string rawTo = "--from yuv420p --size 8x4 --to ";
  struct Case {
    std::string options, input, line;  // what follows the program's name
  };
  for (const Case& c :
       {Case{"--to rgb24", y4m, read + "limited" + both},
        Case{"--to rgba --range full", y4m, read + matrix},
        Case{"--to rgba --matrix bt601", y4m, read + range},
        Case{"--to png --range full --matrix bt601", y4m, nothing},
        Case{"--to ppm", said, nothing},
        Case{"--to ppm", high, read + "BT.709; --matrix says otherwise"},
        Case{"", y4m, nothing},
        Case{"--to nv12", y4m, nothing},
        Case{"--to gray", y4m, nothing},
        Case{"--to pgm", y4m, read + range},
        Case{"--to pgm", said, nothing},
        Case{"--to-range full", y4m, read + range},
        Case{"--to-range limited", y4m, nothing},
        Case{"--to-matrix bt709", y4m, read + "limited" + both},
        Case{rawTo + "bgr24", raw, read + "full" + both},
        Case{rawTo + "nv21", raw, nothing},
        Case{rawTo + "y4m", raw, nothing},
        Case{rawTo + "pgm", raw, nothing},
        Case{"--to nv12", rgb,
             written +
                 "full range and BT.601; --to-range and --to-matrix say otherwise"},
        Case{"--to y4m --to-range limited", rgb,
             written + "BT.601; --to-matrix says otherwise"},
        Case{"--to y4m --to-matrix bt601", rgb,
             written + "limited range; --to-range says otherwise"},
        Case{"--to gray --to-range full", rgb,
             written + "BT.601; --to-matrix says otherwise"},
        Case{"--to bgra", rgb, nothing}}) {
    const std::string args = "convert - - " + c.options;
    const ToolResult result = run(args, c.input);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, c.line.empty() ? "" : "zelm-imageutil: " + c.line + "\n")
        << c.options;
    EXPECT_TRUE(sameBytes(runOk(args, c.input), result.out));  // quietly
  }
  EXPECT_EQ(run("testcard x.y4m --size 8x4").err, "");
}

TEST_F(ToolTest, WrittenTagsAreHonouredWhenRead) {
  struct Case {
    uint32_t width;
    const char* tags;  // nullptr: raw frames
    std::string options;
    std::string written;  // tags of colours
    Colours colours;      // of the input
  };
  const std::string limited = " XCOLORRANGE=LIMITED", full = " XCOLORRANGE=FULL",
                    bt601 = " XCOLORMATRIX=BT.601", bt709 = " XCOLORMATRIX=BT.709",
                    bt2020 = " XCOLORMATRIX=BT.2020";
  for (const Case& c :
       {Case{8, "", "", limited, kLimited601},
        Case{8, " XCOLORRANGE=FULL", "", full, kFull601},
        Case{8, " XCOLORRANGE=full", "--to-range limited", limited, kFull601},
        Case{8, "", "--range full", full, kFull601},
        Case{8, " XCOLORMATRIX=BT.2020", "", limited + bt2020, kLimited2020},
        Case{8, " XCOLORMATRIX=BT.2020", "--to-matrix bt601", limited, kLimited2020},
        Case{8, "", "--to-matrix bt709", limited + bt709, kLimited601},
        Case{8, nullptr, "", full, kFull601},
        Case{1280, "", "--crop 0,0,8x2", limited + bt709, kLimited709},
        Case{1280, "", "", limited, kLimited709},
        Case{1280, nullptr, "", full + bt601, kFull601}}) {
    std::string args = "convert - out.y4m";
    std::string input = uniformRaw(c.width, 4, kYuv);
    if (c.tags == nullptr) {
      args += " --from yuv420p --size " + std::to_string(c.width) + "x4";
    } else {
      input = uniformY4m(c.tags, c.width, 4, kYuv);
    }
    args += " " + c.options;
    runOk(args, input);
    const std::string header = firstLine(load("out.y4m"));
    EXPECT_EQ(header.substr(std::min(header.find(" XC"), header.size())), c.written);
    // The stream alone says what its colours are: its pixels are the input's. Twice
    // rounded, they may be a little further away.
    const std::string rgb = runOk("convert out.y4m - --to rgb24");
    const Triple wanted = rgbOf(kYuv, c.colours);
    for (size_t i = 0; i < rgb.size(); ++i) {
      ASSERT_NEAR(static_cast<uint8_t>(rgb[i]), wanted[i % 3], 2) << header;
    }
  }
}

}  // namespace
