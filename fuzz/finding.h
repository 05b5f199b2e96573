// How a fuzzer stops the program when something is wrong.
#ifndef ZELM_FUZZ_FINDING_H
#define ZELM_FUZZ_FINDING_H

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>

namespace fuzz {

[[noreturn]] inline void finding(const char* what) {
  fprintf(stderr, "FINDING in %s: %s\n", program_invocation_short_name, what);
  abort();
}

inline void check(bool holds, const char* what) {
  if (!holds) finding(what);
}

}  // namespace fuzz

#endif  // ZELM_FUZZ_FINDING_H
