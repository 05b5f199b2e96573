// The command convert: scales and converts frames.
#include <zelm_imageutil.h>

#include "commands.h"
#include "converter.h"
#include "failure.h"
#include "process_frames.h"

namespace zelm_tool {
namespace {

int methodNamed(const char* option, const std::string& name) {
  if (name == "linear") return RESIZE_LINEAR;
  if (name == "cubic") return RESIZE_CUBIC;
  if (name == "nearest") return RESIZE_NEAREST;
  fail(option, " ", name, ": expected linear, cubic or nearest");
}

Methods chooseMethods(const ConvertOptions& options) {
  Methods methods = {RESIZE_LINEAR, RESIZE_LINEAR};
  if (!options.filter.empty()) {
    methods.luma = methods.chroma = methodNamed("--filter", options.filter);
  }
  if (!options.luma.empty()) methods.luma = methodNamed("--luma", options.luma);
  if (!options.chroma.empty()) methods.chroma = methodNamed("--chroma", options.chroma);
  return methods;
}

// The destination region is as large as --resize says, or else as the source
// region; the canvas is as large as that region.
Geometry chooseGeometry(const ConvertOptions& options, Size in) {
  Geometry geometry = unchangedGeometry(in);
  if (!options.in.crop.empty()) {
    geometry.crop = parseRegion("--crop", options.in.crop);
    requireInside("--crop", geometry.crop, in);
  }
  geometry.at.size = geometry.crop.size;
  if (!options.resize.empty()) {
    geometry.at.size = parseSize("--resize", options.resize);
    requireFrameSize("--resize", geometry.at.size);
  }
  geometry.canvas = geometry.at.size;
  if (!options.canvas.empty()) {
    geometry.canvas = parseSize("--canvas", options.canvas);
    requireFrameSize("--canvas", geometry.canvas);
  } else if (!options.at.empty()) {
    fail("--at needs --canvas WxH, the size of the frame that the picture is put into");
  }
  if (!options.at.empty()) {
    const Region at = parsePoint("--at", options.at);
    geometry.at.x = at.x;
    geometry.at.y = at.y;
  }
  requireInside("the picture at", geometry.at, geometry.canvas);
  return geometry;
}

void requireConvertible(const Format& from, const Format& to) {
  if (!from.readable) {
    fail(from.name, " (", from.codeName, ") cannot be read; frames that can are ",
         formatNames([](const Format& f) { return f.readable; }));
  }
  if (!to.writable) {
    fail(to.name, " (", to.codeName, ") cannot be written; frames that can are ",
         formatNames([](const Format& f) { return f.writable; }));
  }
}

}  // namespace

void runConvert(const ConvertOptions& options) {
  const Methods methods = chooseMethods(options);
  FrameReader reader(options.in);
  const Target target = chooseTarget(options.out, {nullptr, reader.y4m().has_value()});
  requireConvertible(reader.format(), *target.format);
  const Geometry geometry = chooseGeometry(options, reader.size());
  requireMakeable(*target.format, geometry.canvas);
  Converter converter(reader.format().code, target.format->code, geometry, methods);
  processFrames(
      reader, target, geometry.canvas, reader.y4m(),
      [&converter](Frame& frame) -> Frame& { return converter.convert(frame); },
      options.out.quiet);
}

}  // namespace zelm_tool
