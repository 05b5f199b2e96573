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
    Args options;
    Colours colours;
  };
  for (const Case& c :
       {Case{"tag", 1280, 720, " XCOLORRANGE=LIMITED", {}, kLimited709},
        Case{"no tag", 1280, 720, "", {}, kLimited709},
        Case{"full", 1280, 2, " XCOLORRANGE=FULL", {}, kFull709},
        Case{"high", 2, 720, "", {}, kLimited709},
        Case{"small", 1278, 2, "", {}, kLimited601},
        Case{"low", 2, 718, "", {}, kLimited601},
        Case{"matrix tag", 8, 4, " XCOLORMATRIX=BT.2020", {}, kLimited2020},
        Case{"unknown tags", 8, 4, " XCOLORRANGE=x XCOLORMATRIX=y", {}, kLimited601},
        Case{"raw", 1280, 720, nullptr, {}, kFull601},
        Case{"raw limited", 8, 4, nullptr, {"--range", "limited"}, kLimited601},
        Case{"raw bt709", 8, 4, nullptr, {"--matrix", "bt709"}, kFull709},
        Case{"auto", 8, 4, "", {"--range", "auto", "--matrix", "Auto"}, kLimited601},
        Case{"asked",
             8,
             4,
             " XCOLORRANGE=LIMITED",
             {"--range", "FULL", "--matrix", "BT2020"},
             kFull2020}}) {
    Args args = {"convert", "-", "-", "--to", "rgb24"};
    if (c.tags == nullptr) {
      args.insert(args.end(),
                  {"--from", "yuv420p", "--size",
                   std::to_string(c.width) + "x" + std::to_string(c.height)});
    }
    args.insert(args.end(), c.options.begin(), c.options.end());
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
    Args options;
    Triple yuv;
  };
  const Triple same = rgbOf(kYuv, kLimited601);
  for (const Case& c :
       {Case{limited, {"--to", "yuv420p"}, kYuv},
        Case{limited, {"--to", "yuv420p", "--to-range", "full"}, yuvOf(same, kFull601)},
        Case{limited,
             {"--to", "yuv420p", "--to-matrix", "bt709"},
             yuvOf(same, kLimited709)},
        Case{limited,
             {"--to", "y4m", "--to-matrix", "bt2020", "--to-range", "FULL"},
             yuvOf(same, kFull2020)},
        Case{limited,
             {"--to", "yuv420p", "--range", "full", "--to-range", "limited"},
             yuvOf(rgbOf(kYuv, kFull601), kLimited601)},
        Case{rgb, {"--to", "yuv420p"}, yuvOf(kRgb, kFull601)},
        Case{rgb, {"--to", "y4m"}, yuvOf(kRgb, kLimited601)},
        Case{wide, {"--to", "y4m"}, yuvOf(kRgb, kLimited709)},
        Case{wide, {"--to", "yuv420p"}, yuvOf(kRgb, kFull601)},
        Case{rgb,
             {"--to", "yuv420p", "--to-matrix", "bt2020", "--to-range", "limited"},
             yuvOf(kRgb, kLimited2020)}}) {
    Args args = {"convert", "-", "-"};
    args.insert(args.end(), c.options.begin(), c.options.end());
    std::string out = runOk(args, c.input);
    if (c.options[1] == "y4m") out.erase(0, out.find("FRAME") + 6);
    expectUniform(out, c.yuv, true, ::testing::PrintToString(c.options));
  }
  // Gray pictures are full range, gray frames keep what they have.
  const std::string white = uniformY4m("", 8, 4, {235, 128, 128});
  EXPECT_EQ(runOk({"convert", "-", "-", "--to", "pgm"}, white),
            "P5\n8 4\n255\n" + std::string(32, '\xFF'));
  runOk({"convert", "-", "x.png", "--luma-only"}, white);
  EXPECT_EQ(pixelsOf(load("x.png"), 1), std::string(32, '\xFF'));
  EXPECT_EQ(runOk({"convert", "-", "-", "--to", "gray"}, white),
            std::string(32, '\xEB'));
}

TEST_F(ToolTest, AssumptionsAreSaidWhereTheyMatter) {
  const std::string y4m = uniformY4m("", 8, 4, kYuv), rgb = "P6 8 4 255\n" + noise(96),
                    said =
                        uniformY4m(" XCOLORRANGE=FULL XCOLORMATRIX=BT.709", 8, 4, kYuv);
  struct Case {
    Args options;
    std::string input;
    const char* line;  // what follows the program's name
  };
  const std::string bytes = uniformRaw(8, 4, kYuv);
  const auto rawTo = [](const char* to) {
    return Args{"--from", "yuv420p", "--size", "8x4", "--to", to};
  };
  for (const Case& c :
       {Case{{"--to", "rgb24"},
             y4m,
             "standard input is taken to have limited range and BT.601; --range and "
             "--matrix say otherwise"},
        Case{{"--to", "rgba", "--range", "full"},
             y4m,
             "standard input is taken to have BT.601; --matrix says otherwise"},
        Case{{"--to", "rgba", "--matrix", "bt709"},
             y4m,
             "standard input is taken to have limited range; --range says otherwise"},
        Case{{"--to", "png", "--range", "full", "--matrix", "bt601"}, y4m, ""},
        Case{{"--to", "ppm"}, said, ""},
        Case{{"--to", "ppm"},
             uniformY4m(" XCOLORRANGE=FULL", 1280, 2, kYuv),
             "standard input is taken to have BT.709; --matrix says otherwise"},
        Case{{}, y4m, ""},
        Case{{"--to", "nv12"}, y4m, ""},
        Case{{"--to", "gray"}, y4m, ""},
        Case{{"--to", "pgm"},
             y4m,
             "standard input is taken to have limited range; --range says otherwise"},
        Case{{"--to", "pgm"}, said, ""},
        Case{{"--to-range", "full"},
             y4m,
             "standard input is taken to have limited range; --range says otherwise"},
        Case{{"--to-range", "limited"}, y4m, ""},
        Case{{"--to-matrix", "bt709"},
             y4m,
             "standard input is taken to have limited range and BT.601; --range and "
             "--matrix say otherwise"},
        Case{rawTo("bgr24"), bytes,
             "standard input is taken to have full range and BT.601; --range and "
             "--matrix say otherwise"},
        Case{rawTo("nv21"), bytes, ""},
        Case{rawTo("y4m"), bytes, ""},
        Case{rawTo("pgm"), bytes, ""},
        Case{{"--to", "nv12"},
             rgb,
             "what is written has full range and BT.601; --to-range and --to-matrix "
             "say otherwise"},
        Case{{"--to", "y4m", "--to-range", "limited"},
             rgb,
             "what is written has BT.601; --to-matrix says otherwise"},
        Case{{"--to", "y4m", "--to-matrix", "bt601"},
             rgb,
             "what is written has limited range; --to-range says otherwise"},
        Case{{"--to", "gray", "--to-range", "full"},
             rgb,
             "what is written has BT.601; --to-matrix says otherwise"},
        Case{{"--to", "bgra"}, rgb, ""}}) {
    Args args = {"convert", "-", "-"};
    args.insert(args.end(), c.options.begin(), c.options.end());
    const ToolResult result = run(args, c.input);
    EXPECT_EQ(result.status, 0);
    const std::string line = *c.line == '\0' ? "" : "zelm-imageutil: ";
    EXPECT_EQ(result.err, line + c.line + (*c.line == '\0' ? "" : "\n"))
        << ::testing::PrintToString(c.options);
    EXPECT_TRUE(sameBytes(runOk(args, c.input), result.out));  // quietly
  }
  EXPECT_EQ(run({"testcard", "x.y4m", "--size", "8x4"}).err, "");
}

TEST_F(ToolTest, WrittenTagsAreHonouredWhenRead) {
  struct Case {
    uint32_t width;
    const char* tags;  // nullptr: raw frames
    Args options;
    std::string written;  // tags of colours
    Colours colours;      // of the input
  };
  const std::string limited = " XCOLORRANGE=LIMITED", full = " XCOLORRANGE=FULL",
                    bt601 = " XCOLORMATRIX=BT.601", bt709 = " XCOLORMATRIX=BT.709",
                    bt2020 = " XCOLORMATRIX=BT.2020";
  for (const Case& c :
       {Case{8, "", {}, limited, kLimited601},
        Case{8, " XCOLORRANGE=FULL", {}, full, kFull601},
        Case{8, " XCOLORRANGE=full", {"--to-range", "limited"}, limited, kFull601},
        Case{8, "", {"--range", "full"}, full, kFull601},
        Case{8, " XCOLORMATRIX=BT.2020", {}, limited + bt2020, kLimited2020},
        Case{8,
             " XCOLORMATRIX=BT.2020",
             {"--to-matrix", "bt601"},
             limited,
             kLimited2020},
        Case{8, "", {"--to-matrix", "bt709"}, limited + bt709, kLimited601},
        Case{8, nullptr, {}, full, kFull601},
        Case{1280, "", {"--crop", "0,0,8x2"}, limited + bt709, kLimited709},
        Case{1280, "", {}, limited, kLimited709},
        Case{1280, nullptr, {}, full + bt601, kFull601}}) {
    Args args = {"convert", "-", "out.y4m"};
    std::string input = uniformRaw(c.width, 4, kYuv);
    if (c.tags == nullptr) {
      args.insert(args.end(),
                  {"--from", "yuv420p", "--size", std::to_string(c.width) + "x4"});
    } else {
      input = uniformY4m(c.tags, c.width, 4, kYuv);
    }
    args.insert(args.end(), c.options.begin(), c.options.end());
    runOk(args, input);
    const std::string header = firstLine(load("out.y4m"));
    EXPECT_EQ(header.substr(std::min(header.find(" XC"), header.size())), c.written);
    // The stream alone says what its colours are: its pixels are the input's. Twice
    // rounded, they may be a little further away.
    const std::string rgb = runOk({"convert", "out.y4m", "-", "--to", "rgb24"});
    const Triple wanted = rgbOf(kYuv, c.colours);
    for (size_t i = 0; i < rgb.size(); ++i) {
      ASSERT_NEAR(static_cast<uint8_t>(rgb[i]), wanted[i % 3], 2) << header;
    }
  }
}

}  // namespace
