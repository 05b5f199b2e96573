// The table of all stages and pipelines that are measured.
#include "rows.h"

#include "frames.h"
#include "reference.h"

namespace bench {
namespace {

constexpr uint32_t k420P = FORMAT_YUV420P, kNv12 = FORMAT_YUV420SP,
                   kNv21 = FORMAT_YUV420SPVU, kNv16 = FORMAT_YUV422SP,
                   kUyvy = FORMAT_YUV422IUYVY, k565 = FORMAT_RGB565,
                   k888 = FORMAT_RGB888, kRgba = FORMAT_RGBA8888,
                   kTiled = FORMAT_YUV420SPMB;

struct Size {
  int width, height;
};

std::string text(const Size& s) {
  return std::to_string(s.width) + "x" + std::to_string(s.height);
}

using StageFunction = void (*)(ImageStruct* dst, ImageStruct* src);

struct Stage {
  const char *family, *name;
  Step step;
  uint32_t from, to;
  StageFunction ours, expected;
  int parameter;  // RotationCode, ResizeMethod, or how often a box halves
  // The ratio to reach; of scalers when reducing, enlarging and halving exactly.
  double target, enlarging = target, halving = target;
};

#define BOTH(name) ::name, reference::name

const Stage kStages[] = {
    {"copies", "copy", Step::kCopy, kNv21, kNv21, BOTH(convYUV420SP_YUV420SP), 0, 1.0},
    {"copies", "swap", Step::kSwap, kNv21, kNv12, BOTH(convYUV420SP_VU2UV), 0, 1.0},
    {"copies", "planar out", Step::kToPlanar, kNv21, k420P, BOTH(convYUV420SP_YUV420P),
     0, 1.0},
    {"copies", "planar in", Step::kFromPlanar, k420P, kNv21, BOTH(convYUV420P_YUV420SP),
     0, 1.0},
    {"4:2:2 and UYVY", "4:2:2", Step::kTo422, kNv12, kNv16, BOTH(convYUV420SP_YUV422SP),
     0, 1.2},
    {"4:2:2 and UYVY", "4:2:2 swapped", Step::kTo422Swapped, kNv21, kNv16,
     BOTH(convYUV420SP_YUV422SP_VU2UV), 0, 1.2},
    {"4:2:2 and UYVY", "UYVY in", Step::kFromUyvy, kUyvy, kNv21,
     BOTH(convYUV422IUYVY_YUV420SPVU), 0, 1.3},
    {"RGB in", "RGB565 in", Step::kFromRgb565, k565, kNv21, BOTH(convRGB565_YUV420SPVU),
     0, 2.0},
    {"RGB out", "RGBA8888 out", Step::kToRgb, kNv21, kRgba, BOTH(convYUV420SP_RGBA8888),
     0, 1.0},
    {"RGB out", "RGB888 out", Step::kToRgb, kNv21, k888, BOTH(convYUV420SP_RGB888), 0,
     1.4},
    {"RGB out", "RGB565 out", Step::kToRgb, kNv21, k565, BOTH(convYUV420SP_RGB565), 0,
     2.0},
    {"tiles", "tiles in", Step::kFromTiles, kTiled, kNv21,
     BOTH(convYUV420SPMB_YUV420SPVU), 0, 1.15},
    {"tiles", "tiles out", Step::kToTiles, kNv21, kTiled,
     BOTH(convYUV420SPVU_YUV420SPMB), 0, 1.15},
    {"box averages", "box by 2", Step::kBox, kNv21, kNv21,
     BOTH(resize_averageOfPixel2_420LP), 1, 1.4},
    {"box averages", "box by 4", Step::kBox, kNv21, kNv21,
     BOTH(resize_averageOfPixel4_420LP), 2, 1.5},
    {"copies", "upright copy", Step::kRotate, kNv21, kNv21, BOTH(rotate0_Y), ROTATE_0,
     1.0},
    {"turns", "quarter turn 90", Step::kRotate, kNv21, kNv21, BOTH(rotate90_Y),
     ROTATE_90, 1.8},
    {"turns", "quarter turn 270", Step::kRotate, kNv21, kNv21, BOTH(rotate270_Y),
     ROTATE_270, 1.8},
    {"turns", "half turn", Step::kRotate, kNv21, kNv21, BOTH(rotate180_Y), ROTATE_180,
     1.25},
};

const Stage kScalers[] = {
    {"nearest", "nearest luma", Step::kScaleLuma, kNv21, kNv21, BOTH(resize_nearest),
     RESIZE_NEAREST, 8, 8, 8},
    {"nearest", "nearest chroma", Step::kScaleChroma, kNv21, kNv21,
     BOTH(resize_nearestVU), RESIZE_NEAREST, 4, 4, 4},
    {"bilinear", "bilinear luma", Step::kScaleLuma, kNv21, kNv21, BOTH(resize_linear),
     RESIZE_LINEAR, 4, 3, 1},
    {"bilinear", "bilinear chroma", Step::kScaleChroma, kNv21, kNv21,
     BOTH(resize_linearVU), RESIZE_LINEAR, 4, 4, 4},
    {"bilinear", "bilinear 3-channel", Step::kScaleRgb, k888, k888,
     BOTH(resize_linear3ch), RESIZE_LINEAR, 4, 4, 4},
    {"bicubic", "bicubic luma", Step::kScaleLuma, kNv21, kNv21, BOTH(resize_cubic),
     RESIZE_CUBIC, 2, 1.8, 2},
    {"bicubic", "bicubic chroma", Step::kScaleChroma, kNv21, kNv21,
     BOTH(resize_cubicVU), RESIZE_CUBIC, 8, 8, 8},
};

#undef BOTH

const Size kVga = {640, 480}, k720p = {1280, 720}, k1080p = {1920, 1080},
           k2160p = {3840, 2160};
const Size kSizes[] = {kVga, k1080p, k2160p};

struct Scaling {
  Size from, to;
};
const Scaling kScalings[] = {
    {k1080p, k720p},  {k1080p, {1000, 562}}, {k720p, k1080p},
    {k2160p, k1080p}, {k1080p, {640, 360}},  {kVga, {1920, 1440}},
};

// Frames whose time is that of what a call does once, and of the ends of rows.
const Size kIcon = {64, 48}, kQvga = {320, 240};
const Size kSmallSizes[] = {kIcon, kQvga};
const Scaling kSmallScalings[] = {
    {kIcon, {48, 36}},   {kIcon, {40, 30}},   {kIcon, {128, 96}},
    {kQvga, {240, 180}}, {kQvga, {200, 150}}, {kQvga, kVga},
};

const struct Pipeline {
  const char* name;
  uint32_t from;
  Size fromSize;
  uint32_t to;
  Size toSize;
  int method;
  double target = 1.3;
} kPipelines[] = {
    {"NV12 to NV21", kNv12, k1080p, kNv21, k1080p, RESIZE_LINEAR, 1.0},  // one stage
    {"NV12 scaled", kNv12, k1080p, kNv12, k720p, RESIZE_LINEAR},
    {"NV12 reduced to NV21", kNv12, k2160p, kNv21, k1080p, RESIZE_LINEAR},
    {"NV21 scaled to RGBA8888", kNv21, k1080p, kRgba, k720p, RESIZE_LINEAR},
    {"NV21 scaled to RGB888 by nearest",
     kNv21,
     k1080p,
     k888,
     {1000, 562},
     RESIZE_NEAREST},
    {"NV21 scaled to RGBA8888 by bicubic",
     kNv21,
     kVga,
     kRgba,
     {1440, 1080},
     RESIZE_CUBIC},
    {"NV21 reduced and scaled to RGBA8888", kNv21, k2160p, kRgba, k720p, RESIZE_LINEAR},
    {"NV21 reduced and scaled to RGB565",
     kNv21,
     k2160p,
     k565,
     {320, 180},
     RESIZE_LINEAR},
    {"NV21 to tiles", kNv21, k1080p, kTiled, k1080p, RESIZE_LINEAR},
    {"tiles to NV21 scaled", kTiled, k1080p, kNv21, k720p, RESIZE_LINEAR},
    {"UYVY to NV21 scaled", kUyvy, k1080p, kNv21, k720p, RESIZE_LINEAR},
    {"RGB565 to NV21", k565, k720p, kNv21, k720p, RESIZE_LINEAR},
    {"RGB565 to NV21 scaled", k565, k720p, kNv21, k1080p, RESIZE_LINEAR},
};

// Stages return nothing; pipelines return a code.
std::function<int(ImageStruct*, ImageStruct*)> succeeding(StageFunction stage) {
  return [stage](ImageStruct* dst, ImageStruct* src) {
    stage(dst, src);
    return 0;
  };
}

Row stageRow(const Stage& stage, const Size& from, const Size& to) {
  Row row;
  row.stage = stage.name;
  row.family = stage.family;
  row.job = {stage.step, shape(stage.from, from.width, from.height),
             shape(stage.to, to.width, to.height), stage.parameter, stage.parameter};
  row.ours = succeeding(stage.ours);
  row.expected = succeeding(stage.expected);
  row.target = stage.target;
  row.roof = 0;
  return row;
}

Row sameSizeRow(const Stage& stage, const Size& size) {
  Size to = size;
  if (stage.step == Step::kBox) {
    to = {size.width >> stage.parameter, size.height >> stage.parameter};
  } else if (stage.parameter == ROTATE_90 || stage.parameter == ROTATE_270) {
    to = {size.height, size.width};
  }
  Row row = stageRow(stage, size, to);
  row.size = text(size);
  if (stage.target == 1.0 && stage.step != Step::kToRgb) {
    row.roof = size.height == 2160 ? 0.9 : 0.95;
  }
  return row;
}

Row scalerRow(const Stage& scaler, const Size& from, const Size& to) {
  Row row = stageRow(scaler, from, to);
  row.size = text(from) + " to " + text(to);
  if (enlarges(row.job)) row.target = scaler.enlarging;
  if (halves(row.job)) row.target = scaler.halving;
  return row;
}

// A family of its own. The figure to reach is that no peer is faster.
Row small(Row row) {
  row.family = "small frames";
  row.target = 1.0;
  row.roof = 0;
  return row;
}

Row pipelineRow(const Pipeline& p) {
  Row row;
  row.stage = p.name;
  row.family = "pipelines";
  row.size = text(p.fromSize);
  if (p.fromSize.width != p.toSize.width) row.size += " to " + text(p.toSize);
  row.job = {Step::kPipeline, shape(p.from, p.fromSize.width, p.fromSize.height),
             shape(p.to, p.toSize.width, p.toSize.height), p.method, 0};
  row.ours = [m = p.method](ImageStruct* dst, ImageStruct* src) {
    return static_cast<int>(Zelm_Resize_and_Convert(*src, *dst, m, m, 0));
  };
  row.expected = [m = p.method](ImageStruct* dst, ImageStruct* src) {
    return reference::Zelm_Resize_and_Convert(*src, *dst, m, m, 0);
  };
  row.target = p.target;
  row.roof = 0;
  return row;
}

Part partOf(Step step, const ImageStruct& frame) {
  const size_t luma = static_cast<size_t>(frame.width) * frame.height;
  switch (step) {
    case Step::kRotate:
    case Step::kScaleLuma:
      return {0, luma};
    case Step::kScaleChroma:
      return {luma, luma / 2};
    default:
      return {0, frame.dataSize};
  }
}

}  // namespace

std::vector<Row> allRows() {
  std::vector<Row> rows;
  for (const Stage& stage : kStages) {
    for (const Size& size : kSizes) rows.push_back(sameSizeRow(stage, size));
  }
  for (const Stage& scaler : kScalers) {
    for (const Scaling& s : kScalings) rows.push_back(scalerRow(scaler, s.from, s.to));
  }
  for (const Stage& stage : kStages) {
    for (const Size& size : kSmallSizes)
      rows.push_back(small(sameSizeRow(stage, size)));
  }
  for (const Stage& scaler : kScalers) {
    if (scaler.step != Step::kScaleLuma) continue;
    for (const Scaling& s : kSmallScalings) {
      rows.push_back(small(scalerRow(scaler, s.from, s.to)));
    }
  }
  for (const Pipeline& pipeline : kPipelines) rows.push_back(pipelineRow(pipeline));
  return rows;
}

Part partRead(const Job& job) { return partOf(job.step, job.src); }
Part partWritten(const Job& job) { return partOf(job.step, job.dst); }

}  // namespace bench
