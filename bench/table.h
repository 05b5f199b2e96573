// What was measured, as Markdown.
#ifndef ZELM_BENCH_TABLE_H
#define ZELM_BENCH_TABLE_H

#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "measure.h"

namespace bench {

using Measured = std::vector<std::pair<Row, Result>>;

// The rows with the ratio to each peer, then which figures were reached.
void printTable(const Measured& rows, std::ostream& out);

// How far the peers' outputs are from ours.
void printDifferences(const Measured& rows, std::ostream& out);

}  // namespace bench

#endif  // ZELM_BENCH_TABLE_H
