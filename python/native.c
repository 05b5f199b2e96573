/* What the package's loops over bands and samples do without the interpreter lock. */
#include <zelm_frames.h>

/* Describes a frame that begins at `start` and is otherwise like `model`, whose planes
 * lie behind its first one. */
static void placeFrame(ZelmFrame *frame, const ZelmFrame *model, const void *start) {
  const uintptr_t begin = (uintptr_t)model->planes[0].data;
  *frame = *model;
  for (int i = 0; i < 3; ++i) {
    ZelmPlane *plane = &frame->planes[i];
    if (plane->data) plane->data = (uint8_t *)start + ((uintptr_t)plane->data - begin);
  }
}

/* Makes bands until all are taken. Threads that share `next`, which begins at 0, make a
 * frame together. Returns the first code that is not ZELM_OK. */
static int makeBands(const ZelmPlan *plan, int *next, const ZelmFrame *dst,
                     const ZelmFrame *src) {
  const int bands = zelmPlanBands(plan);
  for (;;) {
    const int band = __atomic_fetch_add(next, 1, __ATOMIC_RELAXED);
    if (band >= bands) return ZELM_OK;
    const int code = zelmPlanRunBand(plan, band, dst, src);
    if (code != ZELM_OK) return code;
  }
}

/* Writes the three channels of `pixels` RGB pixels as planes, one behind the other. */
static void channelsFirst(const uint8_t *rgb, size_t pixels, uint8_t *planes) {
  for (size_t i = 0; i < pixels; ++i) {
    planes[i] = rgb[3 * i];
    planes[pixels + i] = rgb[3 * i + 1];
    planes[2 * pixels + i] = rgb[3 * i + 2];
  }
}

/* The same as (value - mean) * scale. A difference that is multiplied cannot be
 * contracted, so every machine rounds it twice, to the same values. */
static void channelsFirstFloat(const uint8_t *rgb, size_t pixels, const float *mean,
                               const float *scale, float *planes) {
  const float r = mean[0], g = mean[1], b = mean[2];
  const float rs = scale[0], gs = scale[1], bs = scale[2];
  for (size_t i = 0; i < pixels; ++i) {
    planes[i] = ((float)rgb[3 * i] - r) * rs;
    planes[pixels + i] = ((float)rgb[3 * i + 1] - g) * gs;
    planes[2 * pixels + i] = ((float)rgb[3 * i + 2] - b) * bs;
  }
}
