// Crop, size, canvas, turn and mirror: against loops over samples, and the library
// where it scales.
#include <zelm_imageutil.h>

#include "tool_frames.h"
#include "tool_process.h"

namespace {

TEST_F(ToolTest, TurnsAndMirrorsAllPlanes) {
  const uint32_t w = 7, h = 5, cw = 4, ch = 3;
  const std::string y = noise(w * h), u = noise(cw * ch, 2), v = noise(cw * ch, 3),
                    rgb = noise(w * h * 3, 4);
  std::string pairs;
  for (size_t i = 0; i < u.size(); ++i) pairs += {u[i], v[i]};
  for (uint32_t turn : {0, 90, 180, 270}) {
    for (bool mirror : {false, true}) {
      const auto by = [&](const std::string& plane, uint32_t width, uint32_t height,
                          uint32_t bytes) {
        return turned(plane, width, height, bytes, turn, mirror);
      };
      const std::string luma = by(y, w, h, 1);
      for (const auto& [format, in, expected] : std::vector<std::array<std::string, 3>>{
               {"gray", y, luma},
               {"yuv420p", y + u + v, luma + by(u, cw, ch, 1) + by(v, cw, ch, 1)},
               {"nv21", y + pairs, luma + by(pairs, cw, ch, 2)},
               {"rgb24", rgb, by(rgb, w, h, 3)}}) {
        const std::string from = " - - --size 7x5 --from " + format;
        const std::string how = std::to_string(turn) + (mirror ? " --mirror" : "");
        EXPECT_TRUE(sameBytes(
            runOk("convert" + from + " --to " + format + " --rotate " + how, in),
            expected))
            << format << how;
        // The format is the input's by default.
        EXPECT_TRUE(sameBytes(runOk("rotate" + from + " --angle " + how, in), expected))
            << format << how;
      }
    }
  }
}

TEST_F(ToolTest, LumaOnly) {
  const std::string y = noise(35), frame = y + noise(40, 2);
  const std::string turnedLuma = turned(y, 7, 5, 1, 90, false);
  const std::string args = "rotate - - --from nv16 --size 7x5 --angle 90 --luma-only";
  EXPECT_EQ(runOk(args, frame), turnedLuma);
  EXPECT_EQ(runOk(args + " --to nv21", frame), turnedLuma + std::string(24, '\x80'));
  expectRefusal("convert - x.gray --from yuyv422 --size 7x5 --luma-only",
                "no separate luma plane", noise(80));
}

TEST_F(ToolTest, SizesFromEveryFormOfResize) {
  // What is asked for, other options, and the size of 64x48 afterwards; sides that
  // follow are rounded from 26.25, 33.3 and 42.7.
  constexpr const char* kCases[][3] = {{"32x20", "", "32 20"},
                                       {"33x21", "", "33 21"},
                                       {"32x", "", "32 24"},
                                       {"x24", "", "32 24"},
                                       {"X24", "", "32 24"},
                                       {"40x", "", "40 30"},
                                       {"35x", "", "35 26"},
                                       {"x25", "", "34 25"},
                                       {"50%", "", "32 24"},
                                       {"150%", "", "96 72"},
                                       {"1%", "", "2 2"},
                                       {"fit:32x32", "", "32 24"},
                                       {"FIT:100x24", "", "32 24"},
                                       {"fit:20x16", "", "20 16"},
                                       {"fit:640x640", "", "640 480"},
                                       {"32x", "--rotate 90", "32 42"},
                                       {"fit:32x32", "--rotate 270", "24 32"},
                                       {"50%", "--rotate 90", "24 32"},
                                       {"x10", "--crop 0,0,16x8", "20 10"},
                                       {"32x20", "--rotate 90", "32 20"},
                                       {"fit:32x32", "--canvas 40x50", "40 50"}};
  for (const auto& [resize, more, size] : kCases) {
    std::string args =
        std::string("convert - - --from gray --size 64x48 --to pgm --resize ") + resize;
    args += std::string(" ") + more;
    const std::string out = runOk(args, noise(64 * 48));
    EXPECT_EQ(out.substr(3, out.find('\n', 3) - 3), size) << resize << more;
  }
}

TEST_F(ToolTest, ScaledLikeTheLibraries) {
  const Picture card = {ZELM_I420, 33, 21, noise(33 * 21 + 2 * 17 * 11)};
  struct Case {
    std::string options;
    ZelmEdit edit;
    uint32_t width, height;
  };
  const ZelmRegion part = {4, 2, 25, 19}, whole = {};
  for (const Case& c :
       {Case{"--resize 16x10", {}, 16, 10},
        Case{"--crop 4,2,25x19", {part, whole, 0, 0, 0, 0}, 25, 19},
        Case{"--crop 4,2,25x19 --resize 50x40 --filter CUBIC",
             {part, whole, ZELM_CUBIC, ZELM_CUBIC, 0, 0},
             50,
             40},
        Case{"--resize 9x9 --filter nearest --luma linear --rotate 90 --mirror",
             {whole, whole, ZELM_LINEAR, ZELM_NEAREST, 90, 1},
             9,
             9},
        Case{"--resize 20x30 --rotate 270 --chroma cubic",
             {whole, whole, ZELM_LINEAR, ZELM_CUBIC, 270, 0},
             20,
             30}}) {
    for (const auto& [name, format] :
         {std::pair<const char*, uint32_t>{"nv12", ZELM_NV12}, {"rgb24", ZELM_RGB24}}) {
      std::string args =
          std::string("convert - - --from i420 --size 33x21 --to ") + name;
      args += " " + c.options;
      EXPECT_TRUE(sameBytes(runOk(args, card.bytes),
                            converted(card, blank(format, c.width, c.height), c.edit)))
          << args;
    }
  }
}

// Where the core library does it all in one call: its bytes, also around the picture.
TEST_F(ToolTest, RegionsLikeTheCoreLibrary) {
  std::string card = runOk("testcard - --size 80x60 --to nv21");
  std::string expected(60 * 40 * 3, '\0');
  const auto bytes = [](std::string& s) {
    return reinterpret_cast<uint8_t*>(s.data());
  };
  ImageStruct from = zelmWholeFrame(FORMAT_YUV420SPVU, 80, 60, bytes(card));
  from.roiX = 8, from.roiY = 4, from.roiWidth = 50, from.roiHeight = 48;
  ImageStruct to = zelmWholeFrame(FORMAT_RGB888, 60, 40, bytes(expected));
  to.roiX = 10, to.roiY = 6, to.roiWidth = 40, to.roiHeight = 30;
  ASSERT_EQ(Zelm_Resize_and_Convert(from, to, RESIZE_CUBIC, RESIZE_NEAREST, 0), 0);
  EXPECT_TRUE(sameBytes(
      runOk("convert - - --size 80x60 --from nv21 --crop 8,4,50x48 --resize 40x30 "
            "--canvas 60x40 --at 10,6 --filter cubic --chroma nearest --to rgb24",
            card),
      expected));
}

TEST_F(ToolTest, BarsAreBlack) {
  const std::string y4m = uniformY4m("", 8, 4, {100, 90, 180});
  // What surrounds the picture of 8x4 at `at` in 12x10, and the picture's own samples.
  struct Case {
    std::string options;
    std::string bar, inside;
    uint32_t x, y;
  };
  const std::string middle = "--resize fit:8x8 --canvas 12x10";
  const std::string corner = "--canvas 12x10 --at 2,4";
  const std::string rgb = runOk("convert - - --to rgb24", y4m).substr(0, 3);
  for (const Case& c :
       {Case{middle + " --to gray", "\x10", "\x64", 2, 2},
        Case{corner + " --to gray", "\x10", "\x64", 2, 4},
        Case{"--canvas 12x10 --to gray", "\x10", "\x64", 0, 0},
        Case{corner + " --to gray --range full", std::string(1, '\0'), "\x64", 2, 4},
        Case{middle + " --to rgb24", std::string(3, '\0'), rgb, 2, 2},
        Case{corner + " --to rgba", std::string("\0\0\0\xFF", 4), rgb + "\xFF", 2,
             4}}) {
    std::string expected;
    for (uint32_t y = 0; y < 10; ++y) {
      for (uint32_t x = 0; x < 12; ++x) {
        expected += x - c.x < 8 && y - c.y < 4 ? c.inside : c.bar;
      }
    }
    EXPECT_TRUE(sameBytes(runOk("convert - - " + c.options, y4m), expected))
        << c.options;
  }
  // Chroma around the picture is neutral, in every frame.
  const std::string frames = y4m + y4m.substr(y4m.find("FRAME"));
  const std::string out = runOk("convert - - --threads 1 --to nv12 " + corner, frames);
  ASSERT_EQ(out.size(), 2u * 180);
  EXPECT_EQ(out.substr(120, 2 * 12), std::string(24, '\x80'));
  EXPECT_EQ(out.substr(120 + 24, 6), std::string("\x80\x80\x5A\xB4\x5A\xB4"));
  EXPECT_EQ(out.substr(0, 180), out.substr(180));
}

}  // namespace
