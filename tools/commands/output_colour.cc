// Chooses the colour of the output.
#include "commands/output_colour.h"

#include "failure.h"

namespace zelm_tool {
namespace {

bool isGrayPicture(const Target& target) {
  return target.format->code == ZELM_GRAY8 &&
         (target.container == Container::kPng || target.container == Container::kPnm);
}

// What of the input's colour the written pixels depend on.
InputColour needed(InputColour colour, const FrameKind& from, const FrameKind& to) {
  const bool gray = from.format->code == ZELM_GRAY8 || to.format->code == ZELM_GRAY8;
  const bool rgb = to.format->isRgb();
  const bool matrix = rgb || matrixOf(from.colour) != matrixOf(to.colour);
  const bool range = matrix || rangeOf(from.colour) != rangeOf(to.colour);
  colour.matrixAssumed = colour.matrixAssumed && matrix && !gray;
  colour.rangeAssumed = colour.rangeAssumed && range;
  return colour;
}

std::string optionsFor(const InputColour& colour, const char* range,
                       const char* matrix) {
  if (!colour.matrixAssumed) return std::string(range) + " says otherwise";
  if (!colour.rangeAssumed) return std::string(matrix) + " says otherwise";
  return std::string(range) + " and " + matrix + " say otherwise";
}

}  // namespace

uint32_t chooseOutputColour(const OutputOptions& options, const Target& target,
                            const FrameSource& source, Size size) {
  const ColourRequest asked = parseColour("--to-", options.colour);
  if (target.format->isRgb()) {
    if (asked.range || asked.matrix) {
      fail("--to-range and --to-matrix are for YUV that is written, not for ",
           target.format->name);
    }
    return ZELM_BT601_FULL;
  }
  uint32_t usual = source.kind().colour;
  if (source.isPicture()) {
    usual = target.container == Container::kY4m
                ? colourOf(Range::kLimited, usualMatrix(size))
                : uint32_t{ZELM_BT601_FULL};
  }
  if (isGrayPicture(target)) usual = colourOf(Range::kFull, matrixOf(usual));
  return colourOf(asked.range.value_or(rangeOf(usual)),
                  asked.matrix.value_or(matrixOf(usual)));
}

std::string colourRemark(const ConvertOptions& options, const FrameSource& source,
                         const Work& work) {
  const std::string name = options.in.path == "-" ? "standard input" : options.in.path;
  if (!work.from.format->isRgb()) {
    const InputColour colour = needed(source.colour(), work.from, work.to);
    const std::string text = assumedText(colour);
    if (text.empty()) return "";
    return name + " is taken to have " + text + "; " +
           optionsFor(colour, "--range", "--matrix");
  }
  if (work.to.format->isRgb()) return "";
  const ColourRequest asked = parseColour("--to-", options.out.colour);
  InputColour written;
  written.colour = work.to.colour;
  written.rangeAssumed = !asked.range;
  written.matrixAssumed = !asked.matrix;  // it says what luma is made of
  const std::string text = assumedText(written);
  if (text.empty()) return "";
  return "what is written has " + text + "; " +
         optionsFor(written, "--to-range", "--to-matrix");
}

}  // namespace zelm_tool
