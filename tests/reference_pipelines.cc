// The rules of the checks and of the pipelines, which are made of the stages' rules.
#include "reference.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace reference {
namespace {

int scaleBothPlanes(ImageStruct* dst, ImageStruct* src, int luma, int chroma) {
  Stage* const lumaStages[] = {resize_linear, resize_cubic, resize_nearest};
  Stage* const chromaStages[] = {resize_linearVU, resize_cubicVU, resize_nearestVU};
  if (luma < 2 || luma > 4) return RESULT_BAD_LUMA_METHOD;
  lumaStages[luma - 2](dst, src);
  if (chroma < 2 || chroma > 4) return RESULT_BAD_CHROMA_METHOD;
  chromaStages[chroma - 2](dst, src);
  return RESULT_OK;
}

bool emptyRegion(const ImageStruct& i) { return i.roiWidth < 2 || i.roiHeight < 2; }

bool sameSize(const ImageStruct& a, const ImageStruct& b) {
  return a.roiWidth == b.roiWidth && a.roiHeight == b.roiHeight;
}

bool wholeRegion(const ImageStruct& i) {
  return i.roiWidth == i.width && i.roiHeight == i.height;
}

void setWholeRegion(ImageStruct* i) {
  i->roiX = i->roiY = 0;
  i->roiWidth = i->width;
  i->roiHeight = i->height;
}

// The converter between the two semi-planar orders or to another layout, or null.
Stage* converterFor(uint32_t from, uint32_t to) {
  const bool uFirst = from == FORMAT_YUV420SP;
  const struct {
    uint32_t to;
    Stage *whenUFirst, *whenVFirst;
  } table[] = {
      {FORMAT_YUV420SP, convYUV420SP_YUV420SP, convYUV420SP_VU2UV},
      {FORMAT_YUV420SPVU, convYUV420SP_VU2UV, convYUV420SP_YUV420SP},
      {FORMAT_YUV422SP, convYUV420SP_YUV422SP, convYUV420SP_YUV422SP_VU2UV},
      {FORMAT_YUV422SPVU, convYUV420SP_YUV422SP_VU2UV, convYUV420SP_YUV422SP},
      {FORMAT_RGB565, convYUV420SP_RGB565, convYUV420SP_RGB565},
      {FORMAT_RGB888, convYUV420SP_RGB888, convYUV420SP_RGB888},
      {FORMAT_RGBA8888, convYUV420SP_RGBA8888, convYUV420SP_RGBA8888},
      {FORMAT_YUV420SPMB, nullptr, convYUV420SPVU_YUV420SPMB},
  };
  for (const auto& t : table) {
    if (t.to == to) return uFirst ? t.whenUFirst : t.whenVFirst;
  }
  return nullptr;
}

int scaleAndConvert(ImageStruct src, ImageStruct dst, int luma, int chroma) {
  if (emptyRegion(dst)) return RESULT_OK;
  if (emptyRegion(src)) return RESULT_BAD_ROI;
  ImageStruct working = src;
  std::vector<uint8_t> workingBytes, reducedBytes, targetBytes;
  for (int n = reference::getReductionRate(&dst, &src); n > 0;) {
    const int k = n == 1 ? 1 : 2;
    ImageStruct reduced = working;
    reduced.width = static_cast<uint16_t>(working.roiWidth >> k);
    reduced.height = static_cast<uint16_t>(working.roiHeight >> k);
    setWholeRegion(&reduced);
    reduced.uvOffset = static_cast<uint32_t>(area(reduced));
    reducedBytes.assign(area(reduced) * 3 / 2, 0);
    reduced.data = reducedBytes.data();
    (k == 1 ? resize_averageOfPixel2_420LP : resize_averageOfPixel4_420LP)(&reduced,
                                                                           &working);
    n -= k;
    workingBytes.swap(reducedBytes);
    working = reduced;
  }
  ImageStruct target = dst;
  const bool tiled = dst.format == FORMAT_YUV420SPMB;
  if (src.format != dst.format) {
    if (!tiled) {
      target.width = dst.roiWidth;
      target.height = dst.roiHeight;
      setWholeRegion(&target);
    }
    target.format = src.format;
    target.uvOffset = static_cast<uint32_t>(area(dst));
    targetBytes.assign(area(dst) * 3 / 2, 0);
    target.data = targetBytes.data();
    if (tiled) {  // bytes outside of the region keep their values
      ImageStruct before = dst, all = target;
      setWholeRegion(&before);
      before.uvOffset = static_cast<uint32_t>(upTo16(dst.width) * upTo16(dst.height));
      setWholeRegion(&all);
      reference::convYUV420SPMB_YUV420SPVU(&all, &before);
    }
  }
  if (const int code = scaleBothPlanes(&target, &working, luma, chroma)) return code;
  if (src.format == dst.format) return RESULT_OK;
  Stage* const convert = converterFor(src.format, dst.format);
  if (convert == nullptr) return RESULT_BAD_FORMAT;
  if (tiled) {
    setWholeRegion(&dst);
    setWholeRegion(&target);
  }
  convert(&dst, &target);
  return RESULT_OK;
}

int rotationSizes(const ImageStruct& src, const ImageStruct& dst, int mode,
                  int rotation) {
  if (mode != 1) return RESULT_BAD_MODE;
  if (rotation < 0 || rotation > 4 || rotation == 3) return RESULT_BAD_ROTATION;
  const bool quarter = rotation == ROTATE_90 || rotation == ROTATE_270;
  const int width = quarter ? src.roiHeight : src.roiWidth;
  const int height = quarter ? src.roiWidth : src.roiHeight;
  const bool fits = dst.roiWidth == width && dst.roiHeight == height;
  return fits ? RESULT_OK : RESULT_ROI_MISMATCH;
}

}  // namespace

int checkStruct(ImageStruct* img) {
  if (img == nullptr || img->data == nullptr) return RESULT_NULL;
  if (img->width == 0 || img->height == 0) return RESULT_BAD_SIZE;
  if (img->width % 2 != 0 || img->height % 2 != 0) return RESULT_BAD_SIZE;
  if (img->roiX < 0 || img->roiX > img->width) return RESULT_BAD_ROI;
  if (img->roiY < 0 || img->roiY > img->height) return RESULT_BAD_ROI;
  img->roiX -= img->roiX % 2;
  img->roiY -= img->roiY % 2;
  img->roiWidth = static_cast<uint16_t>(img->roiWidth / 2 * 2);
  img->roiHeight = static_cast<uint16_t>(img->roiHeight / 2 * 2);
  if (img->roiX + img->roiWidth > img->width) return RESULT_BAD_ROI;
  if (img->roiY + img->roiHeight > img->height) return RESULT_BAD_ROI;
  for (uint32_t f : {1u, 2u, 4u, 16u, 32u, 256u, 1024u, 2048u, 4096u, 16777216u}) {
    if (img->format == f) return RESULT_OK;
  }
  return RESULT_BAD_FORMAT;
}

int checkRotateParam(ImageStruct* src, ImageStruct* dst, int mode, int rotation) {
  return rotationSizes(*src, *dst, mode, rotation);
}

int getReductionRate(ImageStruct* dst, ImageStruct* src) {
  if (dst->roiWidth == 0 || dst->roiHeight == 0) return 0;
  if (src->roiWidth % 2 != 0 || src->roiHeight % 2 != 0) return 0;
  const int qh = (src->roiHeight / dst->roiHeight) & 0xFFFE;
  const int qw = (src->roiWidth / dst->roiWidth) & 0xFFFE;
  const int q = std::min(qh, qw);
  if (q <= 1) return 0;
  int n = static_cast<int>(std::log(static_cast<double>(q)) / 0.6931471805599453);
  while ((src->roiHeight / (1 << n)) % 2 == 1 || (src->roiWidth / (1 << n)) % 2 == 1) {
    --n;
  }
  return n;
}

int Zelm_Resize_and_Convert(ImageStruct src, ImageStruct dst, int luma, int chroma,
                            int) {
  if (const int code = reference::checkStruct(&src)) return code;
  if (const int code = reference::checkStruct(&dst)) return code;
  const uint32_t from = src.format, to = dst.format;
  switch (from) {
    case FORMAT_YUV420P:
      if (to != FORMAT_YUV420SPVU) return RESULT_BAD_FORMAT;
      break;
    case FORMAT_YUV420SP:
      if (to == FORMAT_YUV420SPMB) return RESULT_UNSUPPORTED_CONVERSION;
      break;
    case FORMAT_YUV420SPVU:
      break;
    case FORMAT_YUV422IUYVY:
    case FORMAT_RGB565:
    case FORMAT_YUV420SPMB:
      if (to != FORMAT_YUV420SPVU) return RESULT_UNSUPPORTED_CONVERSION;
      return reference::Zelm_Convert_and_Resize(src, dst, luma, chroma, 0);
    default:
      return RESULT_BAD_FORMAT;
  }
  if (from == FORMAT_YUV420P || (from == FORMAT_YUV420SPVU && to == FORMAT_YUV420P)) {
    if (src.width != dst.width || src.height != dst.height || src.roiX != dst.roiX ||
        src.roiY != dst.roiY || !sameSize(src, dst)) {
      return RESULT_GEOMETRY_MISMATCH;
    }
    (from == FORMAT_YUV420P ? convYUV420P_YUV420SP : convYUV420SP_YUV420P)(&dst, &src);
    return RESULT_OK;
  }
  if (to == FORMAT_YUV420SPMB || !sameSize(src, dst)) {
    return scaleAndConvert(src, dst, luma, chroma);
  }
  Stage* const convert = converterFor(from, to);
  if (convert == nullptr) return RESULT_UNSUPPORTED_CONVERSION;
  convert(&dst, &src);
  return RESULT_OK;
}

int Zelm_Convert_and_Resize(ImageStruct src, ImageStruct dst, int luma, int chroma,
                            int) {
  const bool tiled = src.format == FORMAT_YUV420SPMB, same = sameSize(src, dst);
  Stage* const convert = tiled                              ? convYUV420SPMB_YUV420SPVU
                         : src.format == FORMAT_RGB565      ? convRGB565_YUV420SPVU
                         : src.format == FORMAT_YUV422IUYVY ? convYUV422IUYVY_YUV420SPVU
                                                            : nullptr;
  if (convert == nullptr) return RESULT_BAD_FORMAT;
  if (same && (!tiled || (wholeRegion(dst) && wholeRegion(src)))) {
    convert(&dst, &src);
    return RESULT_OK;
  }
  if (emptyRegion(src) && !emptyRegion(dst)) return RESULT_BAD_ROI;
  ImageStruct target = dst, source = src;
  target.width = src.width;
  target.height = src.height;
  setWholeRegion(&target);
  if (tiled) {
    setWholeRegion(&source);
  } else {
    target.roiWidth = src.roiWidth;
    target.roiHeight = src.roiHeight;
  }
  target.uvOffset = static_cast<uint32_t>(area(src));
  std::vector<uint8_t> bytes(area(src) * 3 / 2);
  target.data = bytes.data();
  convert(&target, &source);
  if (tiled) {
    target.roiX = src.roiX;
    target.roiY = src.roiY;
    target.roiWidth = src.roiWidth;
    target.roiHeight = src.roiHeight;
  }
  return scaleBothPlanes(&dst, &target, luma, chroma);
}

int Zelm_Rotate_and_Convert(ImageStruct src, ImageStruct dst, int mode, int rotation) {
  for (uint32_t format : {src.format, dst.format}) {
    if (format != 1 && format != 2 && format != 4 && format != 8 && format != 16 &&
        format != 32) {
      return RESULT_BAD_FORMAT;
    }
  }
  if (const int code = reference::checkStruct(&src)) return code;
  if (const int code = reference::checkStruct(&dst)) return code;
  if (const int code = rotationSizes(src, dst, mode, rotation)) return code;
  Stage* const kernels[] = {rotate0_Y, rotate90_Y, rotate180_Y, nullptr, rotate270_Y};
  kernels[rotation](&dst, &src);
  return RESULT_OK;
}

}  // namespace reference
