// OpenCV: stages, and steps of pipelines.
#include <opencv2/core.hpp>
#include <opencv2/core/utility.hpp>
#include <opencv2/imgproc.hpp>

#include "frames.h"
#include "peers.h"

namespace bench {
namespace {

using cv::Mat;

// The planes of a frame, as far as its format has them.
struct View {
  explicit View(const ImageStruct& f, uint8_t* chroma = nullptr)
      : w(f.width),
        h(f.height),
        y(h, w, CV_8UC1, f.data),
        uv(h / 2, w / 2, CV_8UC2, chroma != nullptr ? chroma : f.data + f.uvOffset),
        rgb(h, w, CV_8UC3, f.data) {}
  int w, h;
  Mat y, uv, rgb;
};

void exchangePairs(const Mat& from, Mat* to) {
  const int order[] = {0, 1, 1, 0};
  cv::mixChannels(&from, 1, to, 1, order, 2);
}

Peer resized(const Job& job, const Mat& from, Mat to) {
  const int method = job.method == RESIZE_NEAREST  ? cv::INTER_NEAREST
                     : job.method == RESIZE_LINEAR ? cv::INTER_LINEAR
                                                   : cv::INTER_CUBIC;
  const Peer peer = [=]() mutable { cv::resize(from, to, to.size(), 0, 0, method); };
  const bool box = job.method == RESIZE_LINEAR && halves(job);
  return box ? notCounted(peer, "exact halving is a box average") : peer;
}

Peer toRgb(const Job& job, View s, View d) {
  const char* const remark = "studio range and chroma repeated";
  const bool alpha = job.dst.format == FORMAT_RGBA8888;
  const int code = job.src.format == FORMAT_YUV420SPVU
                       ? (alpha ? cv::COLOR_YUV2RGBA_NV21 : cv::COLOR_YUV2RGB_NV21)
                       : (alpha ? cv::COLOR_YUV2RGBA_NV12 : cv::COLOR_YUV2RGB_NV12);
  if (job.dst.format == FORMAT_RGB565) {  // the first channel goes to the lowest bits
    return {[=, rgb = Mat(d.h, d.w, CV_8UC3), to = Mat(d.h, d.w, CV_8UC2, d.y.data)] {
              cv::cvtColorTwoPlane(s.y, s.uv, rgb, code);
              cv::cvtColor(rgb, to, cv::COLOR_BGR2BGR565);
            },
            remark};
  }
  const Mat to(d.h, d.w, alpha ? CV_8UC4 : CV_8UC3, d.y.data);
  return {[=] { cv::cvtColorTwoPlane(s.y, s.uv, to, code); }, remark};
}

Peer fromUyvy(View s, View d) {
  const Mat groups(s.h, s.w / 2, CV_8UC4, s.y.data);
  const Mat upper(s.h / 2, s.w / 2, CV_8UC4, s.y.data, 4 * static_cast<size_t>(s.w));
  Mat luma(d.h, d.w / 2, CV_8UC2, d.y.data);
  return [=]() mutable {
    const int lumaOrder[] = {1, 0, 3, 1}, chromaOrder[] = {2, 0, 0, 1};
    cv::mixChannels(&groups, 1, &luma, 1, lumaOrder, 2);
    cv::mixChannels(&upper, 1, &d.uv, 1, chromaOrder, 2);
  };
}

Peer fromRgb565(View s, View d) {
  const Mat words(s.h, s.w, CV_8UC2, s.y.data), bgr(s.h, s.w, CV_8UC3);
  const Mat yuv(s.h * 3 / 2, s.w, CV_8UC1);
  uint8_t* u = yuv.data + s.w * s.h;
  const Mat planes[] = {Mat(s.h / 2, s.w / 2, CV_8UC1, u + s.w * s.h / 4),
                        Mat(s.h / 2, s.w / 2, CV_8UC1, u)};
  return {[=]() mutable {
            cv::cvtColor(words, bgr, cv::COLOR_BGR5652BGR);
            cv::cvtColor(bgr, yuv, cv::COLOR_BGR2YUV_I420);
            yuv.rowRange(0, s.h).copyTo(d.y);
            cv::merge(planes, 2, d.uv);
          },
          "studio range"};
}

// Eight columns of a row are one element; half tiles are columns of such elements, so
// each row of tiles is a transposed matrix.
template <class Move>
void forRowsOfTiles(uint8_t* tiled, uint8_t* linear, int w, int h, int tileHeight,
                    Move move) {
  for (int y = 0; y < h; y += tileHeight) {
    const int rows = std::min(tileHeight, h - y);
    Mat tiles(w / 8, rows, CV_64FC1, tiled + y * w,
              8 * static_cast<size_t>(tileHeight));
    Mat lines(rows, w / 8, CV_64FC1, linear + y * w, static_cast<size_t>(w));
    move(tiles, lines);
  }
}

Peer fromTiles(View s, View d) {
  if (s.w % 16 != 0) return {};
  const auto move = [](const Mat& tiles, const Mat& lines) {
    cv::transpose(tiles, lines);
  };
  return [=, uv = Mat(s.h / 2, s.w / 2, CV_8UC2)]() mutable {
    forRowsOfTiles(s.y.data, d.y.data, s.w, s.h, 16, move);
    forRowsOfTiles(s.uv.data, uv.data, s.w, s.h / 2, 8, move);
    exchangePairs(uv, &d.uv);
  };
}

Peer toTiles(View s, View d) {
  if (s.w % 16 != 0) return {};
  const auto move = [](const Mat& tiles, const Mat& lines) {
    cv::transpose(lines, tiles);
  };
  return [=, uv = Mat(s.h / 2, s.w / 2, CV_8UC2)]() mutable {
    exchangePairs(s.uv, &uv);
    forRowsOfTiles(d.y.data, s.y.data, s.w, s.h, 16, move);
    forRowsOfTiles(d.uv.data, uv.data, s.w, s.h / 2, 8, move);
  };
}

Peer to422(View s, View d) {
  return {[=, uv = Mat(d.h, d.w / 2, CV_8UC2, d.uv.data)]() mutable {
            s.y.copyTo(d.y);
            cv::resize(s.uv, uv, uv.size(), 0, 0, cv::INTER_LINEAR);
          },
          "chroma weighted 3 : 1"};
}

std::vector<Mat> mats(const PlanarChroma& c, const View& frame) {
  const size_t stride = static_cast<size_t>(c.stride);
  return {Mat(frame.h / 2, frame.w / 2, CV_8UC1, c.first, stride),
          Mat(frame.h / 2, frame.w / 2, CV_8UC1, c.second, stride)};
}

Peer rotated(int rotation, View s, View d) {
  if (rotation == ROTATE_0) return [=]() mutable { s.y.copyTo(d.y); };
  const int code = rotation == ROTATE_90    ? cv::ROTATE_90_CLOCKWISE
                   : rotation == ROTATE_180 ? cv::ROTATE_180
                                            : cv::ROTATE_90_COUNTERCLOCKWISE;
  return [=]() mutable { cv::rotate(s.y, d.y, code); };
}

Peer offer(const Job& job) {
  View s(job.src), d(job.dst, job.dstChroma);
  switch (job.step) {
    case Step::kCopy:
      return [=]() mutable {
        s.y.copyTo(d.y);
        s.uv.copyTo(d.uv);
      };
    case Step::kSwap:
      return [=]() mutable {
        s.y.copyTo(d.y);
        exchangePairs(s.uv, &d.uv);
      };
    case Step::kSwapChroma:
      return [=]() mutable { exchangePairs(s.uv, &d.uv); };
    case Step::kToPlanar:
      return [=, planes = mats(planarDestination(job.dst), d)]() mutable {
        s.y.copyTo(d.y);
        cv::split(s.uv, planes);
      };
    case Step::kFromPlanar:
      return [=, planes = mats(planarSource(job.src), s)]() mutable {
        s.y.copyTo(d.y);
        cv::merge(planes, d.uv);
      };
    case Step::kTo422:
      return to422(s, d);
    case Step::kToRgb:
      return toRgb(job, s, d);
    case Step::kToTiles:
      return toTiles(s, d);
    case Step::kFromUyvy:
      return fromUyvy(s, d);
    case Step::kFromRgb565:
      return fromRgb565(s, d);
    case Step::kFromTiles:
      return fromTiles(s, d);
    case Step::kBox:
      return [=]() mutable {
        cv::resize(s.y, d.y, d.y.size(), 0, 0, cv::INTER_AREA);
        cv::resize(s.uv, d.uv, d.uv.size(), 0, 0, cv::INTER_AREA);
      };
    case Step::kRotate:
      return rotated(job.rotation, s, d);
    case Step::kScaleLuma:
      return resized(job, s.y, d.y);
    case Step::kScaleChroma:
      return resized(job, s.uv, d.uv);
    case Step::kScaleRgb:
      return resized(job, s.rgb, d.rgb);
    default:
      return {};
  }
}

}  // namespace

Library opencvLibrary() {
  cv::setNumThreads(1);
  return {"OpenCV", "OpenCV " CV_VERSION, offer, opencvPlan};
}

}  // namespace bench
