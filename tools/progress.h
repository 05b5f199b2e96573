// The progress line on a terminal.
#ifndef ZELM_TOOLS_PROGRESS_H
#define ZELM_TOOLS_PROGRESS_H

#include <chrono>
#include <cstdint>

namespace zelm_tool {

// A line on standard error with frames and frames per second, when that is a
// terminal and the user has not asked for quiet.
class Progress {
 public:
  explicit Progress(bool quiet);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void countFrame();

 private:
  using Clock = std::chrono::steady_clock;
  void print(Clock::time_point now);

  const bool shown_;
  const Clock::time_point start_ = Clock::now();
  Clock::time_point printed_ = start_;
  uint64_t frames_ = 0;
};

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_PROGRESS_H
