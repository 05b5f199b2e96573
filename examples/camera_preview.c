/* An upright, mirrored preview of a front camera's frame, whose sensor is mounted
 * sideways:
 *   zelm-imageutil testcard - --size 720x1280 --to nv12 |
 *     zelm-imageutil rotate - - --from nv12 --to nv12 --size 720x1280 --angle 270 |
 *     camera_preview >preview.ppm
 * Camera services hand out three planes, each with bytes from row to row and from
 * sample to sample; U and V often lie in each other's gaps, and the last gap is not
 * there. */
#include <stdio.h>
#include <stdlib.h>
#include <zelm_frames.h>

enum { kWidth = 1280, kHeight = 720, kRowStride = 1344, kPixelStride = 2 };

struct CameraImage {
  uint8_t *y, *u, *v;
  int rowStride, chromaRowStride, chromaPixelStride;
};

/* What the app does with an image. `rgba` has kHeight x kWidth pixels. */
static int showImage(const struct CameraImage *image, uint8_t *rgba) {
  const ZelmFrame src = {
      ZELM_I420,
      kWidth,
      kHeight,
      ZELM_BT601_FULL,
      {{image->y, image->rowStride, 0, 0},
       {image->u, image->chromaRowStride, image->chromaPixelStride, 0},
       {image->v, image->chromaRowStride, image->chromaPixelStride, 0}}};
  const ZelmEdit upright = {.chromaFilter = ZELM_LINEAR, .turn = 90, .mirror = 1};
  ZelmFrame dst;
  ZelmMessage message;
  zelmFrameInit(&dst, ZELM_RGBA, kHeight, kWidth, rgba, (size_t)kWidth * kHeight * 4,
                1);
  if (zelmConvert(&dst, &src, &upright, &message) == ZELM_OK) return 0;
  fprintf(stderr, "%s\n", message.text);
  return 1;
}

int main(void) {
  const size_t luma = (size_t)kRowStride * kHeight;
  uint8_t *memory = calloc(luma + luma / 2, 1);
  uint8_t *rgba = malloc((size_t)kWidth * kHeight * 4);
  if (memory == NULL || rgba == NULL) return 1;
  /* Frames from the standard input, as a camera's memory has them. */
  for (size_t row = 0; row < kHeight * 3 / 2; ++row) {
    if (fread(memory + row * kRowStride, 1, kWidth, stdin) != kWidth) return 1;
  }
  const struct CameraImage image = {memory,     memory + luma, memory + luma + 1,
                                    kRowStride, kRowStride,    kPixelStride};
  if (showImage(&image, rgba) != 0) return 1;

  printf("P6\n%d %d\n255\n", kHeight, kWidth);
  for (size_t i = 0; i < (size_t)kWidth * kHeight; ++i)
    fwrite(rgba + 4 * i, 1, 3, stdout);
  free(rgba);
  free(memory);
  return 0;
}
