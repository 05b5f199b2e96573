// Names, numbers and defaults of colour descriptions.
#include "frame/colour.h"

#include "failure.h"
#include "frame/formats.h"

namespace zelm_tool {
namespace {

// From here on video is of high definition.
constexpr uint32_t kHighWidth = 1280;
constexpr uint32_t kHighHeight = 720;

}  // namespace

ColourRequest parseColour(const std::string& rangeOption, const std::string& range,
                          const std::string& matrixOption, const std::string& matrix) {
  ColourRequest request;
  const std::string r = lowerCase(range), m = lowerCase(matrix);
  if (r == "full") {
    request.range = Range::kFull;
  } else if (r == "limited") {
    request.range = Range::kLimited;
  } else if (!r.empty() && r != "auto") {
    fail(rangeOption, " ", range, ": expected auto, full or limited");
  }
  if (m == "bt601") {
    request.matrix = Matrix::kBt601;
  } else if (m == "bt709") {
    request.matrix = Matrix::kBt709;
  } else if (m == "bt2020") {
    request.matrix = Matrix::kBt2020;
  } else if (!m.empty() && m != "auto") {
    fail(matrixOption, " ", matrix, ": expected auto, bt601, bt709 or bt2020");
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
