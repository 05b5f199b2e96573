#include "harness.h"

#include <gtest/gtest.h>
#include <string.h>

#include <sstream>

#include "guarded_buffer.h"
#include "memory.h"

namespace harness {
namespace {

void hash(const Bytes& bytes, uint64_t* digest) {
  const uint64_t prime = 1099511628211u;
  size_t i = 0;
  for (; i + 8 <= bytes.size(); i += 8) {
    uint64_t word = 0;
    for (int b = 7; b >= 0; --b) word = word << 8 | bytes[i + b];
    *digest = (*digest ^ word) * prime;
    *digest ^= *digest >> 32;
  }
  for (; i < bytes.size(); ++i) *digest = (*digest ^ bytes[i]) * prime;
}

// Where byte i of the frame lies.
std::string place(const Frame& frame, size_t i) {
  const bool luma = i < frame.chroma;
  const size_t inPlane = luma ? i : i - frame.chroma;
  std::ostringstream text;
  text << (luma ? "plane 0" : "chroma") << ", row " << inPlane / frame.stride
       << ", column " << inPlane % frame.stride << " (byte " << i << ")";
  return text.str();
}

}  // namespace

void fill(uint8_t* bytes, size_t size, size_t stride, Content content, uint32_t seed) {
  Random random(seed);
  for (size_t i = 0; i < size; ++i) {
    const size_t row = i / stride, column = i % stride;
    const size_t values[kContents] = {random.next() >> 8,
                                      0,
                                      255,
                                      (row + column + seed) % 2 * 255,
                                      (row / 5 + column / 7 + seed) % 2 * 255,
                                      3 * column + 5 * row + seed};
    bytes[i] = static_cast<uint8_t>(values[content]);
  }
}

std::string describe(const ImageStruct& r) {
  std::ostringstream text;
  text << "format " << r.format << ", " << r.width << " x " << r.height << ", region ("
       << r.roiX << ", " << r.roiY << ", " << r.roiWidth << ", " << r.roiHeight
       << "), uvOffset " << r.uvOffset;
  return text.str();
}

ImageStruct noisyRecord(Random* random) {
  ImageStruct record;
  uint8_t noise[88];  // as many on every machine
  static_assert(sizeof record <= sizeof noise, "noise fills a record");
  for (uint8_t& byte : noise) byte = static_cast<uint8_t>(random->next() >> 8);
  memcpy(static_cast<void*>(&record), noise, sizeof record);
  record.data = nullptr;
  return record;
}

bool compare(const Call& call, const Frame& dst, const Frame& src, Content content,
             uint32_t seed, uint64_t* digest) {
  static GuardedBuffer destination, source;
  Bytes input(src.bytes), before(dst.bytes);
  fill(input.data(), input.size(), src.stride, content, seed);
  for (size_t i = 0; i < before.size(); ++i) {
    before[i] = static_cast<uint8_t>(0xA5 ^ (i * 29 + i / 256));
  }
  Bytes expected = before, plain = input;
  ImageStruct d = dst.record, s = src.record;
  d.data = expected.data();
  s.data = plain.data();
  if (d.data == nullptr || s.data == nullptr) return true;
  const int expectedCode = call.expected(&d, &s);

  for (auto guard : {GuardedBuffer::Guard::kBehind, GuardedBuffer::Guard::kBefore}) {
    uint8_t* out = destination.place(dst.bytes, guard);
    uint8_t* in = source.place(src.bytes, guard);
    memcpy(out, before.data(), before.size());
    memcpy(in, input.data(), input.size());
    ImageStruct records[2] = {dst.record, src.record}, kept[2];
    records[0].data = out;
    records[1].data = in;
    memcpy(static_cast<void*>(kept), records, sizeof records);
    const bool behind = guard == GuardedBuffer::Guard::kBehind;
    memory::State& heap = memory::state();
    heap = {true, heap.refuse, static_cast<uint8_t>(behind ? 0x3C : 0xD7), 0, 0, 0};
    const int code = call.product(&records[0], &records[1]);
    heap.watching = false;
    const Bytes actual(out, out + dst.bytes);

    std::ostringstream wrong;
    if (code != expectedCode) {
      wrong << "\n  result " << code << " instead of " << expectedCode;
    }
    if (actual != expected) {
      size_t i = 0;
      while (actual[i] == expected[i]) ++i;
      wrong << "\n  " << place(dst, i) << ": " << int{actual[i]} << " instead of "
            << int{expected[i]} << ", was " << int{before[i]};
    }
    if (memcmp(in, input.data(), input.size()) != 0) wrong << "\n  source changed";
    if (memcmp(records, kept, sizeof kept) != 0) wrong << "\n  a record was changed";
    if (heap.live != 0) wrong << "\n  " << heap.live << " buffers not freed";
    if (!wrong.str().empty()) {
      ADD_FAILURE() << call.name << ": destination " << describe(dst.record)
                    << "; source " << describe(src.record) << "; content " << content
                    << ", seed " << seed
                    << (behind ? ", guard behind" : ", guard before") << wrong.str();
      return false;
    }
    if (digest != nullptr) hash(actual, digest);
  }
  return true;
}

}  // namespace harness
