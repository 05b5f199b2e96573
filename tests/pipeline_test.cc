// The pipelines: result codes, bytes, and the order in which errors are found.
#include <gtest/gtest.h>

#include <algorithm>

#include "harness.h"
#include "memory.h"
#include "pipelines.h"

namespace harness {
namespace {

Frame region(Frame frame, int x, int y, int w, int h) {
  frame.record.roiX = x;
  frame.record.roiY = y;
  frame.record.roiWidth = static_cast<uint16_t>(w);
  frame.record.roiHeight = static_cast<uint16_t>(h);
  return frame;
}

// The call must return this code, and the bytes must be those of the reference.
void expectCode(Call call, const Frame& dst, const Frame& src, int code) {
  const auto expected = call.expected;
  int given = 1;
  call.expected = [&](ImageStruct* d, ImageStruct* s) {
    return given = expected(d, s);
  };
  EXPECT_TRUE(compare(call, dst, src, kRandom, 5));
  EXPECT_EQ(given, code) << call.name << ": destination " << describe(dst.record)
                         << "; source " << describe(src.record);
}

// The result codes when both methods are valid. Where it matters whether the two
// regions have the same size, a source format has a row for each case.
enum Sizes { kEqual = 1, kOther = 2, kAny = 3 };
// clang-format off
constexpr struct {
  uint32_t from;
  Sizes sizes;
  int codes[10];  // in the order of kFormats
} kCodes[] = {
    // from              sizes to 420SP  420SPVU  420P  565  888  8888  422I  tiled  422SP  422SPVU
    {FORMAT_YUV420SP,    kEqual, {    0,       0,   -5,   0,   0,    0,   -5,    -5,     0,       0}},
    {FORMAT_YUV420SP,    kOther, {    0,       0,   -4,   0,   0,    0,   -4,    -5,     0,       0}},
    {FORMAT_YUV420SPVU,  kEqual, {    0,       0,    0,   0,   0,    0,   -5,     0,     0,       0}},
    {FORMAT_YUV420SPVU,  kOther, {    0,       0,   -6,   0,   0,    0,   -4,     0,     0,       0}},
    {FORMAT_YUV420P,     kEqual, {   -4,       0,   -4,  -4,  -4,   -4,   -4,    -4,    -4,      -4}},
    {FORMAT_YUV420P,     kOther, {   -4,      -6,   -4,  -4,  -4,   -4,   -4,    -4,    -4,      -4}},
    {FORMAT_RGB565,      kAny,   {   -5,       0,   -5,  -5,  -5,   -5,   -5,    -5,    -5,      -5}},
    {FORMAT_RGB888,      kAny,   {   -4,      -4,   -4,  -4,  -4,   -4,   -4,    -4,    -4,      -4}},
    {FORMAT_RGBA8888,    kAny,   {   -4,      -4,   -4,  -4,  -4,   -4,   -4,    -4,    -4,      -4}},
    {FORMAT_YUV422IUYVY, kAny,   {   -5,       0,   -5,  -5,  -5,   -5,   -5,    -5,    -5,      -5}},
    {FORMAT_YUV420SPMB,  kAny,   {   -5,       0,   -5,  -5,  -5,   -5,   -5,    -5,    -5,      -5}},
    {FORMAT_YUV422SP,    kAny,   {   -4,      -4,   -4,  -4,  -4,   -4,   -4,    -4,    -4,      -4}},
    {FORMAT_YUV422SPVU,  kAny,   {   -4,      -4,   -4,  -4,  -4,   -4,   -4,    -4,    -4,      -4}},
};
// clang-format on

int codeOf(uint32_t from, int to, Sizes sizes) {
  const auto* row = kCodes;
  while (row->from != from || (row->sizes & sizes) == 0) ++row;
  return row->codes[to];
}

TEST(Pipeline, FormatTable) {
  struct {
    uint32_t srcW, srcH, dstW, dstH;
    Sizes regions;
  } const sizes[] = {
      {32, 16, 32, 16, kEqual},
      {32, 32, 20, 12, kOther},
      {64, 48, 16, 12, kOther},
      {22, 10, 48, 34, kOther},
  };
  for (const auto& size : sizes) {
    for (int i = 0; i < 100 * 36 && !HasFailure(); ++i) {
      const int from = i / 360, to = i / 36 % 10, luma = i / 6 % 6, chroma = i % 6;
      const Frame src = wholeFrame(kFormats[from], size.srcW, size.srcH);
      const Frame dst = wholeFrame(kFormats[to], size.dstW, size.dstH);
      const Call call = resizeAndConvert(luma, chroma);
      if (luma >= 2 && luma <= 4 && chroma >= 2 && chroma <= 4) {
        expectCode(call, dst, src, codeOf(kFormats[from], to, size.regions));
      } else {
        EXPECT_TRUE(compare(call, dst, src, kRandom, 6));
      }
    }
  }
}

TEST(Pipeline, OrderOfErrors) {
  const uint32_t sp = FORMAT_YUV420SP, vu = FORMAT_YUV420SPVU, mb = FORMAT_YUV420SPMB;
  const Frame good = wholeFrame(sp, 32, 16), smaller = wholeFrame(sp, 16, 16);
  const Frame badSize = region(wholeFrame(sp, 31, 16), 40, 0, 2, 2);
  Frame badRegion = region(good, 0, 0, 34, 2), badFormat = good;
  badRegion.record.format = badFormat.record.format = 8;
  const Frame empty = region(good, 4, 4, 1, 8),
              emptyVu = region(wholeFrame(vu, 32, 16), 2, 2, 8, 1);
  const Frame planar = wholeFrame(FORMAT_YUV420P, 32, 16);
  const Frame words = wholeFrame(FORMAT_RGB565, 32, 16), tiles = wholeFrame(mb, 32, 16);
  const Frame noWords = region(words, 2, 2, 0, 8), noTiles = region(tiles, 2, 2, 8, 0);
  const Frame whole = wholeFrame(vu, 32, 16), half = wholeFrame(vu, 16, 8);
  struct {
    Frame src, dst;
    int luma, chroma, code;
  } const table[] = {
      // Errors of the source come first, and size before region before format.
      {badSize, badFormat, 2, 2, -2},
      {badFormat, badSize, 2, 2, -4},
      {badRegion, badSize, 2, 2, -3},
      {good, badSize, 2, 2, -2},
      {good, badRegion, 0, 0, -3},
      {good, badFormat, 0, 0, -4},
      // Methods do not matter for regions of equal size and for planar frames.
      {good, good, 0, 99, 0},
      {empty, region(wholeFrame(FORMAT_RGB888, 40, 40), 6, 6, 0, 8), 0, 0, 0},
      {planar, whole, 0, 0, 0},
      {planar, region(whole, 2, 0, 30, 16), 2, 2, -6},
      {planar, region(whole, 0, 0, 32, 14), 2, 2, -6},
      {region(planar, 2, 2, 4, 6), region(whole, 2, 2, 5, 7), 2, 2, 0},
      {planar, wholeFrame(vu, 32, 18), 2, 2, -6},
      // Scaling checks the empty destination, the empty source, luma, chroma, the
      // format.
      {good, emptyVu, 0, 0, 0},
      {good, region(planar, 0, 0, 0, 4), 0, 0, 0},
      {empty, smaller, 0, 0, -3},
      {empty, region(planar, 0, 0, 4, 4), 0, 0, -3},
      {empty, region(good, 0, 0, 8, 0), 0, 0, 0},
      {good, smaller, 1, 1, -7},
      {good, smaller, 5, 2, -7},
      {good, smaller, 2, 5, -8},
      {good, region(smaller, 2, 2, 12, 12), 3, -1, -8},
      {good, wholeFrame(vu, 8, 8), 4, 0, -8},
      {good, region(planar, 0, 0, 8, 8), 2, 1, -8},
      {good, region(planar, 0, 0, 8, 8), 2, 2, -4},
      {whole, tiles, 1, 2, -7},
      {whole, tiles, 2, 1, -8},
      {emptyVu, tiles, 1, 2, -3},
      {whole, noTiles, 1, 2, 0},
      // These are handed on to Zelm_Convert_and_Resize().
      {words, whole, 0, 0, 0},
      {words, half, 1, 1, -7},
      {words, half, 2, 1, -8},
      {noWords, half, 1, 1, -3},
      {words, emptyVu, 1, 1, -7},
      {words, emptyVu, 2, 2, 0},
      {noWords, emptyVu, 1, 1, -7},
      {noWords, region(whole, 4, 4, 0, 8), 1, 1, 0},
      {tiles, whole, 0, 0, 0},
      {tiles, region(whole, 0, 0, 32, 14), 1, 2, -7},
      {region(tiles, 0, 0, 16, 8), half, 1, 2, -7},
      {region(tiles, 16, 8, 16, 8), half, 4, 4, 0},
      {noTiles, half, 1, 2, -3},
      {noTiles, region(half, 0, 0, 8, 0), 2, 2, 0},
  };
  for (const auto& t : table)
    expectCode(resizeAndConvert(t.luma, t.chroma), t.dst, t.src, t.code);

  // Called directly, it checks the source's format before its empty region.
  expectCode(convertAndResize(2, 2), half, good, -4);
  expectCode(convertAndResize(2, 2), whole, good, -4);
  expectCode(convertAndResize(0, 0), half, empty, -4);

  ImageStruct none = good.record, other = good.record;
  EXPECT_EQ(Zelm_Resize_and_Convert(none, badFormat.record, 2, 2, 0), RESULT_NULL);
  EXPECT_EQ(Zelm_Rotate_and_Convert(none, other, 1, 0), RESULT_NULL);
  none.format = 8;
  EXPECT_EQ(Zelm_Rotate_and_Convert(none, other, 1, 0), RESULT_NULL);
  none.format = FORMAT_RGB565;
  EXPECT_EQ(Zelm_Rotate_and_Convert(none, other, 1, 0), RESULT_BAD_FORMAT);
  EXPECT_EQ(Zelm_Rotate_and_Convert(other, none, 1, 0), RESULT_BAD_FORMAT);
}

// The request for memory is as large as the frame, or there is none: sizes do not wrap
// around.
TEST(Pipeline, LargestFrameInBetween) {
  uint8_t sample;
  ImageStruct src = zelmWholeFrame(FORMAT_YUV420SPVU, 64, 48, &sample);
  ImageStruct dst = zelmWholeFrame(FORMAT_RGBA8888, 65534, 65534, &sample);
  memory::State& heap = memory::state();
  heap = {true, 1, 0, 0, 0, 0};
  const int code = Zelm_Resize_and_Convert(src, dst, RESIZE_LINEAR, RESIZE_LINEAR, 0);
  heap.watching = false;
  heap.refuse = 0;
  EXPECT_EQ(code, RESULT_NO_MEMORY);
  const uint64_t bytes = uint64_t{65534} * 65534 * 3 / 2;
  EXPECT_EQ(heap.lastRequest, bytes > SIZE_MAX ? 0 : bytes);
}

// Every request for memory is refused in turn: the code says so, and nothing is
// written.
TEST(Pipeline, NoMemory) {
  struct {
    uint32_t from, to;
    uint32_t width, height, dstWidth, dstHeight;
    int requests;
  } const routes[] = {
      {FORMAT_YUV420SP, FORMAT_YUV420SP, 32, 16, 32, 16, 0},
      {FORMAT_YUV420SPVU, FORMAT_RGB565, 32, 16, 32, 16, 0},
      {FORMAT_YUV420SP, FORMAT_YUV420SP, 32, 16, 20, 14, 0},
      {FORMAT_YUV420SP, FORMAT_YUV420SP, 64, 48, 20, 14, 1},
      {FORMAT_YUV420SP, FORMAT_RGBA8888, 32, 16, 20, 14, 1},
      {FORMAT_YUV420SP, FORMAT_YUV422SP, 64, 48, 20, 14, 2},
      {FORMAT_YUV420SPVU, FORMAT_YUV420SP, 640, 640, 10, 10, 4},
      {FORMAT_YUV420SPVU, FORMAT_YUV420SPMB, 32, 32, 32, 32, 1},
      {FORMAT_YUV420SP, FORMAT_YUV420P, 64, 48, 20, 14, 2},
      {FORMAT_RGB565, FORMAT_YUV420SPVU, 32, 32, 20, 14, 1},
      {FORMAT_YUV422IUYVY, FORMAT_YUV420SPVU, 32, 32, 20, 14, 1},
      {FORMAT_YUV420SPMB, FORMAT_YUV420SPVU, 32, 32, 20, 14, 1},
      {FORMAT_YUV420SPMB, FORMAT_YUV420SPVU, 32, 32, 32, 32, 0},
  };
  for (const auto& r : routes) {
    const Frame src = wholeFrame(r.from, r.width, r.height);
    const Frame dst = wholeFrame(r.to, r.dstWidth, r.dstHeight);
    for (int methods = 22; methods <= 55;
         methods += 33) {  // valid methods, then invalid ones
      Call call = resizeAndConvert(methods / 10, methods % 10);
      EXPECT_TRUE(compare(call, dst, src, kRandom, 1));
      const int most = memory::state().requests;
      EXPECT_LE(most, r.requests) << describe(src.record);
      call.expected = [](ImageStruct*, ImageStruct*) { return RESULT_NO_MEMORY; };
      for (int n = 1; n <= most; ++n) {
        memory::state().refuse = n;
        EXPECT_TRUE(compare(call, dst, src, kRandom, 1)) << "request " << n;
      }
      memory::state().refuse = 0;
    }
  }
  // The format of the source is checked only after its buffer has been allocated.
  const Frame src = wholeFrame(FORMAT_YUV420SP, 32, 16),
              dst = wholeFrame(FORMAT_YUV420SPVU, 8, 8);
  memory::state().refuse = 1;
  Call call = convertAndResize(2, 2);
  call.expected = [](ImageStruct*, ImageStruct*) { return RESULT_NO_MEMORY; };
  expectCode(call, dst, src, RESULT_NO_MEMORY);
  memory::state().refuse = 0;
}

// Mostly valid records of all formats, sizes and regions.
class Records {
 public:
  explicit Records(uint32_t seed) : random_(seed) {}
  int below(int limit) { return random_.below(limit); }
  bool rarely() { return below(25) == 0; }
  int side() {
    const int even = 2 + 2 * below(below(4) == 0 ? 52 : 20);
    return rarely() ? below(5) : even;
  }
  Frame frame(uint32_t format) {
    const int w = side(), h = side(), gap = below(3) == 0 ? below(9) : 0;
    Frame f = wholeFrame(format, uint32_t(w), uint32_t(h), uint32_t(gap));
    if (below(3) == 0) return f;
    const int x = below(w + 1), y = below(h + 1);
    const int rw = below(w - x + 1), rh = below(h - y + 1);
    f = region(f, x, y, rarely() ? below(120) : rw, rarely() ? below(120) : rh);
    if (rarely()) f.record.roiX = below(140) - 20;
    return f;
  }
  // A frame that the source's region often fits into.
  Frame beside(uint32_t format, const Frame& src) {
    if (below(3) != 0) return frame(format);
    Frame f = wholeFrame(format, src.record.width, src.record.height);
    const ImageStruct& s = src.record;
    f = region(f, s.roiX, s.roiY, s.roiWidth, s.roiHeight);
    if (below(3) == 0) f.record.roiX = f.record.roiY = 0;
    return f;
  }
  uint32_t format() { return kFormats[below(10)]; }
  int method() { return rarely() ? below(7) - 1 : 2 + below(3); }

 private:
  Random random_;
};

TEST(Pipeline, RandomScaling) {
  Records records(11);
  int good = 0;
  uint8_t byte = 0;
  const uint32_t often[] = {FORMAT_YUV420SP, FORMAT_YUV420SPVU,  FORMAT_YUV420SPMB,
                            FORMAT_RGB565,   FORMAT_YUV422IUYVY, FORMAT_YUV420SPVU};
  for (uint32_t i = 0; i < 10000; ++i) {
    const uint32_t from = records.rarely() ? records.format() : often[records.below(6)];
    const bool linear = records.below(3) == 0 || from != (from & 6);
    Frame src = records.frame(from);
    Frame dst = records.beside(linear ? often[1] : records.format(), src);
    const bool direct = linear && records.below(3) == 0;
    const int luma = records.method(), chroma = records.method();
    Call call =
        direct ? convertAndResize(luma, chroma) : resizeAndConvert(luma, chroma);
    if (direct) {  // which checks nothing and does not read the destination's format
      src.record.data = dst.record.data = &byte;
      if (reference::checkStruct(&src.record) != 0) continue;
      if (reference::checkStruct(&dst.record) != 0) continue;
      dst.record.format = records.format();
    } else if (records.rarely()) {
      dst.record.format ^= 8;
    }
    const auto expected = call.expected;
    call.expected = [&](ImageStruct* d, ImageStruct* s) {
      const int code = expected(d, s);
      good += code == 0 ? 1 : 0;
      return code;
    };
    ASSERT_TRUE(compare(call, dst, src, kRandom, i));
  }
  EXPECT_GT(good, 4000);
}

TEST(Pipeline, RandomRotations) {
  Records records(13);
  const uint32_t turned[] = {FORMAT_YUV420P, FORMAT_YUV420SP, FORMAT_YUV420SPVU,
                             FORMAT_YUV422SP, FORMAT_YUV422SPVU};
  const auto format = [&] {
    return records.rarely() ? records.format() : turned[records.below(5)];
  };
  for (uint32_t i = 0; i < 4000; ++i) {
    const Frame src = records.frame(format());
    Frame dst = records.beside(format(), src);
    const ImageStruct s = src.record;
    if (records.below(2) == 0) {
      dst = region(wholeFrame(dst.record.format, s.height, s.width), s.roiY, s.roiX,
                   s.roiHeight, s.roiWidth);
    }
    const int rotations[] = {0, 1, 2, 4, 3};
    const int rotation = rotations[records.below(records.rarely() ? 5 : 4)];
    ASSERT_TRUE(compare(rotateAndConvert(records.rarely() ? 0 : 1, rotation), dst, src,
                        kRandom, i));
  }
}

}  // namespace
}  // namespace harness
