// The rows to measure: each stage and pipeline at each size, with the figure to reach.
#ifndef ZELM_BENCH_ROWS_H
#define ZELM_BENCH_ROWS_H

#include <functional>
#include <string>
#include <vector>

#include "peers.h"

namespace bench {

struct Row {
  std::string stage, size, family;
  Job job;
  std::function<int(ImageStruct*dst, ImageStruct*src)> ours, expected;
  double target;  // ratio to the fastest peer that counts
  double roof;    // fraction of the speed of memcpy; 0: no figure to reach

  std::string name() const { return stage + " " + size; }
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
