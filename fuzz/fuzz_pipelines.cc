// The pipelines on valid, nearly valid and hostile records.
#include "compare.h"
#include "memory.h"
#include "pipelines.h"

namespace {

using harness::Frame;

constexpr size_t kLargest = size_t{1} << 18;

// The side of a frame: even, or any number where the frame may be refused.
uint32_t side(fuzz::Input* input, bool hostile) {
  if (!hostile) return 2 + static_cast<uint32_t>(input->extent(140) / 2 * 2);
  return input->word() >> (input->below(2) * 8) & 0xFFFF;
}

// A whole frame, reduced until its buffer is small enough.
Frame whole(uint32_t format, uint32_t w, uint32_t h, uint32_t gap = 0) {
  while (zelmFrameLayout(format, w, h).size > kLargest) {
    (w > h ? w : h) /= 4;
    w += w & 1, h += h & 1;
  }
  return harness::wholeFrame(format, w, h, gap);
}

Frame frame(fuzz::Input* input, int hostile) {
  const uint32_t format =
      hostile & 1 ? input->word() : harness::kFormats[input->byte() % 10];
  uint32_t w = side(input, hostile & 2), h = side(input, hostile & 4);
  const uint32_t gap =
      input->below(4) == 0 ? static_cast<uint32_t>(input->below(9)) : 0;
  Frame f = whole(format, w, h, gap);
  w = f.record.width, h = f.record.height;
  ImageStruct& r = f.record;
  if (hostile & 8) {
    r.roiX = static_cast<int>(input->word());
    r.roiY = static_cast<int>(input->word()) >> input->below(32);
    r.roiWidth = static_cast<uint16_t>(input->word());
    r.roiHeight = static_cast<uint16_t>(input->word());
  } else if (input->below(3) != 0) {
    const auto part = [input](uint32_t limit, int* start, uint16_t* length) {
      *start = static_cast<int>(input->word() % (limit + 1));
      const uint32_t most = limit - static_cast<uint32_t>(*start);
      *length = static_cast<uint16_t>(input->word() % (most + 1));
    };
    int x, y;
    part(w, &x, &r.roiWidth);
    part(h, &y, &r.roiHeight);
    r.roiX = x, r.roiY = y;
  }
  return f;
}

// Rounds the region as checkStruct() does, unless the record is refused.
bool refusedByCheck(ImageStruct* record) {
  static uint8_t sample;
  record->data = &sample;
  const int code = reference::checkStruct(record);
  record->data = nullptr;
  return code != RESULT_OK;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  fuzz::Input input(bytes, size);
  const int kind = input.byte(), errors = input.byte();
  int a = 2 + input.below(3), b = 2 + input.below(3);
  const int reserved = input.byte();
  const bool direct = kind % 3 == 1, rotated = kind % 3 == 2;
  if (rotated) {
    const int rotations[] = {0, 1, 2, 4};
    a = 1, b = rotations[(b + input.below(2)) & 3];
  }
  if (errors % 16 == 1) a = static_cast<int>(input.word()) >> input.below(32);
  if (errors % 16 == 2) b = static_cast<int>(input.word()) >> input.below(32);
  const int refused = errors % 8 == 3 ? 1 + input.below(4) : 0;
  // Most records are valid, and most of the others wrong in one respect.
  const int wrong = input.byte();
  auto src = frame(&input, wrong % 8 == 1 ? input.byte() : 0);
  auto dst = frame(&input, wrong % 8 == 2 ? input.byte() : 0);
  ImageStruct s = src.record;
  // A destination of the same or the turned size.
  if (wrong >> 3 & 1 && !refusedByCheck(&s)) {
    const bool turned = wrong >> 4 & 1;
    const uint32_t w = turned ? s.height : s.width, h = turned ? s.width : s.height;
    dst = whole(dst.record.format, w, h);
    if (wrong >> 5 & 1) {
      ImageStruct& d = dst.record;
      d.roiX = turned ? s.roiY : s.roiX;
      d.roiY = turned ? s.roiX : s.roiY;
      d.roiWidth = turned ? s.roiHeight : s.roiWidth;
      d.roiHeight = turned ? s.roiWidth : s.roiHeight;
    }
  }
  if (direct) {  // that call checks nothing
    if (dst.record.format != FORMAT_YUV420SPVU) {
      dst = whole(FORMAT_YUV420SPVU, dst.record.width, dst.record.height);
    }
    if (refusedByCheck(&src.record) || refusedByCheck(&dst.record)) return 0;
    if (wrong >> 6 == 3) dst.record.format = harness::kFormats[input.below(10)];
  }
  harness::Call call = direct    ? harness::convertAndResize(a, b, reserved)
                       : rotated ? harness::rotateAndConvert(a, b)
                                 : harness::resizeAndConvert(a, b, reserved);
  memory::State& heap = memory::state();
  heap.refuse = refused;
  const auto expected = call.expected;
  call.expected = [&](ImageStruct* d, ImageStruct* s) {
    return refused > 0 && heap.requests >= refused ? RESULT_NO_MEMORY : expected(d, s);
  };
  fuzz::compare(call, dst, src, &input);
  return 0;
}
