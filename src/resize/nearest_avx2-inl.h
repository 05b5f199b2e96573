// Nearest scaling of a vector's width of columns down the rows. Included by nearest.cc
// in the pass with AVX2.
//
// Every row comes from another one, as only frames that are reduced are made like this.
#include "simd/vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// A vector of a row, or the last half of one, with its table in registers.
template <class Unit, bool kHalf = false>
class HeldPart {
 public:
  HWY_INLINE HeldPart(const Unit& unit, size_t start) : picks_(unit), start_(start) {}

  HWY_INLINE void make(uint8_t* row, const uint8_t* from) const {
    if constexpr (kHalf) {
      hn::StoreU(picks_.pickBlock(from), Block(), row + start_);
    } else {
      store(picks_.pick(from), row + start_);
    }
  }

 private:
  typename Unit::Held picks_;
  size_t start_;
};

// Makes rows of `bytes` bytes out of units, each for a vector, and the last one for
// half a vector if the rows end in half. Rows of small frames are made two parts at a
// time. Long rows would push each other out of the first-level cache.
template <class Unit>
HWY_INLINE void pickDownwards(const Region& to, const RowsDown& rows, const Unit* units,
                              size_t bytes, bool endInHalf) {
  using Whole = HeldPart<Unit>;
  using Half = HeldPart<Unit, true>;
  const size_t vectors = vectorsFor(bytes) - endInHalf;
  const auto whole = [&](size_t v)
                         HWY_ATTR { return Whole(units[v], vectorStart(v, bytes)); };
  const auto makeTwo = [&](const auto& left, const auto& right) HWY_ATTR {
    rows.eachNearest(to, [&](uint8_t* row, const uint8_t* from) HWY_ATTR {
      left.make(row, from);
      right.make(row, from);
    });
  };
  const auto makeOne = [&](const auto& part, size_t ahead) HWY_ATTR {
    rows.eachNearest(to, [&](uint8_t* row, const uint8_t* from) HWY_ATTR {
      __builtin_prefetch(from + ahead);
      part.make(row, from);
    });
  };

  const bool small = vectors <= 16;
  size_t v = 0;
  for (; small && v + 2 <= vectors; v += 2) makeTwo(whole(v), whole(v + 1));
  if (endInHalf) {
    const Half last(units[vectors], bytes - kBytes / 2);
    if (small && v < vectors) {
      makeTwo(whole(v++), last);
    } else {
      makeOne(last, units[vectors].start());
    }
  }
  for (; v < vectors; ++v) {
    makeOne(whole(v), units[v + 3 < vectors ? v + 3 : vectors - 1].start());
  }
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
