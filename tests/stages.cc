#include "stages.h"

#include <algorithm>

namespace harness {
namespace {

struct Size {
  int w, h;
};
struct Sizes {
  Size dst, src;
};

size_t upTo16(size_t n) { return (n + 15) / 16 * 16; }

// A frame around a region, with or without margins around it.
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

  const size_t w = width, h = height, gap = margins ? random->below(20) : 0;
  const size_t tiles = upTo16(w) * upTo16(h);
  frame.stride = w;
  frame.chroma = w * h;
  bool chromaAtOffset = false;
  switch (layout) {
    case Layout::kLuma:
      frame.bytes = w * h;
      break;
    case Layout::kSemi420:
    case Layout::kPlanarRead:
      chromaAtOffset = true;
      frame.bytes = w * h + gap + w * h / 2;
      break;
    case Layout::kSemi420Packed:
      frame.bytes = w * h * 3 / 2;
      break;
    case Layout::kSemi422:
      chromaAtOffset = true;
      frame.bytes = w * h + gap + w * h;
      break;
    case Layout::kPlanarWritten:
      frame.chroma = h * upTo16(w);
      frame.bytes = frame.chroma + h * upTo16(upTo16(w) / 2);
      break;
    case Layout::kPacked2:
    case Layout::kPacked3:
    case Layout::kPacked4:
      frame.stride *= layout == Layout::kPacked2   ? 2
                      : layout == Layout::kPacked3 ? 3
                                                   : 4;
      frame.chroma = frame.bytes = frame.stride * h;
      break;
    case Layout::kTiledRead:
      chromaAtOffset = true;
      frame.chroma = tiles;
      frame.bytes = tiles + gap + tiles / 2;
      break;
    case Layout::kTiledWritten:
      frame.chroma = tiles;
      frame.bytes = tiles + tiles / 2;
      break;
    case Layout::kBlock3:
      frame.stride = 3 * static_cast<size_t>(std::max(1, region.w));
      frame.chroma = frame.bytes = frame.stride * region.h;
      r.width = 0xFFF0;
      r.roiX = r.roiY = 0x123456;
      break;
  }
  if (chromaAtOffset) {
    frame.chroma += gap;
    r.uvOffset = static_cast<uint32_t>(frame.chroma);
  }
  if (fit == Fit::kFrame && margins) {
    r.roiX = random->below(width / 2) * 2;
    r.roiY = random->below(height / 2) * 2;
    r.roiWidth = static_cast<uint16_t>(width - r.roiX);
    r.roiHeight = static_cast<uint16_t>(height - r.roiY);
  }
  if (fit == Fit::kTiles) r.roiX = r.roiY = 0x345678;
  return frame;
}

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
  return sizes;
}

std::vector<Sizes> sizesOf(Fit fit) {
  if (fit == Fit::kScaledSamples) return scaledSizes();
  std::vector<Sizes> sizes;
  if (fit == Fit::kScaledPairs) {
    for (const Sizes& s : scaledSizes()) {
      sizes.push_back({{2 * s.dst.w, 2 * s.dst.h}, {2 * s.src.w, 2 * s.src.h}});
    }
    return sizes;
  }
  const bool odd = fit != Fit::kSame && fit != Fit::kFrame && fit != Fit::kTiles;
  for (const Size& s : regionSizes(odd)) {
    const int surplus = static_cast<int>(sizes.size()) % 3;
    switch (fit) {
      case Fit::kTurned:
        sizes.push_back({{s.h, s.w}, s});
        break;
      case Fit::kFrame:
        if (s.w > 0 && s.h > 0) sizes.push_back({s, s});
        break;
      case Fit::kTiles:
        if (s.w > 0) sizes.push_back({s, s});
        break;
      case Fit::kWholeGroups:
        sizes.push_back({{s.w / 2 * 2, s.h}, s});
        break;
      case Fit::kDoubledLast:
        sizes.push_back({{(s.w + 1) / 2 * 2, s.h}, s});
        break;
      case Fit::kBox2:
        sizes.push_back({s, {2 * s.w + surplus, 2 * s.h + surplus}});
        break;
      case Fit::kBox4:
        if (s.w * s.h < 6000) {
          sizes.push_back({s, {4 * s.w + surplus, 4 * s.h + surplus}});
        }
        break;
      default:
        sizes.push_back({s, s});
        break;
    }
  }
  return sizes;
}

}  // namespace

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
  { #name, ::name, reference::name, Layout::src, Layout::dst, Fit::fit, digest }
  // clang-format off
  static const std::vector<Stage> table = {
      STAGE(convYUV420SP_RGBA8888, kSemi420, kPacked4, kSame, 0xe8625329e6bc9dd0),
      STAGE(convYUV420SP_RGB565, kSemi420, kPacked2, kSame, 0x49778810b176e71c),
      STAGE(convYUV420SP_RGB888, kSemi420, kPacked3, kSame, 0x32b7f0ae4c42e71a),
      STAGE(convYUV420SP_YUV420SP, kSemi420, kSemi420, kSame, 0xea31e355cf6d8f02),
      STAGE(convYUV420SP_VU2UV, kSemi420, kSemi420, kSame, 0xa1dac76ede89f7f0),
      STAGE(convYUV420SP_YUV420P, kSemi420, kPlanarWritten, kFrame, 0xc753cad846fa6af4),
      STAGE(convYUV420P_YUV420SP, kPlanarRead, kSemi420, kFrame, 0x6532044a8fb7d1c4),
      STAGE(convYUV420SP_YUV422SP, kSemi420, kSemi422, kSame, 0x2386e461a399e389),
      STAGE(convYUV420SP_YUV422SP_VU2UV, kSemi420, kSemi422, kSame, 0x1c18599049744ff8),
      STAGE(convYUV422IUYVY_YUV420SPVU, kPacked2, kSemi420Packed, kWholeGroups, 0x162834686a14467a),
      STAGE(convRGB565_YUV420SPVU, kPacked2, kSemi420Packed, kDoubledLast, 0x69357e568ff914d7),
      STAGE(convYUV420SPMB_YUV420SPVU, kTiledRead, kSemi420Packed, kTiles, 0xcf78ac8d48dcd114),
      STAGE(convYUV420SPVU_YUV420SPMB, kSemi420, kTiledWritten, kTiles, 0xccdd1b3b7ef22118),
      STAGE(resize_nearest, kLuma, kLuma, kScaledSamples, 0xf441068ea706def1),
      STAGE(resize_nearestVU, kSemi420, kSemi420, kScaledPairs, 0x60f74a0f3afaa3ea),
      STAGE(resize_linear, kLuma, kLuma, kScaledSamples, 0xef15da953c7c3868),
      STAGE(resize_linearVU, kSemi420, kSemi420, kScaledPairs, 0x541f05b468529e8b),
      STAGE(resize_linear3ch, kPacked3, kBlock3, kScaledSamples, 0xe07b62518b9a0d58),
      STAGE(resize_cubic, kLuma, kLuma, kScaledSamples, 0x4b346cf2ed265708),
      STAGE(resize_cubicVU, kSemi420, kSemi420, kScaledPairs, 0x10fc088a5c0bbc8f),
      STAGE(resize_averageOfPixel2_420LP, kSemi420, kSemi420, kBox2, 0xf6b8350115f2dc52),
      STAGE(resize_averageOfPixel4_420LP, kSemi420, kSemi420, kBox4, 0xfbbbcb0f04c167eb),
      STAGE(rotate0_Y, kLuma, kLuma, kSameAny, 0xf167296108d040df),
      STAGE(rotate90_Y, kLuma, kLuma, kTurned, 0xe08484268d8655b9),
      STAGE(rotate180_Y, kLuma, kLuma, kSameAny, 0xb95d983de52931c8),
      STAGE(rotate270_Y, kLuma, kLuma, kTurned, 0xd1b4605c67457720),
  };
  // clang-format on
  return table;
}

}  // namespace harness
