#include <libyuv.h>
#include <libyuv/scale_rgb.h>

#include <algorithm>
#include <memory>

#include "frames.h"
#include "peers.h"

namespace bench {
namespace {

struct View {
  explicit View(const ImageStruct& f, uint8_t* chroma = nullptr)
      : y(f.data),
        uv(chroma != nullptr ? chroma : f.data + f.uvOffset),
        w(f.width),
        h(f.height) {}
  uint8_t *y, *uv;
  int w, h;
};

libyuv::FilterMode filterFor(int method) {
  return method == RESIZE_NEAREST ? libyuv::kFilterNone : libyuv::kFilterBilinear;
}

Peer scaled(const Job& job, std::function<void()> run) {
  if (job.method == RESIZE_CUBIC) return {};
  if (job.method == RESIZE_LINEAR && halves(job)) {
    return {run, "exact halving is a box average", false};
  }
  if (job.step == Step::kScaleChroma && halves(job)) {
    return {run, "takes wrong pairs at exact halving", false};
  }
  return {run, ""};
}

// Even chroma rows are copies, odd ones the mean of their neighbours.
void expandChroma(const View& s, const View& d) {
  libyuv::CopyPlane(s.uv, s.w, d.uv, 2 * d.w, s.w, s.h / 2);
  libyuv::InterpolatePlane(s.uv, s.w, s.uv + s.w, s.w, d.uv + d.w, 2 * d.w, s.w,
                           s.h / 2 - 1, 128);
  libyuv::CopyPlane(s.uv + s.w * (s.h / 2 - 1), s.w, d.uv + d.w * (d.h - 1), d.w, s.w,
                    1);
}

void expandSwappedChroma(const View& s, const View& d) {
  libyuv::SwapUVPlane(s.uv, s.w, d.uv, 2 * d.w, s.w / 2, s.h / 2);
  libyuv::InterpolatePlane(d.uv, 2 * d.w, d.uv + 2 * d.w, 2 * d.w, d.uv + d.w, 2 * d.w,
                           d.w, s.h / 2 - 1, 128);
  libyuv::CopyPlane(d.uv + d.w * (d.h - 2), d.w, d.uv + d.w * (d.h - 1), d.w, d.w, 1);
}

// Red first in memory, from pairs V, U: blue first with the roles of U and V exchanged.
Peer toRgb(const Job& job, const View& s, const View& d) {
  using libyuv::kYvuJPEGConstants;
  const std::string remark = "chroma repeated, not interpolated";
  if (job.src.format != FORMAT_YUV420SPVU) return {};
  switch (job.dst.format) {
    case FORMAT_RGBA8888:
      return {[=] {
                libyuv::NV12ToARGBMatrix(s.y, s.w, s.uv, s.w, d.y, 4 * d.w,
                                         &kYvuJPEGConstants, s.w, s.h);
              },
              remark};
    case FORMAT_RGB888:
      return {[=] {
                libyuv::NV12ToRGB24Matrix(s.y, s.w, s.uv, s.w, d.y, 3 * d.w,
                                          &kYvuJPEGConstants, s.w, s.h);
              },
              remark};
    default:
      return {[=] {
                libyuv::NV12ToRGB565Matrix(s.y, s.w, s.uv, s.w, d.y, 2 * d.w,
                                           &kYvuJPEGConstants, s.w, s.h);
              },
              remark};
  }
}

// In bands of rows, so that the planes in between stay in the cache.
Peer fromRgb565(const View& s, const View& d) {
  constexpr int kBand = 16;
  const int w = s.w / 2;
  const auto planes =
      std::make_shared<Buffer>(static_cast<size_t>(kBand * w), Buffer::kBetween);
  return {[=] {
            uint8_t *u = planes->data(), *v = u + kBand / 2 * w;
            for (int y = 0; y < s.h; y += kBand) {
              const int rows = std::min(kBand, s.h - y);
              libyuv::RGB565ToI420(s.y + 2 * s.w * y, 2 * s.w, d.y + d.w * y, d.w, u, w,
                                   v, w, s.w, rows);
              libyuv::MergeUVPlane(v, w, u, w, d.uv + d.w * (y / 2), d.w, w, rows / 2);
            }
          },
          "studio range"};
}

Peer fromTiles(const View& s, const View& d) {
  return {[=, uv = std::make_shared<Buffer>(s.w * s.h / 2, Buffer::kBetween)] {
            libyuv::DetilePlane(s.y, s.w, d.y, d.w, s.w, s.h, 16);
            libyuv::DetilePlane(s.uv, s.w, uv->data(), s.w, s.w, s.h / 2, 8);
            libyuv::SwapUVPlane(uv->data(), s.w, d.uv, d.w, s.w / 2, s.h / 2);
          },
          "tiles in an easier order: 16 bytes a row"};
}

std::function<void()> rotated(int rotation, const View& s, const View& d) {
  switch (rotation) {
    case ROTATE_90:
      return [=] { libyuv::RotatePlane90(s.y, s.w, d.y, d.w, s.w, s.h); };
    case ROTATE_270:
      return [=] { libyuv::RotatePlane270(s.y, s.w, d.y, d.w, s.w, s.h); };
    case ROTATE_180:  // faster than RotatePlane180; the minus turns it upside down
      return [=] { libyuv::MirrorPlane(s.y, s.w, d.y, d.w, s.w, -s.h); };
    default:
      return [=] { libyuv::CopyPlane(s.y, s.w, d.y, d.w, s.w, s.h); };
  }
}

Peer offer(const Job& job) {
  const View s(job.src), d(job.dst, job.dstChroma);
  const libyuv::FilterMode filter = filterFor(job.method);
  switch (job.step) {
    case Step::kCopy:
      return {[=] {
                libyuv::CopyPlane(s.y, s.w, d.y, d.w, s.w, s.h);
                libyuv::CopyPlane(s.uv, s.w, d.uv, d.w, s.w, s.h / 2);
              },
              ""};
    case Step::kSwap:
      return {[=] {
                libyuv::NV21ToNV12(s.y, s.w, s.uv, s.w, d.y, d.w, d.uv, d.w, s.w, s.h);
              },
              ""};
    case Step::kSwapChroma:
      return {[=] { libyuv::SwapUVPlane(s.uv, s.w, d.uv, d.w, s.w / 2, s.h / 2); }, ""};
    case Step::kToPlanar:
      return {[=, to = planarDestination(job.dst)] {
                libyuv::NV12ToI420(s.y, s.w, s.uv, s.w, d.y, d.w, to.first, to.stride,
                                   to.second, to.stride, s.w, s.h);
              },
              ""};
    case Step::kFromPlanar:
      return {[=, from = planarSource(job.src)] {
                libyuv::I420ToNV12(s.y, s.w, from.first, from.stride, from.second,
                                   from.stride, d.y, d.w, d.uv, d.w, s.w, s.h);
              },
              ""};
    case Step::kTo422:
      return {[=] {
                libyuv::CopyPlane(s.y, s.w, d.y, d.w, s.w, s.h);
                expandChroma(s, d);
              },
              ""};
    case Step::kTo422Swapped:
      return {[=] {
                libyuv::CopyPlane(s.y, s.w, d.y, d.w, s.w, s.h);
                expandSwappedChroma(s, d);
              },
              ""};
    case Step::kFromUyvy:
      return {[=] { libyuv::UYVYToNV12(s.y, 2 * s.w, d.y, d.w, d.uv, d.w, s.w, s.h); },
              "chroma pairs stay U first", true, true};
    case Step::kFromRgb565:
      return fromRgb565(s, d);
    case Step::kToRgb:
      return toRgb(job, s, d);
    case Step::kFromTiles:
      return fromTiles(s, d);
    case Step::kBox:
      return {[=] {
                libyuv::ScalePlane(s.y, s.w, s.w, s.h, d.y, d.w, d.w, d.h,
                                   libyuv::kFilterBox);
                libyuv::UVScale(s.uv, s.w, s.w / 2, s.h / 2, d.uv, d.w, d.w / 2,
                                d.h / 2, libyuv::kFilterBox);
              },
              ""};
    case Step::kRotate:
      return {rotated(job.rotation, s, d), ""};
    case Step::kScaleLuma:
      return scaled(job, [=] {
        libyuv::ScalePlane(s.y, s.w, s.w, s.h, d.y, d.w, d.w, d.h, filter);
      });
    case Step::kScaleChroma:
      return scaled(job, [=] {
        libyuv::UVScale(s.uv, s.w, s.w / 2, s.h / 2, d.uv, d.w, d.w / 2, d.h / 2,
                        filter);
      });
    case Step::kScaleRgb:
      return scaled(job, [=] {
        libyuv::RGBScale(s.y, 3 * s.w, s.w, s.h, d.y, 3 * d.w, d.w, d.h, filter);
      });
    default:
      return {};
  }
}

}  // namespace

Library libyuvLibrary() {
  return {"libyuv", "libyuv " + std::to_string(LIBYUV_VERSION), offer};
}

}  // namespace bench
