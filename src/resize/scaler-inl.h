// The frame of the scalers: strips of columns, tables of where their bytes come from,
// and rows that are filtered once and kept. Included once per instruction set, by a
// file that defines a scaling method, which is a class M with
//
//   kSample   the bytes of a sample
//   kTaps     how many samples, side by side, make one in each direction
//   kPicks    how many bytes vectors pick for each destination byte: 1 or 2
//   kStrip    the destination bytes that are made of every row at a time
//   Filtered  the numbers of a filtered row
//
//   tapOf(axis, byte)  where a byte of a destination row comes from; its lowest()
//                      is the first of the source bytes that it is made of
//   RowTap(axis, y)    the source rows of a destination row, row[kTaps], and weights
//   PlainColumns, VectorColumns<pieces>
//                      what is known of the columns of a strip, constructed with the
//                      axis, the strip's first byte within a row of the whole plane,
//                      its bytes, and vectors with the bytes of a source row
//
// Columns make a row of their strip by makeRow(to, rows, tap, next), where rows are
// source rows if kDirect, filtered rows if kKept, either if both. `next` are the
// source rows of the next destination row, or null if they need not be prefetched.
// A source row is filtered by filterRow(to, from).
//
// With AVX2 tables may be filled group by group, unit.setGroup(group, taps, byte,
// rowBytes), if kGroupTaps, and strips be made vector by vector down the rows,
// makeDownwards(to, rows), if kDownwards. Columns M::Reduced, for which kTaps is 2, are
// made in this way only, of source rows, and preferred where they suit(axis).
#if ZELM_VBMI || defined(ZELM_SRC_RESIZE_SCALER_INL_H_) == defined(HWY_TARGET_TOGGLE)
#if !ZELM_VBMI
#ifdef ZELM_SRC_RESIZE_SCALER_INL_H_
#undef ZELM_SRC_RESIZE_SCALER_INL_H_
#else
#define ZELM_SRC_RESIZE_SCALER_INL_H_
#endif
#endif

#include <utility>

#include "plane.h"
#include "resize/axis.h"
#include "resize/picks-inl.h"
#include "resize/scale_plane.h"

#if ZELM_IS_AVX2
#include "resize/group_taps_avx2-inl.h"
#endif

HWY_BEFORE_NAMESPACE();
namespace zelm::HWY_NAMESPACE {
namespace {

// Returns the bytes of a strip: at most `most`, such that tables and filtered rows fit
// on a small stack, and a whole number of samples and of vectors.
constexpr size_t stripBytes(size_t sample, size_t most) {
  return most - most % (64 * sample);
}

#if ZELM_IS_AVX2
constexpr bool kGroupsAtOnce = true;
#else
constexpr bool kGroupsAtOnce = false;
template <size_t kSample>
class GroupTaps;
#endif

#if ZELM_VECTORS
// The tables of a strip. A vector is picked in M::kPicks units, and a unit makes kBytes
// / M::kPicks destination bytes. Group by group a unit is told where its lowest byte
// lies, by place(group, lowest, rowBytes), and the tap of each lane, by set(lane, tap).
template <class M, class Unit>
class UnitTables {
 public:
  UnitTables(const Axis& across, size_t first, size_t bytes, size_t rowBytes,
             bool mayEndInHalf = false)
      : bytes_(bytes), endsInHalf_(mayEndInHalf && (bytes - 1) % kBytes < kBytes / 2) {
    constexpr size_t kLanes = kPieceBytes / M::kPicks;  // of a group
    if constexpr (kGroupsAtOnce && M::kGroupTaps) {
      setGroups(across, first, rowBytes);
      return;
    }
    for (size_t u = 0; u < M::kPicks * vectorsFor(bytes); ++u) {
      const size_t start = first + vectorStart(u / M::kPicks, bytes);
      for (size_t lane = 0; lane < kGroups * kLanes; lane += kLanes) {
        decltype(M::tapOf(across, 0)) taps[kLanes];
        size_t lowest = SIZE_MAX;
        for (size_t i = 0; i < kLanes; ++i) {
          const size_t byte =
              M::kPicks == 1 ? lane + i : byteOfLane(u % M::kPicks, lane + i);
          taps[i] = M::tapOf(across, start + byte);
          if (taps[i].lowest() < lowest) lowest = taps[i].lowest();
        }
        units_[u].place(lane / kLanes, lowest, rowBytes);
        for (size_t i = 0; i < kLanes; ++i) units_[u].set(lane + i, taps[i]);
      }
    }
  }

 private:
  HWY_INLINE void setGroups(const Axis& across, size_t first, size_t rowBytes) {
    constexpr size_t kLanes = kPieceBytes / M::kPicks;
    const GroupTaps<M::kSample> taps(across);
    const size_t units = M::kPicks * (vectorsFor(bytes_) - endsInHalf_);
    for (size_t u = 0; u < units; ++u) {
      setUnit(u, taps,
              first + vectorStart(u / M::kPicks, bytes_) + u % M::kPicks * kLanes,
              kGroups, kPieceBytes, rowBytes);
    }
    // Half a vector takes one unit, or the first group of one.
    if (endsInHalf_) {
      setUnit(units, taps, first + bytes_ - kBytes / 2, M::kPicks * kGroups / 2, kLanes,
              rowBytes);
    }
  }

  template <class Taps>
  HWY_INLINE void setUnit(size_t u, const Taps& taps, size_t start, size_t groups,
                          size_t apart, size_t rowBytes) {
    for (size_t group = 0; group < groups; ++group) {
      units_[u].setGroup(group, taps, start + group * apart, rowBytes);
    }
  }

 protected:
  size_t bytes_;
  bool endsInHalf_;  // whether the last unit is of the last half vector of bytes
  Unit units_[M::kPicks * M::kStrip / kBytes];
};
#endif  // ZELM_VECTORS

// Where some destination rows of a plane come from, of which `first` is the first one.
struct RowsDown {
  static constexpr size_t kMost = 64;  // of them, at a time
  const Region& from;
  const Axis& down;
  size_t first;

  // Calls body(row, nearest source row) for each row of `to`.
  template <class Body>
  HWY_INLINE void eachNearest(const Region& to, const Body& body) const {
    const Region source = from;
    const uint64_t step = down.step;
    uint64_t position = down.halfOn(first);
    uint8_t *row = to.origin, *const end = to.row(to.rows);
    for (; row != end; row += to.stride) {
      body(row, source.row(static_cast<size_t>(position >> 32)));
      position += step;
    }
  }
};

// The last filtered rows of a strip. Row y is kept in place y mod kTaps, so the rows of
// one destination row, being neighbours, never push each other out, and when a plane is
// enlarged every source row is filtered once.
template <class M, class Columns>
class FilteredRows {
 public:
  using Filtered = typename M::Filtered;

  FilteredRows(const Region& from, const Columns& columns)
      : from_(from), columns_(columns) {
    for (size_t& index : index_) index = SIZE_MAX;
  }

  HWY_INLINE const Filtered* get(size_t y) {
    Filtered* row = rows_[y % M::kTaps];
    if (index_[y % M::kTaps] != y) {
      columns_.filterRow(row, from_.row(y));
      index_[y % M::kTaps] = y;
    }
    return row;
  }

 private:
  const Region& from_;
  const Columns& columns_;
  alignas(64) Filtered rows_[M::kTaps][M::kStrip];
  size_t index_[M::kTaps];
};

template <class M>
class Scaler {
 public:
  Scaler(const Region& to, const Region& from, const PlanePart& part)
      : to_(to),
        from_(from),
        part_(part),
        across_(from.columns, part.wholeColumns),
        down_(from.rows, part.wholeRows) {}

  HWY_INLINE void scale() const {
    const size_t rowBytes = to_.columns * M::kSample;
    for (size_t first = 0; first < rowBytes; first += M::kStrip) {
      const size_t end = first + M::kStrip < rowBytes ? first + M::kStrip : rowBytes;
      scaleColumns(first, end - first);
    }
  }

 private:
  // Vectors are used if rows are long enough for them and sources lie close enough
  // together.
  HWY_INLINE void scaleColumns(size_t first, size_t bytes) const {
    const size_t inWhole = part_.column * M::kSample + first;
#if ZELM_VECTORS
    // Where the row ends for the pieces of vectors: they reach 64 bytes behind the last
    // column that the strip needs, if the row does.
    const size_t rowBytes = from_.columns * M::kSample;
    const size_t lastColumn = across_.before((inWhole + bytes - 1) / M::kSample);
    const size_t reach = (lastColumn + 1 + M::kTaps / 2) * M::kSample + 64;
#if ZELM_IS_AVX2
    if constexpr (M::kTaps == 2) {
      using Columns = typename M::Reduced;
      if (bytes >= kBytes && !keepsRows() && Columns::suit(across_)) {
        makeDownwards(
            Columns(across_, inWhole, bytes, rowBytes < reach ? rowBytes : reach),
            first, Columns::kRowsAtOnce);
        return;
      }
    }
#endif
    const size_t span = spanOf<M::kSample>(across_, kPieceBytes / M::kPicks, M::kTaps);
    if (bytes >= kBytes && rowBytes >= (kWindows ? 2 : 1) * kPieceBytes &&
        withPieces(span, [&](auto pieces) HWY_ATTR {
          using Columns = typename M::template VectorColumns<pieces>;
          scaleStrip(
              Columns(across_, inWhole, bytes, rowBytes < reach ? rowBytes : reach,
                      kGroupsAtOnce && Columns::kDownwards && goesDownwards()),
              first, bytes);
        })) {
      return;
    }
#endif
    scaleStrip(typename M::PlainColumns(across_, inWhole, bytes), first, bytes);
  }

  // Where reducing leaves little of a filtered row to use again, none is kept.
  bool keepsRows() const { return 2 * from_.rows < 3 * part_.wholeRows; }

  template <class Columns>
  HWY_INLINE void scaleStrip(const Columns& columns, size_t first, size_t bytes) const {
    if constexpr (kGroupsAtOnce && Columns::kDownwards) {
      if (goesDownwards()) {
        makeDownwards(columns, first, hasShortRows() ? RowsDown::kMost : 16);
        return;
      }
    }
    if constexpr (Columns::kDirect) {
      if (!Columns::kKept || !keepsRows()) {
        makeRows([&](size_t y) HWY_ATTR -> const uint8_t* { return from_.row(y); },
                 columns, first, bytes);
        return;
      }
    }
    if constexpr (Columns::kKept) {
      FilteredRows<M, Columns> rows(from_, columns);
      makeRows([&](size_t y) HWY_ATTR { return rows.get(y); }, columns, first, bytes);
    }
  }

  // Vector by vector down the rows, what a vector needs stays in registers. Single
  // samples gain from that where rows are left out, which are not copied then; filtered
  // ones where rows are used again, and where they are so short that setting out takes
  // long.
  bool goesDownwards() const {
    const bool reducing = part_.wholeRows < from_.rows;
    return M::kTaps == 1 ? reducing : !reducing || hasShortRows();
  }
  bool hasShortRows() const { return from_.stride <= 1024 && from_.stride >= -1024; }

  // At most 64 rows at a time. Long rows are made fewer at a time: each lies on a page
  // of its own, and many of them may share a place in the first-level cache.
  template <class Columns>
  HWY_INLINE void makeDownwards(const Columns& columns, size_t first,
                                size_t most) const {
    for (size_t y = 0; y < to_.rows; y += most) {
      const Region to = {to_.row(y) + first, to_.stride, to_.columns,
                         to_.rows - y < most ? to_.rows - y : most};
      columns.makeDownwards(to, {from_, down_, part_.row + y});
    }
  }

  // Filtered rows gain where no cache holds the frame, and lose elsewhere.
  bool gainsFromPrefetching() const {
    const ptrdiff_t stride = from_.stride < 0 ? -from_.stride : from_.stride;
    const bool large = from_.rows * static_cast<size_t>(stride) >= size_t{7} << 20;
    return part_.wholeRows < from_.rows && (M::kTaps == 1 || large);
  }

  template <class Row, class Columns>
  HWY_INLINE void makeRows(const Row& rowAt, const Columns& columns, size_t first,
                           size_t bytes) const {
    const bool prefetching = gainsFromPrefetching();
    size_t previous = SIZE_MAX;
    typename M::RowTap tap(down_, part_.row);
    for (size_t y = 0; y < to_.rows; ++y) {
      uint8_t* row = to_.row(y) + first;
      const typename M::RowTap next(down_, part_.row + (y + 1 < to_.rows ? y + 1 : y));
      if (M::kTaps == 1 && tap.row[0] == previous) {
        copyBytes(row, row - to_.stride, bytes);
      } else {
        const uint8_t* ahead[M::kTaps];
        for (size_t t = 0; t < M::kTaps; ++t) ahead[t] = from_.row(next.row[t]);
        makeRow(rowAt, columns, row, tap, prefetching ? ahead : nullptr,
                std::make_index_sequence<M::kTaps>());
      }
      previous = tap.row[0];
      tap = next;
    }
  }

  // The rows are taken one by one, not in a loop, so that their addresses stay in
  // registers.
  template <class Row, class Columns, size_t... kTap>
  static HWY_INLINE void makeRow(const Row& rowAt, const Columns& columns, uint8_t* to,
                                 const typename M::RowTap& tap,
                                 const uint8_t* const* ahead,
                                 std::index_sequence<kTap...>) {
    decltype(rowAt(0)) const taken[] = {rowAt(tap.row[kTap])...};
    columns.makeRow(to, taken, tap, ahead);
  }

  const Region& to_;
  const Region& from_;
  const PlanePart& part_;
  const Axis across_, down_;
};

template <class M>
void scalePart(const Region& to, const Region& from, const PlanePart& part) {
  Scaler<M>(to, from, part).scale();
}

// Returns the kernel of a method for samples of 1 to 4 bytes.
template <template <size_t kSample> class Method>
ScalePart* scalerOf(size_t sample) {
  static constexpr ScalePart* kScalers[] = {scalePart<Method<1>>, scalePart<Method<2>>,
                                            scalePart<Method<3>>, scalePart<Method<4>>};
  return kScalers[sample - 1];
}

}  // namespace
}  // namespace zelm::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // include guard
