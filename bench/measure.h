// Checking a row and timing its contenders.
#ifndef ZELM_BENCH_MEASURE_H
#define ZELM_BENCH_MEASURE_H

#include <string>
#include <vector>

#include "rows.h"

namespace bench {

struct PeerResult {
  std::string library, remark;
  bool counted;
  double time;        // nanoseconds
  double difference;  // PSNR against our output, in dB
};

struct Result {
  bool correct;  // our output is the reference's; nothing is timed otherwise
  double time, roof;
  std::vector<PeerResult> peers;

  // The fastest peer that counts; null when there is none.
  const PeerResult* best() const;
};

struct Effort {
  int repetitions;  // of each contender, in random order
  double seconds;   // at least, for one repetition
};

void prepare(const Effort& effort);

enum class Mode { kEverything, kOurTimeOnly, kDifferencesOnly };
// All contenders read the same memory and write the same memory.
Result measure(const Row& row, Mode mode);

// Processor, compiler and libraries, as Markdown.
std::string machine();

}  // namespace bench

#endif  // ZELM_BENCH_MEASURE_H
