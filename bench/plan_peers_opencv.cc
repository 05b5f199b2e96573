// OpenCV: what plans do, in as many passes as it needs.
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "frames.h"
#include "peers.h"

namespace bench {
namespace {

using cv::Mat;

// The planes of a frame that are pixels or pairs, or those of a region.
struct View {
  explicit View(const ZelmFrame& frame, const ZelmRegion& part = {})
      : w(static_cast<int>(part.width != 0 ? part.width : frame.width)),
        h(static_cast<int>(part.width != 0 ? part.height : frame.height)),
        y(plane(frame.planes[0], part.x, part.y, w, h, CV_8UC1)),
        uv(plane(frame.planes[1], part.x, part.y / 2, w / 2, (h + 1) / 2, CV_8UC2)),
        rgb(plane(frame.planes[0], part.x, part.y, w, h, CV_8UC3)),
        rgba(plane(frame.planes[0], part.x, part.y, w, h, CV_8UC4)),
        all(plane(frame.planes[0], 0, 0, w, h * 3 / 2, CV_8UC1)) {}
  static Mat plane(const ZelmPlane& p, uint32_t x, uint32_t y, int w, int h, int type) {
    return Mat(h, w, type, p.data + x + y * p.stride, static_cast<size_t>(p.stride));
  }
  int w, h;
  Mat y, uv, rgb, rgba;
  Mat all;  // the planes of an I420 frame without padding
};

const char kStudio[] = "limited range";
const char kStudioRepeated[] = "BT.601 in limited range and chroma repeated";

Peer fromRgb(const PlanJob& job, View s, View d) {
  const bool wide = job.src.format == ZELM_RGBA;
  const Mat from = wide ? s.rgba : s.rgb;
  const int code = wide ? cv::COLOR_RGBA2YUV_I420 : cv::COLOR_RGB2YUV_I420;
  if (job.dst.format == ZELM_I420) {
    return {[=]() mutable { cv::cvtColor(from, d.all, code); }, kStudio};
  }
  const Mat yuv(s.h * 3 / 2, s.w, CV_8UC1);
  uint8_t* const u = yuv.data + s.w * s.h;
  const Mat planes[] = {Mat(s.h / 2, s.w / 2, CV_8UC1, u),
                        Mat(s.h / 2, s.w / 2, CV_8UC1, u + s.w * s.h / 4)};
  return {[=]() mutable {
            cv::cvtColor(from, yuv, code);
            yuv.rowRange(0, s.h).copyTo(d.y);
            cv::merge(planes, 2, d.uv);
          },
          kStudio};
}

// The upper row of chroma alone: means would be a third pass.
Peer fromYuyv(View s, View d) {
  const ptrdiff_t stride = static_cast<ptrdiff_t>(s.y.step);
  const Mat groups(s.h, s.w / 2, CV_8UC4, s.y.data, s.y.step);
  const Mat upper(s.h / 2, s.w / 2, CV_8UC4, s.y.data, static_cast<size_t>(2 * stride));
  Mat luma(d.h, d.w / 2, CV_8UC2, d.y.data, d.y.step);
  return notCounted(
      [=]() mutable {
        const int lumaOrder[] = {0, 0, 2, 1}, chromaOrder[] = {1, 0, 3, 1};
        cv::mixChannels(&groups, 1, &luma, 1, lumaOrder, 2);
        cv::mixChannels(&upper, 1, &d.uv, 1, chromaOrder, 2);
      },
      "chroma of every second row");
}

Peer turnedToRgba(View s, View d) {
  return {
      [=, y = Mat(s.w, s.h, CV_8UC1), uv = Mat(s.w / 2, s.h / 2, CV_8UC2)]() mutable {
        cv::rotate(s.y, y, cv::ROTATE_90_CLOCKWISE);
        cv::rotate(s.uv, uv, cv::ROTATE_90_CLOCKWISE);
        cv::cvtColorTwoPlane(y, uv, d.rgba, cv::COLOR_YUV2RGBA_NV12);
      },
      kStudioRepeated};
}

Peer scaledToRgba(View s, View d) {
  const bool halves = s.w == 2 * d.w && s.h == 2 * d.h;
  const int filter = halves ? cv::INTER_AREA : cv::INTER_LINEAR;
  return {
      [=, y = Mat(d.h, d.w, CV_8UC1), uv = Mat(d.h / 2, d.w / 2, CV_8UC2)]() mutable {
        cv::resize(s.y, y, y.size(), 0, 0, filter);
        cv::resize(s.uv, uv, uv.size(), 0, 0, filter);
        cv::cvtColorTwoPlane(y, uv, d.rgba, cv::COLOR_YUV2RGBA_NV12);
      },
      kStudioRepeated};
}

}  // namespace

Peer opencvPlan(const PlanJob& job) {
  View s(job.src, job.edit.source), d(job.dst);
  const bool same = s.w == d.w && s.h == d.h;
  if (job.src.format == ZELM_YUYV) return fromYuyv(s, d);
  if (job.edit.mirror != 0) {
    return [=]() mutable {
      cv::flip(s.y, d.y, 1);
      cv::flip(s.uv, d.uv, 1);
    };
  }
  if (job.edit.turn == 90 && job.src.format == ZELM_RGBA) {
    return [=]() mutable { cv::rotate(s.rgba, d.rgba, cv::ROTATE_90_CLOCKWISE); };
  }
  if (job.edit.turn == 90) return turnedToRgba(s, d);
  if (job.dst.format != ZELM_RGBA) return fromRgb(job, s, d);
  if (!same) return scaledToRgba(s, d);
  if (job.src.format == ZELM_I420) {
    return {[=]() mutable { cv::cvtColor(s.all, d.rgba, cv::COLOR_YUV2RGBA_I420); },
            kStudioRepeated};
  }
  return {[=]() mutable {
            cv::cvtColorTwoPlane(s.y, s.uv, d.rgba, cv::COLOR_YUV2RGBA_NV12);
          },
          kStudioRepeated};
}

}  // namespace bench
