// Y4M: planes, tags, frame rates and sample aspects.
#include "tool_frames.h"
#include "tool_process.h"

namespace {

TEST_F(ToolTest, Y4mPlanesAndTags) {
  const std::string y(32, 'a'), u(8, 'k'), v(8, 'v');
  for (const auto& [to, expected] :
       std::vector<std::pair<std::string, std::string>>{{"yuv420p", y + u + v},
                                                        {"yv12", y + v + u},
                                                        {"nv12", y + repeat("kv", 8)},
                                                        {"nv21", y + repeat("vk", 8)},
                                                        {"nv61", y + repeat("vk", 16)},
                                                        {"yuyv422", repeat("akav", 16)},
                                                        {"uyvy422", repeat("kava", 16)},
                                                        {"gray", y}}) {
    EXPECT_EQ(runOk("convert - - --frames 1 --to " + to, smallY4m()), expected) << to;
  }
  // Parameters of frames do not pass, tags of the stream do.
  std::string plain = smallY4m();
  plain.erase(plain.find(" Ixyz"), 5);
  const std::string header = firstLine(plain) + " XCOLORRANGE=LIMITED";
  plain.replace(0, plain.find('\n'), header);
  EXPECT_EQ(runOk("convert - -", smallY4m()), plain);
  EXPECT_EQ(runOk("convert - out", smallY4m()), "");  // no suffix: the input's
  EXPECT_EQ(load("out"), plain);
  EXPECT_EQ(runOk("convert - - --skip 2", smallY4m()),
            header + "\n" + plain.substr(plain.rfind("FRAME")));
  EXPECT_EQ(runOk("rotate - - --angle 0", smallY4m()), plain);
}

TEST_F(ToolTest, Y4mChroma) {
  struct Case {
    const char* tags;
    uint32_t format;
    const char* to;  // empty: the input's
    uint32_t becomes;
    const char* written;
  };
  for (const Case& c :
       {Case{" C420jpeg Ip", ZELM_I420, "", ZELM_I420, " C420jpeg Ip"},
        Case{" C420", ZELM_I420, "", ZELM_I420, " C420"},
        Case{"", ZELM_I420, "", ZELM_I420, ""},
        Case{" C420mpeg2 XYSCSS=420MPEG2", ZELM_I420, "y4m", ZELM_I420,
             " C420mpeg2 XYSCSS=420MPEG2"},
        Case{" C420paldv", ZELM_I420, "YUV420P", ZELM_I420, " C420paldv"},
        Case{" C422 Ib", ZELM_I422, "", ZELM_I422, " C422 Ib"},
        Case{" Cmono", ZELM_GRAY8, "", ZELM_GRAY8, " Cmono"},
        Case{" C420mpeg2 XYSCSS=420MPEG2", ZELM_I420, "yuv422p", ZELM_I422, " C422"},
        Case{" C422 It", ZELM_I422, "yuv420p", ZELM_I420, " C420jpeg It"},
        Case{" C422", ZELM_I422, "gray", ZELM_GRAY8, " Cmono"},
        Case{" Cmono", ZELM_GRAY8, "yuv422p", ZELM_I422, " C422"}}) {
    const Picture frame = {c.format, 7, 5, noise(zelmFrameBytes(c.format, 7, 5, 1))};
    const std::string to = *c.to == '\0' ? "" : " --to ";
    runOk("convert - x.y4m" + to + c.to,
          std::string("YUV4MPEG2 W7 H5") + c.tags + "\nFRAME\n" + frame.bytes);
    EXPECT_TRUE(sameBytes(load("x.y4m"), std::string("YUV4MPEG2 W7 H5") + c.written +
                                             " XCOLORRANGE=LIMITED\nFRAME\n" +
                                             converted(frame, blank(c.becomes, 7, 5))))
        << c.tags << c.to << ' ' << firstLine(load("x.y4m"));
  }
}

TEST_F(ToolTest, FrameRates) {
  const std::string raw = "convert - - --to y4m --from nv12 --size 2x2 --fps ";
  for (const auto& [fps, tag] :
       std::vector<std::pair<std::string, std::string>>{{"25", "25:1"},
                                                        {"29.97", "30000:1001"},
                                                        {"23.976", "24000:1001"},
                                                        {"59.94", "60000:1001"},
                                                        {"12.5", "25:2"},
                                                        {"30000:1001", "30000:1001"},
                                                        {"30000/1001", "30000:1001"},
                                                        {"0.1", "1:10"}}) {
    EXPECT_EQ(firstLine(runOk(raw + fps, "yyyyuv")),
              "YUV4MPEG2 W2 H2 F" + tag + " Ip A1:1 C420jpeg XCOLORRANGE=FULL");
    EXPECT_EQ(
        firstLine(runOk("convert - - --fps " + fps, smallY4m())),
        "YUV4MPEG2 W8 H4 F" + tag + " It A2:1 C420mpeg2 XTEST=1 XCOLORRANGE=LIMITED");
  }
  for (const char* wrong : {"0", "-1", "x", "25:0", "0:1", "25:", ":1", "1e3", "2.5.1",
                            ".", "99999999999", "1:2:3"}) {
    expectRefusal(raw + wrong, "expected a frame rate such as 25, 29.97 or 30000:1001",
                  "yyyyuv");
  }
}

// A picture is as wide and as high after the edit as before: so wide is a sample then.
TEST_F(ToolTest, SampleAspectFollows) {
  struct Case {
    const char* aspect;
    std::string options;
    const char* written;
  };
  for (const Case& c :
       {Case{"2:1", "--resize 16x4", "1:1"}, Case{"2:1", "--resize 4x4", "4:1"},
        Case{"2:1", "--resize 50%", "2:1"}, Case{"4:3", "--resize 8x2", "2:3"},
        Case{"2:1", "--resize 16x2", "1:2"}, Case{"4:3", "--rotate 90", "3:4"},
        Case{"4:3", "--rotate 180", "4:3"}, Case{"4:3", "--rotate 270 --mirror", "3:4"},
        // 4x8 of 3:4 becomes 8x4: half as high, twice as wide
        Case{"4:3", "--rotate 90 --resize 8x4", "3:16"},
        Case{"4:3", "--crop 0,0,4x2", "4:3"},
        Case{"4:3", "--crop 0,0,4x2 --resize 8x2", "2:3"},
        Case{"4:3", "--canvas 16x16", "4:3"}, Case{"0:0", "--resize 16x4", "0:0"},
        Case{"0:0", "--rotate 90", "0:0"}}) {
    std::string args = "convert - -";
    args += " " + c.options;
    std::string input = smallY4m();
    input.replace(input.find("A2:1"), 4, std::string("A") + c.aspect);
    const std::string header = firstLine(runOk(args, input));
    EXPECT_NE(header.find(std::string(" A") + c.written + " "), std::string::npos)
        << c.options << header;
  }
  const std::string none = uniformY4m("", 8, 4, {1, 2, 3});
  EXPECT_EQ(firstLine(runOk("rotate - - --angle 90", none)),
            "YUV4MPEG2 W4 H8 XCOLORRANGE=LIMITED");
}

}  // namespace
