// The progress line on a terminal.
#ifndef ZELM_TOOLS_PROCESS_PROGRESS_H
#define ZELM_TOOLS_PROCESS_PROGRESS_H

#include <chrono>
#include <cstdint>
#include <optional>

namespace zelm_tool {

// A line on standard error with frames and frames per second, and with percent and the
// time that remains where the number of frames is known; when that is a terminal and
// the user has not asked for quiet.
class Progress {
 public:
  Progress(bool quiet, std::optional<uint64_t> total);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void countFrame();

 private:
  using Clock = std::chrono::steady_clock;
  void print(Clock::time_point now);

  const bool shown_;
  const std::optional<uint64_t> total_;
  const Clock::time_point start_ = Clock::now();
  Clock::time_point printed_ = start_;
  uint64_t frames_ = 0;
};

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_PROCESS_PROGRESS_H
