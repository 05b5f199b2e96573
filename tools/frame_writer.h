// Where frames go, and what is written there.
#ifndef ZELM_TOOLS_FRAME_WRITER_H
#define ZELM_TOOLS_FRAME_WRITER_H

#include <memory>
#include <optional>
#include <string>

#include "formats.h"
#include "frame.h"
#include "options.h"
#include "y4m.h"

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
  const Format* format = nullptr;  // nullptr: nothing
  bool y4m = false;                // for names without a suffix
};

// Fails in words when the target cannot be told or does not fit together.
Target chooseTarget(const OutputOptions& options, const TargetDefaults& defaults);
// Whether the target holds a single frame.
bool holdsOneFrame(const Target& target);

// Writes frames that are laid out as the library writes them.
class FrameWriter {
 public:
  virtual ~FrameWriter() = default;
  virtual void write(const Frame& frame) = 0;
  // Makes the output visible under its name.
  virtual void finish() = 0;
};

// `header` is used for a Y4M target only.
std::unique_ptr<FrameWriter> openWriter(const Target& target, Size size,
                                        const std::optional<Y4mHeader>& header);

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_FRAME_WRITER_H
