// Calls steps of the library and of a peer once each between marks, for a plugin of the
// emulator that counts the instructions in between (instruction_counter.c). Prints
//   STEP,SIZE,FAMILY,WHO,COUNT
// where WHO is ours, libyuv or, for a peer that answers another question, libyuv*, and
// COUNT comes from the plugin.
//   zelm-count [REGEX]    only rows whose name contains a match
#include <stdio.h>
#include <unistd.h>

#include <regex>

#include "frames.h"
#include "rows.h"

namespace {

// Small frames, as emulation is slow.
bool shortEnough(const bench::Row& row) {
  return row.job.step != bench::Step::kPipeline && row.job.src.height <= 1080 &&
         row.size != "1920x1080";
}

enum Mark { kBegin, kEnd };
void mark(Mark which) { syscall(0x7E1, which); }

// The first call resolves symbols and is not counted.
void count(const bench::Row& row, const char* who, const std::function<void()>& call) {
  call();
  printf("%s,%s,%s,%s,", row.stage.c_str(), row.size.c_str(), row.family.c_str(), who);
  fflush(stdout);
  mark(kBegin);
  call();
  mark(kEnd);
}

bool countRow(bench::Row row) {
  bench::Frame src(row.job.src, bench::Buffer::kSource);
  bench::Frame dst(row.job.dst, bench::Buffer::kDestination);
  bench::Frame expected(row.job.dst, bench::Buffer::kDestination);
  bench::paint(src);
  row.job.src = src.record;
  row.job.dst = dst.record;
  row.expected(&expected.record, &src.record);
  row.ours(&dst.record, &src.record);
  if (memcmp(dst.record.data, expected.record.data, dst.buffer->size()) != 0) {
    fprintf(stderr, "%s: wrong output, not counted\n", row.name().c_str());
    return false;
  }
  count(row, "ours", [&] { row.ours(&dst.record, &src.record); });
  for (const bench::Library& library : bench::libraries(false)) {
    const bench::Peer peer = bench::peerFor(library, row.job);
    if (peer.run) count(row, peer.counted ? "libyuv" : "libyuv*", peer.run);
  }
  return true;
}

}  // namespace

int main(int count, char** arguments) {
  const std::regex wanted(count > 1 ? arguments[1] : ".");
  int wrong = 0;
  for (const bench::Row& row : bench::allRows()) {
    if (!shortEnough(row) || !std::regex_search(row.name(), wanted)) continue;
    if (!countRow(row)) ++wrong;
  }
  return wrong == 0 ? 0 : 1;
}
