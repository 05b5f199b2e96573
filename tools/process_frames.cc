// The loop over the frames of an input.
#include "process_frames.h"

#include "progress.h"

namespace zelm_tool {

void processFrames(FrameReader& reader, const Target& target, Size size,
                   const std::optional<Y4mHeader>& header,
                   const std::function<Frame&(Frame&)>& process, bool quiet) {
  if (holdsOneFrame(target)) reader.limitToOne();
  Frame* frame = reader.next();
  const std::unique_ptr<FrameWriter> writer = openWriter(target, size, header);
  Progress progress(quiet);
  for (; frame != nullptr; frame = reader.next()) {
    writer->write(process(*frame));
    progress.countFrame();
  }
  writer->finish();
}

}  // namespace zelm_tool
