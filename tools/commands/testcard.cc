// The command testcard: writes frames of the test card.
#include "commands/commands.h"
#include "commands/output_colour.h"
#include "commands/test_card.h"
#include "input/frame_source.h"
#include "process/process_frames.h"

namespace zelm_tool {
namespace {

// The test card as a source of frames.
class CardFrames : public FrameSource {
 public:
  CardFrames(Size size, uint64_t frames) : card_(size), frames_(frames) {
    kind_.format = &formatOf(ZELM_NV21);
    kind_.size = size;
  }

  const FrameKind& kind() const override { return kind_; }
  InputColour colour() const override { return {}; }
  const char* container() const override { return "test card"; }
  bool isPicture() const override { return true; }
  std::optional<uint64_t> count() const override { return frames_; }
  void limitToOne() override {
    if (frames_ > 1) failMoreThanOne(frames_);
  }
  const uint8_t* next(Buffer* buffer) override {
    if (drawn_ == frames_) return nullptr;
    uint8_t* frame = buffer->reserve(kind_.bytes());
    card_.draw(drawn_++, frame);
    return frame;
  }

 private:
  TestCard card_;
  FrameKind kind_;
  const uint64_t frames_;
  uint64_t drawn_ = 0;
};

}  // namespace

void runTestcard(const TestcardOptions& options) {
  const Size size = parseSize("--size", options.size);
  requireFrameSize("--size", size);
  const Target target = chooseTarget(options.out, {});
  Work work;
  work.to.format = target.format;
  work.to.size = size;
  work.to.requireMakeable();
  CardFrames source(size, options.frames);
  if (holdsOneFrame(target)) source.limitToOne();
  work.from = source.kind();
  work.to.colour = chooseOutputColour(options.out, target, source, size);
  work.threads = options.out.threads;
  work.quiet = options.out.quiet;
  const Y4mHeader header = describeY4m({}, options.out, target, work.to);
  processFrames(source, work, [&] { return openWriter(target, work.to, header, -1); });
}

}  // namespace zelm_tool
