// Runs the library and the reference side by side and words what differs.
#include "comparison.h"

#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include "memory.h"

namespace harness {
namespace {

// The value of byte i of the destination before the call.
uint8_t unwritten(size_t i) { return static_cast<uint8_t>(0xA5 ^ (i * 29 + i / 256)); }

void fillUnwritten(uint8_t* bytes, size_t size) {
  for (size_t i = 0; i < size; ++i) bytes[i] = unwritten(i);
}

// Appends where the first wrong byte lies and what it should be.
void addFirstDifference(const Frame& frame, const uint8_t* written,
                        const uint8_t* expected, Text* text) {
  size_t i = 0;
  while (written[i] == expected[i]) ++i;
  const bool luma = i < frame.chroma;
  const size_t inPlane = luma ? i : i - frame.chroma;
  text->add("\n  %s, row %zu, column %zu (byte %zu): %d instead of %d, was %d",
            luma ? "plane 0" : "chroma", inPlane / frame.stride, inPlane % frame.stride,
            i, written[i], expected[i], unwritten(i));
}

}  // namespace

void Text::add(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  vsnprintf(characters_ + length_, sizeof characters_ - length_, format, arguments);
  va_end(arguments);
  length_ = strlen(characters_);
}

Text describe(const ImageStruct& r) {
  Text text;
  text.add("format %u, %d x %d, region (%d, %d, %d, %d), uvOffset %u",
           static_cast<unsigned>(r.format), r.width, r.height, static_cast<int>(r.roiX),
           static_cast<int>(r.roiY), r.roiWidth, r.roiHeight,
           static_cast<unsigned>(r.uvOffset));
  return text;
}

ImageStruct noisyRecord(Random* random) {
  ImageStruct record;
  uint8_t noise[88];  // the same number on every machine
  static_assert(sizeof record <= sizeof noise, "noise fills a record");
  for (uint8_t& byte : noise) byte = static_cast<uint8_t>(random->next() >> 8);
  memcpy(static_cast<void*>(&record), noise, sizeof record);
  record.data = nullptr;
  return record;
}

Comparison::Comparison(const Call& call, const Frame& dst, const Frame& src,
                       uint8_t* source)
    : call_(call), dst_(dst), src_(src), source_(source) {}

void Comparison::runReference() {
  static GuardedBuffer destination;
  expected_ = destination.place(dst_.bytes, Guard::kBehind);
  fillUnwritten(expected_, dst_.bytes);
  ImageStruct dst = dst_.record, src = src_.record;
  dst.data = expected_;
  src.data = source_;
  expectedCode_ = call_.expected(&dst, &src);
}

Text Comparison::run(Guard dstGuard, Guard srcGuard) {
  static GuardedBuffer destination, source;
  written_ = destination.place(dst_.bytes, dstGuard);
  uint8_t* const read = source.place(src_.bytes, srcGuard);
  fillUnwritten(written_, dst_.bytes);
  memcpy(read, source_, src_.bytes);
  ImageStruct records[2] = {dst_.record, src_.record}, kept[2];
  records[0].data = written_;
  records[1].data = read;
  memcpy(static_cast<void*>(kept), records, sizeof records);
  memory::State& heap = memory::state();
  const uint8_t fill = dstGuard == Guard::kBehind ? 0x3C : 0xD7;
  heap = {true, heap.refuse, fill, 0, 0, 0};
  const int code = call_.product(&records[0], &records[1]);
  heap.watching = false;
  if (expected_ == nullptr) runReference();

  Text wrong;
  if (code != expectedCode_) {
    wrong.add("\n  result %d instead of %d", code, expectedCode_);
  }
  if (memcmp(written_, expected_, dst_.bytes) != 0) {
    addFirstDifference(dst_, written_, expected_, &wrong);
  }
  if (memcmp(read, source_, src_.bytes) != 0) wrong.add("\n  source changed");
  if (memcmp(records, kept, sizeof kept) != 0) wrong.add("\n  a record was changed");
  if (heap.live != 0) wrong.add("\n  %d buffers not freed", heap.live);
  if (wrong.empty()) return wrong;

  const char* const names[] = {"behind", "before"};
  Text text;
  text.add("%s: destination %s, guard %s; source %s, guard %s%s",
           call_.name.characters(), describe(dst_.record).characters(),
           names[dstGuard == Guard::kBefore], describe(src_.record).characters(),
           names[srcGuard == Guard::kBefore], wrong.characters());
  return text;
}

}  // namespace harness
