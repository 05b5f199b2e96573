// Reads the geometry and filters of options.
#include "commands/edit.h"

#include "failure.h"
#include "frame/formats.h"

namespace zelm_tool {
namespace {

uint32_t filterNamed(const char* option, const std::string& name, uint32_t usual) {
  const std::string lower = lowerCase(name);
  if (lower.empty()) return usual;
  if (lower == "linear") return ZELM_LINEAR;
  if (lower == "cubic") return ZELM_CUBIC;
  if (lower == "nearest") return ZELM_NEAREST;
  fail(option, " ", name, ": expected linear, cubic or nearest");
}

uint32_t turnNamed(const std::string& degrees) {
  if (degrees.empty() || degrees == "0") return 0;
  if (degrees == "90") return 90;
  if (degrees == "180") return 180;
  if (degrees == "270") return 270;
  fail("a turn by ", degrees, " degrees: expected 0, 90, 180 or 270, clockwise");
}

ZelmRegion regionOf(const Region& region) {
  return {region.x, region.y, region.size.width, region.size.height};
}

bool isQuarter(uint32_t turn) { return turn == 90 || turn == 270; }

// Where a picture stands in the middle of a canvas, at an even place for every format.
Point middle(Size picture, Size canvas) {
  const auto start = [](uint32_t side, uint32_t room) {
    return room > side ? (room - side) / 2 & ~1u : 0;
  };
  return {start(picture.width, canvas.width), start(picture.height, canvas.height)};
}

}  // namespace

Edit chooseEdit(const EditOptions& options, Size source) {
  Edit edit = {};
  edit.crop = wholeRegion(source);
  if (!options.crop.empty()) {
    edit.crop = parseRegion("--crop", options.crop);
    requireInside("--crop", edit.crop, source);
  }
  edit.edit.turn = turnNamed(options.rotate);
  edit.edit.mirror = options.mirror ? 1 : 0;
  edit.picture = isQuarter(edit.edit.turn) ? turned(edit.crop.size) : edit.crop.size;
  if (!options.resize.empty()) {
    edit.picture = parseResize("--resize", lowerCase(options.resize), edit.picture);
  }
  edit.canvas = edit.picture;
  if (!options.canvas.empty()) {
    edit.canvas = parseSize("--canvas", options.canvas);
    requireFrameSize("--canvas", edit.canvas);
    if (isFit(lowerCase(options.resize))) edit.at = middle(edit.picture, edit.canvas);
  } else if (!options.at.empty()) {
    fail("--at needs --canvas WxH, the size of the frame that the picture is put into");
  }
  if (!options.at.empty()) edit.at = parsePoint("--at", options.at);
  const Region place = {edit.at.x, edit.at.y, edit.picture};
  requireInside("the picture at", place, edit.canvas);
  edit.bars = !(place == wholeRegion(edit.canvas));
  edit.edit.source = regionOf(edit.crop);
  edit.edit.destination = regionOf(place);
  const uint32_t both = filterNamed("--filter", options.filter, ZELM_LINEAR);
  edit.edit.lumaFilter = filterNamed("--luma", options.luma, both);
  edit.edit.chromaFilter = filterNamed("--chroma", options.chroma, both);
  return edit;
}

Ratio Edit::aspect(Ratio source) const {
  if (source.over == 0) return {};
  const bool quarter = isQuarter(edit.turn);
  const Size before = quarter ? turned(crop.size) : crop.size;
  if (quarter) source = {source.under, source.over};
  return scaled(source, uint64_t{before.width} * picture.height,
                uint64_t{before.height} * picture.width);
}

}  // namespace zelm_tool
