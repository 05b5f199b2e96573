// Comparing a call of the library with the reference on content from a fuzzer's input.
#ifndef ZELM_FUZZ_COMPARE_H
#define ZELM_FUZZ_COMPARE_H

#include "comparison.h"
#include "input.h"

namespace fuzz {

// Stops the program when anything differs. The rest of the input says which ends of the
// buffers touch inaccessible pages, and what the source holds.
void compare(const harness::Call& call, const harness::Frame& dst,
             const harness::Frame& src, Input* input);

}  // namespace fuzz

#endif  // ZELM_FUZZ_COMPARE_H
