// Checking a row and timing its contenders.
#ifndef ZELM_BENCH_MEASURE_H
#define ZELM_BENCH_MEASURE_H

#include <string>
#include <utility>
#include <vector>

#include "instruction_set_ceiling.h"
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
  std::vector<double> times;  // ours in nanoseconds, at each ceiling
  double memcpyTime;
  std::vector<PeerResult> peers;

  // The fastest peer that counts; null when there is none.
  const PeerResult* best() const;
  // Null when the library was not asked or has no such step.
  const PeerResult* find(const std::string& library) const;
};

struct Effort {
  int repetitions;  // of each contender, in random order
  double seconds;   // at least, for one repetition
};

void prepare(const Effort& effort);

// Highest instruction sets that the library is measured with, in turn.
using Ceilings = std::vector<zelm::InstructionSet>;

// Checks and times a row. All contenders read the same memory and write the same
// memory.
Result measure(const Row& row, const Ceilings& ceilings,
               const std::vector<Library>& peers);

// Processor and compiler, as two lines of comment.
std::string machine();

}  // namespace bench

#endif  // ZELM_BENCH_MEASURE_H
