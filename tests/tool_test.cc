// The program zelm-imageutil, end to end: formats, frames, messages and signals.
#include <fcntl.h>
#include <png.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <zelm_imageutil.h>

#include <algorithm>
#include <filesystem>

#include "tool_process.h"

namespace {

constexpr const char* kReadable[] = {"yuv420p", "yv12",   "nv12",   "nv21",
                                     "uyvy422", "rgb565", "bgr565", "tiled"};
struct Writable {
  const char* name;
  double bytesPerPixel;
};
constexpr Writable kWritable[] = {{"yuv420p", 1.5}, {"yv12", 1.5},  {"nv12", 1.5},
                                  {"nv21", 1.5},    {"nv16", 2},    {"nv61", 2},
                                  {"rgb565", 2},    {"bgr565", 2},  {"rgb24", 3},
                                  {"rgba", 4},      {"tiled", 1.5}, {"gray", 1}};

uint8_t* bytesOf(std::string& text) { return reinterpret_cast<uint8_t*>(text.data()); }

// A whole frame through the library itself.
std::string convertNv21(std::string source, int width, int height, uint32_t format) {
  std::string result(zelmFrameLayout(format, width, height).size, '\0');
  const ImageStruct from =
      zelmWholeFrame(FORMAT_YUV420SPVU, width, height, bytesOf(source));
  const ImageStruct to = zelmWholeFrame(format, width, height, bytesOf(result));
  EXPECT_EQ(Zelm_Resize_and_Convert(from, to, RESIZE_LINEAR, RESIZE_LINEAR, 0), 0);
  return result;
}

std::string readPng(const std::string& path, png_uint_32 format) {
  png_image image = {};
  image.version = PNG_IMAGE_VERSION;
  EXPECT_TRUE(png_image_begin_read_from_file(&image, path.c_str())) << image.message;
  EXPECT_EQ(image.format, format);
  std::string pixels(PNG_IMAGE_SIZE(image), '\0');
  EXPECT_TRUE(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr));
  return pixels;
}

std::string repeat(const std::string& text, size_t times) {
  std::string result;
  while (times-- > 0) result += text;
  return result;
}

// Three frames whose samples tell their plane and their frame.
std::string smallY4m() {
  std::string stream = "YUV4MPEG2 W8 H4 F30000:1001 It A2:1 C420mpeg2 XTEST=1\n";
  const char planes[][4] = {"akv", "blw", "cmx"};
  for (const auto& plane : planes) {
    stream += (plane[0] == 'b' ? "FRAME Ixyz\n" : "FRAME\n") +
              std::string(32, plane[0]) + std::string(8, plane[1]) +
              std::string(8, plane[2]);
  }
  return stream;
}

TEST_F(ToolTest, Y4mPlanesAndTags) {
  const std::string y(32, 'a'), u(8, 'k'), v(8, 'v');
  const Args one = {"convert", "-", "-", "--frames", "1", "--to"};
  const auto first = [&](const std::string& to) {
    Args args = one;
    args.push_back(to);
    return runOk(args, smallY4m());
  };
  EXPECT_EQ(first("yuv420p"), y + u + v);
  EXPECT_EQ(first("yv12"), y + v + u);
  EXPECT_EQ(first("nv12"), y + repeat("kv", 8));
  EXPECT_EQ(first("nv21"), y + repeat("vk", 8));
  EXPECT_EQ(first("gray"), y);

  std::string plain = smallY4m();
  plain.erase(plain.find(" Ixyz"), 5);
  EXPECT_EQ(runOk({"convert", "-", "-"}, smallY4m()), plain);
  EXPECT_EQ(runOk({"convert", "-", "-", "--skip", "2"}, smallY4m()),
            plain.substr(0, plain.find('\n') + 1) + plain.substr(plain.rfind("FRAME")));
  const std::string scaled =
      runOk({"convert", "-", "-", "--resize", "16x2", "--skip", "1"}, smallY4m());
  EXPECT_EQ(scaled.substr(0, scaled.find('\n')),
            "YUV4MPEG2 W16 H2 F30000:1001 It A2:1 C420mpeg2 XTEST=1");
  EXPECT_NE(runOk({"rotate", "-", "-", "--angle", "90"}, smallY4m()).find("W4 H8"),
            std::string::npos);
}

TEST_F(ToolTest, LosslessRoundTrips) {
  for (const std::string size : {"2x2", "6x10", "34x18", "66x50"}) {
    const int width = std::stoi(size),
              height = std::stoi(size.substr(size.find('x') + 1));
    const std::string frames = noise(width * height * 3);  // two frames
    for (const std::string way : {"nv21", "yuv420p", "yv12", "tiled", "nv12"}) {
      save("in.nv12", frames);
      runOk({"convert", "in.nv12", "x." + way, "--size", size});
      runOk({"convert", "x." + way, "out.nv12", "--size", size});
      EXPECT_EQ(load("out.nv12"), frames) << size << ' ' << way;
    }
    runOk({"convert", "in.nv12", "out.y4m", "--size", size});
    EXPECT_EQ(runOk({"convert", "out.y4m", "-", "--to", "nv12"}), frames) << size;
  }
}

TEST_F(ToolTest, EveryRouteScalesToTheRightSize) {
  for (const char* from : kReadable) {
    runOk({"testcard", "card", "--size", "64x48", "--to", from, "--frames", "2"});
    for (const Writable& to : kWritable) {
      const std::string out =
          runOk({"convert", "card", "-", "--size", "64x48", "--from", from, "--resize",
                 "32x80", "--to", to.name});
      EXPECT_EQ(out.size(), 2 * 32 * 80 * to.bytesPerPixel) << from << ' ' << to.name;
    }
  }
}

TEST_F(ToolTest, RowPaddingIsDropped) {
  struct Case {
    const char* format;
    std::vector<std::pair<int, int>> planes;  // row bytes, rows of 16x6 frames
    int stride;
  };
  for (const Case& c :
       {Case{"nv12", {{16, 6}, {16, 3}}, 21},
        Case{"yuv420p", {{16, 6}, {8, 3}, {8, 3}}, 22}, Case{"uyvy422", {{32, 6}}, 35},
        Case{"rgb565", {{32, 6}}, 40}}) {
    std::string packed, padded;
    for (const auto& [bytes, rows] : c.planes) {
      for (int row = 0; row < rows; ++row) {
        packed += noise(bytes, packed.size());
        padded += packed.substr(packed.size() - bytes) +
                  std::string(c.stride * bytes / c.planes[0].first - bytes, '#');
      }
    }
    Args args = {"convert", "-",      "-",    "--size", "16x6",
                 "--from",  c.format, "--to", "nv21"};
    const std::string expected = runOk(args, packed);
    args.insert(args.end(), {"--stride", std::to_string(c.stride)});
    EXPECT_EQ(runOk(args, padded + padded), expected + expected) << c.format;
    padded.erase(padded.find_last_not_of('#') + 1);  // like the buffers of cameras
    EXPECT_EQ(runOk(args, padded), expected) << c.format;
    padded.pop_back();
    expectRefusal(args, "cut short", padded);
  }
}

TEST_F(ToolTest, RedIsRedInEveryOrder) {
  const std::string red = std::string(4, 76) + "\xFF\x55";  // 2x2, nv21
  const auto convert = [&](const char* from, const char* to, const std::string& in) {
    return runOk({"convert", "-", "-", "--size", "2x2", "--from", from, "--to", to},
                 in);
  };
  const std::string high = convert("nv21", "rgb565", red);
  EXPECT_EQ(high, repeat(std::string("\0\xF8", 2), 4));
  const std::string low = convert("nv21", "bgr565", red);
  EXPECT_EQ(low, repeat(std::string("\x1F\0", 2), 4));
  EXPECT_GT(static_cast<uint8_t>(convert("rgb565", "nv21", high)[4]), 240);
  EXPECT_EQ(convert("bgr565", "nv21", low), convert("rgb565", "nv21", high));
  EXPECT_EQ(convert("nv21", "rgb24", red), repeat(std::string("\xFE\0\0", 3), 4));
  EXPECT_EQ(convert("nv21", "nv16", red), std::string(4, 76) + repeat("\x55\xFF", 2));
  EXPECT_EQ(convert("nv21", "nv61", red), std::string(4, 76) + repeat("\xFF\x55", 2));
}

TEST_F(ToolTest, PicturesHoldTheLibrarysPixels) {
  const std::string card = runOk({"testcard", "-", "--size", "80x60", "--to", "nv21"});
  const auto picture = [&](const std::string& name, const char* to) {
    runOk({"convert", "-", name, "--size", "80x60", "--from", "nv21", "--to", to},
          card);
  };
  const std::string rgb = convertNv21(card, 80, 60, FORMAT_RGB888);
  picture("a.png", "png");
  EXPECT_EQ(readPng(path("a.png"), PNG_FORMAT_RGB), rgb);
  picture("b.png", "rgba");
  EXPECT_EQ(readPng(path("b.png"), PNG_FORMAT_RGBA),
            convertNv21(card, 80, 60, FORMAT_RGBA8888));
  picture("c.png", "gray");
  EXPECT_EQ(readPng(path("c.png"), PNG_FORMAT_GRAY), card.substr(0, 4800));
  picture("d.ppm", "ppm");
  EXPECT_EQ(load("d.ppm"), "P6\n80 60\n255\n" + rgb);

  runOk({"testcard", "n-%02d.png", "--size", "16x16", "--frames", "11"});
  EXPECT_EQ(files().size(), 4u + 11u);
  EXPECT_NE(load("n-01.png"), load("n-11.png"));
}

TEST_F(ToolTest, RegionsAndMethods) {
  std::string card = runOk({"testcard", "-", "--size", "80x60", "--to", "nv21"});
  std::string expected(60 * 40 * 3, '\0');
  ImageStruct from = zelmWholeFrame(FORMAT_YUV420SPVU, 80, 60, bytesOf(card));
  from.roiX = 8, from.roiY = 4, from.roiWidth = 50, from.roiHeight = 48;
  ImageStruct to = zelmWholeFrame(FORMAT_RGB888, 60, 40, bytesOf(expected));
  to.roiX = 10, to.roiY = 6, to.roiWidth = 40, to.roiHeight = 30;
  ASSERT_EQ(Zelm_Resize_and_Convert(from, to, RESIZE_CUBIC, RESIZE_NEAREST, 0), 0);
  Args args = {"convert", "-",      "-",         "--size",   "80x60", "--from",
               "nv21",    "--crop", "8,4,50x48", "--resize", "40x30", "--canvas",
               "60x40",   "--at",   "10,6",      "--filter", "cubic", "--chroma",
               "nearest", "--to",   "rgb24"};
  EXPECT_EQ(runOk(args, card), expected);
  args.back() = "yuv420p";  // black around it, through planar frames
  const std::string planar = runOk(args, card);
  EXPECT_EQ(planar.substr(0, 6 * 60), std::string(6 * 60, '\0'));
  EXPECT_EQ(planar.substr(60 * 40, 30), std::string(30, '\x80'));
}

TEST_F(ToolTest, DigestsInsteadOfAFile) {
  const std::string digest = "7319468847d7b1aee40dbf5dd963c999";
  const std::string line = "1 " + digest + "\n2 " + digest + "\n";
  const Args args = {"convert", "-", "--size", "2x2", "--from", "nv12", "--to", "nv12"};
  Args digests = args;
  digests.push_back("--md5");
  const std::string zeros(12, '\0');
  EXPECT_EQ(runOk(digests, zeros), line);
  digests.insert(digests.begin() + 2, "out.nv12");
  EXPECT_EQ(runOk(digests, zeros), line);
  EXPECT_TRUE(files().empty());
  expectRefusal(args, "OUT is missing", zeros);
}

TEST_F(ToolTest, TurnsAllPlanes) {
  const int w = 12, h = 6;
  const std::string in = noise(w * h * 3 / 2);
  const auto turn = [&](const std::string& frame, const char* size, const char* angle) {
    return runOk(
        {"rotate", "-", "-", "--from", "nv12", "--size", size, "--angle", angle},
        frame);
  };
  std::string expected = in;
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) {
      expected[x * h + h - 1 - y] = in[y * w + x];
      const int cy = y / 2, cx = x / 2, at = w * h;
      for (int k = 0; k < 2; ++k) {
        expected[at + cx * h + 2 * (h / 2 - 1 - cy) + k] = in[at + cy * w + 2 * cx + k];
      }
    }
  }
  EXPECT_EQ(turn(in, "12x6", "90"), expected);
  EXPECT_EQ(turn(expected, "6x12", "270"), in);
  EXPECT_EQ(turn(turn(in, "12x6", "90"), "6x12", "90"), turn(in, "12x6", "180"));
  EXPECT_EQ(turn(in, "12x6", "0"), in);
  EXPECT_NE(turn(in, "12x6", "180"), in);

  const Args luma = {"rotate", "-",    "-",       "--from", "nv16",
                     "--size", "12x6", "--angle", "90",     "--luma-only"};
  const std::string full = in + noise(w * h / 2, 9);
  EXPECT_EQ(runOk(luma, full), expected.substr(0, w * h));
  Args neutral = luma;
  neutral.insert(neutral.end(), {"--to", "nv21"});
  EXPECT_EQ(runOk(neutral, full), expected.substr(0, w * h) + std::string(36, '\x80'));
}

TEST_F(ToolTest, WrongInputIsRefusedInOneLine) {
  save("ok.y4m", smallY4m());
  save("short.nv12", std::string(100, 'x'));
  save("empty.nv12", "");
  const std::vector<std::pair<Args, std::string>> cases = {
      {{}, "subcommand is required"},
      {{"convert", "ok.y4m", "x.y4m", "--bogus"}, "--help"},
      {{"convert", "none.nv12", "x.y4m", "--size", "8x8"},
       "none.nv12: cannot be opened"},
      {{"convert", "short.nv12", "x.y4m", "--size", "8x8"}, "4 of the 96 bytes"},
      {{"convert", "short.nv12", "x.y4m"}, "--size WxH"},
      {{"convert", "short.nv12", "x.y4m", "--size", "9x8"}, "8x8 would do"},
      {{"convert", "short.nv12", "x.y4m", "--size", "8"}, "for example 640x480"},
      {{"convert", "short.nv12", "x.y4m", "--size", "8x8", "--stride", "7"}, "8 bytes"},
      {{"convert", "short.nv12", "x.y4m", "--size", "8x8", "--from", "nv99"},
       "known are"},
      {{"convert", "short.nv12", "x.y4m", "--size", "8x4", "--from", "nv16"},
       "FORMAT_YUV422SP"},
      {{"convert", "empty.nv12", "x.y4m", "--size", "8x8"}, "no frame"},
      {{"convert", "ok.y4m", "x.y4m", "--size", "8x8"}, "does not match"},
      {{"convert", "ok.y4m", "x.y4m", "--skip", "3"}, "which has 3 frames"},
      {{"convert", "ok.y4m", "x.y4m", "--skip", "-1"}, "whole number"},
      {{"convert", "ok.y4m", "x.y4m", "--frames", "0"}, "whole number"},
      {{"convert", ".", "x.y4m"}, "Is a directory"},
      {{"convert", "ok.y4m", "x.y4m", "--to", "nv16"}, "cannot hold nv16"},
      {{"convert", "ok.y4m", "x.uyvy"}, "FORMAT_YUV422IUYVY"},
      {{"convert", "ok.y4m", "x.unknown"}, "Add --to"},
      {{"convert", "ok.y4m", "no/x.y4m"}, "no/x.y4m: cannot be written"},
      {{"convert", "ok.y4m", "/dev/full", "--to", "y4m"}, "No space"},
      {{"convert", "ok.y4m", "x.y4m", "--crop", "4,0,8x4"}, "not lie inside"},
      {{"convert", "ok.y4m", "x.y4m", "--crop", "1,0,4x4"}, "0,0,4x4 would do"},
      {{"convert", "ok.y4m", "x.y4m", "--at", "0,0"}, "--canvas"},
      {{"convert", "ok.y4m", "x.y4m", "--resize", "0x0"}, "2x2 would do"},
      {{"convert", "ok.y4m", "x.png", "--resize", "65534x65534"}, "too large"},
      {{"convert", "ok.y4m", "x.y4m", "--stride", "4294967296"}, "to 4294967295"},
      {{"convert", "ok.y4m", "x.y4m", "--luma", "lanczos"}, "cubic"},
      {{"convert", "ok.y4m", "x.png", "--frames", "2"}, "out-%03d.png"},
      {{"rotate", "ok.y4m", "x.y4m", "--angle", "45"}, "0, 90, 180 or 270"},
      {{"testcard", "x.png", "--size", "65536x2"}, "65534x2 would do"},
      {{"testcard", "x.tiled", "--size", "65534x65534"}, "too large"}};
  for (const auto& [args, words] : cases) expectRefusal(args, words);
}

TEST_F(ToolTest, DamagedY4mIsRefused) {
  const Args args = {"convert", "-", "x.y4m"};
  const std::string start = "YUV4MPEG2 W8 H4";
  expectRefusal(args, "cut short", smallY4m().substr(0, smallY4m().size() - 1));
  expectRefusal(args, "does not begin with FRAME", start + "\n" + std::string(60, 'x'));
  expectRefusal(args, "longer than", start + std::string(100000, ' '));
  expectRefusal(args, "C422", start + " C422\nFRAME\n");
  expectRefusal(args, "6x4 would do", "YUV4MPEG2 W7 H4\nFRAME\n");
  expectRefusal(args, "no width", "YUV4MPEG2 W99999999999999999999 H4\nFRAME\n");
  expectRefusal(args, "cut short", "YUV4MPEG2 W65534 H32768\nFRAME\nabc");
}

// Whatever a header or a stream claims, the program takes no more memory than the bytes
// that arrive need.
TEST_F(ToolTest, HostileFilesAndStreams) {
  const std::string huge = "YUV4MPEG2 W65534 H65534\nFRAME\n";
  save("huge.y4m", huge + "abc");
  save("ok.y4m", smallY4m());
  save("file", "");
  const std::string zeros = "/dev/zero";
  const std::vector<std::pair<Args, std::string>> cases = {
      {{"convert", "huge.y4m", "x.nv12"}, ""},
      {{"convert", "huge.y4m", "x.y4m", "--crop", "0,0,8x8"}, "cut short"},
      {{"rotate", "huge.y4m", "x.y4m", "--angle", "90"}, ""},
      {{"convert", "huge.y4m", "--md5", "--crop", "0,0,8x8"}, "cut short"},
      {{"convert", "file", "x.nv12", "--from", "nv21", "--size", "65534x65534"}, ""},
      {{"convert", "file", "x.nv12", "--from", "tiled", "--size", "65534x65534",
        "--crop", "0,0,8x8"},
       "too large"},
      {{"convert", zeros, "x.y4m", "--from", "y4m"}, "is no Y4M stream"},
      {{"convert", zeros, "/dev/full", "--from", "nv12", "--size", "64x48", "--to",
        "y4m"},
       "No space"},
      {{"convert", "ok.y4m", "file/x.y4m"}, "Not a directory"},
      {{"convert", "file/x.y4m", "x.y4m"}, "Not a directory"},
      {{"convert", zeros, "/proc/x.y4m", "--from", "nv12", "--size", "8x8"},
       "cannot be written"}};
  for (const auto& [args, words] : cases) expectRefusal(args, words);
  expectRefusal({"convert", "-", "x.y4m"}, "longer than",
                "YUV4MPEG2 W8 H4\nFRAME" + std::string(100000, '\0'));
  // An endless input is read no further than necessary.
  EXPECT_EQ(runOk({"convert", zeros, "-", "--from", "nv12", "--size", "8x4", "--to",
                   "gray", "--skip", "3", "--frames", "2"}),
            std::string(64, '\0'));
  rusage children;
  ASSERT_EQ(getrusage(RUSAGE_CHILDREN, &children), 0);
  EXPECT_LT(children.ru_maxrss, 200 * 1024);
}

// The pipe is full while the file loses its second half.
TEST_F(ToolTest, FileThatShrinksWhileItIsRead) {
  const long frame = 640 * 480 * 3 / 2, frames = 20;
  save("in.nv12", "");
  ASSERT_EQ(truncate(path("in.nv12").c_str(), frames * frame), 0);
  int output[2];
  ASSERT_EQ(pipe2(output, O_CLOEXEC), 0);
  const int none = open("/dev/null", O_RDONLY | O_CLOEXEC);
  const pid_t child =
      start({"convert", "in.nv12", "-", "--size", "640x480", "--to", "nv21"}, none,
            output[1]);
  close(output[1]);
  std::string taken(4096, '\0');
  ASSERT_GT(read(output[0], taken.data(), taken.size()), 0);
  ASSERT_EQ(truncate(path("in.nv12").c_str(), frames * frame / 2 + 1000), 0);
  while (read(output[0], taken.data(), taken.size()) > 0) {
  }
  const int status = waitFor(child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 2) << status;
  EXPECT_NE(errors().find("cut short"), std::string::npos) << errors();
  for (int descriptor : {output[0], none}) close(descriptor);
}

TEST_F(ToolTest, NamesLinksAndEarlierFiles) {
  save("-in.y4m", smallY4m());
  runOk({"convert", "--frames", "1", "--", "-in.y4m", "-out.nv12"});
  EXPECT_EQ(load("-out.nv12").size(), 48u);
  save("old.nv12", "kept");
  expectRefusal({"convert", "-", "old.nv12"}, "cut short", smallY4m() + "FRAME\nx");
  EXPECT_EQ(load("old.nv12"), "kept");
  ASSERT_EQ(symlink("old.nv12", path("link.nv12").c_str()), 0);
  runOk({"convert", "-", "link.nv12"}, smallY4m());
  EXPECT_TRUE(std::filesystem::is_symlink(path("link.nv12")));
  EXPECT_EQ(load("old.nv12").size(), 3 * 48u);
  save("same.y4m", smallY4m());
  runOk({"rotate", "same.y4m", "same.y4m", "--angle", "180"});
  EXPECT_EQ(load("same.y4m").size(), smallY4m().size() - 5);
  EXPECT_EQ(files().size(), 5u);
}

TEST_F(ToolTest, ClosedPipesAndSignals) {
  int output[2], input[2];
  ASSERT_EQ(pipe2(output, O_CLOEXEC), 0);
  ASSERT_EQ(pipe2(input, O_CLOEXEC), 0);
  close(output[0]);
  pid_t child = start({"testcard", "-", "--size", "640x480", "--to", "nv12"}, input[0],
                      output[1]);
  int status = waitFor(child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 2) << status;
  const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
  status = waitFor(start({"formats"}, input[0], full));
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 2) << status;
  close(full);

  child = start({"convert", "-", "x.y4m"}, input[0], output[1]);
  const std::string stream = smallY4m();
  ASSERT_EQ(write(input[1], stream.data(), stream.size()),
            static_cast<ssize_t>(stream.size()));
  for (int i = 0; i < 1000 && files().empty(); ++i) usleep(10000);
  EXPECT_EQ(files().size(), 1u);
  kill(child, SIGTERM);
  status = waitFor(child);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM) << status;
  EXPECT_TRUE(files().empty());
  for (int descriptor : {output[1], input[0], input[1]}) close(descriptor);
}

TEST_F(ToolTest, StandardOutputHoldsPicturesOnly) {
  EXPECT_EQ(runOk({"testcard", "-", "--size", "64x48", "--to", "nv16", "--frames", "3"})
                .size(),
            3u * 64 * 48 * 2);
  const std::string table = runOk({"formats", "--size", "64x48"});
  for (const char* name : kReadable) EXPECT_NE(table.find(name), std::string::npos);
  EXPECT_NE(table.find("12288"), std::string::npos);  // bytes of rgba
  const std::string help = runOk({"--help"});
  for (const char* option :
       {"--stride", "--canvas", "--luma-only", "--md5", "--angle"}) {
    EXPECT_NE(help.find(option), std::string::npos) << option;
  }
}

}  // namespace
