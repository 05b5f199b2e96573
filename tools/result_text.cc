// The meaning of the library's result codes in words.
#include "result_text.h"

#include <zelm_imageutil.h>

#include "failure.h"

namespace zelm_tool {
namespace {

const char* resultText(int result) {
  switch (result) {
    case RESULT_NULL:
      return "RESULT_NULL: a frame has no buffer";
    case RESULT_BAD_SIZE:
      return "RESULT_BAD_SIZE: width and height must be even and not 0";
    case RESULT_BAD_ROI:
      return "RESULT_BAD_ROI: the region must lie inside the frame and not be empty";
    case RESULT_BAD_FORMAT:
      return "RESULT_BAD_FORMAT: the format cannot be used on this side; "
             "'zelm-imageutil formats' shows which can";
    case RESULT_UNSUPPORTED_CONVERSION:
      return "RESULT_UNSUPPORTED_CONVERSION: there is no way from the one format to "
             "the other; 'zelm-imageutil formats' shows which there are";
    case RESULT_GEOMETRY_MISMATCH:
      return "RESULT_GEOMETRY_MISMATCH: planar frames are converted at equal size and "
             "region only";
    case RESULT_BAD_LUMA_METHOD:
      return "RESULT_BAD_LUMA_METHOD: --luma must be linear, cubic or nearest";
    case RESULT_BAD_CHROMA_METHOD:
      return "RESULT_BAD_CHROMA_METHOD: --chroma must be linear, cubic or nearest";
    case RESULT_BAD_ROTATION:
      return "RESULT_BAD_ROTATION: the angle must be 0, 90, 180 or 270";
    case RESULT_BAD_MODE:
      return "RESULT_BAD_MODE: the rotation mode must be 1";
    case RESULT_ROI_MISMATCH:
      return "RESULT_ROI_MISMATCH: the regions' sizes do not fit the rotation";
    case RESULT_NO_MEMORY:
      return "RESULT_NO_MEMORY: no memory for an intermediate frame";
    default:
      return "a result code that is not known";
  }
}

}  // namespace

void requireOk(int result) {
  if (result != RESULT_OK) {
    fail("the library refused with ", result, ", ", resultText(result));
  }
}

}  // namespace zelm_tool
