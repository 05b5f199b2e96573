/* The header and the shared library of frames as a C program sees them. */
#include <stdio.h>
#include <string.h>

#include "zelm_frames.h"

static int failures = 0;

#define check(holds) \
  if (!(holds)) printf("line %d: %s\n", __LINE__, #holds), ++failures

/* The numbers are part of the binary interface. */
static const int codes[][2] = {
    {ZELM_I420, 1},          {ZELM_YV12, 2},           {ZELM_NV12, 3},
    {ZELM_NV21, 4},          {ZELM_I422, 5},           {ZELM_NV16, 6},
    {ZELM_NV61, 7},          {ZELM_YUYV, 8},           {ZELM_UYVY, 9},
    {ZELM_GRAY8, 10},        {ZELM_RGB24, 11},         {ZELM_BGR24, 12},
    {ZELM_RGBA, 13},         {ZELM_BGRA, 14},          {ZELM_RGB565, 15},
    {ZELM_BGR565, 16},       {ZELM_TILED, 17},         {ZELM_BT601_FULL, 0},
    {ZELM_BT601_LIMITED, 1}, {ZELM_BT709_FULL, 2},     {ZELM_BT709_LIMITED, 3},
    {ZELM_BT2020_FULL, 4},   {ZELM_BT2020_LIMITED, 5}, {ZELM_LINEAR, 0},
    {ZELM_NEAREST, 1},       {ZELM_CUBIC, 2},          {ZELM_OK, 0},
    {ZELM_NULL, -1},         {ZELM_BAD_SIZE, -2},      {ZELM_BAD_REGION, -3},
    {ZELM_BAD_FORMAT, -4},   {ZELM_BAD_COLOUR, -5},    {ZELM_BAD_FILTER, -6},
    {ZELM_BAD_TURN, -7},     {ZELM_BAD_PLANE, -8},     {ZELM_OVERLAP, -9},
    {ZELM_WRONG_FRAME, -10}, {ZELM_BAD_BAND, -11},     {ZELM_NO_MEMORY, -12}};

/* In limited range luma 16 is black and 235 white. Turned by 90 degrees and mirrored,
 * the columns of the frame are the rows of the picture. */
static void convertOneFrame(void) {
  uint8_t nv12[3 * 2 + 4] = {16, 235, 126, 16, 16, 235, 128, 128, 128, 128};
  uint8_t pixels[2 * 3 * 4];
  static const uint8_t expected[] = {0, 0, 255, 0, 128, 255};
  ZelmEdit edit = {{0, 0, 0, 0}, {0, 0, 0, 0}, 0, 0, 90, 1};
  ZelmFrame src, dst;
  ZelmMessage message;
  ZelmPlan *plan;
  int i;

  check(zelmFrameBytes(ZELM_NV12, 3, 2, 1) == sizeof nv12);
  check(zelmFrameInit(&src, ZELM_NV12, 3, 2, nv12, sizeof nv12, 1) == ZELM_OK);
  check(zelmFrameInit(&dst, ZELM_RGBA, 2, 3, pixels, sizeof pixels, 1) == ZELM_OK);
  src.colour = ZELM_BT709_LIMITED;
  check(src.planes[1].data == nv12 + 6 && src.planes[1].stride == 4);
  check(zelmPlanCreate(&plan, &dst, &src, &edit, &message) == ZELM_OK);
  check(zelmPlanBands(plan) == 1 && message.text[0] == '\0');
  check(zelmPlanRunBand(plan, 0, &dst, &src) == ZELM_OK);
  for (i = 0; i < 6; ++i) {
    check(pixels[4 * i] == expected[i] && pixels[4 * i + 2] == expected[i]);
    check(pixels[4 * i + 3] == 255);
  }
  memset(pixels, 7, sizeof pixels);
  check(zelmPlanRun(plan, &dst, &src) == ZELM_OK && pixels[8] == 255);
  zelmPlanDestroy(plan);

  edit.turn = 45;
  memset(pixels, 7, sizeof pixels);
  check(zelmConvert(&dst, &src, &edit, &message) == ZELM_BAD_TURN);
  check(strstr(message.text, "45") != NULL && pixels[0] == 7);
}

int main(void) {
  size_t i;
  for (i = 0; i < sizeof codes / sizeof *codes; ++i) check(codes[i][0] == codes[i][1]);
  if (sizeof(void *) == 8) {
    check(sizeof(ZelmPlane) == 32 && sizeof(ZelmFrame) == 112);
  } else {
    check(sizeof(ZelmPlane) == 16 && sizeof(ZelmFrame) == 64);
  }
  check(sizeof(ZelmEdit) == 48 && sizeof(ZelmMessage) == 240);
  check(ZELM_FRAMES_VERSION == 100);
  convertOneFrame();
  return failures;
}
