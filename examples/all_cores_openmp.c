/* One 2160p frame on all cores, with OpenMP:
 *   all_cores_openmp <nv12 >rgba */
#include <stdio.h>
#include <stdlib.h>
#include <zelm_frames.h>

enum { kWidth = 3840, kHeight = 2160 };

static int runOnAllCores(const ZelmPlan *plan, const ZelmFrame *dst,
                         const ZelmFrame *src) {
  int failed = 0;
#pragma omp parallel for schedule(dynamic) reduction(| : failed)
  for (int band = 0; band < zelmPlanBands(plan); ++band) {
    failed |= zelmPlanRunBand(plan, band, dst, src) != ZELM_OK;
  }
  return failed;
}

int main(void) {
  const size_t from = zelmFrameBytes(ZELM_NV12, kWidth, kHeight, 1);
  const size_t to = zelmFrameBytes(ZELM_RGBA, kWidth, kHeight, 1);
  uint8_t *nv12 = malloc(from), *rgba = malloc(to);
  if (nv12 == NULL || rgba == NULL || fread(nv12, 1, from, stdin) != from) return 1;

  ZelmFrame src, dst;
  ZelmMessage message;
  ZelmPlan *plan;
  zelmFrameInit(&src, ZELM_NV12, kWidth, kHeight, nv12, from, 1);
  zelmFrameInit(&dst, ZELM_RGBA, kWidth, kHeight, rgba, to, 1);
  src.colour = ZELM_BT709_LIMITED;
  if (zelmPlanCreate(&plan, &dst, &src, NULL, &message) != ZELM_OK) {
    fprintf(stderr, "%s\n", message.text);
    return 1;
  }
  const int failed = runOnAllCores(plan, &dst, &src);
  zelmPlanDestroy(plan);
  const int written = fwrite(rgba, 1, to, stdout) == to;
  free(rgba);
  free(nv12);
  return failed || !written;
}
