// What luma and chroma of frames mean: what is asked for, known and assumed.
#ifndef ZELM_TOOLS_FRAME_COLOUR_H
#define ZELM_TOOLS_FRAME_COLOUR_H

#include <zelm_frames.h>

#include <optional>
#include <string>

#include "frame/geometry.h"
#include "options/options.h"

namespace zelm_tool {

enum class Range { kFull, kLimited };
enum class Matrix { kBt601, kBt709, kBt2020 };

// A range and a matrix, or one of them, or neither.
struct ColourRequest {
  std::optional<Range> range;
  std::optional<Matrix> matrix;
};

// The texts of options; empty ones and "auto" ask for nothing. The options' names begin
// with `start` and stand in the message when a text is wrong.
ColourRequest parseColour(const std::string& start, const ColourOptions& options);

// What video without a word about its matrix is taken to have, as players do.
Matrix usualMatrix(Size size);

uint32_t colourOf(Range range, Matrix matrix);  // a ZelmColour
Range rangeOf(uint32_t colour);
Matrix matrixOf(uint32_t colour);
const char* nameOf(Range range);    // "full"
const char* nameOf(Matrix matrix);  // "BT.709"

// The colour of an input, and what of it nobody has said.
struct InputColour {
  uint32_t colour = ZELM_BT601_FULL;
  bool rangeAssumed = false;
  bool matrixAssumed = false;
};

// `asked` comes first, then `stated`, which a header says, then `usual`.
InputColour chooseInputColour(const ColourRequest& asked, const ColourRequest& stated,
                              Range usualRange, Matrix usualMatrix);

// "limited range and BT.709", of those that were assumed; empty where nothing was.
std::string assumedText(const InputColour& input);

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_FRAME_COLOUR_H
