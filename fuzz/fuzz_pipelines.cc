// The pipelines on valid, nearly valid and hostile records.
#include <stdlib.h>

#include "compare.h"

namespace {

const uint32_t kFormats[] = {FORMAT_YUV420SP,    FORMAT_YUV420SPVU, FORMAT_YUV420P,
                             FORMAT_RGB565,      FORMAT_RGB888,     FORMAT_RGBA8888,
                             FORMAT_YUV422IUYVY, FORMAT_YUV420SPMB, FORMAT_YUV422SP,
                             FORMAT_YUV422SPVU};
constexpr size_t kLargest = size_t{1} << 18;

bool watching;
int requests, refused, live;

struct Arguments {
  int pipeline, a, b, reserved;
};

using Pipeline = int (*)(ImageStruct, ImageStruct, int, int, int);

int rotate(ImageStruct src, ImageStruct dst, int mode, int rotation, int) {
  return Zelm_Rotate_and_Convert(src, dst, mode, rotation);
}
int plainRotate(ImageStruct src, ImageStruct dst, int mode, int rotation, int) {
  return reference::Zelm_Rotate_and_Convert(src, dst, mode, rotation);
}

int product(const void* context, ImageStruct* d, ImageStruct* s) {
  const auto& call = *static_cast<const Arguments*>(context);
  const Pipeline pipelines[] = {
      [](ImageStruct from, ImageStruct to, int a, int b, int c) -> int {
        return Zelm_Resize_and_Convert(from, to, a, b, c);
      },
      [](ImageStruct from, ImageStruct to, int a, int b, int c) -> int {
        return Zelm_Convert_and_Resize(from, to, a, b, c);
      },
      rotate};
  requests = live = 0;
  watching = true;
  const int code = pipelines[call.pipeline](*s, *d, call.a, call.b, call.reserved);
  watching = false;
  if (live != 0) fuzz::finding("pipeline", "buffers not freed", *d, *s);
  return code;
}

int expected(const void* context, ImageStruct* d, ImageStruct* s) {
  if (refused > 0 && requests >= refused) return RESULT_NO_MEMORY;
  const auto& call = *static_cast<const Arguments*>(context);
  const Pipeline pipelines[] = {reference::Zelm_Resize_and_Convert,
                                reference::Zelm_Convert_and_Resize, plainRotate};
  return pipelines[call.pipeline](*s, *d, call.a, call.b, call.reserved);
}

// The side of a frame, even unless it is meant to be refused.
uint32_t side(fuzz::Input* input, bool hostile) {
  if (!hostile) return 2 + static_cast<uint32_t>(input->extent(140) / 2 * 2);
  return input->word() >> (input->below(2) * 8) & 0xFFFF;
}

// A whole frame, made smaller until it is small enough.
fuzz::Frame whole(uint32_t format, uint32_t w, uint32_t h, uint32_t gap = 0) {
  size_t bytes = zelmFrameLayout(format, w, h).size;
  while (bytes > kLargest) {
    (w > h ? w : h) /= 4;
    w += w & 1, h += h & 1;
    bytes = zelmFrameLayout(format, w, h).size;
  }
  return {zelmWholeFrame(format, w, h, nullptr), (bytes < 4 ? 4 : bytes) + gap, 1, 0};
}

fuzz::Frame frame(fuzz::Input* input, int hostile) {
  const uint32_t format = hostile & 1 ? input->word() : kFormats[input->byte() % 10];
  uint32_t w = side(input, hostile & 2), h = side(input, hostile & 4);
  const uint32_t gap =
      input->below(4) == 0 ? static_cast<uint32_t>(input->below(9)) : 0;
  fuzz::Frame f = whole(format, w, h, gap);
  w = f.record.width, h = f.record.height;
  ImageStruct& r = f.record;
  r.uvOffset += gap;
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

// Otherwise the region is rounded, as checkStruct leaves it.
bool refusedByCheck(ImageStruct* record) {
  static uint8_t sample;
  record->data = &sample;
  const int code = reference::checkStruct(record);
  record->data = nullptr;
  return code != RESULT_OK;
}

}  // namespace

extern "C" {

void* __real_malloc(size_t size);
void __real_free(void* pointer);

void* __wrap_malloc(size_t size) {
  if (!watching) return __real_malloc(size);
  if (++requests == refused) return nullptr;
  ++live;
  return __real_malloc(size);
}

void __wrap_free(void* pointer) {
  if (watching && pointer != nullptr) --live;
  __real_free(pointer);
}

int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  fuzz::Input input(bytes, size);
  const int kind = input.byte(), errors = input.byte();
  Arguments call{kind % 3, 2 + input.below(3), 2 + input.below(3), input.byte()};
  if (call.pipeline == 2) {
    const int rotations[] = {0, 1, 2, 4};
    call.a = 1, call.b = rotations[call.b + input.below(2) & 3];
  }
  if (errors % 16 == 1) call.a = static_cast<int>(input.word()) >> input.below(32);
  if (errors % 16 == 2) call.b = static_cast<int>(input.word()) >> input.below(32);
  refused = errors % 8 == 3 ? 1 + input.below(4) : 0;
  // Most records are valid, and most of the others wrong in one respect.
  const int wrong = input.byte();
  auto src = frame(&input, wrong % 8 == 1 ? input.byte() : 0);
  auto dst = frame(&input, wrong % 8 == 2 ? input.byte() : 0);
  ImageStruct s = src.record;
  if (wrong >> 3 & 1 && !refusedByCheck(&s)) {  // where equal regions matter
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
  if (call.pipeline == 1) {  // nothing is checked there
    if (dst.record.format != FORMAT_YUV420SPVU) {
      dst = whole(FORMAT_YUV420SPVU, dst.record.width, dst.record.height);
    }
    if (refusedByCheck(&src.record) || refusedByCheck(&dst.record)) return 0;
    if (wrong >> 6 == 3) dst.record.format = kFormats[input.below(10)];
  }
  fuzz::compare("pipeline", &call, product, expected, dst, src, &input);
  return 0;
}
}
