// The stages that scale a plane of one frame into a plane of another.
#include "resize/scale_plane.h"

#include "zelm_imageutil.h"

namespace zelm {

using KernelOf = ScalePart*(size_t sample, size_t bytes);

// Nothing is made out of nothing, and equal extents are a copy.
static void scalePlane(KernelOf kernelOf, const Region& to, const Region& from,
                       size_t sample) {
  if (from.empty()) return;
  if (to.columns == from.columns && to.rows == from.rows) {
    copyRows(to, from, to.rows, to.columns * sample);
  } else {
    const size_t columns = to.columns < from.columns ? to.columns : from.columns;
    kernelOf(sample, columns * sample)(to, from, {0, 0, to.columns, to.rows});
  }
}

static void scaleLuma(KernelOf kernelOf, const ImageStruct& dst,
                      const ImageStruct& src) {
  scalePlane(kernelOf, lumaRegion(dst), lumaRegion(src), 1);
}

static void scaleChroma(KernelOf kernelOf, const ImageStruct& dst,
                        const ImageStruct& src) {
  scalePlane(kernelOf, chromaRegion(dst), chromaRegion(src), 2);
}

}  // namespace zelm

extern "C" void resize_nearest(ImageStruct* dst, ImageStruct* src) {
  zelm::scaleLuma(zelm::nearestKernel, *dst, *src);
}

extern "C" void resize_nearestVU(ImageStruct* dst, ImageStruct* src) {
  zelm::scaleChroma(zelm::nearestKernel, *dst, *src);
}

extern "C" void resize_linear(ImageStruct* dst, ImageStruct* src) {
  zelm::scaleLuma(zelm::bilinearKernel, *dst, *src);
}

extern "C" void resize_linearVU(ImageStruct* dst, ImageStruct* src) {
  zelm::scaleChroma(zelm::bilinearKernel, *dst, *src);
}

extern "C" void resize_cubic(ImageStruct* dst, ImageStruct* src) {
  zelm::scaleLuma(zelm::bicubicKernel, *dst, *src);
}

extern "C" void resize_cubicVU(ImageStruct* dst, ImageStruct* src) {
  zelm::scaleChroma(zelm::bicubicKernel, *dst, *src);
}

// The destination is a packed block at `data`.
extern "C" void resize_linear3ch(ImageStruct* dst, ImageStruct* src) {
  using namespace zelm;
  const ptrdiff_t stride = 3 * static_cast<ptrdiff_t>(dst->roiWidth);
  const Region to = {dst->data, stride, dst->roiWidth, dst->roiHeight};
  scalePlane(bilinearKernel, to, packedRegion(*src, 3), 3);
}
