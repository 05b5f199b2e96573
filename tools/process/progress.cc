// Prints how many frames were processed, several times a second.
#include "process/progress.h"

#include <unistd.h>

#include <cinttypes>
#include <cmath>
#include <cstdio>

namespace zelm_tool {
namespace {

constexpr std::chrono::milliseconds kInterval(250);

}  // namespace

Progress::Progress(bool quiet, std::optional<uint64_t> total)
    : shown_(!quiet && isatty(STDERR_FILENO)), total_(total) {}

Progress::~Progress() {
  if (!shown_ || frames_ == 0) return;
  print(Clock::now());
  fputc('\n', stderr);
}

void Progress::countFrame() {
  ++frames_;
  if (!shown_) return;
  const Clock::time_point now = Clock::now();
  if (now - printed_ >= kInterval) print(now);
}

void Progress::print(Clock::time_point now) {
  printed_ = now;
  const double seconds = std::chrono::duration<double>(now - start_).count();
  const double done = static_cast<double>(frames_);
  fprintf(stderr, "\r%" PRIu64, frames_);
  if (total_ && *total_ >= frames_) fprintf(stderr, " of %" PRIu64, *total_);
  fprintf(stderr, " frames, %.1f frames per second",
          seconds > 0 ? done / seconds : 0.0);
  if (total_ && *total_ >= frames_) {
    const double all = static_cast<double>(*total_);
    const uint64_t left =
        static_cast<uint64_t>(std::llround(seconds / done * (all - done)));
    fprintf(stderr, ", %.0f %%, %" PRIu64 ":%02u left", 100 * done / all, left / 60,
            static_cast<unsigned>(left % 60));
  }
  fprintf(stderr, "   ");  // over the end of a longer line
}

}  // namespace zelm_tool
