// The command info: says what an input holds.
#include <cinttypes>
#include <cstdio>

#include "commands/commands.h"
#include "failure.h"
#include "input/frame_source.h"

namespace zelm_tool {
namespace {

uint64_t countFrames(FrameSource& source) {
  Buffer buffer;
  uint64_t frames = 0;
  while (source.next(&buffer) != nullptr) ++frames;
  return frames;
}

void printColour(const FrameSource& source) {
  if (source.kind().format->isRgb()) return;
  const InputColour colour = source.colour();
  printf("range          %s%s\n", nameOf(rangeOf(colour.colour)),
         colour.rangeAssumed ? " (assumed; --range says otherwise)" : "");
  if (source.kind().format->code == ZELM_GRAY8) return;
  printf("matrix         %s%s\n", nameOf(matrixOf(colour.colour)),
         colour.matrixAssumed ? " (assumed; --matrix says otherwise)" : "");
}

void printRate(const Y4mHeader& header, uint64_t frames) {
  const Ratio rate = header.rate(), aspect = header.aspect();
  if (rate.over != 0) {
    const double perSecond =
        static_cast<double>(rate.over) / static_cast<double>(rate.under);
    printf("rate           %s, %.6g frames per second\n", formatRatio(rate).c_str(),
           perSecond);
    printf("duration       %.3f s\n", static_cast<double>(frames) / perSecond);
  }
  if (aspect.over != 0) printf("sample aspect  %s\n", formatRatio(aspect).c_str());
}

}  // namespace

void runInfo(const InfoOptions& options) {
  const std::unique_ptr<FrameSource> source = openFrames(options.in);
  const uint64_t frames = countFrames(*source);
  const FrameKind& kind = source->kind();
  const std::string format(kind.format->name);
  printf("input          %s\n",
         options.in.path == "-" ? "standard input" : options.in.path.c_str());
  printf("container      %s\n", source->container());
  printf("format         %s\n", format.c_str());
  printf("size           %ux%u\n", kind.size.width, kind.size.height);
  printf("frames         %" PRIu64 "\n", frames);
  printf("frame bytes    %zu\n", kind.bytes());
  if (source->y4m() != nullptr) printRate(*source->y4m(), frames);
  printColour(*source);
}

}  // namespace zelm_tool
