// How often a source may be halved by box averages before it is scaled.
#include "zelm_imageutil.h"

extern "C" int getReductionRate(ImageStruct* dst, ImageStruct* src) {
  const unsigned width = src->roiWidth, height = src->roiHeight;
  if (dst->roiWidth == 0 || dst->roiHeight == 0) return 0;
  if (width % 2 != 0 || height % 2 != 0) return 0;

  // The weaker reduction governs; its ratio is rounded down to an even number.
  const unsigned across = (width / dst->roiWidth) & 0xFFFE;
  const unsigned down = (height / dst->roiHeight) & 0xFFFE;
  const unsigned ratio = across < down ? across : down;

  int n = 0;
  while (ratio >> (n + 1) != 0) ++n;
  // A 4:2:0 frame needs even sides, so the reduced sides must stay even.
  while (n > 0 && (((width >> n) | (height >> n)) & 1) != 0) --n;
  return n;
}
