// The loop over the frames of an input, on all processors.
#include "process/process_frames.h"

#include <string.h>

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>

#include "process/plan.h"
#include "process/progress.h"

namespace zelm_tool {
namespace {

// Lets a number of threads in at the same time.
class Places {
 public:
  explicit Places(unsigned count) : free_(count) {}
  void enter() {
    std::unique_lock<std::mutex> lock(mutex_);
    wait_.wait(lock, [this] { return free_ > 0; });
    --free_;
  }
  void leave() {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      ++free_;
    }
    wait_.notify_one();
  }

 private:
  std::mutex mutex_;
  std::condition_variable wait_;
  unsigned free_;
};

// A frame on its way.
struct Slot {
  Buffer in;
  Buffer out;
  std::vector<uint8_t> encoded;
  const uint8_t* source = nullptr;
  uint64_t index = 0;
  std::exception_ptr failure;
};

// Every thread takes a frame through all stages: it reads the frame when it is the turn
// of this one, computes it beside others, and writes it when all before it are written.
class Stream {
 public:
  Stream(FrameSource& source, const Work& work, FrameWriter& writer, const Plan& plan,
         std::optional<uint64_t> total)
      : source_(source),
        work_(work),
        writer_(writer),
        plan_(plan),
        firstNumber_(source.firstNumber()),
        progress_(work.quiet, total) {}

  // Takes all frames, of which the first one has been read into `first`.
  void run(Slot* first, unsigned threads) {
    Places places(threads);
    places_ = &places;
    read_ = 1;
    std::vector<std::thread> others;
    for (unsigned i = 0; i < threads + 1; ++i) {
      try {
        others.emplace_back([this] { takeFrames(); });
      } catch (const std::system_error&) {
        break;  // fewer threads do the same
      }
    }
    takeOn(first);
    takeFrames();
    for (std::thread& thread : others) thread.join();
    if (failure_) std::rethrow_exception(failure_);
  }

 private:
  void takeFrames() {
    Slot slot;
    while (read(&slot) && takeOn(&slot)) {
    }
  }

  // False when there is nothing more to do.
  bool read(Slot* slot) {
    const std::lock_guard<std::mutex> lock(reading_);
    if (ended_) return false;
    slot->failure = nullptr;
    slot->index = read_;
    try {
      slot->source = source_.next(&slot->in);
      if (slot->source == nullptr) {
        ended_ = true;
        return false;
      }
    } catch (...) {
      ended_ = true;
      slot->failure = std::current_exception();
    }
    ++read_;
    return true;
  }

  bool takeOn(Slot* slot) {
    Piece piece = {};
    if (!slot->failure) {
      places_->enter();
      try {
        piece = compute(slot);
      } catch (...) {
        slot->failure = std::current_exception();
      }
      places_->leave();
    }
    {
      std::unique_lock<std::mutex> lock(writing_);
      turn_.wait(lock, [&] { return written_ == slot->index || failure_ != nullptr; });
      if (failure_ != nullptr) return false;
      write(slot, piece);
      failure_ = slot->failure;
      ++written_;
      if (!failure_) progress_.countFrame();
    }
    turn_.notify_all();
    if (!slot->failure) return true;
    source_.stop();
    return false;
  }

  Piece compute(Slot* slot) {
    const std::string& before = writer_.before();
    const size_t bytes = work_.to.bytes();
    uint8_t* out = slot->out.data();
    const bool fresh = out == nullptr;
    if (fresh) {
      out = slot->out.reserve(before.size() + bytes);
      std::copy(before.begin(), before.end(), out);
    }
    out += before.size();
    const ZelmFrame to = work_.to.at(out);
    if (fresh) prepare(to);
    plan_.run(to, work_.from.at(slot->source));
    source_.requireWhole();
    return writer_.encode({out, bytes}, firstNumber_ + slot->index, &slot->encoded);
  }

  // Sets what is not computed: bars, and what lies between the edge of a frame and that
  // of its last tiles.
  void prepare(const ZelmFrame& to) const {
    if (!work_.to.format->hasRows()) {
      memset(to.planes[0].data, 0, to.planes[0].size);
      memset(to.planes[1].data, 128, to.planes[1].size);
    }
    if (work_.bars) fillBlack(to);
  }

  void write(Slot* slot, Piece piece) {
    if (slot->failure) return;
    try {
      writer_.write(piece, firstNumber_ + slot->index);
    } catch (...) {
      slot->failure = std::current_exception();
    }
  }

  FrameSource& source_;
  const Work& work_;
  FrameWriter& writer_;
  const Plan& plan_;
  const uint64_t firstNumber_;
  Places* places_ = nullptr;

  std::mutex reading_;
  bool ended_ = false;
  uint64_t read_ = 0;

  std::mutex writing_;
  std::condition_variable turn_;
  uint64_t written_ = 0;
  std::exception_ptr failure_;  // of the first frame that could not be taken on
  Progress progress_;
};

// The library wants to see a destination, but does not touch it.
Plan makePlan(const Work& work, const uint8_t* source) {
  Buffer example;
  return Plan(work.to.at(example.reserve(work.to.bytes())), work.from.at(source),
              work.edit);
}

}  // namespace

void processFrames(FrameSource& source, const Work& work,
                   const std::function<std::unique_ptr<FrameWriter>()>& open) {
  const std::optional<uint64_t> total = source.count();
  Slot first;
  first.source = source.next(&first.in);
  const Plan plan = makePlan(work, first.source);
  const std::unique_ptr<FrameWriter> writer = open();
  unsigned threads = work.threads;
  if (threads == 0) threads = std::max(1u, std::thread::hardware_concurrency());
  Stream(source, work, *writer, plan, total).run(&first, threads);
  writer->finish();
}

}  // namespace zelm_tool
