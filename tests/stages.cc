#include "stages.h"

#include <algorithm>

namespace harness {
namespace {

size_t upTo16(size_t n) { return (n + 15) / 16 * 16; }

// Sizes of one region: every small width, widths around the powers of two that kernels
// and strips are made of, every small height, and the same the other way round.
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
// many they need depends on the step, so all steps up to 10 are tried, with more rows
// and with fewer.
void addGathers(std::vector<Sizes>* sizes) {
  const auto add = [sizes](int dst, int src) {
    sizes->push_back({{dst, 3}, {src, src % 2 == 0 ? 2 : 6}});
  };
  for (int src = 1; src <= 1300; src += src < 300 ? 1 : 3) add(130 + src % 3, src);
  // Rows about as long as a piece, or shorter, made 20 times as large.
  for (int bytes : {14, 15, 16, 17, 18, 62, 63, 64, 65, 66}) {
    for (int sample : {1, 2, 3}) {
      const int src = (bytes + sample - 1) / sample;
      sizes->push_back({{20 * src, 20}, {src, 2}});
      add(64 + src, src);
    }
  }
  // The last strip of bytes and its last vector, of all lengths around those of
  // vectors.
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

  struct {
    size_t lumaBytes, chromaHalves;
    bool atOffset;
  } const rules[] = {{1, 0, false}, {1, 1, true},  {1, 1, false}, {1, 2, true},
                     {1, 1, true},  {0, 0, false}, {2, 0, false}, {3, 0, false},
                     {4, 0, false}, {1, 1, true},  {1, 1, false}, {3, 0, false}};
  const auto& rule = rules[static_cast<int>(layout)];
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
  frame.stride = std::max<size_t>(1, w * rule.lumaBytes);
  frame.chroma = w * h * rule.lumaBytes + gap;
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
    // Exact frames with every content in turn, then regions inside larger ones.
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

const std::vector<Stage>& stages() {
#define STAGE(name, src, dst, fit, digest) \
  {#name, ::name, reference::name, Layout::src, Layout::dst, Fit::fit, digest},
  static const std::vector<Stage> table = {
#include "stages.inc"
  };
#undef STAGE
  return table;
}

}  // namespace harness
