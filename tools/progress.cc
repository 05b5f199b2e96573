// Prints how many frames were processed, several times a second.
#include "progress.h"

#include <unistd.h>

#include <cinttypes>
#include <cstdio>

namespace zelm_tool {
namespace {

constexpr std::chrono::milliseconds kInterval(250);

}  // namespace

Progress::Progress(bool quiet) : shown_(!quiet && isatty(STDERR_FILENO)) {}

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
  fprintf(stderr, "\r%" PRIu64 " frames, %.1f frames per second ", frames_,
          seconds > 0 ? static_cast<double>(frames_) / seconds : 0.0);
}

}  // namespace zelm_tool
