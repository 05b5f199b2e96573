// Memory between two inaccessible pages. An access behind a buffer that is placed at
// its end, or before one that is placed at its start, is a fault. For the address
// sanitizer all bytes but those of the buffer are poisoned.
#ifndef ZELM_TESTS_GUARDED_BUFFER_H
#define ZELM_TESTS_GUARDED_BUFFER_H

#include <stddef.h>
#include <stdint.h>
#include <sys/mman.h>
#include <unistd.h>

#include <stdexcept>

#if __has_include(<sanitizer/asan_interface.h>)
#include <sanitizer/asan_interface.h>
#else  // Clang without its sanitizers
#define ASAN_POISON_MEMORY_REGION(start, size) ((void)(start), (void)(size))
#define ASAN_UNPOISON_MEMORY_REGION(start, size) ((void)(start), (void)(size))
#endif

class GuardedBuffer {
 public:
  enum class Guard { kBehind, kBefore };

  GuardedBuffer() = default;
  GuardedBuffer(const GuardedBuffer&) = delete;
  GuardedBuffer& operator=(const GuardedBuffer&) = delete;
  ~GuardedBuffer() { release(); }

  // Returns `size` bytes that touch a guard. It invalidates what it returned before.
  uint8_t* place(size_t size, Guard guard) {
    const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    if (size > capacity_ || mapping_ == nullptr) {
      release();
      capacity_ = (size / page + 1) * page;
      mapped_ = capacity_ + 2 * page;
      void* all = mmap(nullptr, mapped_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
      if (all == MAP_FAILED) throw std::runtime_error("mmap");
      mapping_ = static_cast<uint8_t*>(all);
      if (mprotect(mapping_ + page, capacity_, PROT_READ | PROT_WRITE) != 0) {
        throw std::runtime_error("mprotect");
      }
    }
    uint8_t* start = mapping_ + page;
    if (guard == Guard::kBehind) start += capacity_ - size;
    ASAN_POISON_MEMORY_REGION(mapping_ + page, capacity_);
    ASAN_UNPOISON_MEMORY_REGION(start, size);
    return start;
  }

 private:
  void release() {
    if (mapping_ == nullptr) return;
    ASAN_UNPOISON_MEMORY_REGION(mapping_, mapped_);
    munmap(mapping_, mapped_);
    mapping_ = nullptr;
  }

  uint8_t* mapping_ = nullptr;
  size_t mapped_ = 0, capacity_ = 0;
};

#endif  // ZELM_TESTS_GUARDED_BUFFER_H
