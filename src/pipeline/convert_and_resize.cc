// The pipeline for UYVY, RGB565 and tiled sources: it converts them to semi-planar
// 4:2:0 with V before U first, and scales second. It validates nothing.
#include "pipeline/frame.h"
#include "pipeline/methods.h"
#include "plane.h"
#include "zelm_imageutil.h"

namespace {

using zelm::Stage;

Stage findConverter(uint32_t format) {
  switch (format) {
    case FORMAT_YUV422IUYVY:
      return convYUV422IUYVY_YUV420SPVU;
    case FORMAT_RGB565:
      return convRGB565_YUV420SPVU;
    case FORMAT_YUV420SPMB:
      return convYUV420SPMB_YUV420SPVU;
    default:
      return nullptr;
  }
}

}  // namespace

extern "C" int Zelm_Convert_and_Resize(ImageStruct src, ImageStruct dst, int lumaMethod,
                                       int chromaMethod, int /*reserved*/) {
  const Stage convert = findConverter(src.format);
  const bool tiled = src.format == FORMAT_YUV420SPMB;

  // A tiled frame can only be converted whole.
  const bool direct = zelm::sameRegionSize(src, dst) &&
                      (!tiled || (zelm::isWholeFrame(src) && zelm::isWholeFrame(dst)));
  if (direct) {
    if (convert == nullptr) return RESULT_BAD_FORMAT;
    convert(&dst, &src);
    return RESULT_OK;
  }
  if (convert != nullptr && zelm::emptyRegion(src) && !zelm::emptyRegion(dst)) {
    return RESULT_BAD_ROI;
  }

  // The target is as large as the source. What is to be scaled lies at its origin; that
  // of a tiled source lies where it lay in the source.
  zelm::Frame target;
  ImageStruct& record = target.record;
  record = dst;
  record.width = src.width;
  record.height = src.height;
  record.uvOffset = static_cast<uint32_t>(zelm::lumaBytes(src));
  if (!target.allocate(zelm::lumaBytes(src))) return RESULT_NO_MEMORY;
  if (convert == nullptr) return RESULT_BAD_FORMAT;

  if (tiled) {
    ImageStruct whole = src;
    zelm::setRegion(&whole, 0, 0, src.width, src.height);
    convert(&record, &whole);
    zelm::setRegion(&record, src.roiX, src.roiY, src.roiWidth, src.roiHeight);
  } else {
    zelm::setRegion(&record, 0, 0, src.roiWidth, src.roiHeight);
    convert(&record, &src);
  }
  return zelm::scaleFrame(&dst, &record, lumaMethod, chromaMethod);
}
