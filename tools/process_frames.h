// Reading, processing and writing all frames of an input.
#ifndef ZELM_TOOLS_PROCESS_FRAMES_H
#define ZELM_TOOLS_PROCESS_FRAMES_H

#include <functional>

#include "frame_reader.h"
#include "frame_writer.h"

namespace zelm_tool {

// Reads, processes and writes one frame after the other. The output is opened when
// the first frame is there, and its memory taken then. A target for one frame takes
// the first one; asking for more with --frames is an error.
void processFrames(FrameReader& reader, const Target& target, Size size,
                   const std::optional<Y4mHeader>& header,
                   const std::function<Frame&(Frame&)>& process, bool quiet);

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_PROCESS_FRAMES_H
