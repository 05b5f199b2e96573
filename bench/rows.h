// The rows to measure: each stage and pipeline at each size, with the figure to reach.
#ifndef ZELM_BENCH_ROWS_H
#define ZELM_BENCH_ROWS_H

#include <functional>
#include <string>
#include <vector>

#include "peers.h"

namespace bench {

// What a row is called and what it is to reach.
struct Label {
  std::string stage, size, family;
  double target = 0;     // ratio to the fastest peer that counts
  double roof = 0;       // fraction of the speed of memcpy; 0: no figure to reach
  std::string own;       // another way of ours to do it; may be empty
  double ownTarget = 0;  // ratio to that

  std::string name() const { return stage + " " + size; }
};

struct Row : Label {
  Job job;
  std::function<int(ImageStruct*dst, ImageStruct*src)> ours, expected;
};

std::vector<Row> allRows();

// A part of a frame's memory.
struct Part {
  size_t start, length;
};
Part partRead(const Job& job);
Part partWritten(const Job& job);

}  // namespace bench

#endif  // ZELM_BENCH_ROWS_H
