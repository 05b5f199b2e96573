// libyuv: stages, and steps of pipelines.
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

Peer scaled(const Job& job, const Peer& peer) {
  if (job.method == RESIZE_CUBIC) return {};
  if (job.method == RESIZE_LINEAR && halves(job)) {
    return notCounted(peer, "exact halving is a box average");
  }
  if (job.method == RESIZE_LINEAR && threeQuarters(job)) {
    return notCounted(peer, "exact three quarters are a box average");
  }
  if (job.method == RESIZE_LINEAR && thirds(job)) {
    return notCounted(peer, "an exact third takes single samples");
  }
  if (job.step == Step::kScaleChroma && halves(job)) {
    return notCounted(peer, "takes wrong pairs at exact halving");
  }
  return peer;
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
  if (job.src.format != FORMAT_YUV420SPVU) return {};
  const uint32_t to = job.dst.format;
  const auto convert = to == FORMAT_RGBA8888 ? libyuv::NV12ToARGBMatrix
                       : to == FORMAT_RGB888 ? libyuv::NV12ToRGB24Matrix
                                             : libyuv::NV12ToRGB565Matrix;
  const int bytes = to == FORMAT_RGBA8888 ? 4 : to == FORMAT_RGB888 ? 3 : 2;
  return {[=] {
            convert(s.y, s.w, s.uv, s.w, d.y, bytes * d.w, &libyuv::kYvuJPEGConstants,
                    s.w, s.h);
          },
          "chroma repeated instead of interpolated"};
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

Peer rotated(int rotation, const View& s, const View& d) {
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

Peer toPlanar(const View& s, const View& d, const PlanarChroma& to) {
  return [=] {
    libyuv::NV12ToI420(s.y, s.w, s.uv, s.w, d.y, d.w, to.first, to.stride, to.second,
                       to.stride, s.w, s.h);
  };
}

Peer fromPlanar(const View& s, const View& d, const PlanarChroma& from) {
  return [=] {
    libyuv::I420ToNV12(s.y, s.w, from.first, from.stride, from.second, from.stride, d.y,
                       d.w, d.uv, d.w, s.w, s.h);
  };
}

Peer fromUyvy(const View& s, const View& d) {
  Peer peer([=] { libyuv::UYVYToNV12(s.y, 2 * s.w, d.y, d.w, d.uv, d.w, s.w, s.h); },
            "chroma pairs stay U first");
  peer.exchanged = true;
  return peer;
}

Peer offer(const Job& job) {
  const View s(job.src), d(job.dst, job.dstChroma);
  const auto copyLuma = [=] { libyuv::CopyPlane(s.y, s.w, d.y, d.w, s.w, s.h); };
  const auto scaleLuma = [=](libyuv::FilterMode filter) {
    libyuv::ScalePlane(s.y, s.w, s.w, s.h, d.y, d.w, d.w, d.h, filter);
  };
  const auto scaleChroma = [=](libyuv::FilterMode filter) {
    libyuv::UVScale(s.uv, s.w, s.w / 2, s.h / 2, d.uv, d.w, d.w / 2, d.h / 2, filter);
  };
  const libyuv::FilterMode filter =
      job.method == RESIZE_NEAREST ? libyuv::kFilterNone : libyuv::kFilterBilinear;
  switch (job.step) {
    case Step::kCopy:
      return [=] {
        copyLuma();
        libyuv::CopyPlane(s.uv, s.w, d.uv, d.w, s.w, s.h / 2);
      };
    case Step::kSwap:
      return [=] {
        libyuv::NV21ToNV12(s.y, s.w, s.uv, s.w, d.y, d.w, d.uv, d.w, s.w, s.h);
      };
    case Step::kSwapChroma:
      return [=] { libyuv::SwapUVPlane(s.uv, s.w, d.uv, d.w, s.w / 2, s.h / 2); };
    case Step::kToPlanar:
      return toPlanar(s, d, planarDestination(job.dst));
    case Step::kFromPlanar:
      return fromPlanar(s, d, planarSource(job.src));
    case Step::kTo422:
      return [=] {
        copyLuma();
        expandChroma(s, d);
      };
    case Step::kTo422Swapped:
      return [=] {
        copyLuma();
        expandSwappedChroma(s, d);
      };
    case Step::kFromUyvy:
      return fromUyvy(s, d);
    case Step::kFromRgb565:
      return fromRgb565(s, d);
    case Step::kToRgb:
      return toRgb(job, s, d);
    case Step::kFromTiles:
      return fromTiles(s, d);
    case Step::kBox:
      return [=] {
        scaleLuma(libyuv::kFilterBox);
        scaleChroma(libyuv::kFilterBox);
      };
    case Step::kRotate:
      return rotated(job.rotation, s, d);
    case Step::kScaleLuma:
      return scaled(job, [=] { scaleLuma(filter); });
    case Step::kScaleChroma:
      return scaled(job, [=] { scaleChroma(filter); });
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
  return {"libyuv", "libyuv " + std::to_string(LIBYUV_VERSION), offer, libyuvPlan};
}

}  // namespace bench
