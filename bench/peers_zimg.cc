// zimg: bilinear and bicubic scaling of one plane.
#include <zimg.h>

#include <cmath>
#include <memory>

#include "frames.h"
#include "peers.h"

namespace bench {
namespace {

// Rows and the planes' starts must be multiples of this.
constexpr int kAlignment = 64;

zimg_cpu_type_e cpuType = ZIMG_CPU_AUTO_64B;

zimg_image_format grey(const ImageStruct& frame) {
  zimg_image_format format;
  zimg_image_format_default(&format, ZIMG_API_VERSION);
  format.width = frame.width;
  format.height = frame.height;
  format.pixel_type = ZIMG_PIXEL_BYTE;
  format.pixel_range = ZIMG_RANGE_FULL;
  return format;
}

// zimg takes the centres of samples as fixed points and we the corner samples. A source
// region that begins and ends outside of the first and last sample's centre by half a
// destination sample makes both the same.
void alignCorners(unsigned from, unsigned to, double* start, double* extent) {
  const double step = (from - 1.0) / (to - 1.0);
  *extent = to * step;
  *start = 0.5 - step / 2;
}

Peer scaled(const Job& job) {
  if (job.src.width % kAlignment != 0 || job.dst.width % kAlignment != 0) return {};
  const ImageStruct &s = job.src, &d = job.dst;
  zimg_image_format from = grey(s);
  const zimg_image_format to = grey(d);
  alignCorners(from.width, to.width, &from.active_region.left,
               &from.active_region.width);
  alignCorners(from.height, to.height, &from.active_region.top,
               &from.active_region.height);
  zimg_graph_builder_params params;
  zimg_graph_builder_params_default(&params, ZIMG_API_VERSION);
  params.cpu_type = cpuType;
  if (job.method == RESIZE_LINEAR) {
    params.resample_filter = ZIMG_RESIZE_BILINEAR;
  } else {
    params.resample_filter = ZIMG_RESIZE_BICUBIC;
    params.filter_param_a = 0;  // with these two it is cubic convolution with a = -1
    params.filter_param_b = 1;
  }
  const std::shared_ptr<zimg_filter_graph> graph(
      zimg_filter_graph_build(&from, &to, &params), zimg_filter_graph_free);
  size_t scratchSize = 0;
  if (graph == nullptr ||
      zimg_filter_graph_get_tmp_size(graph.get(), &scratchSize) != ZIMG_ERROR_SUCCESS) {
    return {};
  }
  const auto scratch = std::make_shared<Buffer>(scratchSize, Buffer::kBetween);
  zimg_image_buffer_const source = {ZIMG_API_VERSION, {}};
  source.plane[0] = {s.data, s.width, ZIMG_BUFFER_MAX};
  zimg_image_buffer destination = {ZIMG_API_VERSION, {}};
  destination.plane[0] = {d.data, d.width, ZIMG_BUFFER_MAX};
  const Peer peer = [=] {
    zimg_filter_graph_process(graph.get(), &source, &destination, scratch->data(),
                              nullptr, nullptr, nullptr, nullptr);
  };
  return enlarges(job) ? peer : notCounted(peer, "reducing widens the filter");
}

Peer offer(const Job& job) {
  const bool wanted = job.step == Step::kScaleLuma && job.method != RESIZE_NEAREST;
  return wanted ? scaled(job) : Peer();
}

}  // namespace

Library zimgLibrary(bool upToAvx2) {
  if (upToAvx2) cpuType = ZIMG_CPU_X86_AVX2;
  unsigned version[3];
  zimg_get_version_info(&version[0], &version[1], &version[2]);
  return {"zimg",
          "zimg " + std::to_string(version[0]) + "." + std::to_string(version[1]) +
              "." + std::to_string(version[2]),
          offer, nullptr};
}

}  // namespace bench
