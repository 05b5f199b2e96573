// How often a source may be halved by box averages before it is scaled.
#include "pipeline/reduction_rate.h"

#include "zelm_imageutil.h"

extern "C" int getReductionRate(ImageStruct* dst, ImageStruct* src) {
  if (dst->roiWidth == 0 || dst->roiHeight == 0) return 0;
  return zelm::reductionRate(src->roiWidth, src->roiHeight, dst->roiWidth,
                             dst->roiHeight);
}
