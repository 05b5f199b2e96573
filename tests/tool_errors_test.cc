// Refusals: one line that says what is wrong and what would do, and nothing written.
#include <sys/resource.h>
#include <unistd.h>

#include "tool_frames.h"
#include "tool_process.h"

namespace {

TEST_F(ToolTest, WrongInputIsRefusedInOneLine) {
  save("ok.y4m", smallY4m());
  save("short.nv12", std::string(100, 'x'));
  save("four.nv12", std::string(4 * 96, 'x'));
  save("empty.nv12", "");
  save("a.ppm", "P6 2 2 255\n" + noise(12));
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"", "subcommand is required"},
      {"convrt",
       "unknown command 'convrt'; commands are convert, rotate, testcard, formats, "
       "info, compare"},
      {"convert ok.y4m x.y4m --bogus", "--help"},
      {"convert ok.y4m x.y4m more", "--help"},
      {"convert ok.y4m", "OUT is missing"},
      {"info", "IN is required"},
      {"compare ok.y4m", "B is required"},
      {"rotate ok.y4m x.y4m", "--angle is required"},
      {"testcard x.nv12", "--size is required"},
      // Inputs
      {"convert none.nv12 x.y4m --size 8x8",
       "none.nv12: cannot be opened: No such file"},
      {"convert . x.y4m", "Is a directory"},
      {"convert empty.nv12 x.y4m --size 8x8", "no frame"},
      {"info empty.nv12 --size 8x8", "no frame"},
      {"convert short.nv12 x.y4m", "--size WxH"},
      {"convert short.nv12 x.y4m --size 8x8", "4 of the 96 bytes"},
      {"convert short.nv12 x.y4m --size 8x8 --frames 1", "must be a multiple"},
      {"convert short.nv12 x.png --size 8x8", "must be a multiple"},
      {"info short.nv12 --size 8x8", "must be a multiple"},
      {"convert four.nv12 x.y4m --size 9x8", "multiple of that"},
      {"convert short.nv12 x.y4m --size 8", "for example 640x480"},
      {"convert short.nv12 x.y4m --size 8x-8", "for example 640x480"},
      {"convert short.nv12 x.y4m --size 0x8", "1x8 would do"},
      {"convert short.nv12 x.y4m --size 8x65536", "8x65535 would do"},
      {"convert short.nv12 x.y4m --size 8x8 --from nv99", "known are yuv420p, yv12"},
      {"convert ok.y4m x.y4m --size 8x8", "does not match"},
      {"convert ok.y4m x.y4m --from nv12", "is a Y4M stream, not nv12"},
      {"convert a.ppm x.y4m --from png", "is a PPM picture, not png"},
      {"convert a.ppm x.y4m --size 2x3", "a picture of 2x2"},
      {"convert four.nv12 x.y4m --from y4m", "is no Y4M stream"},
      {"convert four.nv12 x.y4m --from png", "is no png picture"},
      {"convert four.nv12 x.y4m --size 8x8 --stride 7", "8 bytes"},
      {"convert four.nv12 x.y4m --size 8x8 --from i420 --stride 9", "must be even"},
      {"convert four.nv12 x.y4m --size 8x8 --from tiled --stride 16", "no rows to pad"},
      {"convert ok.y4m x.y4m --stride 16", "rows of Y4M are packed"},
      {"convert a.ppm x.y4m --stride 16", "rows of pictures are packed"},
      {"convert ok.y4m x.y4m --stride 4294967296", "to 4294967295"},
      // Frames
      {"convert ok.y4m x.y4m --skip 3", "which has 3 frames"},
      {"convert four.nv12 x.y4m --size 8x8 --skip 4", "which has 4 frames"},
      {"convert ok.y4m x.y4m --frames 3:1", "which has 3 frames"},
      {"convert ok.y4m x.y4m --skip -1", "whole number"},
      {"convert ok.y4m x.y4m --frames 0", "from 1 on"},
      {"convert ok.y4m x.y4m --frames 1:0", "from 1 on"},
      {"convert ok.y4m x.y4m --frames :2", "FIRST:COUNT"},
      {"convert ok.y4m x.y4m --frames 1:2:3", "FIRST:COUNT"},
      {"convert ok.y4m x.y4m --skip 1 --frames 1:1", "omit --skip"},
      {"convert ok.y4m x.png --frames 2", "out-%03d.png"},
      {"convert ok.y4m x.y4m --threads 0", "from 1 to 1024"},
      // Geometry
      {"convert ok.y4m x.y4m --crop 4,0,8x4", "not lie inside"},
      {"convert ok.y4m x.y4m --crop 4294967295,0,8x4", "X,Y,WIDTHxHEIGHT"},
      {"convert ok.y4m x.y4m --crop 1,0,4x4", "0 or 2 would do"},
      {"convert ok.y4m x.y4m --crop 0,0,0x4", "1x4 would do"},
      {"convert ok.y4m x.y4m --at 0,0", "--canvas"},
      {"convert ok.y4m x.y4m --canvas 6x6", "inside the frame of 6x6"},
      {"convert ok.y4m x.y4m --canvas 16x6 --at 1,0", "0 or 2 would do"},
      {"convert ok.y4m x.y4m --canvas 16x6 --at 2", "expected X,Y"},
      {"convert ok.y4m x.y4m --resize 0x0", "1x1 would do"},
      {"convert ok.y4m x.y4m --resize 0%", "nothing would be left"},
      {"convert ok.y4m x.y4m --resize 0x", "0x: nothing would be left"},
      {"convert ok.y4m x.y4m --resize fit:8", "fit:640x640"},
      {"convert ok.y4m x.y4m --resize -5%", "fit:640x640"},
      {"convert ok.y4m x.png --resize 65535x65535", "too large"},
      {"convert ok.y4m x.y4m --luma lanczos", "cubic"},
      {"convert ok.y4m x.y4m --rotate 45", "0, 90, 180 or 270"},
      {"rotate ok.y4m x.y4m --angle -90", "0, 90, 180 or 270"},
      // Colours
      {"convert ok.y4m x.y4m --range wide", "auto, full or limited"},
      {"convert ok.y4m x.y4m --matrix 709", "bt601, bt709 or bt2020"},
      {"convert ok.y4m x.y4m --to-range 1", "auto, full or limited"},
      {"convert a.ppm x.y4m --range full", "a.ppm holds rgb24"},
      {"convert ok.y4m x.png --to-range full", "not for rgb24"},
      {"convert ok.y4m x.rgba --to-matrix bt709", "not for rgba"},
      {"convert ok.y4m x.png --fps 25", "--fps is for Y4M"},
      {"testcard x.nv12 --size 8x8 --fps 25", "--fps is for Y4M"},
      // Outputs
      {"convert ok.y4m x.y4m --to nv16", "cannot hold nv16"},
      {"convert ok.y4m x.png --to nv12", "cannot hold nv12"},
      {"convert ok.y4m x.pgm --to rgb24", "cannot hold rgb24"},
      {"convert ok.y4m x.png --to ppm", "contradicts the name"},
      {"convert ok.y4m x.unknown", "Add --to"},
      {"convert ok.y4m x.nv12 --to jpg", "known are"},
      {"convert ok.y4m no/x.y4m", "no/x.y4m: cannot be written"},
      {"convert ok.y4m ok.y4m/x.y4m", "Not a directory"},
      {"convert ok.y4m/x x.y4m", "Not a directory"},
      {"convert ok.y4m " + std::string(300, 'x') + ".y4m", "File name too long"},
      {"convert ok.y4m /dev/full --to y4m", "No space"},
      {"convert ok.y4m /proc/x.y4m", "cannot be written"},
      {"testcard x.png --size 65536x2", "65535x2 would do"},
      {"testcard x.png --size 8x8 --frames 2", "out-%03d.png"},
      {"testcard x.rgba --size 65535x65535", "too large"},
      {"formats --size 0x2", "1x2 would do"}};
  for (const auto& [args, words] : cases) expectRefusal(args, words);
}

TEST_F(ToolTest, EncodedFilesAreRefusedWithTheLineThatWouldDo) {
  const std::string rest = noise(500);
  const std::vector<std::pair<std::string, std::string>> cases = {
      {std::string("\0\0\0\x20", 4) + "ftypisom", "MP4 or MOV"},
      {"\x1A\x45\xDF\xA3", "Matroska or WebM"},
      {"RIFFabcdAVI LIST", "AVI"},
      {"RIFFabcdWEBPVP8 ", "WebP"},
      {"OggS", "Ogg"},
      {"\xFF\xD8\xFF\xE0", "JPEG"},
      {"\xFF\xD8\xFF\xDB", "JPEG"},
      {"GIF89a", "GIF"},
      {std::string("II*\0", 4), "TIFF"}};
  for (const auto& [start, kind] : cases) {
    save("clip", start + rest);
    const bool still =
        kind == "JPEG" || kind == "GIF" || kind == "TIFF" || kind == "WebP";
    const std::string line =
        std::string("ffmpeg -v error -i clip ") +
        (still ? "-f image2pipe -c:v png -" : "-f yuv4mpegpipe -pix_fmt yuv420p -") +
        " | zelm-imageutil convert - OUT";
    for (const char* args : {"convert clip x.png", "info clip",
                             "convert clip x.png --from nv12 --size 2x2"}) {
      expectRefusal(args, "(" + kind + "); ffmpeg decodes it: " + line);
    }
  }
}

TEST_F(ToolTest, DamagedStreamsAreRefused) {
  const std::string args = "convert - x.y4m";
  const std::string start = "YUV4MPEG2 W8 H4", gray = noise(35);
  const std::string png = pngOf(gray, 7, 5, 1), pgm = "P5\n7 5\n255\n" + gray;
  std::string flipped = png;
  flipped[45] ^= 1;
  const std::vector<std::pair<std::string, std::string>> cases = {
      {smallY4m().substr(0, smallY4m().size() - 1), "frame 3 is cut short"},
      {start + "\n" + std::string(60, 'x'), "does not begin with FRAME"},
      {start + "\nFRAMEx\n" + std::string(60, 'x'), "does not begin with FRAME"},
      {start + std::string(100000, ' '), "longer than"},
      {start + "\nFRAME" + std::string(100000, '\0'), "longer than"},
      {start + " C444\nFRAME\n", "C444"},
      {start + " C420p10\nFRAME\n", "C420p10"},
      {"YUV4MPEG2 W0 H4\nFRAME\n", "1x4 would do"},
      {"YUV4MPEG2 H4\nFRAME\n", "1x4 would do"},
      {"YUV4MPEG2 Wx H4\nFRAME\n", "no width"},
      {"YUV4MPEG2 W99999999999999999999 H4\nFRAME\n", "no width"},
      {"YUV4MPEG2 W65534 H32768\nFRAME\nabc", "cut short"},
      {start + "\n", "no frame"},
      {"YUV4MPEG2 W8 H4", "no frame"},
      {png.substr(0, png.size() - 1), "cut short"},
      {png.substr(0, 20), "cut short"},
      {flipped, "damaged"},
      {png + "x", "cut short"},
      {png + gray, "picture 2 does not begin like a PNG"},
      {png + pngOf(gray, 5, 7, 1), "picture 2 is 5x7 gray, those before it are 7x5"},
      {png + pngOf(noise(105), 7, 5, 3), "picture 2 is 7x5 rgb24"},
      {png + pgm, "picture 2 does not begin like a PNG"},
      {pgm + png, "picture 2 does not begin like a PPM or PGM"},
      {pgm.substr(0, pgm.size() - 1), "cut short"},
      {"P5\n7 ", "cut short"},
      {"P5\n7 5\n65535\n" + gray + gray, "only 255"},
      {"P5\n7 x\n255\n" + gray, "damaged"},
      {"P5\n123456789 5\n255\n" + gray, "damaged"},
      {"P6\n70000 5\n255\n" + gray, "65535x5 would do"}};
  for (const auto& [input, words] : cases) {
    expectRefusal(args, words, input);
    const ToolResult piped = runPiped(args, input);
    EXPECT_EQ(piped.status, 2) << words;
    EXPECT_NE(piped.err.find(words), std::string::npos) << piped.err;
    EXPECT_TRUE(files().empty());
  }
}

// Whatever a header or a stream claims, the program takes no more memory than the bytes
// that arrive need.
TEST_F(ToolTest, HostileFilesAndStreams) {
  const std::string huge = "YUV4MPEG2 W65535 H65535 Cmono\nFRAME\nabc";
  save("huge.y4m", huge);
  save("huge.ppm", "P6 65535 65535 255\nabc");
  save("file", "abc");
  std::string png = pngOf("x", 1, 1, 1);
  const uint8_t size[] = {0, 0, 255, 255, 0, 0, 255, 255};
  png.replace(16, 8, reinterpret_cast<const char*>(size), 8);
  save("huge.png", png);
  std::string chunk = png;
  chunk.replace(33, 4, "\x7F\xFF\xFF\xFF");
  save("chunk.png", chunk);
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"convert huge.y4m x.nv12", ""},
      {"convert huge.y4m x.y4m --crop 0,0,8x8", "cut short"},
      {"rotate huge.y4m x.y4m --angle 90", "cut short"},
      {"convert huge.y4m --to gray --md5 --crop 0,0,8x8", "cut short"},
      {"convert huge.ppm x.y4m --crop 0,0,8x8", "too large"},
      {"convert huge.png x.y4m --crop 0,0,8x8", "damaged"},
      {"convert chunk.png x.y4m", "cut short"},
      {"info huge.y4m", "cut short"},
      {"compare huge.y4m huge.y4m", "cut short"},
      {"convert file x.nv12 --from gray --size 65535x65535", "cut short"},
      {"convert file x.nv12 --from tiled --size 65535x65535", "too large"},
      {"convert file x.nv12 --from nv12 --size 2x65535 --stride 4294967295",
       "too large"},
      {"convert /dev/zero x.y4m --from y4m", "is no Y4M stream"},
      {"convert /dev/zero /dev/full --from nv12 --size 64x48 --to y4m", "No space"},
      {"convert /dev/zero /proc/x.y4m --from nv12 --size 8x8", "cannot be written"}};
  for (const auto& [args, words] : cases) expectRefusal(args, words);
  EXPECT_EQ(runPiped("convert - x.y4m --crop 0,0,8x8", huge).status, 2);
  // An endless input is read no further than necessary.
  EXPECT_EQ(
      runOk("convert /dev/zero - --from nv12 --size 8x4 --to gray --skip 3 --frames 2"),
      std::string(64, '\0'));
  rusage children;
  ASSERT_EQ(getrusage(RUSAGE_CHILDREN, &children), 0);
  EXPECT_LT(children.ru_maxrss, 200 * 1024);
}

}  // namespace
