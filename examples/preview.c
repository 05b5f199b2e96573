/* Makes a picture for a display of one camera frame:
 *   zelm-imageutil testcard - --size 1280x720 --to nv21 | preview >preview.ppm */
#include <stdio.h>
#include <zelm_imageutil.h>

static uint8_t camera[1280 * 720 * 3 / 2], display[640 * 360 * 3];

int main(void) {
  ImageStruct src = zelmWholeFrame(FORMAT_YUV420SPVU, 1280, 720, camera);
  ImageStruct dst = zelmWholeFrame(FORMAT_RGB888, 640, 360, display);
  if (fread(camera, 1, sizeof camera, stdin) != sizeof camera) return 1;
  if (Zelm_Resize_and_Convert(src, dst, RESIZE_LINEAR, RESIZE_LINEAR, 0) != RESULT_OK)
    return 1;
  printf("P6\n640 360\n255\n");
  return fwrite(display, 1, sizeof display, stdout) != sizeof display;
}
