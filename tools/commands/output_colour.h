// The colour that is written, and what is said about colours that were assumed.
#ifndef ZELM_TOOLS_COMMANDS_OUTPUT_COLOUR_H
#define ZELM_TOOLS_COMMANDS_OUTPUT_COLOUR_H

#include <string>

#include "input/frame_source.h"
#include "options/options.h"
#include "output/target.h"
#include "process/process_frames.h"

namespace zelm_tool {

// A ZelmColour: what the options ask for, or else what the input has; of pictures, what
// is usual for the target. Fails when the options ask for it of RGB.
uint32_t chooseOutputColour(const OutputOptions& options, const Target& target,
                            const FrameSource& source, Size size);

// One line about what was assumed, if pixels depend on it; empty if not.
std::string colourRemark(const ConvertOptions& options, const FrameSource& source,
                         const Work& work);

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_COMMANDS_OUTPUT_COLOUR_H
