// Where the samples of a destination axis lie on the source axis. The mapping is
// aligned at the corners: the first sample lies on the first, the last on the last, and
// the others evenly in between. Positions have 32 fraction bits.
#ifndef ZELM_SRC_RESIZE_AXIS_H_
#define ZELM_SRC_RESIZE_AXIS_H_

#include <cstddef>
#include <cstdint>

namespace zelm {

struct Axis {
  uint64_t step;  // source distance of two destination samples
  size_t last;    // the last source index

  Axis(size_t from, size_t to) : step(0), last(from - 1) {
    if (to <= 1) return;
    const double ratio = static_cast<double>(static_cast<int32_t>(from - 1)) /
                         static_cast<double>(static_cast<int32_t>(to - 1));
    // Below 2^63, so that the signed conversion serves, which is one instruction.
    step = static_cast<uint64_t>(static_cast<int64_t>(0.5 + ratio * 4294967296.0));
  }

  size_t clamp(size_t index) const { return index < last ? index : last; }

  // Returns the nearest sample, which is the whole part of the position half a sample
  // on. Of destination samples it is none behind the last, as (to - 1) * step exceeds
  // the last source index by less than half.
  size_t nearest(size_t i) const { return clamp(static_cast<size_t>(halfOn(i) >> 32)); }
  uint64_t halfOn(size_t i) const { return UINT64_C(0x80000000) + i * step; }

  // Return the sample at or before the position, and the distance of the position from
  // it in 1/256, rounded: 0 to 256.
  size_t before(size_t i) const { return static_cast<size_t>((i * step) >> 32); }
  unsigned weight(size_t i) const {
    const uint64_t fraction = (i * step) & 0xFFFFFFFF;
    return static_cast<unsigned>((fraction + (1 << 23)) >> 24);
  }
};

}  // namespace zelm

#endif  // ZELM_SRC_RESIZE_AXIS_H_
