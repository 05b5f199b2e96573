// Validation of a record.
#include "zelm_imageutil.h"

namespace {

bool knownFormat(uint32_t format) {
  switch (format) {
    case FORMAT_YUV420P:
    case FORMAT_YUV420SP:
    case FORMAT_YUV420SPVU:
    case FORMAT_YUV422SP:
    case FORMAT_YUV422SPVU:
    case FORMAT_YUV422IUYVY:
    case FORMAT_RGB565:
    case FORMAT_RGB888:
    case FORMAT_RGBA8888:
    case FORMAT_YUV420SPMB:
      return true;
    default:
      return false;
  }
}

}  // namespace

extern "C" int checkStruct(ImageStruct* img) {
  if (img == nullptr || img->data == nullptr) return RESULT_NULL;
  if (img->width == 0 || img->height == 0) return RESULT_BAD_SIZE;
  if (img->width % 2 != 0 || img->height % 2 != 0) return RESULT_BAD_SIZE;
  if (img->roiX < 0 || img->roiX > img->width) return RESULT_BAD_ROI;
  if (img->roiY < 0 || img->roiY > img->height) return RESULT_BAD_ROI;

  // The region is made even in the record even if it then turns out not to fit.
  img->roiX &= ~1;
  img->roiY &= ~1;
  img->roiWidth &= 0xFFFE;
  img->roiHeight &= 0xFFFE;
  if (img->roiX + img->roiWidth > img->width) return RESULT_BAD_ROI;
  if (img->roiY + img->roiHeight > img->height) return RESULT_BAD_ROI;

  return knownFormat(img->format) ? RESULT_OK : RESULT_BAD_FORMAT;
}
