// libyuv: what plans do, in as many passes as it needs, each as small as it can be.
#include <libyuv.h>

#include <algorithm>
#include <memory>

#include "frames.h"
#include "peers.h"

namespace bench {
namespace {

// Planes as libyuv takes them.
struct View {
  explicit View(const ZelmFrame& frame)
      : w(static_cast<int>(frame.width)), h(static_cast<int>(frame.height)) {
    for (int p = 0; p < 3; ++p) {
      data[p] = frame.planes[p].data;
      stride[p] = static_cast<int>(frame.planes[p].stride);
    }
  }
  // The region of an NV12 frame.
  View(const ZelmFrame& frame, const ZelmRegion& region) : View(frame) {
    if (region.width == 0) return;
    data[0] += region.x + region.y * frame.planes[0].stride;
    data[1] += region.x + region.y / 2 * frame.planes[1].stride;
    w = static_cast<int>(region.width);
    h = static_cast<int>(region.height);
  }
  uint8_t* data[3];
  int stride[3], w, h;
};

// Red first in memory is what libyuv calls ABGR: its ARGB, which has blue first, with U
// and V exchanged and the matrix that belongs to that.
const libyuv::YuvConstants* matrix(uint32_t colour) {
  return colour == ZELM_BT709_LIMITED ? &libyuv::kYvuH709Constants
                                      : &libyuv::kYvuJPEGConstants;
}

const char kRepeated[] = "chroma repeated instead of interpolated";

Peer fromRgb(const PlanJob& job, const View& s, const View& d) {
  const bool wide = job.src.format == ZELM_RGBA;
  if (job.dst.format == ZELM_I420) {
    const auto convert = wide ? libyuv::ABGRToJ420 : libyuv::RAWToJ420;
    return [=] {
      convert(s.data[0], s.stride[0], d.data[0], d.stride[0], d.data[1], d.stride[1],
              d.data[2], d.stride[2], s.w, s.h);
    };
  }
  const auto convert = wide ? libyuv::ABGRToNV12 : libyuv::RAWToJNV21;
  Peer peer(
      [=] {
        convert(s.data[0], s.stride[0], d.data[0], d.stride[0], d.data[1], d.stride[1],
                s.w, s.h);
      },
      wide ? "limited range" : "chroma pairs are V first");
  peer.exchanged = !wide;
  return peer;
}

Peer toRgba(const PlanJob& job, const View& s, const View& d) {
  const auto* const colour = matrix(job.src.colour);
  if (job.src.format == ZELM_I420) {
    return {[=] {
              libyuv::I420ToARGBMatrix(s.data[0], s.stride[0], s.data[2], s.stride[2],
                                       s.data[1], s.stride[1], d.data[0], d.stride[0],
                                       colour, s.w, s.h);
            },
            kRepeated};
  }
  return {[=] {
            libyuv::NV21ToARGBMatrix(s.data[0], s.stride[0], s.data[1], s.stride[1],
                                     d.data[0], d.stride[0], colour, s.w, s.h);
          },
          kRepeated};
}

// In bands of source columns, which become rows, so that the planes in between stay in
// the cache.
Peer turnedToRgba(const PlanJob& job, const View& s, const View& d) {
  constexpr int kBand = 64;
  const auto* const colour = matrix(job.src.colour);
  const auto memory =
      std::make_shared<Buffer>(static_cast<size_t>(kBand * s.h * 2), Buffer::kBetween);
  return {[=] {
            uint8_t *y = memory->data(), *u = y + kBand * s.h, *v = u + kBand / 2 * s.h;
            for (int x = 0; x < s.w; x += kBand) {
              const int columns = std::min(kBand, s.w - x);
              libyuv::NV12ToI420Rotate(s.data[0] + x, s.stride[0], s.data[1] + x,
                                       s.stride[1], y, s.h, u, s.h / 2, v, s.h / 2,
                                       columns, s.h, libyuv::kRotate90);
              libyuv::I420ToARGBMatrix(y, s.h, v, s.h / 2, u, s.h / 2,
                                       d.data[0] + x * d.stride[0], d.stride[0], colour,
                                       s.h, columns);
            }
          },
          kRepeated};
}

Peer scaledToRgba(const PlanJob& job, const View& s, const View& d) {
  const auto* const colour = matrix(job.src.colour);
  const bool halves = s.w == 2 * d.w && s.h == 2 * d.h;
  const auto filter = halves ? libyuv::kFilterBox : libyuv::kFilterBilinear;
  const auto memory = std::make_shared<Buffer>(
      static_cast<size_t>(d.w * (d.h + (d.h + 1) / 2)), Buffer::kBetween);
  return {[=] {
            uint8_t *y = memory->data(), *uv = y + d.w * d.h;
            libyuv::ScalePlane(s.data[0], s.stride[0], s.w, s.h, y, d.w, d.w, d.h,
                               filter);
            libyuv::UVScale(s.data[1], s.stride[1], s.w / 2, (s.h + 1) / 2, uv, d.w,
                            d.w / 2, (d.h + 1) / 2, filter);
            libyuv::NV21ToARGBMatrix(y, d.w, uv, d.w, d.data[0], d.stride[0], colour,
                                     d.w, d.h);
          },
          kRepeated};
}

}  // namespace

Peer libyuvPlan(const PlanJob& job) {
  const View s(job.src, job.edit.source), d(job.dst);
  const bool same = s.w == d.w && s.h == d.h;
  if (job.src.format == ZELM_YUYV) {
    return {[=] {
      libyuv::YUY2ToNV12(s.data[0], s.stride[0], d.data[0], d.stride[0], d.data[1],
                         d.stride[1], s.w, s.h);
    }};
  }
  if (job.edit.mirror != 0) {
    return {[=] {
      libyuv::NV12Mirror(s.data[0], s.stride[0], s.data[1], s.stride[1], d.data[0],
                         d.stride[0], d.data[1], d.stride[1], s.w, s.h);
    }};
  }
  if (job.edit.turn == 90 && job.src.format == ZELM_RGBA) {
    return {[=] {
      libyuv::ARGBRotate(s.data[0], s.stride[0], d.data[0], d.stride[0], s.w, s.h,
                         libyuv::kRotate90);
    }};
  }
  if (job.edit.turn == 90) return turnedToRgba(job, s, d);
  if (job.dst.format != ZELM_RGBA) return fromRgb(job, s, d);
  return same ? toRgba(job, s, d) : scaledToRgba(job, s, d);
}

}  // namespace bench
