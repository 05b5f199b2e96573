// A clamp that callers may use.
#include "zelm_imageutil.h"

extern "C" int clipping(int value, int low, int high) {
  if (value < low) return low;
  return value > high ? high : value;
}
