// What is written, and where to.
#ifndef ZELM_TOOLS_OUTPUT_TARGET_H
#define ZELM_TOOLS_OUTPUT_TARGET_H

#include <string>

#include "frame/colour.h"
#include "frame/formats.h"
#include "frame/y4m.h"
#include "options/options.h"

namespace zelm_tool {

enum class Container { kRaw, kY4m, kPng, kPnm };

// What is to be written: chosen by --to, then by the suffix of the name.
struct Target {
  Container container = Container::kRaw;
  const Format* format = nullptr;
  std::string path;
  bool md5 = false;
  bool numbered = false;  // the name holds %d or %03d: one file per frame
};

// What decides when neither --to nor the suffix does.
struct TargetDefaults {
  const Format* format = nullptr;     // of names without a suffix; nullptr: nothing
  bool y4m = false;                   // for names without a suffix
  const Format* y4mFormat = nullptr;  // of Y4M; nullptr: yuv420p
  const Format* pngFormat = nullptr;  // of PNG; nullptr: rgb24
};

// Fails in words when the target cannot be told or does not fit together.
Target chooseTarget(const OutputOptions& options, const TargetDefaults& defaults);
// Whether the target holds a single frame.
bool holdsOneFrame(const Target& target);
// The header of a Y4M stream of such frames, from the input's, with the rate that the
// options ask for; fails when that cannot be.
Y4mHeader describeY4m(Y4mHeader header, const OutputOptions& options,
                      const Target& target, const FrameKind& kind);
// The name of the file for a frame of a numbered target.
std::string numberedName(const Target& target, uint64_t number);

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_OUTPUT_TARGET_H
