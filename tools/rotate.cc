// The command rotate: turns frames by right angles.
#include <zelm_imageutil.h>

#include "commands.h"
#include "converter.h"
#include "failure.h"
#include "process_frames.h"
#include "result_text.h"

namespace zelm_tool {
namespace {

constexpr Methods kAnyMethods = {RESIZE_LINEAR, RESIZE_LINEAR};

struct Turn {
  int code;
  void (*stage)(ImageStruct* to, ImageStruct* from);
  bool quarter;
};

Turn turnBy(const std::string& angle) {
  if (angle == "0") return {ROTATE_0, rotate0_Y, false};
  if (angle == "90") return {ROTATE_90, rotate90_Y, true};
  if (angle == "180") return {ROTATE_180, rotate180_Y, false};
  if (angle == "270") return {ROTATE_270, rotate270_Y, true};
  fail("--angle ", angle, ": expected 0, 90, 180 or 270 (degrees clockwise)");
}

// A plane of a frame as a frame of its own, for the stages that turn luma.
ImageStruct planeRecord(Frame& frame, const Plane& plane) {
  ImageStruct record = frame.record(wholeRegion(frame.size()));
  record.data += plane.offset;
  record.width = static_cast<uint16_t>(plane.stride);
  record.height = record.roiHeight = static_cast<uint16_t>(plane.rows);
  record.roiWidth = static_cast<uint16_t>(plane.rowBytes);
  return record;
}

// Turns frames; `turn` returns a frame that is valid until the next call and laid
// out as the library writes the target's format.
class Turner {
 public:
  virtual ~Turner() = default;
  virtual Frame& turn(Frame& source) = 0;
};

class LumaTurner : public Turner {
 public:
  LumaTurner(const Format& to, const Region& region, Turn turn)
      : turn_(turn),
        region_(region),
        turned_(to.code, turn.quarter ? turned(region.size) : region.size) {}

  Frame& turn(Frame& source) override {
    requireOk(Zelm_Rotate_and_Convert(source.record(region_),
                                      turned_.record(wholeRegion(turned_.size())), 1,
                                      turn_.code));
    return turned_;
  }

 private:
  const Turn turn_;
  const Region region_;
  Frame turned_;
};

// Makes the frame planar, turns its three planes and converts it to the target's
// format.
class ColourTurner : public Turner {
 public:
  ColourTurner(const Format& from, const Format& to, Size in, const Region& region,
               Turn turn)
      : turn_(turn),
        split_(from.code, FORMAT_YUV420P,
               {in, region, region.size, wholeRegion(region.size)}, kAnyMethods),
        turned_(FORMAT_YUV420P, turn.quarter ? turned(region.size) : region.size),
        join_(FORMAT_YUV420P, to.code, unchangedGeometry(turned_.size()), kAnyMethods) {
    const Format planar = formatNamed("yv12");
    from_ = filePlanes(planar, region.size, Layout::kDestination);
    to_ = filePlanes(planar, turned_.size(), Layout::kSource);
  }

  Frame& turn(Frame& source) override {
    Frame& split = split_.convert(source);
    requireOk(Zelm_Rotate_and_Convert(split.record(wholeRegion(split.size())),
                                      turned_.record(wholeRegion(turned_.size())), 1,
                                      turn_.code));
    for (size_t i = 1; i < from_.size(); ++i) {
      ImageStruct to = planeRecord(turned_, to_[i]);
      ImageStruct from = planeRecord(split, from_[i]);
      turn_.stage(&to, &from);
    }
    return join_.convert(turned_);
  }

 private:
  const Turn turn_;
  Converter split_;
  Frame turned_;
  Converter join_;
  std::vector<Plane> from_;
  std::vector<Plane> to_;
};

bool hasLumaPlane(const Format& format) {
  return format.code == FORMAT_YUV420P || format.code == FORMAT_YUV420SP ||
         format.code == FORMAT_YUV420SPVU || format.code == FORMAT_YUV422SP ||
         format.code == FORMAT_YUV422SPVU;
}

void requireTurnable(const Format& from, const Format& to, bool lumaOnly) {
  if (lumaOnly && (!hasLumaPlane(from) || !hasLumaPlane(to))) {
    fail((hasLumaPlane(from) ? to : from).name, " has no separate luma plane; ",
         "--luma-only works with ", formatNames(hasLumaPlane));
  }
  if (!lumaOnly && !from.readable) {
    fail(from.name, " frames can only be turned with --luma-only; in colour ",
         formatNames([](const Format& f) { return f.readable; }), " can");
  }
  if (!lumaOnly && !to.writable) {
    fail(to.name, " (", to.codeName, ") cannot be written; say --to with one of ",
         formatNames([](const Format& f) { return f.writable; }));
  }
}

// Pictures of a luma plane are gray.
OutputOptions targetOptions(const RotateOptions& options) {
  OutputOptions out = options.out;
  if (options.lumaOnly && out.to.empty() && suffixOf(out.path) == "png")
    out.to = "gray";
  return out;
}

TargetDefaults targetDefaults(const RotateOptions& options, const FrameReader& reader) {
  if (reader.y4m()) return {nullptr, true};
  return {options.lumaOnly ? &formatNamed("gray") : &reader.format(), false};
}

}  // namespace

void runRotate(const RotateOptions& options) {
  const Turn turn = turnBy(options.angle);
  FrameReader reader(options.in);
  const Target target =
      chooseTarget(targetOptions(options), targetDefaults(options, reader));
  requireTurnable(reader.format(), *target.format, options.lumaOnly);
  Region region = wholeRegion(reader.size());
  if (!options.in.crop.empty()) {
    region = parseRegion("--crop", options.in.crop);
    requireInside("--crop", region, reader.size());
  }
  std::unique_ptr<Turner> turner;
  if (options.lumaOnly) {
    turner = std::make_unique<LumaTurner>(*target.format, region, turn);
  } else {
    turner = std::make_unique<ColourTurner>(reader.format(), *target.format,
                                            reader.size(), region, turn);
  }
  std::optional<Y4mHeader> header = reader.y4m();
  if (header && turn.quarter) turnAspect(&*header);
  processFrames(
      reader, target, turn.quarter ? turned(region.size) : region.size, header,
      [&turner](Frame& frame) -> Frame& { return turner->turn(frame); },
      options.out.quiet);
}

}  // namespace zelm_tool
