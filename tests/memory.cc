// Stands in for malloc(), calloc() and free() while the heap is watched.
#include "memory.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "guarded_buffer.h"

#ifndef __has_feature
#define __has_feature(name) 0  // only clang has it
#endif
#if __has_feature(memory_sanitizer)
#include <sanitizer/msan_interface.h>
#endif

namespace memory {
namespace {

struct Slot {
  GuardedBuffer buffer;
  uint8_t* start = nullptr;
};

thread_local State current;
thread_local Slot slots[3];  // no call holds more buffers at the same time

// Returns a block, or null where the request is to be refused.
uint8_t* take(size_t size) {
  current.lastRequest = size;
  if (++current.requests == current.refuse) return nullptr;
  for (Slot& slot : slots) {
    if (slot.start != nullptr) continue;
    const size_t aligned = (size + 15) / 16 * 16;  // malloc() aligns blocks like this
    slot.start = slot.buffer.place(aligned, GuardedBuffer::Guard::kBehind);
    ++current.live;
    return slot.start;
  }
  fputs("more buffers at the same time than any call needs\n", stderr);
  abort();
}

}  // namespace

State& state() { return current; }

}  // namespace memory

extern "C" {

void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void __real_free(void* pointer);

void* __wrap_malloc(size_t size) {
  if (!memory::current.watching) return __real_malloc(size);
  uint8_t* start = memory::take(size);
  if (start == nullptr) return nullptr;
  memset(start, memory::current.fill, size);
#if __has_feature(memory_sanitizer)
  __msan_allocated_memory(start, size);
#endif
  return start;
}

void* __wrap_calloc(size_t count, size_t size) {
  if (!memory::current.watching) return __real_calloc(count, size);
  if (size != 0 && count > SIZE_MAX / size) return nullptr;
  uint8_t* start = memory::take(count * size);
  if (start != nullptr) memset(start, 0, count * size);
  return start;
}

void __wrap_free(void* pointer) {
  if (pointer == nullptr) return;
  for (memory::Slot& slot : memory::slots) {
    if (slot.start == pointer) {
      slot.start = nullptr;
      slot.buffer.place(0, GuardedBuffer::Guard::kBehind);  // poisons the block
      --memory::current.live;
      return;
    }
  }
  __real_free(pointer);
}
}
