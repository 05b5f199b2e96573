// Stands in for malloc() and free() while the heap is watched.
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
thread_local Slot slots[2];  // no call holds more buffers at the same time

// Fills a block with the chosen byte. For the memory sanitizer it is as uninitialised
// as a block that malloc() returns.
void fillUninitialised(uint8_t* start, size_t size) {
  memset(start, current.fill, size);
#if __has_feature(memory_sanitizer)
  __msan_allocated_memory(start, size);
#endif
}

}  // namespace

State& state() { return current; }

}  // namespace memory

extern "C" {

void* __real_malloc(size_t size);
void __real_free(void* pointer);

void* __wrap_malloc(size_t size) {
  memory::State& state = memory::current;
  if (!state.watching) return __real_malloc(size);
  state.lastRequest = size;
  if (++state.requests == state.refuse) return nullptr;
  for (memory::Slot& slot : memory::slots) {
    if (slot.start != nullptr) continue;
    const size_t aligned = (size + 15) / 16 * 16;  // malloc() aligns blocks like this
    slot.start = slot.buffer.place(aligned, GuardedBuffer::Guard::kBehind);
    memory::fillUninitialised(slot.start, aligned);
    ++state.live;
    return slot.start;
  }
  fputs("more buffers at the same time than any call needs\n", stderr);
  abort();
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
