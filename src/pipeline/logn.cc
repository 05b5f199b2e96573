// A logarithm to any base that callers may use.
#include <cmath>

#include "zelm_imageutil.h"

extern "C" double logn(int base, int x) {
  return std::log(static_cast<double>(x)) / std::log(static_cast<double>(base));
}
