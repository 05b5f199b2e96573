// The scaling methods, and the two scaling steps that the pipelines share.
#ifndef ZELM_SRC_PIPELINE_METHODS_H_
#define ZELM_SRC_PIPELINE_METHODS_H_

#include "zelm_imageutil.h"

namespace zelm {

using Stage = void (*)(ImageStruct* dst, ImageStruct* src);

struct Scaler {
  int method;
  Stage luma;
  Stage chroma;
};

constexpr Scaler kScalers[] = {
    {RESIZE_LINEAR, resize_linear, resize_linearVU},
    {RESIZE_CUBIC, resize_cubic, resize_cubicVU},
    {RESIZE_NEAREST, resize_nearest, resize_nearestVU},
};

inline const Scaler* findScaler(int method) {
  for (const Scaler& scaler : kScalers) {
    if (scaler.method == method) return &scaler;
  }
  return nullptr;
}

// Scales both planes. Luma is written before the chroma method is looked at.
inline int scaleFrame(ImageStruct* dst, ImageStruct* src, int lumaMethod,
                      int chromaMethod) {
  const Scaler* luma = findScaler(lumaMethod);
  if (luma == nullptr) return RESULT_BAD_LUMA_METHOD;
  luma->luma(dst, src);

  const Scaler* chroma = findScaler(chromaMethod);
  if (chroma == nullptr) return RESULT_BAD_CHROMA_METHOD;
  chroma->chroma(dst, src);
  return RESULT_OK;
}

// Returns what scaleFrame would where there is nothing to scale.
inline int checkMethods(int lumaMethod, int chromaMethod) {
  if (findScaler(lumaMethod) == nullptr) return RESULT_BAD_LUMA_METHOD;
  if (findScaler(chromaMethod) == nullptr) return RESULT_BAD_CHROMA_METHOD;
  return RESULT_OK;
}

inline bool emptyRegion(const ImageStruct& image) {
  return image.roiWidth < 2 || image.roiHeight < 2;
}

inline bool sameRegionSize(const ImageStruct& a, const ImageStruct& b) {
  return a.roiWidth == b.roiWidth && a.roiHeight == b.roiHeight;
}

inline void setRegion(ImageStruct* image, int x, int y, int width, int height) {
  image->roiX = x;
  image->roiY = y;
  image->roiWidth = static_cast<uint16_t>(width);
  image->roiHeight = static_cast<uint16_t>(height);
}

inline bool isWholeFrame(const ImageStruct& image) {
  return image.roiX == 0 && image.roiY == 0 && image.roiWidth == image.width &&
         image.roiHeight == image.height;
}

}  // namespace zelm

#endif  // ZELM_SRC_PIPELINE_METHODS_H_
