// Checking a row and timing its contenders.
#ifndef ZELM_BENCH_MEASURE_H
#define ZELM_BENCH_MEASURE_H

#include <functional>
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
  double ownTime;  // of our other way, at the first ceiling; 0: there is none
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

// A row with its memory: all contenders read the same memory and write the same memory.
struct Trial {
  std::string name;
  std::function<void()> ours;
  std::function<bool()> correct;  // does the work and compares, at the current ceiling
  std::function<void()> own;      // another way of ours to do it; may be empty
  bool threads = false;           // ours has several: times are those of a clock
  const uint8_t* read;
  uint8_t* written;
  size_t moved;  // what memcpy moves: half of the bytes read and written
  std::vector<std::pair<const char*, Peer>> peers;
  // PSNR of what a peer wrote against our output, in dB.
  std::function<double(const Peer&, const uint8_t* ours)> difference;
  size_t size;  // of what is written
};

// Checks and times a trial.
Result measure(const Trial& trial, const Ceilings& ceilings);

// The same for a stage or pipeline.
Result measure(const Row& row, const Ceilings& ceilings,
               const std::vector<Library>& peers);

// Mean squared error over bytes, or over the fields of 16-bit words scaled to bytes.
class Error {
 public:
  void add(int a, int b) {
    sum_ += (a - b) * (a - b);
    ++count_;
  }
  double psnr() const;

 private:
  double sum_ = 0, count_ = 0;
};

// Processor and compiler, as two lines of comment.
std::string machine();

}  // namespace bench

#endif  // ZELM_BENCH_MEASURE_H
