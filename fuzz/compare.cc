#include "compare.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "guarded_buffer.h"

namespace harness {

ImageStruct noisyRecord(Random* random) {
  ImageStruct record;
  uint8_t noise[sizeof record];
  for (uint8_t& byte : noise) byte = static_cast<uint8_t>(random->next() >> 8);
  memcpy(static_cast<void*>(&record), noise, sizeof record);
  record.data = nullptr;
  return record;
}

}  // namespace harness

namespace fuzz {
namespace {

void print(const char* name, const ImageStruct& r) {
  fprintf(stderr, "  %s: format %u, %d x %d, region (%d, %d, %d, %d), uvOffset %u\n",
          name, static_cast<unsigned>(r.format), r.width, r.height,
          static_cast<int>(r.roiX), static_cast<int>(r.roiY), r.roiWidth, r.roiHeight,
          static_cast<unsigned>(r.uvOffset));
}

// Noise of a seed, or the rest of the input over and over.
void fill(uint8_t* to, size_t size, Input* input) {
  const uint32_t seed = input->byte();
  const size_t given = input->left();
  if (seed % 2 == 0 && given > 0) {
    for (size_t i = 0; i < size; ++i) to[i] = input->rest()[i % given];
  } else {
    uint32_t state = seed * 2654435761u + 1;
    for (size_t i = 0; i < size; ++i) {
      state = state * 1664525u + 1013904223u;
      to[i] = seed % 4 == 1 ? static_cast<uint8_t>(state >> 24)
                            : static_cast<uint8_t>(state >> 31 ? 255 : 0);
    }
  }
}

}  // namespace

int Input::extent(int limit) {
  const int kind = byte(), fine = byte();
  if (kind < 200) return fine % (limit < 20 ? limit + 1 : 20);
  if (kind < 250) return (kind % 4 * 32 + fine % 8) % (limit + 1);
  return (kind % 8 * 256 + fine) % (limit + 1);
}

void finding(const char* name, const char* what, const ImageStruct& dst,
             const ImageStruct& src) {
  fprintf(stderr, "FINDING in %s: %s\n", name, what);
  print("destination", dst);
  print("source", src);
  abort();
}

void compare(const char* name, const void* context, Call product, Call expected,
             const Frame& dst, const Frame& src, Input* input) {
  static GuardedBuffer buffers[4];
  const int guards = input->byte();
  const auto place = [&](int i, size_t size) {
    return buffers[i].place(size, guards >> i % 2 & 1 ? GuardedBuffer::Guard::kBefore
                                                      : GuardedBuffer::Guard::kBehind);
  };
  uint8_t *out = place(0, dst.bytes), *in = place(1, src.bytes);
  uint8_t *plainOut = place(2, dst.bytes), *plainIn = place(3, src.bytes);
  fill(plainIn, src.bytes, input);
  memcpy(in, plainIn, src.bytes);
  for (size_t i = 0; i < dst.bytes; ++i) {
    out[i] = plainOut[i] = static_cast<uint8_t>(0xA5 ^ (i * 29 + i / 256));
  }
  ImageStruct records[2] = {dst.record, src.record},
              plain[2] = {dst.record, src.record};
  records[0].data = out;
  records[1].data = in;
  plain[0].data = plainOut;
  plain[1].data = plainIn;
  const int code = product(context, &records[0], &records[1]);
  const int rule = expected(context, &plain[0], &plain[1]);
  if (code != rule) {
    fprintf(stderr, "%d instead of %d\n", code, rule);
    finding(name, "another code", dst.record, src.record);
  }
  if (memcmp(out, plainOut, dst.bytes) != 0) {
    size_t i = 0;
    while (out[i] == plainOut[i]) ++i;
    fprintf(stderr, "byte %zu: %d instead of %d\n", i, out[i], plainOut[i]);
    finding(name, "another byte", dst.record, src.record);
  }
  if (memcmp(in, plainIn, src.bytes) != 0) {
    finding(name, "source changed", dst.record, src.record);
  }
  const ImageStruct* kept[2] = {&dst.record, &src.record};
  for (int i = 0; i < 2; ++i) {
    records[i].data = kept[i]->data;
    if (memcmp(&records[i], kept[i], sizeof records[i]) != 0) {
      finding(name, "record changed", dst.record, src.record);
    }
  }
}

}  // namespace fuzz
