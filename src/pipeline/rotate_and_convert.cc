// Turns the luma region of one frame into the luma region of another.
#include "pipeline/methods.h"
#include "zelm_imageutil.h"

namespace {

struct Rotation {
  int code;
  zelm::Stage kernel;
  bool exchangesSides;
};

constexpr Rotation kRotations[] = {
    {ROTATE_0, rotate0_Y, false},
    {ROTATE_90, rotate90_Y, true},
    {ROTATE_180, rotate180_Y, false},
    {ROTATE_270, rotate270_Y, true},
};

const Rotation* findRotation(int code) {
  for (const Rotation& rotation : kRotations) {
    if (rotation.code == code) return &rotation;
  }
  return nullptr;
}

// Tells whether the format's first plane is one byte of luma per pixel. 8 lies between
// those formats but is none: checkStruct rejects it, with the same code but later.
bool hasLumaPlane(uint32_t format) {
  return format == FORMAT_YUV420P || format == FORMAT_YUV420SP ||
         format == FORMAT_YUV420SPVU || format == 8 || format == FORMAT_YUV422SP ||
         format == FORMAT_YUV422SPVU;
}

}  // namespace

extern "C" int checkRotateParam(ImageStruct* src, ImageStruct* dst, int mode,
                                int rotation) {
  if (mode != 1) return RESULT_BAD_MODE;
  const Rotation* found = findRotation(rotation);
  if (found == nullptr) return RESULT_BAD_ROTATION;
  const int width = found->exchangesSides ? src->roiHeight : src->roiWidth;
  const int height = found->exchangesSides ? src->roiWidth : src->roiHeight;
  if (dst->roiWidth != width || dst->roiHeight != height) return RESULT_ROI_MISMATCH;
  return RESULT_OK;
}

extern "C" int16_t Zelm_Rotate_and_Convert(ImageStruct src, ImageStruct dst, int mode,
                                           int rotation) {
  if (!hasLumaPlane(src.format) || !hasLumaPlane(dst.format)) return RESULT_BAD_FORMAT;
  if (const int code = checkStruct(&src)) return static_cast<int16_t>(code);
  if (const int code = checkStruct(&dst)) return static_cast<int16_t>(code);
  if (const int code = checkRotateParam(&src, &dst, mode, rotation)) {
    return static_cast<int16_t>(code);
  }
  findRotation(rotation)->kernel(&dst, &src);
  return RESULT_OK;
}
