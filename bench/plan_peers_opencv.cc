// OpenCV: what plans do, in as many passes as it needs.
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "frames.h"
#include "peers.h"

namespace bench {
namespace {

using cv::Mat;

// A frame's planes, or those of a region.
struct View {
  explicit View(const ZelmFrame& frame, const ZelmRegion& part = {})
      : planes(frame.planes),
        x(part.x),
        y(part.y),
        w(static_cast<int>(part.width != 0 ? part.width : frame.width)),
        h(static_cast<int>(part.width != 0 ? part.height : frame.height)) {}

  Mat luma() const { return plane(0, y, w, h, CV_8UC1); }
  Mat pairs() const { return plane(1, y / 2, w / 2, (h + 1) / 2, CV_8UC2); }
  Mat pixels(int channels) const { return plane(0, y, w, h, CV_8UC(channels)); }
  // All planes of an I420 frame without padding.
  Mat planar() const { return plane(0, 0, w, h * 3 / 2, CV_8UC1); }

  const ZelmPlane* planes;
  uint32_t x, y;
  int w, h;

 private:
  // Regions are taken of planes with a byte for each column alone.
  Mat plane(int p, uint32_t top, int columns, int rows, int type) const {
    return Mat(rows, columns, type, planes[p].data + x + top * planes[p].stride,
               static_cast<size_t>(planes[p].stride));
  }
};

const char kStudio[] = "limited range";
const char kStudioRepeated[] = "BT.601 in limited range and chroma repeated";

Peer fromRgb(const PlanJob& job, const View& s, const View& d) {
  const bool wide = job.src.format == ZELM_RGBA;
  const Mat from = s.pixels(wide ? 4 : 3);
  const int code = wide ? cv::COLOR_RGBA2YUV_I420 : cv::COLOR_RGB2YUV_I420;
  if (job.dst.format == ZELM_I420) {
    return {[=, to = d.planar()] { cv::cvtColor(from, to, code); }, kStudio};
  }
  const Mat yuv(s.h * 3 / 2, s.w, CV_8UC1);
  uint8_t* const u = yuv.data + s.w * s.h;
  const Mat planes[] = {Mat(s.h / 2, s.w / 2, CV_8UC1, u),
                        Mat(s.h / 2, s.w / 2, CV_8UC1, u + s.w * s.h / 4)};
  return {[=, luma = d.luma(), pairs = d.pairs()] {
            cv::cvtColor(from, yuv, code);
            yuv.rowRange(0, yuv.rows * 2 / 3).copyTo(luma);
            cv::merge(planes, 2, pairs);
          },
          kStudio};
}

// The upper row of chroma alone: means would be a third pass.
Peer fromYuyv(const View& s, const View& d) {
  const ZelmPlane &from = s.planes[0], &to = d.planes[0];
  const size_t stride = static_cast<size_t>(from.stride);
  const Mat groups(s.h, s.w / 2, CV_8UC4, from.data, stride);
  const Mat upper(s.h / 2, s.w / 2, CV_8UC4, from.data, 2 * stride);
  Mat luma(d.h, d.w / 2, CV_8UC2, to.data, static_cast<size_t>(to.stride));
  return notCounted(
      [=, pairs = d.pairs()]() mutable {
        const int lumaOrder[] = {0, 0, 2, 1}, chromaOrder[] = {1, 0, 3, 1};
        cv::mixChannels(&groups, 1, &luma, 1, lumaOrder, 2);
        cv::mixChannels(&upper, 1, &pairs, 1, chromaOrder, 2);
      },
      "chroma of every second row");
}

Peer toRgba(const Mat& luma, const Mat& pairs, const Mat& to) {
  return {[=] { cv::cvtColorTwoPlane(luma, pairs, to, cv::COLOR_YUV2RGBA_NV12); },
          kStudioRepeated};
}

// After `shape`, which is called for each plane and makes one of the destination's
// size.
template <class Shape>
Peer shapedToRgba(const View& s, const View& d, Shape shape) {
  const Mat luma(d.h, d.w, CV_8UC1), pairs(d.h / 2, d.w / 2, CV_8UC2);
  const Peer convert = toRgba(luma, pairs, d.pixels(4));
  return {[=, fromLuma = s.luma(), fromPairs = s.pairs()] {
            shape(fromLuma, luma);
            shape(fromPairs, pairs);
            convert.run();
          },
          kStudioRepeated};
}

}  // namespace

Peer opencvPlan(const PlanJob& job) {
  const View s(job.src, job.edit.source), d(job.dst);
  const auto turn = [](const Mat& from, const Mat& to) {
    cv::rotate(from, to, cv::ROTATE_90_CLOCKWISE);
  };
  if (job.src.format == ZELM_YUYV) return fromYuyv(s, d);
  if (job.edit.mirror != 0) {
    return
        [from = s.luma(), to = d.luma(), fromPairs = s.pairs(), toPairs = d.pairs()] {
          cv::flip(from, to, 1);
          cv::flip(fromPairs, toPairs, 1);
        };
  }
  if (job.edit.turn == 90 && job.src.format == ZELM_RGBA) {
    return [=, from = s.pixels(4), to = d.pixels(4)] { turn(from, to); };
  }
  if (job.edit.turn == 90) return shapedToRgba(s, d, turn);
  if (job.dst.format != ZELM_RGBA) return fromRgb(job, s, d);
  if (s.w != d.w) {
    const bool halves = s.w == 2 * d.w && s.h == 2 * d.h;
    const int filter = halves ? cv::INTER_AREA : cv::INTER_LINEAR;
    return shapedToRgba(s, d, [=](const Mat& from, const Mat& to) {
      cv::resize(from, to, to.size(), 0, 0, filter);
    });
  }
  if (job.src.format == ZELM_I420) {
    return {[from = s.planar(), to = d.pixels(4)] {
              cv::cvtColor(from, to, cv::COLOR_YUV2RGBA_I420);
            },
            kStudioRepeated};
  }
  return toRgba(s.luma(), s.pairs(), d.pixels(4));
}

}  // namespace bench
