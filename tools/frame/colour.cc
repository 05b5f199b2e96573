// Names, numbers and defaults of colour descriptions.
#include "frame/colour.h"

#include <utility>

#include "failure.h"
#include "frame/formats.h"

namespace zelm_tool {
namespace {

// From here on video is of high definition.
constexpr uint32_t kHighWidth = 1280;
constexpr uint32_t kHighHeight = 720;

}  // namespace

ColourRequest parseColour(const std::string& start, const ColourOptions& options) {
  ColourRequest request;
  const std::string range = lowerCase(options.range);
  const std::string matrix = lowerCase(options.matrix);
  for (Range r : {Range::kFull, Range::kLimited}) {
    if (range == nameOf(r)) request.range = r;
  }
  constexpr std::pair<const char*, Matrix> kMatrices[] = {{"bt601", Matrix::kBt601},
                                                          {"bt709", Matrix::kBt709},
                                                          {"bt2020", Matrix::kBt2020}};
  for (const auto& [name, m] : kMatrices) {
    if (matrix == name) request.matrix = m;
  }
  if (!range.empty() && range != "auto" && !request.range) {
    fail(start, "range ", options.range, ": expected auto, full or limited");
  }
  if (!matrix.empty() && matrix != "auto" && !request.matrix) {
    fail(start, "matrix ", options.matrix, ": expected auto, bt601, bt709 or bt2020");
  }
  return request;
}

Matrix usualMatrix(Size size) {
  const bool high = size.width >= kHighWidth || size.height >= kHighHeight;
  return high ? Matrix::kBt709 : Matrix::kBt601;
}

uint32_t colourOf(Range range, Matrix matrix) {
  const uint32_t full = matrix == Matrix::kBt601   ? ZELM_BT601_FULL
                        : matrix == Matrix::kBt709 ? ZELM_BT709_FULL
                                                   : ZELM_BT2020_FULL;
  return range == Range::kFull ? full : full + 1;
}

Range rangeOf(uint32_t colour) {
  return colour % 2 == 0 ? Range::kFull : Range::kLimited;
}

Matrix matrixOf(uint32_t colour) {
  if (colour <= ZELM_BT601_LIMITED) return Matrix::kBt601;
  return colour <= ZELM_BT709_LIMITED ? Matrix::kBt709 : Matrix::kBt2020;
}

const char* nameOf(Range range) { return range == Range::kFull ? "full" : "limited"; }

const char* nameOf(Matrix matrix) {
  if (matrix == Matrix::kBt601) return "BT.601";
  return matrix == Matrix::kBt709 ? "BT.709" : "BT.2020";
}

InputColour chooseInputColour(const ColourRequest& asked, const ColourRequest& stated,
                              Range usualRange, Matrix usualMatrix) {
  InputColour input;
  const std::optional<Range> range = asked.range ? asked.range : stated.range;
  const std::optional<Matrix> matrix = asked.matrix ? asked.matrix : stated.matrix;
  input.colour = colourOf(range.value_or(usualRange), matrix.value_or(usualMatrix));
  input.rangeAssumed = !range;
  input.matrixAssumed = !matrix;
  return input;
}

std::string assumedText(const InputColour& input) {
  std::string text;
  if (input.rangeAssumed) text = std::string(nameOf(rangeOf(input.colour))) + " range";
  if (input.matrixAssumed) {
    if (!text.empty()) text += " and ";
    text += nameOf(matrixOf(input.colour));
  }
  return text;
}

}  // namespace zelm_tool
