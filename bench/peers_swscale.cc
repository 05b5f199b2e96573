// swscale: stages, and whole pipelines in one call.
extern "C" {
#include <libswscale/swscale.h>
}

#include <memory>

#include "frames.h"
#include "peers.h"

namespace bench {
namespace {

struct Picture {
  AVPixelFormat format;
  uint8_t* planes[4];
  int strides[4];
  int width, height;
};

Picture luma(const ImageStruct& f) {
  return {AV_PIX_FMT_GRAY8, {f.data}, {f.width}, f.width, f.height};
}

// Grey with a second channel has the memory of a chroma plane.
Picture chroma(const ImageStruct& f) {
  return {AV_PIX_FMT_YA8, {f.data + f.uvOffset}, {f.width}, f.width / 2, f.height / 2};
}

Picture planar(const ImageStruct& f, const PlanarChroma& c) {
  return {AV_PIX_FMT_YUV420P,
          {f.data, c.second, c.first},  // U is the second plane
          {f.width, c.stride, c.stride},
          f.width,
          f.height};
}

Picture semiPlanar(const ImageStruct& f, AVPixelFormat format) {
  return {format, {f.data, f.data + f.uvOffset}, {f.width, f.width}, f.width, f.height};
}

Picture packed(const ImageStruct& f, AVPixelFormat format, int bytes) {
  return {format, {f.data}, {bytes * f.width}, f.width, f.height};
}

Picture whole(const ImageStruct& f, bool written) {
  switch (f.format) {
    case FORMAT_YUV420P:
      return planar(f, written ? planarDestination(f) : planarSource(f));
    case FORMAT_YUV420SP:
      return semiPlanar(f, AV_PIX_FMT_NV12);
    case FORMAT_YUV420SPVU:
      return semiPlanar(f, AV_PIX_FMT_NV21);
    case FORMAT_YUV422SP:
      return semiPlanar(f, AV_PIX_FMT_NV16);
    case FORMAT_YUV422IUYVY:
      return packed(f, AV_PIX_FMT_UYVY422, 2);
    case FORMAT_RGB565:  // red in the low bits when written, in the high ones when read
      return packed(f, written ? AV_PIX_FMT_BGR565LE : AV_PIX_FMT_RGB565LE, 2);
    case FORMAT_RGB888:
      return packed(f, AV_PIX_FMT_RGB24, 3);
    case FORMAT_RGBA8888:
      return packed(f, AV_PIX_FMT_RGBA, 4);
    default:
      return {AV_PIX_FMT_NONE, {}, {}, 0, 0};
  }
}

// What luma and chroma of the source mean; the destination is BT.601 in full range.
struct Colour {
  int matrix = SWS_CS_ITU601, full = 1;
};

// One thread.
Peer scaled(const Picture& s, const Picture& d, int flags, const char* remark = "",
            const Colour& colour = {}) {
  if (!sws_isSupportedInput(s.format) || !sws_isSupportedOutput(d.format)) return {};
  const std::shared_ptr<SwsContext> context(
      sws_getContext(s.width, s.height, s.format, d.width, d.height, d.format, flags,
                     nullptr, nullptr, nullptr),
      sws_freeContext);
  if (context == nullptr) return {};
  sws_setColorspaceDetails(context.get(), sws_getCoefficients(colour.matrix),
                           colour.full, sws_getCoefficients(SWS_CS_ITU601), 1, 0,
                           1 << 16, 1 << 16);
  const auto call = [=] {
    sws_scale(context.get(), s.planes, s.strides, 0, s.height, d.planes, d.strides);
  };
  return {call, remark};
}

// "Fast bilinear" has two taps whatever the ratio, the other one widens when reducing.
int flagsFor(const Job& job) {
  return job.method == RESIZE_NEAREST  ? SWS_POINT
         : job.method == RESIZE_LINEAR ? SWS_FAST_BILINEAR
                                       : SWS_BICUBIC;
}

Peer scaling(const Job& job, const Picture& s, const Picture& d) {
  const char* const remark = job.step == Step::kScaleRgb   ? "by way of YUV"
                             : job.method == RESIZE_LINEAR ? "weights in 1/128"
                                                           : "";
  const Peer peer = scaled(s, d, flagsFor(job), remark);
  const bool wider = job.method == RESIZE_CUBIC && !enlarges(job);
  return wider ? notCounted(peer, "reducing widens the filter") : peer;
}

Peer pipeline(const Job& job, const Picture& s, const Picture& d) {
  ImageStruct src = job.src, dst = job.dst;
  if (getReductionRate(&dst, &src) == 0) return scaled(s, d, flagsFor(job));
  return scaled(s, d, SWS_AREA, "one average over the whole ratio");
}

Peer offer(const Job& job) {
  const ImageStruct &s = job.src, &d = job.dst;
  switch (job.step) {
    case Step::kCopy:  // of two planes, it copies the second in part
    case Step::kSwapChroma:
    case Step::kRotate:
      return {};
    case Step::kBox:
      return scaled(whole(s, false), whole(d, true), SWS_AREA);
    case Step::kScaleLuma:
      return scaling(job, luma(s), luma(d));
    case Step::kScaleChroma:
      return scaling(job, chroma(s), chroma(d));
    case Step::kScaleRgb:
      return scaling(job, whole(s, false), whole(d, true));
    case Step::kPipeline:
      return pipeline(job, whole(s, false), whole(d, true));
    default:
      return scaled(whole(s, false), whole(d, true), SWS_FAST_BILINEAR);
  }
}

Picture picture(const ZelmFrame& frame, const ZelmRegion& part) {
  const AVPixelFormat format = frame.format == ZELM_I420    ? AV_PIX_FMT_YUV420P
                               : frame.format == ZELM_NV12  ? AV_PIX_FMT_NV12
                               : frame.format == ZELM_YUYV  ? AV_PIX_FMT_YUYV422
                               : frame.format == ZELM_RGB24 ? AV_PIX_FMT_RGB24
                                                            : AV_PIX_FMT_RGBA;
  const bool whole = part.width == 0;
  Picture result = {format,
                    {},
                    {},
                    static_cast<int>(whole ? frame.width : part.width),
                    static_cast<int>(whole ? frame.height : part.height)};
  for (int p = 0; p < 3; ++p) {
    const ZelmPlane& plane = frame.planes[p];
    if (plane.data == nullptr) break;
    // Parts are taken of NV12 frames alone.
    result.planes[p] =
        plane.data + part.x + (p == 0 ? part.y : part.y / 2) * plane.stride;
    result.strides[p] = static_cast<int>(plane.stride);
  }
  return result;
}

}  // namespace

Peer swscalePlan(const PlanJob& job) {
  if (job.edit.turn != 0 || job.edit.mirror != 0) return {};
  const Picture s = picture(job.src, job.edit.source), d = picture(job.dst, {});
  const bool halves = s.width == 2 * d.width && s.height == 2 * d.height;
  const bool limited = job.src.colour == ZELM_BT709_LIMITED;
  return scaled(s, d, halves ? SWS_AREA : SWS_FAST_BILINEAR, "",
                limited ? Colour{SWS_CS_ITU709, 0} : Colour{});
}

Library swscaleLibrary() {
  return {"swscale",
          "swscale " AV_STRINGIFY(LIBSWSCALE_VERSION_MAJOR) "." AV_STRINGIFY(
              LIBSWSCALE_VERSION_MINOR) "." AV_STRINGIFY(LIBSWSCALE_VERSION_MICRO),
          offer, swscalePlan};
}

}  // namespace bench
