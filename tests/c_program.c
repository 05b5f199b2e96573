/* The header and the shared library as a C program sees them. */
#include <stdio.h>

#include "zelm_imageutil.h"

static int failures = 0;

#define check(holds) \
  if (!(holds)) printf("line %d: %s\n", __LINE__, #holds), ++failures

int main(void) {
  uint8_t camera[8 * 4 * 3 / 2], preview[4 * 4 * 2], turned[4 * 8 * 3 / 2];
  const ImageStruct src = zelmWholeFrame(FORMAT_YUV420SP, 8, 4, camera);
  const ImageStruct dst = zelmWholeFrame(FORMAT_RGBA8888, 4, 2, preview);
  const ImageStruct tall = zelmWholeFrame(FORMAT_YUV420SPVU, 4, 8, turned);
  ImageStruct odd = zelmWholeFrame(FORMAT_YUV420SP, 8, 4, camera);
  size_t i;

  check(sizeof(ImageStruct) == (sizeof(void *) == 4 ? 80 : 88));
  check(src.dataSize == sizeof camera && src.uvOffset == 32 && src.roiWidth == 8);
  check(dst.dataSize == sizeof preview && dst.uvOffset == 0 && dst.roiHeight == 2);
  check(zelmFrameLayout(FORMAT_YUV420SPMB, 40, 24).uvOffset == 1536);
  check(zelmFrameLayout(0, 40, 24).size == 0);

  memset(camera, 76, 32);
  for (i = 32; i < sizeof camera; i += 2) {
    camera[i] = 85;
    camera[i + 1] = 255;
  }
  camera[7] = 9; /* halved by the mean of four before it is scaled */
  check(Zelm_Resize_and_Convert(src, dst, RESIZE_NEAREST, RESIZE_LINEAR, 0) ==
        RESULT_OK);
  for (i = 0; i < sizeof preview; i += 4) {
    check(preview[i] == (i == 12 ? 237 : 254) && preview[i + 1] == 0);
    check(preview[i + 2] == 0 && preview[i + 3] == 255);
  }
  check(Zelm_Rotate_and_Convert(src, tall, 1, ROTATE_90) == RESULT_OK);
  check(turned[31] == 9 && turned[0] == 76);
  check(Zelm_Rotate_and_Convert(src, dst, 1, ROTATE_90) == RESULT_BAD_FORMAT);
  check(Zelm_Convert_and_Resize(src, tall, 2, 2, 0) == RESULT_BAD_FORMAT);
  odd.roiWidth = 7;
  check(checkStruct(&odd) == RESULT_OK && odd.roiWidth == 6);
  check(clipping(5, 0, 3) == 3 && logn(2, 8) == 3.0);
  return failures;
}
