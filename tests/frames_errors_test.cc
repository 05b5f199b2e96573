// What zelm_frames refuses, with which code and in which words; descriptions of whole
// frames; and plans when there is not enough memory.
#include <gtest/gtest.h>
#include <string.h>

#include <algorithm>

#include "frames_harness.h"
#include "memory.h"

namespace frames_test {
namespace {

// A conversion that succeeds, until a mistake is made in it: I420 to NV12, 64 x 48.
struct Request {
  Request() : dst(ZELM_NV12, 64, 48), src(ZELM_I420, 64, 48) {}
  OwnFrame dst, src;
  ZelmEdit edit = {};
};

struct Mistake {
  std::function<void(Request*)> make;
  int code;
  std::vector<const char*> words;  // what the message has to name
};

std::function<void(Request*)> from(ZelmRegion region) {
  return [=](Request* r) { r->edit.source = region; };
}

std::function<void(Request*)> into(ZelmRegion region) {
  return [=](Request* r) { r->edit.destination = region; };
}

const ptrdiff_t kLargest = PTRDIFF_MAX;

// What zelmPlanRunBand() finds as well.
const Mistake kPlaneMistakes[] = {
    {[](Request* r) { r->src.frame.planes[0].data = nullptr; },
     ZELM_BAD_PLANE,
     {"source", "Y", "null"}},
    {[](Request* r) { r->src.frame.planes[2].data = nullptr; },
     ZELM_BAD_PLANE,
     {"source", "V", "null"}},
    {[](Request* r) { r->dst.frame.planes[1].data = nullptr; },
     ZELM_BAD_PLANE,
     {"destination", "UV", "null"}},
    {[](Request* r) { --r->src.frame.planes[2].size; },
     ZELM_BAD_PLANE,
     {"source", "V plane has 767 bytes and needs 768"}},
    {[](Request* r) { --r->dst.frame.planes[0].size; },
     ZELM_BAD_PLANE,
     {"destination", "Y plane has 3071 bytes and needs 3072"}},
    {[](Request* r) { r->src.frame.planes[0].stride = 63; },
     ZELM_BAD_PLANE,
     {"source", "Y", "63", "64"}},
    {[](Request* r) { r->src.frame.planes[1].stride = -31; },
     ZELM_BAD_PLANE,
     {"source", "U", "31", "32"}},
    {[](Request* r) { r->dst.frame.planes[1].stride = 0; },
     ZELM_BAD_PLANE,
     {"destination", "UV", "0", "64"}},
    {[](Request* r) { r->src.frame.planes[0].stride = kLargest; },
     ZELM_BAD_PLANE,
     {"source", "Y"}},
    {[](Request* r) { r->src.frame.planes[0].stride = -kLargest - 1; },
     ZELM_BAD_PLANE,
     {"source", "Y"}},
    {[](Request* r) {
       r->src.frame.planes[0].stride = kLargest / 2;
       r->src.frame.planes[0].size = 0;
     },
     ZELM_BAD_PLANE,
     {"source", "Y"}},
    {[](Request* r) { r->src.frame.planes[1].step = 3; },
     ZELM_BAD_PLANE,
     {"source", "U", "3"}},
    {[](Request* r) { r->src.frame.planes[2].step = -1; },
     ZELM_BAD_PLANE,
     {"source", "V", "-1"}},
    {[](Request* r) { r->src.frame.planes[0].step = 2; },
     ZELM_BAD_PLANE,
     {"source", "Y", "2"}},
    {[](Request* r) { r->dst.frame.planes[1].step = 4; },
     ZELM_BAD_PLANE,
     {"destination", "UV", "4"}},
    // Samples two bytes apart make a row of 63 bytes.
    {[](Request* r) { r->src.frame.planes[1].step = 2; },
     ZELM_BAD_PLANE,
     {"source", "U", "32", "63"}},
    {[](Request* r) { r->dst.frame.planes[0].data = r->src.frame.planes[0].data; },
     ZELM_OVERLAP,
     {"Y"}},
    // The last byte of V, by the first of the pairs.
    {[](Request* r) {
       r->dst.frame.planes[1].data = r->src.frame.planes[2].data + 767;
     },
     ZELM_OVERLAP,
     {"V"}},
    // The top row of what is stored bottom-up is behind the source, the others are not.
    {[](Request* r) {
       r->dst.frame.planes[0].data = r->src.frame.planes[2].data + 768;
       r->dst.frame.planes[0].stride = -64;
     },
     ZELM_OVERLAP,
     {"Y"}},
};

const Mistake kMistakes[] = {
    {[](Request* r) { r->src.frame.format = 0; }, ZELM_BAD_FORMAT, {"source", "0"}},
    {[](Request* r) { r->dst.frame.format = 18; },
     ZELM_BAD_FORMAT,
     {"destination", "18"}},
    {[](Request* r) { r->src.frame.format = 0xFFFFFFFF; },
     ZELM_BAD_FORMAT,
     {"source", "4294967295"}},
    {[](Request* r) { r->src.frame.width = 0; }, ZELM_BAD_SIZE, {"source", "0 x 48"}},
    {[](Request* r) { r->dst.frame.height = 65536; },
     ZELM_BAD_SIZE,
     {"destination", "64 x 65536", "65535"}},
    {[](Request* r) { r->src.frame.colour = 6; }, ZELM_BAD_COLOUR, {"source", "6"}},
    {[](Request* r) { r->dst.frame.colour = 99; },
     ZELM_BAD_COLOUR,
     {"destination", "99"}},
    {[](Request* r) { r->edit.lumaFilter = 3; }, ZELM_BAD_FILTER, {"luma", "3"}},
    {[](Request* r) { r->edit.chromaFilter = 77; }, ZELM_BAD_FILTER, {"chroma", "77"}},
    {[](Request* r) { r->edit.turn = 45; }, ZELM_BAD_TURN, {"45", "90"}},
    {[](Request* r) { r->edit.turn = 360; }, ZELM_BAD_TURN, {"360"}},
    {[](Request* r) { r->edit.mirror = 2; }, ZELM_BAD_TURN, {"mirror", "2"}},
    // Outside of the frame, with sums that overflow among them.
    {from({0, 0, 65, 48}), ZELM_BAD_REGION, {"source", "columns 0 to 64", "has 64"}},
    {from({64, 0, 2, 2}), ZELM_BAD_REGION, {"source"}},
    {from({0, 46, 64, 4}), ZELM_BAD_REGION, {"48"}},
    {from({2, 2, 0, 4}), ZELM_BAD_REGION, {"0 columns"}},
    {from({2, 2, 4, 0}), ZELM_BAD_REGION, {"0 rows"}},
    {into({4, 4, 0, 0}), ZELM_BAD_REGION, {"destination"}},
    {into({0xFFFFFFFE, 0, 4, 4}), ZELM_BAD_REGION, {"destination", "4294967294"}},
    {into({2, 2, 4, 0xFFFFFFFE}), ZELM_BAD_REGION, {"destination"}},
    // At places that 4:2:0 has not.
    {from({1, 0, 4, 4}), ZELM_BAD_REGION, {"column 1", "I420"}},
    {from({0, 3, 4, 4}), ZELM_BAD_REGION, {"row 3", "I420"}},
    {into({0, 0, 33, 4}), ZELM_BAD_REGION, {"destination", "column 33", "NV12"}},
    {into({0, 2, 4, 5}), ZELM_BAD_REGION, {"destination", "row 7", "NV12"}},
};

// Names the mistake that a failure belongs to.
std::string named(const Mistake& mistake, const char* text) {
  std::string name = "instead of a message with";
  for (const char* word : mistake.words) name += std::string(" '") + word + "'";
  return name + ": " + text;
}

void expectRefused(const Mistake& mistake) {
  Request r;
  mistake.make(&r);
  const Bytes before = r.dst.bytes;
  ZelmMessage message;
  ZelmPlan* plan = reinterpret_cast<ZelmPlan*>(&message);
  EXPECT_EQ(zelmPlanCreate(&plan, &r.dst.frame, &r.src.frame, &r.edit, &message),
            mistake.code)
      << named(mistake, message.text);
  EXPECT_EQ(plan, nullptr);
  ASSERT_NE(memchr(message.text, 0, sizeof message.text), nullptr);
  for (const char* word : mistake.words) {
    EXPECT_NE(strstr(message.text, word), nullptr) << named(mistake, message.text);
  }
  ZelmMessage again;
  EXPECT_EQ(zelmConvert(&r.dst.frame, &r.src.frame, &r.edit, &again), mistake.code);
  EXPECT_STREQ(again.text, message.text);
  EXPECT_EQ(zelmConvert(&r.dst.frame, &r.src.frame, &r.edit, nullptr), mistake.code);
  EXPECT_TRUE(r.dst.bytes == before);
}

TEST(FramesErrors, HaveACodeAndNameWhatIsWrong) {
  for (const Mistake& mistake : kPlaneMistakes) expectRefused(mistake);
  for (const Mistake& mistake : kMistakes) expectRefused(mistake);

  Request r;
  ZelmMessage message;
  ZelmPlan* plan = nullptr;
  EXPECT_EQ(zelmConvert(nullptr, &r.src.frame, nullptr, &message), ZELM_NULL);
  EXPECT_NE(strstr(message.text, "destination"), nullptr) << message.text;
  EXPECT_EQ(zelmConvert(&r.dst.frame, nullptr, nullptr, &message), ZELM_NULL);
  EXPECT_NE(strstr(message.text, "source"), nullptr) << message.text;
  EXPECT_EQ(zelmPlanCreate(nullptr, &r.dst.frame, &r.src.frame, nullptr, &message),
            ZELM_NULL);
  EXPECT_EQ(zelmPlanCreate(&plan, &r.dst.frame, &r.src.frame, nullptr, &message),
            ZELM_OK);
  EXPECT_STREQ(message.text, "");
  zelmPlanDestroy(plan);
}

// What looks like a mistake and is none.
TEST(FramesErrors, LeaveTheRestAlone) {
  const std::function<void(Request*)> harmless[] = {
      // Steps that are the format's own.
      [](Request* r) { r->src.frame.planes[0].step = r->src.frame.planes[1].step = 1; },
      // Odd sizes in the source, and in the destination where its frame ends.
      [](Request* r) {
        r->edit.source = {2, 4, 5, 3};
      },
      [](Request* r) {
        r->dst.frame.width = 63;
        r->edit.destination = {2, 4, 61, 6};
      },
      // Odd places where no chroma is shared.
      [](Request* r) {
        r->src.frame.format = ZELM_GRAY8;
        r->edit.source = {3, 5, 7, 9};
      },
      // Planes that the format has not, and the colour of RGB.
      [](Request* r) {
        r->src.frame.format = ZELM_RGB24;
        r->src.frame.width = r->src.frame.height = 10;
        r->src.frame.colour = 0xFFFFFFFF;
        r->src.frame.planes[1] = {nullptr, -5, 9, 1};
      },
      // Rows that are longer than what follows the last one.
      [](Request* r) {
        r->src.frame.planes[0].stride = 65;
        r->src.frame.height = 46;
        r->src.frame.planes[0].size = 45 * 65 + 64;
      },
      // Neighbours in one buffer, which share no byte.
      [](Request* r) {
        r->dst.frame.height = r->src.frame.height = 24;
        r->dst.frame.planes[0].data = r->src.frame.planes[0].data + 24 * 64;
      },
  };
  for (const auto& change : harmless) {
    Request r;
    change(&r);
    ZelmMessage message;
    EXPECT_EQ(zelmConvert(&r.dst.frame, &r.src.frame, &r.edit, &message), ZELM_OK)
        << message.text;
  }
}

// RGB has no colour description, whatever stands in its place.
TEST(FramesErrors, ColourOfRgbIsNotRead) {
  for (const auto& [from, to] :
       {std::pair{ZELM_RGBA, ZELM_BGR24}, std::pair{ZELM_RGB24, ZELM_NV12},
        std::pair{ZELM_I420, ZELM_RGB565}}) {
    OwnFrame src(from, 20, 10), dst(to, 20, 10), other(to, 20, 10);
    src.fill(3);
    convert(&dst, src);
    (from == ZELM_I420 ? other : src).frame.colour = 0xFFFFFFFF;
    convert(&other, src);
    EXPECT_TRUE(other.bytes == dst.bytes);
  }
}

TEST(FramesErrors, OfAPlanThatRuns) {
  const Request made;
  ZelmPlan* plan = nullptr;
  ASSERT_EQ(zelmPlanCreate(&plan, &made.dst.frame, &made.src.frame, nullptr, nullptr),
            ZELM_OK);
  const int bands = zelmPlanBands(plan);
  const auto expectCode = [&](int code, const std::function<void(Request*)>& change,
                              int band = 0) {
    Request r;
    change(&r);
    const Bytes before = r.dst.bytes;
    EXPECT_EQ(zelmPlanRunBand(plan, band, &r.dst.frame, &r.src.frame), code);
    if (band == 0) {
      EXPECT_EQ(zelmPlanRun(plan, &r.dst.frame, &r.src.frame), code);
    }
    EXPECT_TRUE(r.dst.bytes == before);
  };
  const auto nothing = [](Request*) {};
  expectCode(ZELM_BAD_BAND, nothing, -1);
  expectCode(ZELM_BAD_BAND, nothing, bands);
  expectCode(ZELM_BAD_BAND, nothing, INT32_MAX);
  for (const Mistake& mistake : kPlaneMistakes) expectCode(mistake.code, mistake.make);
  expectCode(ZELM_WRONG_FRAME, [](Request* r) { r->src.frame.format = ZELM_YV12; });
  expectCode(ZELM_WRONG_FRAME, [](Request* r) { r->dst.frame.format = ZELM_NV21; });
  expectCode(ZELM_WRONG_FRAME, [](Request* r) { r->src.frame.width = 62; });
  expectCode(ZELM_WRONG_FRAME, [](Request* r) { r->dst.frame.height = 46; });
  expectCode(ZELM_WRONG_FRAME, [](Request* r) { r->src.frame.colour = 1; });
  expectCode(ZELM_WRONG_FRAME, [](Request* r) { r->dst.frame.colour = 2; });

  const Request r;
  EXPECT_EQ(zelmPlanRun(nullptr, &r.dst.frame, &r.src.frame), ZELM_NULL);
  EXPECT_EQ(zelmPlanRun(plan, nullptr, &r.src.frame), ZELM_NULL);
  EXPECT_EQ(zelmPlanRunBand(plan, 0, &r.dst.frame, nullptr), ZELM_NULL);
  EXPECT_EQ(zelmPlanBands(nullptr), 0);
  zelmPlanDestroy(plan);
  zelmPlanDestroy(nullptr);
}

TEST(FramesInit, LaysPlanesOneBehindTheOther) {
  Bytes buffer(1 << 20);
  for (uint32_t format = 1; format <= kFormats; ++format) {
    const int planes = frames_reference::formatOf(format).planes;
    for (const uint32_t width : {1u, 2u, 15u, 16u, 17u, 130u}) {
      for (const uint32_t height : {1u, 2u, 9u, 16u, 35u}) {
        for (const size_t alignment : {0u, 1u, 2u, 64u, 4096u}) {
          ZelmFrame frame;
          const size_t bytes = zelmFrameBytes(format, width, height, alignment);
          ASSERT_EQ(zelmFrameInit(&frame, format, width, height, buffer.data(), bytes,
                                  alignment),
                    ZELM_OK);
          EXPECT_TRUE(frame.format == format && frame.width == width &&
                      frame.height == height && frame.colour == ZELM_BT601_FULL);
          const uint8_t* next = buffer.data();
          for (int p = 0; p < planes; ++p) {
            const frames_reference::Extent e =
                frames_reference::extentOf(format, width, height, p);
            const size_t unit = std::max<size_t>(1, alignment);
            const size_t stride = (e.rowBytes + unit - 1) / unit * unit;
            EXPECT_EQ(frame.planes[p].data, next);
            EXPECT_EQ(frame.planes[p].stride, static_cast<ptrdiff_t>(stride));
            next += e.rows * stride;
          }
          EXPECT_EQ(static_cast<size_t>(next - buffer.data()), bytes)
              << format << " " << width << " x " << height << " " << alignment;
        }
      }
    }
  }
}

TEST(FramesInit, RefusesWhatIsNoFrame) {
  Bytes buffer(6 * 4);
  const struct {
    uint32_t format, width, height;
    size_t size, alignment;
    int code;
  } table[] = {
      {0, 4, 4, 24, 1, ZELM_BAD_FORMAT},
      {18, 4, 4, 24, 1, ZELM_BAD_FORMAT},
      {ZELM_NV12, 0, 4, 24, 1, ZELM_BAD_SIZE},
      {ZELM_NV12, 4, 65536, 24, 1, ZELM_BAD_SIZE},
      {ZELM_NV12, 4, 4, 24, 3, ZELM_BAD_PLANE},
      {ZELM_NV12, 4, 4, 24, 8192, ZELM_BAD_PLANE},
      {ZELM_NV12, 4, 4, 23, 1, ZELM_BAD_PLANE},
      {ZELM_NV12, 4, 4, 24, 1, ZELM_OK},
  };
  for (const auto& t : table) {
    ZelmFrame frame, zero;
    memset(&frame, 0xEE, sizeof frame);
    memset(&zero, 0, sizeof zero);
    EXPECT_EQ(zelmFrameInit(&frame, t.format, t.width, t.height, buffer.data(), t.size,
                            t.alignment),
              t.code);
    if (t.code == ZELM_OK) continue;
    EXPECT_EQ(memcmp(&frame, &zero, sizeof frame), 0);
    if (t.size == 23) continue;
    EXPECT_EQ(zelmFrameBytes(t.format, t.width, t.height, t.alignment), 0u);
  }
  ZelmFrame frame;
  EXPECT_EQ(zelmFrameInit(nullptr, ZELM_NV12, 4, 4, buffer.data(), 24, 1), ZELM_NULL);
  EXPECT_EQ(zelmFrameInit(&frame, ZELM_NV12, 4, 4, nullptr, 24, 1), ZELM_NULL);
  // The largest frame, and 32-bit programs that cannot address it.
  const uint64_t largest = uint64_t{65535} * 65535 * 4;
  EXPECT_EQ(zelmFrameBytes(ZELM_RGBA, 65535, 65535, 0),
            largest > SIZE_MAX ? 0 : largest);
}

// One request for memory after the other is refused: nothing leaks and nothing is
// written; and a plan that runs asks for none.
TEST(FramesMemory, MayBeRefused) {
  Random random(5);
  memory::State& heap = memory::state();
  for (int i = 0; i < 300; i += caseStep()) {
    const Case c = anyCase([&random](int limit) { return random.below(limit); });
    OwnFrame src(c.src.frame.format, c.src.frame.width, c.src.frame.height);
    OwnFrame dst(c.dst.frame.format, c.dst.frame.width, c.dst.frame.height);
    const Bytes before = dst.bytes;
    ZelmPlan* plan = nullptr;
    int refused = 0, code = ZELM_NO_MEMORY;
    while (code == ZELM_NO_MEMORY) {
      ASSERT_TRUE(dst.bytes == before && plan == nullptr);
      ZelmMessage message = {};
      heap = {true, ++refused, 0xD7, 0, 0, 0};
      code = zelmPlanCreate(&plan, &dst.frame, &src.frame, &c.edit, &message);
      heap.watching = false;
      ASSERT_EQ(message.text[0] == 0, code == ZELM_OK);
      if (code != ZELM_OK) {
        ASSERT_EQ(heap.live, 0) << describe(c);
        heap = {true, refused, 0xD7, 0, 0, 0};
        EXPECT_EQ(zelmConvert(&dst.frame, &src.frame, &c.edit, nullptr), code);
        heap.watching = false;
        ASSERT_EQ(heap.live, 0) << describe(c);
      }
    }
    ASSERT_EQ(code, ZELM_OK) << describe(c);
    EXPECT_GT(refused, 1);
    heap = {true, 0, 0xD7, 0, heap.live, 0};
    EXPECT_EQ(zelmPlanRun(plan, &dst.frame, &src.frame), ZELM_OK);
    EXPECT_EQ(heap.requests, 0) << describe(c);
    zelmPlanDestroy(plan);
    heap.watching = false;
    EXPECT_EQ(heap.live, 0) << describe(c);
  }
}

}  // namespace
}  // namespace frames_test
