// Weights of the outer taps of cubic convolution with a = -1, in 1/256: with
// t = f / 256, far[f] = 256 t^2 (1 - t) and near[f] = 256 t (1 - t)^2, rounded half
// up. Entry 257 pads the tables and is 0.
#ifndef ZELM_SRC_RESIZE_CUBIC_TABLES_H_
#define ZELM_SRC_RESIZE_CUBIC_TABLES_H_

#include <cstdint>

namespace zelm {

struct CubicTable {
  int32_t weight[258];
  constexpr int32_t operator[](unsigned f) const { return weight[f]; }
};

constexpr CubicTable makeCubicFarTable() {
  CubicTable table = {};
  for (int32_t f = 0; f <= 256; ++f) {
    table.weight[f] = (f * f * (256 - f) + 32768) >> 16;
  }
  return table;
}

constexpr CubicTable makeCubicNearTable() {
  const CubicTable far = makeCubicFarTable();
  CubicTable table = {};
  for (int32_t f = 0; f <= 256; ++f) table.weight[f] = far.weight[256 - f];
  return table;
}

inline constexpr CubicTable cubicFarTable = makeCubicFarTable();
inline constexpr CubicTable cubicNearTable = makeCubicNearTable();

// Taps of the samples before, at, after and beyond; they sum to 256.
struct CubicTaps {
  int tap[4];
};

inline CubicTaps cubicTaps(unsigned f) {
  const int near = cubicNearTable[f], far = cubicFarTable[f];
  return {{-near, 256 - static_cast<int>(f) + near, static_cast<int>(f) + far, -far}};
}

}  // namespace zelm

#endif  // ZELM_SRC_RESIZE_CUBIC_TABLES_H_
