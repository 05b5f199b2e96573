// Formats, files and pictures: every byte against the libraries called directly.
#include <zelm_imageutil.h>

#include "tool_frames.h"
#include "tool_process.h"

namespace {

TEST_F(ToolTest, EveryFormatBecomesEveryOther) {
  for (const FormatCase& from : kFormats) {
    Picture source = blank(from.code, 7, 5);
    ASSERT_EQ(source.bytes.size(), from.bytes) << from.names[0];
    source.bytes = noise(from.bytes);
    const Picture second = {from.code, 7, 5, noise(from.bytes, 2)};
    for (const FormatCase& to : kFormats) {
      const Picture empty = blank(to.code, 7, 5);
      EXPECT_TRUE(sameBytes(runOk(std::string("convert - - --size 7x5 --from ") +
                                      from.names[0] + " --to " + to.names[0],
                                  source.bytes + second.bytes),
                            converted(source, empty) + converted(second, empty)))
          << from.names[0] << ' ' << to.names[0];
    }
    for (const char* name : from.names) {
      if (name == nullptr) break;
      save(std::string("in.") + name, source.bytes);
      EXPECT_TRUE(sameBytes(
          runOk(std::string("convert in.") + name + " - --size 7x5 --to " + name),
          converted(source, blank(from.code, 7, 5))))
          << name;
    }
  }
}

TEST_F(ToolTest, FullRangeNv21GivesTheCoreLibrarysBytes) {
  const std::string card = runOk("testcard - --size 80x64 --to nv21");
  for (const auto& [name, format] :
       {std::pair<const char*, uint32_t>{"rgb24", FORMAT_RGB888},
        {"rgba", FORMAT_RGBA8888},
        {"nv16", FORMAT_YUV422SP},
        {"bgr565", FORMAT_RGB565},
        {"tiled", FORMAT_YUV420SPMB}}) {
    EXPECT_TRUE(sameBytes(
        runOk(std::string("convert - - --size 80x64 --from nv21 --to ") + name, card),
        convertedNv21(card, 80, 64, format)))
        << name;
  }
}

TEST_F(ToolTest, RowPaddingIsDropped) {
  struct Case {
    const char* format;
    std::vector<std::pair<int, int>> planes;  // row bytes, rows of 16x6 frames
    int stride;
  };
  for (const Case& c : {Case{"nv12", {{16, 6}, {16, 3}}, 21},
                        Case{"yuv420p", {{16, 6}, {8, 3}, {8, 3}}, 22},
                        Case{"yuv422p", {{16, 6}, {8, 6}, {8, 6}}, 26},
                        Case{"uyvy422", {{32, 6}}, 35}, Case{"bgra", {{64, 6}}, 65}}) {
    std::string packed, padded;
    for (const auto& [bytes, rows] : c.planes) {
      for (int row = 0; row < rows; ++row) {
        packed += noise(bytes, packed.size());
        padded += packed.substr(packed.size() - bytes) +
                  std::string(c.stride * bytes / c.planes[0].first - bytes, '#');
      }
    }
    std::string args =
        std::string("convert - - --size 16x6 --from ") + c.format + " --to " + c.format;
    args += " --stride " + std::to_string(c.stride);
    EXPECT_TRUE(sameBytes(runOk(args, padded + padded), packed + packed)) << c.format;
    padded.erase(padded.find_last_not_of('#') + 1);  // like the buffers of cameras
    EXPECT_TRUE(sameBytes(runOk(args, padded), packed)) << c.format;
    padded.pop_back();
    expectRefusal(args, "cut short", padded);
  }
}

TEST_F(ToolTest, PicturesAreRead) {
  const std::string rgba = noise(7 * 5 * 4), rgb = noise(7 * 5 * 3, 2),
                    gray = noise(35);
  std::string numbers, looked, grayAlpha, grayAsRgba;
  for (size_t i = 0; i < 35; ++i) {
    numbers += static_cast<char>(i % 3);
    looked += std::string("abcdefghi").substr(i % 3 * 3, 3);
    grayAlpha += std::string{gray[i], rgba[i]};
    grayAsRgba += std::string(3, gray[i]) + rgba[i];
  }
  struct Case {
    const char* what;
    std::string file;
    const char* format;
    std::string pixels;
  };
  for (const Case& c :
       {Case{"rgb", pngOf(rgb, 7, 5, 3), "rgb24", rgb},
        Case{"rgba", pngOf(rgba, 7, 5, 4), "rgba", rgba},
        Case{"gray", pngOf(gray, 7, 5, 1), "gray", gray},
        Case{"gray and alpha", pngOf(grayAlpha, 7, 5, 2), "rgba", grayAsRgba},
        Case{"palette", pngWithPalette(numbers, 7, 5, "abcdefghi"), "rgb24", looked},
        Case{"16 bits", pngOf(rgb, 7, 5, 3, 16), "rgb24", rgb},
        Case{"gamma", pngOf(rgb, 7, 5, 3, 8, 1.0), "rgb24", rgb},
        Case{"gray of 16 bits", pngOf(gray, 7, 5, 1, 16), "gray", gray},
        Case{"two", pngOf(rgb, 7, 5, 3) + pngOf(looked, 7, 5, 3), "rgb24",
             rgb + looked},
        Case{"ppm", "P6\n7 5\n255\n" + rgb, "rgb24", rgb},
        Case{"comments", "P6 # a\n#b\n 7\t5 # c 9\n\n255\n" + rgb, "rgb24", rgb},
        Case{"three", repeat("P5 7 5 255 " + gray, 3), "gray", repeat(gray, 3)}}) {
    const std::string args = std::string("convert - - --to ") + c.format;
    EXPECT_TRUE(sameBytes(runOk(args, c.file), c.pixels)) << c.what;
    const ToolResult piped = runPiped(args, c.file);
    EXPECT_TRUE(sameBytes(piped.out, c.pixels)) << c.what << piped.err;
  }
}

TEST_F(ToolTest, PicturesHoldTheLibrarysPixels) {
  const Picture card = {ZELM_NV12, 7, 5, noise(59)};
  const auto written = [&](const std::string& name, const char* to) {
    runOk("convert - " + name + " --size 7x5 --from nv12 " + to,
          card.bytes + noise(59, 2));
    return load(name);
  };
  const std::string rgb = converted(card, blank(ZELM_RGB24, 7, 5));
  const std::string gray = card.bytes.substr(0, 35);
  EXPECT_TRUE(sameBytes(pixelsOf(written("a.png", ""), 3), rgb));
  EXPECT_TRUE(sameBytes(pixelsOf(written("a.PNG", "--to RGBA"), 4),
                        converted(card, blank(ZELM_RGBA, 7, 5))));
  EXPECT_TRUE(sameBytes(pixelsOf(written("g.png", "--to gray"), 1), gray));
  EXPECT_TRUE(
      sameBytes(written("a.ppm", "").substr(0, 11 + 105), "P6\n7 5\n255\n" + rgb));
  EXPECT_EQ(written("a.pgm", ""),
            "P5\n7 5\n255\n" + gray + "P5\n7 5\n255\n" + noise(59, 2).substr(0, 35));
  EXPECT_TRUE(sameBytes(pixelsOf(written("nosuffix", "--to png"), 3), rgb));
  // Alpha goes from picture to picture.
  const std::string rgba = noise(7 * 5 * 4);
  runOk("convert - b.png", pngOf(rgba, 7, 5, 4));
  EXPECT_TRUE(sameBytes(pixelsOf(load("b.png"), 4), rgba));
}

TEST_F(ToolTest, NumbersAndRangesOfFrames) {
  std::string raw, y4m = "YUV4MPEG2 W8 H4 Cmono\n", png;
  for (int i = 0; i < 12; ++i) {
    const std::string gray(32, static_cast<char>('a' + i));
    raw += gray;
    y4m += std::string("FRAME") + std::string(i % 3, ' ') + "\n" + gray;
    png += pngOf(gray, 8, 4, 1);
  }
  const std::vector<std::pair<std::string, std::string>> cases = {
      // a letter for each frame
      {"", "abcdefghijkl"},           {"--skip 10", "kl"},
      {"--frames 2", "ab"},           {"--skip 3 --frames 2", "de"},
      {"--frames 3:2", "de"},         {"--frames 9:", "jkl"},
      {"--frames 0:1", "a"},          {"--frames 11:9", "l"},
      {"--frames 99", "abcdefghijkl"}};
  save("in.gray", raw), save("in.y4m", y4m), save("in.png", png);
  for (const auto& [options, letters] : cases) {
    std::string expected;
    for (char letter : letters) expected += std::string(32, letter);
    for (const std::string input : {"in.gray", "in.y4m", "in.png"}) {
      const std::string how =
          std::string(input) == "in.gray" ? " --from gray --size 8x4 " : " ";
      const std::string args = " - --to gray -q --threads 3" + how + options;
      EXPECT_TRUE(sameBytes(runOk("convert " + input + args), expected))
          << input << options;
      EXPECT_TRUE(sameBytes(runPiped("convert -" + args, load(input)).out, expected))
          << input << options;
    }
  }
  // Numbers are those of the input.
  for (const std::string suffix : {"png", "ppm", "pgm"}) {
    runOk("convert in.gray a%d." + suffix + " --size 8x4 --frames 8:3");
    for (int number : {9, 10, 11}) {
      const std::string file = load("a" + std::to_string(number) + "." + suffix);
      const std::string gray(32, static_cast<char>('a' + number - 1));
      if (suffix == "png") {
        EXPECT_TRUE(sameBytes(pixelsOf(file, 1), gray));
      } else {
        EXPECT_TRUE(sameBytes(file.substr(file.size() - 32), gray));
      }
    }
  }
  runOk("convert in.gray b%03d.pgm --size 8x4");
  EXPECT_EQ(load("b012.pgm"), "P5\n8 4\n255\n" + std::string(32, 'l'));
  EXPECT_EQ(files().size(), 3u + 3 * 3 + 12);
  const std::string lines =
      runOk("convert in.gray --md5 --to gray --size 8x4 --frames 4:2");
  EXPECT_EQ(lines.substr(0, 2) + lines.substr(35, 2), "5 6 ");
}

TEST_F(ToolTest, DigestsInsteadOfAFile) {
  const std::string digest = "7319468847d7b1aee40dbf5dd963c999";
  const std::string line = "1 " + digest + "\n2 " + digest + "\n";
  const std::string args = "convert - --size 2x2 --from nv12 --to nv12";
  const std::string zeros(12, '\0');
  EXPECT_EQ(runOk(args + " --md5", zeros), line);
  EXPECT_EQ(runOk(args + " --md5 out.nv12", zeros), line);
  EXPECT_TRUE(files().empty());
  expectRefusal(args, "OUT is missing", zeros);
}

}  // namespace
