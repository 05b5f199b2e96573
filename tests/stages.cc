// The table of stages, and the regions and frames that each stage is tried with.
#include "stages.h"

#include <algorithm>

namespace harness {
namespace {

using reference::upTo16;

struct LayoutRule {
  Layout layout;
  size_t pixelBytes;    // of plane 0
  size_t chromaHalves;  // half bytes of chroma for each pixel
  bool atOffset;        // the record says where the chroma starts
};

// clang-format off
constexpr LayoutRule kLayoutRules[] = {
    // layout                pixelBytes, chromaHalves, atOffset
    {Layout::kLuma,          1, 0, false},
    {Layout::kSemi420,       1, 1, true},
    {Layout::kSemi420Packed, 1, 1, false},
    {Layout::kSemi422,       1, 2, true},
    {Layout::kPlanarRead,    1, 1, true},
    {Layout::kPlanarWritten, 0, 0, false},
    {Layout::kPacked2,       2, 0, false},
    {Layout::kPacked3,       3, 0, false},
    {Layout::kPacked4,       4, 0, false},
    {Layout::kTiledRead,     1, 1, true},
    {Layout::kTiledWritten,  1, 1, false},
    {Layout::kBlock3,        3, 0, false},
};
// clang-format on

const LayoutRule& ruleOf(Layout layout) {
  const LayoutRule* rule = kLayoutRules;
  while (rule->layout != layout) ++rule;
  return *rule;
}

// Sizes of one region: every small width, widths around the powers of two that vectors
// and strips are long, every small height, and the same with width and height
// exchanged.
std::vector<Size> regionSizes(bool odd) {
  std::vector<Size> sizes;
  for (int w = 0; w <= 130; ++w) {
    for (int h : {2, 5 - w % 2, 18}) sizes.push_back({w, h});
    sizes.push_back({7, w});
    sizes.push_back({w + w % 2 + 2, w});
  }
  for (int h = 0; h <= 20; ++h) {
    for (int w : {1, 16, 34, 66}) sizes.push_back({w, h});
  }
  for (int c : {160, 192, 256, 272, 320, 384, 512, 520, 1024, 1028, 2048}) {
    for (int w = c - 2; w <= c + 4; ++w) {
      sizes.push_back({w, 4});
      sizes.push_back({4 + w % 3, w});
    }
  }
  if (!odd) {
    std::vector<Size> even;
    for (const Size& s : sizes) {
      if (s.w % 2 == 0) even.push_back({s.w, s.h + s.h % 2});
    }
    sizes = even;
  }
  return sizes;
}

// Kernels gather a destination vector out of one or more pieces of the source row. How
// many pieces depends on the step, so that all steps up to 10 are tried, while the
// number of rows grows or shrinks.
void addGathers(std::vector<Sizes>* sizes) {
  const auto add = [sizes](int dst, int src) {
    sizes->push_back({{dst, 3}, {src, src % 2 == 0 ? 2 : 6}});
  };
  for (int src = 1; src <= 1300; src += src < 300 ? 1 : 3) add(130 + src % 3, src);
  // Rows of at most about a piece, enlarged 20 times.
  for (int bytes : {14, 15, 16, 17, 18, 62, 63, 64, 65, 66}) {
    for (int sample : {1, 2, 3}) {
      const int src = (bytes + sample - 1) / sample;
      sizes->push_back({{20 * src, 20}, {src, 2}});
      add(64 + src, src);
    }
  }
  // A last strip whose length is about that of one or more vectors.
  const double steps[] = {0.05, 0.7, 1.5, 2.7, 3.9, 6.1, 8.3, 12};
  size_t next = 0;
  for (int strip : {1024, 2048}) {
    for (int rest : {1, 3, 15, 16, 17, 31, 33, 63, 65, 67}) {
      for (int sample : {1, 2, 3}) {
        const int dst = (strip + rest + sample - 1) / sample;
        for (int k = 0; k < 3; ++k) {
          add(dst, 1 + static_cast<int>(steps[next++ % 8] * (dst - 1)));
        }
      }
    }
  }
}

// Sizes of two regions for the scalers.
std::vector<Sizes> scaledSizes() {
  const int extents[] = {1,  2,  3,  4,  5,   8,   15,  16, 17,
                         32, 33, 64, 65, 100, 129, 256, 257};
  const Size small[] = {{1, 1}, {3, 2}, {2, 4},  {9, 5},  {1, 3}, {7, 7},
                        {4, 8}, {4, 1}, {20, 2}, {3, 20}, {6, 5}};
  std::vector<Sizes> sizes;
  auto add = [&](int dst, int src) {
    const Size other = small[sizes.size() / 2 % 11];
    sizes.push_back({{dst, other.w}, {src, other.h}});
    sizes.push_back({{other.w, dst}, {other.h, src}});
  };
  for (int dst : extents) {
    for (int src : extents) add(dst, src);
  }
  for (int n = 0; n <= 130; ++n) {
    add(n, 1 + n * 37 % 131);
    add(1 + n * 53 % 131, n);
    add(n, n);
    add(n, 2 * n);
    add(2 * n - (n > 0 ? 1 : 0), n);
  }
  for (int c : {512, 1024, 1028, 2048}) {
    for (int n = c - 2; n <= c + 4; ++n) {
      add(n, 2);
      add(n, n / 2);
      add(n / 3, n);
      add(n, 1030);
      add(n, n);
    }
  }
  for (const Size& s : {Size{1000, 2}, Size{2, 1000}, Size{1, 1999}, Size{1999, 1}}) {
    add(s.w, s.h);
  }
  sizes.push_back({{200, 120}, {330, 90}});
  sizes.push_back({{330, 90}, {200, 120}});
  addGathers(&sizes);
  return sizes;
}

std::vector<Sizes> sizesOf(Fit fit) {
  std::vector<Sizes> sizes;
  if (fit == Fit::kScaledSamples || fit == Fit::kScaledPairs) {
    for (const Sizes& s : scaledSizes()) sizes.push_back(regionsOf(fit, s.dst, s.src));
    return sizes;
  }
  const bool whole = fit == Fit::kFrame || fit == Fit::kTiles;
  for (const Size& s : regionSizes(fit != Fit::kSame && !whole)) {
    if (whole && s.w == 0) continue;
    if (fit == Fit::kFrame && s.h == 0) continue;
    const int surplus = static_cast<int>(sizes.size()) % 3;
    sizes.push_back(regionsOf(fit, s, {surplus, surplus}));
  }
  return sizes;
}

}  // namespace

Sizes regionsOf(Fit fit, Size size, Size other) {
  const Size doubled{2 * size.w, 2 * size.h};
  const int factor = fit == Fit::kBox2 ? 2 : 4;
  switch (fit) {
    case Fit::kTurned:
      return {{size.h, size.w}, size};
    case Fit::kWholeGroups:
      return {{size.w / 2 * 2, size.h}, size};
    case Fit::kDoubledLast:
      return {{(size.w + 1) / 2 * 2, size.h}, size};
    case Fit::kBox2:
    case Fit::kBox4:
      return {size, {factor * size.w + other.w, factor * size.h + other.h}};
    case Fit::kScaledSamples:
      return {size, other};
    case Fit::kScaledPairs:
      return {doubled, {2 * other.w, 2 * other.h}};
    default:
      return {size, size};
  }
}

Frame makeFrame(Layout layout, Fit fit, Size region, bool margins, Random* random) {
  const bool anySize =
      layout == Layout::kLuma &&
      (fit == Fit::kSameAny || fit == Fit::kTurned || fit == Fit::kScaledSamples);
  const int grid = anySize ? 1 : 2;
  const bool whole = fit == Fit::kFrame || fit == Fit::kTiles;
  int left = 0, right = 0, top = 0, bottom = 0;
  if (margins && !whole) {
    left = random->below(10) * grid, right = random->below(10) * grid;
    top = random->below(4) * grid, bottom = random->below(4) * grid;
  }
  const int width = std::max(2, (left + region.w + right + grid - 1) / grid * grid);
  const int height = std::max(2, (top + region.h + bottom + grid - 1) / grid * grid);

  Frame frame{noisyRecord(random), 0, 0, 0};
  ImageStruct& r = frame.record;
  const uint32_t formats[] = {FORMAT_YUV420SP, FORMAT_YUV420SPVU, FORMAT_RGB565, 0};
  r.format = formats[random->below(4)];
  r.width = static_cast<uint16_t>(width);
  r.height = static_cast<uint16_t>(height);
  r.roiX = left;
  r.roiY = top;
  r.roiWidth = static_cast<uint16_t>(region.w);
  r.roiHeight = static_cast<uint16_t>(region.h);

  const LayoutRule& rule = ruleOf(layout);
  size_t w = r.width, h = r.height;
  if (layout == Layout::kTiledRead || layout == Layout::kTiledWritten) {
    w = upTo16(w), h = upTo16(h);
  }
  if (layout == Layout::kBlock3) {
    w = r.roiWidth, h = r.roiHeight;
    r.width = 0xFFF0;
    r.roiX = r.roiY = 0x123456;
  }
  const size_t gap = margins && rule.atOffset ? random->below(20) : 0;
  frame.stride = std::max<size_t>(1, w * rule.pixelBytes);
  frame.chroma = w * h * rule.pixelBytes + gap;
  frame.bytes = frame.chroma + w * h * rule.chromaHalves / 2;
  if (layout == Layout::kPlanarWritten) {
    frame.stride = w;
    frame.chroma = h * upTo16(w);
    frame.bytes = frame.chroma + h * upTo16(upTo16(w) / 2);
  }
  if (rule.atOffset) r.uvOffset = static_cast<uint32_t>(frame.chroma);
  if (fit == Fit::kFrame && margins) {
    r.roiX = random->below(width / 2) * 2;
    r.roiY = random->below(height / 2) * 2;
    r.roiWidth = static_cast<uint16_t>(width - r.roiX);
    r.roiHeight = static_cast<uint16_t>(height - r.roiY);
  }
  if (fit == Fit::kTiles) r.roiX = r.roiY = 0x345678;
  return frame;
}

std::vector<Case> casesOf(const Stage& stage) {
  std::vector<Case> cases;
  Random random(1);
  uint32_t seed = 0;
  for (const Sizes& sizes : sizesOf(stage.fit)) {
    // Twice a frame that is no larger than its region, then one with margins.
    for (int form = 0; form < 3; ++form) {
      const bool margins = form == 2;
      const Content content =
          form == 1 ? static_cast<Content>(1 + seed / 3 % 5) : kRandom;
      const Frame dst = makeFrame(stage.dst, stage.fit, sizes.dst, margins, &random);
      const Frame src = makeFrame(stage.src, stage.fit, sizes.src, margins, &random);
      cases.push_back({dst, src, content, ++seed});
    }
  }
  return cases;
}

Call callOf(const Stage& stage) {
  const auto call = [](reference::Stage* function) {
    return [function](ImageStruct* dst, ImageStruct* src) {
      function(dst, src);
      return 0;
    };
  };
  Call both;
  both.name.add("%s", stage.name);
  both.product = call(stage.product);
  both.expected = call(stage.expected);
  return both;
}

const std::vector<Stage>& stages() {
// The name of a stage, its function in the library and that of the reference.
#define STAGE(name) #name, ::name, reference::name
  // clang-format off
  static const std::vector<Stage> table = {
      // stage                              source               destination             sizes                digest
      {STAGE(convYUV420SP_RGBA8888),        Layout::kSemi420,    Layout::kPacked4,       Fit::kSame,          0xdcae23568c3b59b2},
      {STAGE(convYUV420SP_RGB565),          Layout::kSemi420,    Layout::kPacked2,       Fit::kSame,          0x95cb348de302070b},
      {STAGE(convYUV420SP_RGB888),          Layout::kSemi420,    Layout::kPacked3,       Fit::kSame,          0x51cd6f007a764760},
      {STAGE(convYUV420SP_YUV420SP),        Layout::kSemi420,    Layout::kSemi420,       Fit::kSame,          0xea31e355cf6d8f02},
      {STAGE(convYUV420SP_VU2UV),           Layout::kSemi420,    Layout::kSemi420,       Fit::kSame,          0xa1dac76ede89f7f0},
      {STAGE(convYUV420SP_YUV420P),         Layout::kSemi420,    Layout::kPlanarWritten, Fit::kFrame,         0x3f62cf47958ee1f4},
      {STAGE(convYUV420P_YUV420SP),         Layout::kPlanarRead, Layout::kSemi420,       Fit::kFrame,         0x6532044a8fb7d1c4},
      {STAGE(convYUV420SP_YUV422SP),        Layout::kSemi420,    Layout::kSemi422,       Fit::kSame,          0x2386e461a399e389},
      {STAGE(convYUV420SP_YUV422SP_VU2UV),  Layout::kSemi420,    Layout::kSemi422,       Fit::kSame,          0x1c18599049744ff8},
      {STAGE(convYUV422IUYVY_YUV420SPVU),   Layout::kPacked2,    Layout::kSemi420Packed, Fit::kWholeGroups,   0xe1e2f52fd807205b},
      {STAGE(convRGB565_YUV420SPVU),        Layout::kPacked2,    Layout::kSemi420Packed, Fit::kDoubledLast,   0xaa2cd11302fe8ce5},
      {STAGE(convYUV420SPMB_YUV420SPVU),    Layout::kTiledRead,  Layout::kSemi420Packed, Fit::kTiles,         0x14adccd2faacbb4b},
      {STAGE(convYUV420SPVU_YUV420SPMB),    Layout::kSemi420,    Layout::kTiledWritten,  Fit::kTiles,         0x882a3101b6fb723e},
      {STAGE(resize_nearest),               Layout::kLuma,       Layout::kLuma,          Fit::kScaledSamples, 0x0e1b88437dad5222},
      {STAGE(resize_nearestVU),             Layout::kSemi420,    Layout::kSemi420,       Fit::kScaledPairs,   0x179dbe10f74b8a01},
      {STAGE(resize_linear),                Layout::kLuma,       Layout::kLuma,          Fit::kScaledSamples, 0xf323e2db57bf7340},
      {STAGE(resize_linearVU),              Layout::kSemi420,    Layout::kSemi420,       Fit::kScaledPairs,   0xd55a47e511430bb4},
      {STAGE(resize_linear3ch),             Layout::kPacked3,    Layout::kBlock3,        Fit::kScaledSamples, 0xd77cc3a8db9b869d},
      {STAGE(resize_cubic),                 Layout::kLuma,       Layout::kLuma,          Fit::kScaledSamples, 0xf4f6fa56ad9e20c6},
      {STAGE(resize_cubicVU),               Layout::kSemi420,    Layout::kSemi420,       Fit::kScaledPairs,   0x71354f71120fc58b},
      {STAGE(resize_averageOfPixel2_420LP), Layout::kSemi420,    Layout::kSemi420,       Fit::kBox2,          0xf6b8350115f2dc52},
      {STAGE(resize_averageOfPixel4_420LP), Layout::kSemi420,    Layout::kSemi420,       Fit::kBox4,          0x38328a25f0b24427},
      {STAGE(rotate0_Y),                    Layout::kLuma,       Layout::kLuma,          Fit::kSameAny,       0x4f6545af8bc5600b},
      {STAGE(rotate90_Y),                   Layout::kLuma,       Layout::kLuma,          Fit::kTurned,        0xc8d8979a8b86d916},
      {STAGE(rotate180_Y),                  Layout::kLuma,       Layout::kLuma,          Fit::kSameAny,       0xda78002b5378ec37},
      {STAGE(rotate270_Y),                  Layout::kLuma,       Layout::kLuma,          Fit::kTurned,        0x229cf78a9faff44b},
  };
  // clang-format on
#undef STAGE
  return table;
}

}  // namespace harness
