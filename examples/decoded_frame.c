/* A decoder's frame, with plane pointers and line sizes, to RGB24 in half the size:
 *   ffmpeg -v error -i clip.mp4 -vf scale=1280:720 -pix_fmt yuv420p -f rawvideo - |
 *     decoded_frame >frame.ppm
 * Ordinary video is limited-range BT.709. A stream prepares one plan for all frames. */
#include <stdio.h>
#include <stdlib.h>
#include <zelm_frames.h>

enum { kWidth = 1280, kHeight = 720, kLine = 1408 };

/* What decoders hand out: one frame after the other, in memory of their own. */
struct Decoded {
  uint8_t *data[3];
  int linesize[3];
};

static ZelmFrame frameOf(const struct Decoded *decoded) {
  ZelmFrame frame = {ZELM_I420, kWidth, kHeight, ZELM_BT709_LIMITED, {{0}, {0}, {0}}};
  for (int p = 0; p < 3; ++p) {
    frame.planes[p].data = decoded->data[p];
    frame.planes[p].stride = decoded->linesize[p];
  }
  return frame;
}

/* Reads the next frame as if it were decoded. */
static int decode(struct Decoded *decoded) {
  for (int p = 0; p < 3; ++p) {
    const size_t width = p == 0 ? kWidth : kWidth / 2,
                 height = p == 0 ? kHeight : kHeight / 2;
    for (size_t y = 0; y < height; ++y) {
      uint8_t *row = decoded->data[p] + y * (size_t)decoded->linesize[p];
      if (fread(row, 1, width, stdin) != width) return 0;
    }
  }
  return 1;
}

int main(void) {
  const size_t bytes = (size_t)kWidth / 2 * (kHeight / 2) * 3;
  uint8_t *memory = malloc((size_t)kLine * kHeight * 2), *rgb = malloc(bytes);
  if (memory == NULL || rgb == NULL) return 1;
  struct Decoded decoded = {
      {memory, memory + kLine * kHeight, memory + kLine * kHeight * 3 / 2},
      {kLine, kLine / 2, kLine / 2}};
  ZelmFrame src = frameOf(&decoded), dst;
  ZelmMessage message;
  ZelmPlan *plan;
  zelmFrameInit(&dst, ZELM_RGB24, kWidth / 2, kHeight / 2, rgb, bytes, 1);
  if (zelmPlanCreate(&plan, &dst, &src, NULL, &message) != ZELM_OK) {
    fprintf(stderr, "%s\n", message.text);
    return 1;
  }
  while (decode(&decoded)) {
    src = frameOf(&decoded); /* the next frame lies elsewhere */
    if (zelmPlanRun(plan, &dst, &src) != ZELM_OK) return 1;
    printf("P6\n%d %d\n255\n", kWidth / 2, kHeight / 2);
    fwrite(rgb, 1, bytes, stdout);
  }
  zelmPlanDestroy(plan);
  free(rgb);
  free(memory);
  return 0;
}
