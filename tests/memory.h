// Watches what the library takes from the heap: every buffer ends at an inaccessible
// page and is filled with a chosen byte, unless zeros are asked for, and any request
// can be refused. The linker redirects malloc(), calloc() and free() here (--wrap).
#ifndef ZELM_TESTS_MEMORY_H
#define ZELM_TESTS_MEMORY_H

#include <stddef.h>
#include <stdint.h>

namespace memory {

struct State {
  bool watching;
  int refuse;  // the request to refuse, counted from 1; 0 refuses none
  uint8_t fill;
  int requests, live;  // since the watching began
  size_t lastRequest;  // its size in bytes
};

// The state of the calling thread.
State& state();

}  // namespace memory

#endif  // ZELM_TESTS_MEMORY_H
