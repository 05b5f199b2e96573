// What the commands info, compare, formats and the help print.
#include <cmath>

#include "tool_frames.h"
#include "tool_process.h"

namespace {

TEST_F(ToolTest, InfoSaysWhatIsThereAndWhatIsAssumed) {
  save("a.nv12", std::string(3 * 59, 'x'));
  save("a.y4m", smallY4m());
  save("a.png", pngOf(noise(140), 7, 5, 4));
  save("b.y4m", uniformY4m(" XCOLORRANGE=FULL XCOLORMATRIX=BT.2020", 8, 4, {1, 2, 3}));
  struct Case {
    std::string options;
    std::string printed;
  };
  const std::string range = " (assumed; --range says otherwise)\n",
                    matrix = " (assumed; --matrix says otherwise)\n";
  for (const Case& c :
       {Case{"a.nv12 --size 7x5",
             "input          a.nv12\ncontainer      raw\nformat         nv12\n"
             "size           7x5\nframes         3\nframe bytes    59\n"
             "range          full" +
                 range + "matrix         BT.601" + matrix},
        Case{"a.nv12 --size 7x5 --frames 1:1 --range limited",
             "input          a.nv12\ncontainer      raw\nformat         nv12\n"
             "size           7x5\nframes         1\nframe bytes    59\n"
             "range          limited\nmatrix         BT.601" +
                 matrix},
        Case{"a.y4m",
             "input          a.y4m\ncontainer      Y4M\nformat         yuv420p\n"
             "size           8x4\nframes         3\nframe bytes    48\n"
             "rate           30000:1001, 29.97 frames per second\n"
             "duration       0.100 s\nsample aspect  2:1\n"
             "range          limited" +
                 range + "matrix         BT.601" + matrix},
        Case{"b.y4m",
             "input          b.y4m\ncontainer      Y4M\nformat         yuv420p\n"
             "size           8x4\nframes         1\nframe bytes    48\n"
             "range          full\nmatrix         BT.2020\n"},
        Case{"a.png",
             "input          a.png\ncontainer      PNG\nformat         rgba\n"
             "size           7x5\nframes         1\nframe bytes    140\n"}}) {
    EXPECT_EQ(runOk("info " + c.options), c.printed);
  }
  EXPECT_NE(runPiped("info -", smallY4m()).out.find("frames         3\n"),
            std::string::npos);
}

TEST_F(ToolTest, CompareTellsEqualFromDifferent) {
  const std::string y = noise(35), u = noise(12, 2), v = noise(12, 3);
  std::string pairs;
  for (size_t i = 0; i < u.size(); ++i) pairs += {v[i], u[i]};
  save("a.yuv420p", y + u + v + v + y + u);
  save("a.nv21", y + pairs + y + pairs);
  const auto compare = [&](const std::string& more) { return run("compare " + more); };
  const auto sized = [&](const std::string& a, const std::string& b,
                         const std::string& more = "") {
    return compare(a + " " + b + " --size 7x5 " + more);
  };
  // The layout does not matter, the samples do.
  ToolResult result = sized("a.yuv420p", "a.nv21", "--frames 1");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out + result.err, "Y  equal\nU  equal\nV  equal\n");
  result = sized("a.yuv420p", "a.nv21");
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.out.find("first difference: frame 2, pixel "), std::string::npos);

  // Two samples of V in the second frame of two differ.
  std::string other = y + u + v + y + u + v;
  save("b.yuv420p", other);
  other[2 * 59 - 12 + 5] = static_cast<char>(v[5] ^ 3);
  const int apart = std::abs(uint8_t(v[5] ^ 3) - uint8_t(v[5]));
  other[2 * 59 - 1] = static_cast<char>(v[11] ^ 16);
  save("c.yuv420p", other);
  result = sized("b.yuv420p", "c.yuv420p");
  char expected[200];
  snprintf(expected, sizeof expected,
           "Y  equal\nU  equal\nV  %.2f dB, largest difference 16\n"
           "first difference: frame 2, pixel 2,2: V is %d and %d\n",
           10 * std::log10(255.0 * 255 * 24 / (apart * apart + 16 * 16)), uint8_t(v[5]),
           uint8_t(v[5] ^ 3));
  EXPECT_EQ(result.out + result.err, expected);
  // Frames keep the numbers that they have in the file.
  result = sized("b.yuv420p", "c.yuv420p", "--frames 1:1");
  EXPECT_NE(result.out.find("frame 2, pixel 2,2"), std::string::npos) << result.out;
  EXPECT_EQ(result.status, 1);

  // More frames in one of them.
  save("d.yuv420p", y + u + v);
  result = sized("b.yuv420p", "d.yuv420p");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out,
            "Y  equal\nU  equal\nV  equal\n"
            "d.yuv420p ends after 1 frame, b.yuv420p goes on\n");

  // Pictures, with alpha where both have it; 4:2:2; luma alone.
  const std::string rgb = noise(105);
  std::string rgba;
  for (size_t i = 0; i < 35; ++i) rgba += rgb.substr(i * 3, 3) + static_cast<char>(i);
  save("a.png", pngOf(rgba, 7, 5, 4)), save("a.ppm", "P6 7 5 255\n" + rgb);
  EXPECT_EQ(runOk("compare a.png a.ppm"), "R  equal\nG  equal\nB  equal\n");
  save("b.png", pngOf(repeat("abcd", 35), 7, 5, 4));
  EXPECT_NE(compare("a.png b.png").out.find("\nA  "), std::string::npos);
  save("a.gray", y);
  EXPECT_EQ(sized("a.gray", "a.gray").out, "Y  equal\n");
  save("a.yuyv", repeat("YUZV", 20));
  save("a.nv61", runOk("convert a.yuyv - --size 7x5 --to nv61"));
  EXPECT_EQ(sized("a.yuyv", "a.nv61").status, 0);

  // What cannot be compared.
  save("e.y4m", smallY4m());
  for (const char* names :
       {"a.yuv420p e.y4m", "a.yuv420p a.yuyv", "a.yuv420p a.gray", "a.png a.nv21"}) {
    EXPECT_EQ(compare(std::string(names) + " --size 7x5").status, 2) << names;
  }
  expectRefusal("compare a.png e.y4m",
                "a.png has frames of 7x5 rgba, e.y4m of 8x4 yuv420p");
}

TEST_F(ToolTest, HelpAndFormats) {
  const std::string table = runOk("formats --size 7x5");
  for (const FormatCase& format : kFormats) {
    for (const char* name : format.names) {
      if (name == nullptr || std::string(name) == "NV21" || isupper(name[0])) continue;
      EXPECT_NE(table.find(name), std::string::npos) << name;
    }
    const size_t row = table.find(std::string("\n") + format.names[0] + " ");
    ASSERT_NE(row, std::string::npos) << format.names[0];
    EXPECT_EQ(std::stoul(table.substr(row + 11)), format.bytes) << format.names[0];
  }
  EXPECT_NE(runOk("convert --help").find("Usage: zelm-imageutil convert ["),
            std::string::npos);
  EXPECT_EQ(runOk("--version").substr(0, 15), "zelm-imageutil ");
}

}  // namespace
