/* The header and the shared library as a C program sees them. */
#include <stdio.h>

#include "zelm_imageutil.h"

static int failures = 0;

#define check(holds) \
  if (!(holds)) printf("line %d: %s\n", __LINE__, #holds), ++failures

/* The numbers are part of the binary interface. */
static const int codes[][2] = {{FORMAT_YUV420P, 1},
                               {FORMAT_YUV420SP, 2},
                               {FORMAT_YUV420SPVU, 4},
                               {FORMAT_YUV422SP, 16},
                               {FORMAT_YUV422SPVU, 32},
                               {FORMAT_YUV422IUYVY, 256},
                               {FORMAT_RGB565, 1024},
                               {FORMAT_RGB888, 2048},
                               {FORMAT_RGBA8888, 4096},
                               {FORMAT_YUV420SPMB, 0x1000000},
                               {RESIZE_LINEAR, 2},
                               {RESIZE_CUBIC, 3},
                               {RESIZE_NEAREST, 4},
                               {ROTATE_0, 0},
                               {ROTATE_90, 1},
                               {ROTATE_180, 2},
                               {ROTATE_270, 4},
                               {RESULT_OK, 0},
                               {RESULT_NULL, -1},
                               {RESULT_BAD_SIZE, -2},
                               {RESULT_BAD_ROI, -3},
                               {RESULT_BAD_FORMAT, -4},
                               {RESULT_BAD_ROTATION, -9},
                               {RESULT_UNSUPPORTED_CONVERSION, -5},
                               {RESULT_BAD_MODE, -10},
                               {RESULT_GEOMETRY_MISMATCH, -6},
                               {RESULT_ROI_MISMATCH, -11},
                               {RESULT_BAD_LUMA_METHOD, -7},
                               {RESULT_NO_MEMORY, -12},
                               {RESULT_BAD_CHROMA_METHOD, -8}};

int main(void) {
  uint8_t camera[8 * 4 * 3 / 2], preview[4 * 4 * 2], turned[4 * 8 * 3 / 2];
  const ImageStruct src = zelmWholeFrame(FORMAT_YUV420SP, 8, 4, camera);
  const ImageStruct dst = zelmWholeFrame(FORMAT_RGBA8888, 4, 2, preview);
  const ImageStruct tall = zelmWholeFrame(FORMAT_YUV420SPVU, 4, 8, turned);
  ImageStruct odd = zelmWholeFrame(FORMAT_YUV420SP, 8, 4, camera);
  size_t i;

  for (i = 0; i < sizeof codes / sizeof *codes; ++i) check(codes[i][0] == codes[i][1]);
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
