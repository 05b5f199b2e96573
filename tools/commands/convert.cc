// The command convert, which is rotate as well.
#include <cstdio>

#include "commands/commands.h"
#include "commands/edit.h"
#include "commands/output_colour.h"
#include "failure.h"
#include "input/frame_source.h"
#include "process/process_frames.h"

namespace zelm_tool {
namespace {

// Luma alone is the first plane of a frame that has more of them.
FrameKind lumaOf(FrameKind kind) {
  if (!kind.format->hasLumaPlane()) {
    fail(kind.format->name, " has no separate luma plane in rows, which --luma-only ",
         "would take; --to gray makes luma of any format");
  }
  kind.format = &formatOf(ZELM_GRAY8);
  return kind;
}

const Format* pictureFormat(const Format& from, bool lumaOnly) {
  switch (lumaOnly ? uint32_t{ZELM_GRAY8} : from.code) {
    case ZELM_GRAY8:
      return &formatOf(ZELM_GRAY8);
    case ZELM_RGBA:
    case ZELM_BGRA:
      return &formatOf(ZELM_RGBA);
    default:
      return nullptr;
  }
}

TargetDefaults targetDefaults(const ConvertOptions& options,
                              const FrameSource& source) {
  const Format& from = *source.kind().format;
  TargetDefaults defaults;
  defaults.y4m = source.y4m() != nullptr;
  if (defaults.y4m) defaults.y4mFormat = &from;
  defaults.pngFormat = pictureFormat(from, options.edit.lumaOnly);
  if (options.rotateCommand && !defaults.y4m) {
    defaults.format = options.edit.lumaOnly ? &formatOf(ZELM_GRAY8) : &from;
  }
  return defaults;
}

// The input's header, or a new one, with the aspect that samples have after the edit.
Y4mHeader editedHeader(const FrameSource& source, const Edit& edit) {
  Y4mHeader header = source.y4m() != nullptr ? *source.y4m() : Y4mHeader();
  const Ratio aspect = edit.aspect(header.aspect());
  if (aspect.over != 0) header.setAspect(aspect);
  return header;
}

}  // namespace

void runConvert(const ConvertOptions& options) {
  const std::unique_ptr<FrameSource> source = openFrames(options.in);
  const Target target = chooseTarget(options.out, targetDefaults(options, *source));
  if (holdsOneFrame(target)) source->limitToOne();
  const Edit edit = chooseEdit(options.edit, source->kind().size);

  Work work;
  work.from = options.edit.lumaOnly ? lumaOf(source->kind()) : source->kind();
  work.to.format = target.format;
  work.to.size = edit.canvas;
  work.to.colour = chooseOutputColour(options.out, target, *source, edit.canvas);
  work.to.requireMakeable();
  work.edit = edit.edit;
  work.bars = edit.bars;
  work.threads = options.out.threads;
  work.quiet = options.out.quiet;
  const Y4mHeader header =
      describeY4m(editedHeader(*source, edit), options.out, target, work.to);
  const std::string assumed = colourRemark(options, *source, work);

  processFrames(*source, work, [&] {
    auto writer = openWriter(target, work.to, header, source->descriptor());
    if (!assumed.empty() && !work.quiet) {
      fprintf(stderr, "zelm-imageutil: %s\n", assumed.c_str());
    }
    return writer;
  });
}

}  // namespace zelm_tool
