// Reading, converting and writing all frames of an input.
#ifndef ZELM_TOOLS_PROCESS_PROCESS_FRAMES_H
#define ZELM_TOOLS_PROCESS_PROCESS_FRAMES_H

#include <functional>

#include "frame/frame.h"
#include "input/frame_source.h"
#include "output/frame_writer.h"

namespace zelm_tool {

// What every frame goes through.
struct Work {
  FrameKind from;  // what is read of a frame: its luma alone is a kind of its own
  FrameKind to;
  ZelmEdit edit = {};
  bool bars = false;     // the picture does not fill the frame; black around it
  unsigned threads = 0;  // frames computed at the same time; 0: one for each processor
  bool quiet = false;
};

// Converts every frame of `source`. Reading, computing and writing overlap, and what is
// written does not depend on the number of threads. As many frames are in memory as are
// computed at the same time, and two more. The output is opened by `open` when the
// first frame is there and known to be convertible.
void processFrames(FrameSource& source, const Work& work,
                   const std::function<std::unique_ptr<FrameWriter>()>& open);

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_PROCESS_PROCESS_FRAMES_H
