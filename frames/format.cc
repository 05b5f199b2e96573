// The table of pixel formats.
#include "frames/format.h"

namespace zelm {
namespace {

constexpr RgbLayout kNoRgb = RgbLayout::kRgb24;

using S = Sampling;
using L = Layout;

// In the order of their numbers, from 1 on.
constexpr Format kFormats[] = {
    {"I420", S::k420, L::kPlanar, true, kNoRgb, 3, 1},
    {"YV12", S::k420, L::kPlanar, false, kNoRgb, 3, 1},
    {"NV12", S::k420, L::kPairs, true, kNoRgb, 2, 1},
    {"NV21", S::k420, L::kPairs, false, kNoRgb, 2, 1},
    {"I422", S::k422, L::kPlanar, true, kNoRgb, 3, 1},
    {"NV16", S::k422, L::kPairs, true, kNoRgb, 2, 1},
    {"NV61", S::k422, L::kPairs, false, kNoRgb, 2, 1},
    {"YUYV", S::k422, L::kPacked, false, kNoRgb, 1, 2},
    {"UYVY", S::k422, L::kPacked, true, kNoRgb, 1, 2},
    {"GRAY8", S::kGray, L::kNone, true, kNoRgb, 1, 1},
    {"RGB24", S::kRgb, L::kPixels, true, RgbLayout::kRgb24, 1, 3},
    {"BGR24", S::kRgb, L::kPixels, true, RgbLayout::kBgr24, 1, 3},
    {"RGBA", S::kRgb, L::kPixels, true, RgbLayout::kRgba, 1, 4},
    {"BGRA", S::kRgb, L::kPixels, true, RgbLayout::kBgra, 1, 4},
    {"RGB565", S::kRgb, L::kWords565, true, RgbLayout::kRgb565, 1, 2},
    {"BGR565", S::kRgb, L::kWords565, true, RgbLayout::kBgr565, 1, 2},
    {"tiled", S::k420, L::kTiles, true, kNoRgb, 2, 1},
};

}  // namespace

const Format* findFormat(uint32_t format) {
  constexpr size_t kCount = sizeof kFormats / sizeof kFormats[0];
  return format >= 1 && format <= kCount ? &kFormats[format - 1] : nullptr;
}

PlaneExtent planeExtent(const Format& format, int plane, size_t width, size_t height) {
  const size_t chromaColumns = halfUp(width);
  if (format.layout == Layout::kTiles) {
    return {(height + 15) / 16, (width + 15) / 16 * (plane == 0 ? 256u : 128u)};
  }
  if (format.layout == Layout::kPacked) return {height, 4 * chromaColumns};
  if (plane == 0) return {height, width * format.bytes};
  return {format.sampling == Sampling::k420 ? halfUp(height) : height,
          chromaColumns * (format.layout == Layout::kPairs ? 2 : 1)};
}

const char* planeName(const Format& format, int plane) {
  if (format.isRgb() || format.layout == Layout::kPacked) return "pixel";
  if (plane == 0) return "Y";
  if (format.layout != Layout::kPlanar) return format.uFirst ? "UV" : "VU";
  return (plane == 1) == format.uFirst ? "U" : "V";
}

}  // namespace zelm
