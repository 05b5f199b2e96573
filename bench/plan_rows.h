// The rows of libzelm_frames to measure: plans at each size, with the figures to reach.
#ifndef ZELM_BENCH_PLAN_ROWS_H
#define ZELM_BENCH_PLAN_ROWS_H

#include "measure.h"

namespace bench {

// A frame without memory.
struct Side {
  uint32_t format, width, height, colour, padding;  // padding: bytes behind each row
};

struct PlanRow : Label {
  Side src, dst;
  ZelmEdit edit;
  int threads;
  std::function<void(const PlanJob&)> other;  // the way that is called `own`
};

std::vector<PlanRow> allPlanRows();

// Checks a plan against the same plan with plain code, and times it.
Result measure(const PlanRow& row, const Ceilings& ceilings,
               const std::vector<Library>& peers);

}  // namespace bench

#endif  // ZELM_BENCH_PLAN_ROWS_H
