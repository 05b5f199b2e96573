// Plans: a route, cut into bands, with working memory for each band that is being made.
#include <atomic>
#include <cstdlib>
#include <new>

#include "frames/check.h"
#include "frames/route.h"
#include "pipeline/reduction_rate.h"

namespace zelm {
namespace {

// What a band reads, makes and writes is to stay in the second-level cache. Bands are
// larger where little is made in between, so that they take no time to begin, and where
// beginning takes long, but not fewer than a few for each thread.
constexpr size_t kBandBytes = 256 * 1024;
constexpr size_t kLargeBandBytes = 1024 * 1024;
constexpr size_t kLeastBands = 8;

constexpr ZelmEdit kNoEdit = {};

// Working memory of a plan: a piece for each band that is made at the same time, of
// which the system gives only those that are used. The first free one is taken, so that
// a thread which makes one band after the other finds it in its cache.
class WorkingMemory {
 public:
  bool allocate(size_t pieces, size_t size) {
    if (pieces > kMostPieces) pieces = kMostPieces;
    if (size > SIZE_MAX / pieces) return false;
    size_ = size;
    pieces_ = pieces;
    memory_ = static_cast<uint8_t*>(std::calloc(pieces, size));
    taken_ =
        static_cast<std::atomic<bool>*>(std::calloc(pieces, sizeof(std::atomic<bool>)));
    if (memory_ == nullptr || taken_ == nullptr) return false;
    for (size_t i = 0; i < pieces; ++i) new (&taken_[i]) std::atomic<bool>(false);
    return true;
  }
  void release() {
    std::free(memory_);
    std::free(taken_);
  }

  // Calls body(Scratch&) with a piece, and returns false if there is none.
  template <class Body>
  bool with(const Body& body) const {
    for (size_t i = 0; i < pieces_; ++i) {
      if (taken_[i].exchange(true, std::memory_order_acquire)) continue;
      Scratch scratch(memory_ + i * size_, size_);
      body(scratch);
      taken_[i].store(false, std::memory_order_release);
      return true;
    }
    // More threads than pieces.
    auto* memory = static_cast<uint8_t*>(std::calloc(1, size_));
    if (memory == nullptr) return false;
    Scratch scratch(memory, size_);
    body(scratch);
    std::free(memory);
    return true;
  }

 private:
  static constexpr size_t kMostPieces = 64;

  uint8_t* memory_ = nullptr;
  std::atomic<bool>* taken_ = nullptr;
  size_t pieces_ = 0, size_ = 0;
};

}  // namespace
}  // namespace zelm

struct ZelmPlan {
  ZelmFrame dst, src;  // formats, sizes and colours
  zelm::Route route;
  size_t bandRows;
  int bands;
  zelm::WorkingMemory memory;
};

namespace zelm {
namespace {

// How often 2 x 2 samples become one before a filter is used; sizes are those of luma.
int halvingsOf(const Route& route) {
  const bool convertedFirst =
      route.from->layout == Layout::kTiles ||
      (route.from->layout == Layout::kPacked && route.from->uFirst);
  if (convertedFirst && route.to->sampling == Sampling::k420) return 0;
  const Size from = route.luma.source, to = route.luma.scaled;
  return from == to ? 0 : reductionRate(from.columns, from.rows, to.columns, to.rows);
}

uint64_t bytesOf(const Format& format, const Rect& region) {
  uint64_t bytes = 0;
  for (int p = 0; p < format.planes; ++p) {
    const PlaneExtent extent = planeExtent(format, p, region.columns, region.rows);
    bytes += uint64_t{extent.rows} * extent.rowBytes;
  }
  return bytes;
}

Route routeOf(const ZelmFrame& dst, const Rect& target, const ZelmFrame& src,
              const Rect& source, const ZelmEdit& edit) {
  Route route = {};
  route.from = findFormat(src.format);
  route.to = findFormat(dst.format);
  route.sourceRegion = source;
  route.targetRegion = target;

  const Turn turn = turnOf(edit.turn, edit.mirror != 0);
  const bool to420 = route.to->sampling == Sampling::k420;
  route.work = route.from->sampling;
  if (route.work == Sampling::k422 && (to420 || turn.transposed)) {
    route.work = Sampling::k420;
    const bool packedChromaFirst =
        route.from->layout == Layout::kPacked && route.from->uFirst;
    route.chromaRows = packedChromaFirst ? Rows::kUpper : Rows::kMeans;
  }
  route.needsChroma = route.to->sampling != Sampling::kGray &&
                      (route.from->hasChroma() || route.from->isRgb());

  route.luma = {source.size(), 0, turned(target.size(), turn), edit.lumaFilter, turn};
  const int shift = route.luma.halvings = halvingsOf(route);
  const size_t down = route.work == Sampling::k420 ? 2 : 1;
  const Size scaled = route.luma.scaled;
  route.chroma = {{halfUp(source.columns), (source.rows + down - 1) / down},
                  shift,
                  {halfUp(scaled.columns), (scaled.rows + down - 1) / down},
                  edit.chromaFilter,
                  turn};

  route.frameBytes = bytesOf(*route.from, source) + bytesOf(*route.to, target);

  // The colour of RGB frames may be any number.
  const bool fromRgb = route.from->isRgb(), toRgb = route.to->isRgb();
  if (!fromRgb && toRgb) route.toRgb = yuvToRgb(src.colour);
  if (!fromRgb && !toRgb) {
    // Without chroma the matrix does not matter.
    const bool grey = !route.from->hasChroma() || !route.to->hasChroma();
    const uint32_t to = grey ? withMatrixOf(dst.colour, src.colour) : dst.colour;
    route.recolours = src.colour != to;
    route.recolour = yuvToYuv(src.colour, to);
  }
  if (fromRgb && !toRgb) {
    // Words are unpacked to red first; bytes are weighted where they lie.
    const bool red = isWords565(route.from->rgb) || redFirst(route.from->rgb);
    const RgbToYuv weights = rgbToYuv(dst.colour);
    route.fromRgb.lumaOffset = weights.offset;
    for (int i = 0; i < 3; ++i) {
      const int channel = red ? i : 2 - i;
      route.fromRgb.luma[i] = weights.y[channel];
      route.fromRgb.first[i] = weights.u[channel];
      route.fromRgb.second[i] = weights.v[channel];
    }
  }
  return route;
}

// Returns how many rows of the destination region make a band.
size_t bandRowsOf(const Route& route) {
  const size_t all = route.targetRegion.rows;
  const size_t sixteen = all < 16 ? all : 16;
  const Layout from = route.from->layout;
  const bool direct = !route.luma.isScaled() && !route.luma.turn.transposed &&
                      from != Layout::kTiles && from != Layout::kWords565;
  // Each band makes its own tables, which are largest of cubic filters, and filters the
  // rows above and below it again.
  const bool cubic = route.luma.isScaled() && route.luma.filter == ZELM_CUBIC;
  // What sixteen rows touch of both frames, and scratch memory.
  const uint64_t touched =
      route.frameBytes * sixteen / all + (direct ? 0 : scratchFor(route, 0, sixteen));
  const size_t most = direct || cubic ? kLargeBandBytes : kBandBytes;
  auto rows = static_cast<size_t>(sixteen * most / (touched + 1));
  if (rows > all / kLeastBands) rows = all / kLeastBands;
  // A band of turned rows reads columns, and whole cache lines of them.
  const size_t least = route.luma.turn.transposed ? 64 : 16;
  rows = rows / least * least;
  return rows > least ? rows : least;
}

int makePlan(ZelmPlan* plan, const ZelmFrame& dst, const ZelmFrame& src,
             const ZelmEdit& edit, ZelmMessage* message) {
  const NamedFrame from = {&src, "source"}, to = {&dst, "destination"};
  Rect source, target;
  if (const int code = checkEdit(edit, message)) return code;
  if (const int code = checkRegion(from, edit.source, false, &source, message))
    return code;
  if (const int code = checkRegion(to, edit.destination, true, &target, message)) {
    return code;
  }
  if (const int code = checkOverlap(dst, target, src, source, message)) return code;

  plan->dst = dst;
  plan->src = src;
  plan->route = routeOf(dst, target, src, source, edit);
  plan->bandRows = bandRowsOf(plan->route);
  const size_t bands = (target.rows + plan->bandRows - 1) / plan->bandRows;
  plan->bands = static_cast<int>(bands);
  size_t scratch = 0;
  for (size_t b = 0; b < bands; ++b) {
    const size_t first = b * plan->bandRows, left = target.rows - first;
    const size_t bytes =
        scratchFor(plan->route, first, left < plan->bandRows ? left : plan->bandRows);
    if (bytes > scratch) scratch = bytes;
  }
  if (!plan->memory.allocate(bands, scratch)) {
    return refuse(message, ZELM_NO_MEMORY,
                  "there is no memory for %zu bands of %zu bytes", bands, scratch);
  }
  return ZELM_OK;
}

int checkFrame(const NamedFrame& frame, const ZelmFrame& expected) {
  if (frame.frame == nullptr) return ZELM_NULL;
  const ZelmFrame& f = *frame.frame;
  const bool rgb = findFormat(expected.format)->isRgb();
  if (f.format != expected.format || f.width != expected.width ||
      f.height != expected.height || (!rgb && f.colour != expected.colour)) {
    return ZELM_WRONG_FRAME;
  }
  return checkPlanes(frame, nullptr);
}

int checkFrames(const ZelmPlan& plan, const ZelmFrame* dst, const ZelmFrame* src) {
  if (const int code = checkFrame({dst, "destination"}, plan.dst)) return code;
  if (const int code = checkFrame({src, "source"}, plan.src)) return code;
  return checkOverlap(*dst, plan.route.targetRegion, *src, plan.route.sourceRegion,
                      nullptr);
}

void makeBand(const ZelmPlan& plan, int band, const ZelmFrame& dst,
              const ZelmFrame& src, Scratch scratch) {
  const size_t first = static_cast<size_t>(band) * plan.bandRows;
  const size_t left = plan.route.targetRegion.rows - first;
  makeRows(plan.route, dst, src, first, left < plan.bandRows ? left : plan.bandRows,
           scratch);
}

}  // namespace
}  // namespace zelm

extern "C" int zelmPlanCreate(ZelmPlan** plan, const ZelmFrame* dst,
                              const ZelmFrame* src, const ZelmEdit* edit,
                              ZelmMessage* message) {
  using namespace zelm;
  if (message != nullptr) message->text[0] = '\0';
  if (plan == nullptr)
    return refuse(message, ZELM_NULL, "there is no place for the plan");
  *plan = nullptr;
  for (const NamedFrame& frame :
       {NamedFrame{dst, "destination"}, NamedFrame{src, "source"}}) {
    if (const int code = checkRecord(frame, message)) return code;
    if (const int code = checkPlanes(frame, message)) return code;
  }
  auto* made = static_cast<ZelmPlan*>(std::calloc(1, sizeof(ZelmPlan)));
  if (made == nullptr) {
    return refuse(message, ZELM_NO_MEMORY, "there is no memory for a plan");
  }
  new (made) ZelmPlan();
  const int code =
      makePlan(made, *dst, *src, edit != nullptr ? *edit : kNoEdit, message);
  if (code != ZELM_OK) {
    zelmPlanDestroy(made);
    return code;
  }
  *plan = made;
  return ZELM_OK;
}

extern "C" int zelmPlanBands(const ZelmPlan* plan) {
  return plan != nullptr ? plan->bands : 0;
}

extern "C" int zelmPlanRunBand(const ZelmPlan* plan, int band, const ZelmFrame* dst,
                               const ZelmFrame* src) {
  using namespace zelm;
  if (plan == nullptr) return ZELM_NULL;
  if (band < 0 || band >= plan->bands) return ZELM_BAD_BAND;
  if (const int code = checkFrames(*plan, dst, src)) return code;
  const auto make = [&](const Scratch& scratch) {
    makeBand(*plan, band, *dst, *src, scratch);
  };
  return plan->memory.with(make) ? ZELM_OK : ZELM_NO_MEMORY;
}

extern "C" int zelmPlanRun(const ZelmPlan* plan, const ZelmFrame* dst,
                           const ZelmFrame* src) {
  using namespace zelm;
  if (plan == nullptr) return ZELM_NULL;
  if (const int code = checkFrames(*plan, dst, src)) return code;
  const auto makeAll = [&](const Scratch& scratch) {
    for (int band = 0; band < plan->bands; ++band) {
      makeBand(*plan, band, *dst, *src, scratch);
    }
  };
  return plan->memory.with(makeAll) ? ZELM_OK : ZELM_NO_MEMORY;
}

extern "C" void zelmPlanDestroy(ZelmPlan* plan) {
  if (plan == nullptr) return;
  plan->memory.release();
  std::free(plan);
}

extern "C" int zelmConvert(const ZelmFrame* dst, const ZelmFrame* src,
                           const ZelmEdit* edit, ZelmMessage* message) {
  ZelmPlan* plan = nullptr;
  int code = zelmPlanCreate(&plan, dst, src, edit, message);
  if (code == ZELM_OK) code = zelmPlanRun(plan, dst, src);
  zelmPlanDestroy(plan);
  return code;
}
