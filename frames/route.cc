// Makes rows of the destination: layers are read and shaped, colours are converted, and
// rows are written.
#include "frames/route.h"

#include <cstring>

#include "convert/chroma_422.h"
#include "convert/pairs.h"
#include "frames/kernels/bytes.h"
#include "frames/kernels/pixels.h"
#include "frames/kernels/recolour.h"
#include "frames/pair_rows.h"
#include "frames/write.h"
#include "simd/streaming.h"

namespace zelm {
namespace {

// What of the shaped chroma serves rows of luma, and `margin` rows above and below it,
// where there are any.
Rect chromaRect(const Route& route, size_t first, size_t rows, size_t margin) {
  const Size size = route.chroma.result();
  const size_t shared = route.rowsShared();
  const size_t top = first / shared;
  const size_t bottom = (first + rows + shared - 1) / shared + margin;
  const size_t from = top > margin ? top - margin : 0;
  return {0, from, size.columns, (bottom < size.rows ? bottom : size.rows) - from};
}

Rect lumaRect(const Route& route, size_t first, size_t rows) {
  return {0, first, route.luma.result().columns, rows};
}

struct Band {
  const Route& route;
  size_t first, rows;  // of the destination region
  SourceLayers layers;
  Target target;
  Scratch& scratch;

  Region luma(const Region* sink) {
    return makeLayer(route.luma, layers.luma.sample, lumaRect(route, first, rows),
                     layers.luma, scratch, sink);
  }
  PairRows pairs(const Rect& rect, bool recolours) {
    Region made[2] = {};
    for (int i = 0; i < (layers.pairs ? 1 : 2); ++i) {
      made[i] = makeLayer(route.chroma, layers.chroma[i].sample, rect, layers.chroma[i],
                          scratch, nullptr);
    }
    return PairRows(made, layers.pairs, layers.pairs ? layers.uFirst : target.uFirst(),
                    rect.row, recolours ? &route.recolour : nullptr, scratch);
  }
  RgbRows rgbRows(bool uFirst) {
    return RgbRows(route.to->rgb, route.toRgb, uFirst, route.targetRegion.columns);
  }
  // A row of pairs without colour.
  const uint8_t* neutralPairs() {
    const Region row = scratch.take(2, halfUp(route.targetRegion.columns), 1);
    std::memset(row.origin, 128, 2 * row.columns);
    return row.origin;
  }
};

void rgbToRgb(Band& band) {
  const Route& route = band.route;
  const Region to = band.target.lumaRows(band.first, band.rows);
  LayerReader& pixels = band.layers.luma;
  RgbLayout from = route.from->rgb;
  if (isWords565(from)) {
    if (route.from == route.to && !route.luma.isScaled() && route.luma.halvings == 0) {
      pixels.storage = Storage::kSamples;  // words are only moved
      pixels.sample = 2;
    } else {
      from = RgbLayout::kRgba;
    }
  }
  const bool same = from == route.to->rgb;
  const Region made = band.luma(same ? &to : nullptr);
  if (same) return;
  const auto repack = repackKernel(to.columns);
  for (size_t y = 0; y < band.rows; ++y) {
    repack(to.row(y), route.to->rgb, made.row(y), from, to.columns);
  }
}

void rgbToYuv(Band& band) {
  const Route& route = band.route;
  const Target& target = band.target;
  const Region pixels = band.luma(nullptr);
  const size_t columns = route.targetRegion.columns, shared = route.to->rowsShared();
  const auto convert = rgbToYuvKernel(columns);
  const ChannelWeights weights =
      target.uFirst() ? route.fromRgb : withPairsSwapped(route.fromRgb);
  for (size_t y = 0; y < band.rows; y += shared) {
    const size_t row = band.first + y;
    const bool two = shared == 2 && y + 1 < band.rows;
    uint8_t* luma[2] = {target.lumaPlace(row),
                        two ? target.lumaPlace(row + 1) : nullptr};
    uint8_t* pairs = route.needsChroma ? target.pairsPlace(row / shared) : nullptr;
    convert(luma, pairs, {pixels.row(y), two ? pixels.row(y + 1) : nullptr},
            band.layers.luma.sample, columns, weights);
    if (route.to->layout == Layout::kPacked) {
      target.writePacked(row, luma[0], pairs, target.uFirst());
      continue;
    }
    target.writeLuma(row, luma[0]);
    if (two) target.writeLuma(row + 1, luma[1]);
    if (pairs != nullptr) target.writePairs(row / shared, pairs, target.uFirst());
  }
}

void yuvToRgb(Band& band) {
  const Route& route = band.route;
  const Region luma = band.luma(nullptr);
  const Region to = band.target.lumaRows(band.first, band.rows);
  if (!route.needsChroma) {
    const uint8_t* neutral = band.neutralPairs();
    band.rgbRows(true).make(to, luma, 0, {1, 2}, [&](size_t) { return neutral; });
    return;
  }
  const size_t shared = route.rowsShared();
  PairRows pairs =
      band.pairs(chromaRect(route, band.first, band.rows, shared - 1), false);
  band.rgbRows(pairs.uFirst())
      .make(to, luma, band.first, {route.chroma.result().rows, shared},
            [&](size_t k) { return pairs.get(k); });
}

// Chroma rows of the destination, made of those of the source.
class ChromaOfTarget {
 public:
  ChromaOfTarget(Band& band, PairRows* rows, const uint8_t* neutral)
      : rows_(rows),
        neutral_(neutral),
        expands_(rows != nullptr && band.route.work == Sampling::k420 &&
                 band.route.to->sampling == Sampling::k422),
        last_(rows != nullptr ? band.route.chroma.result().rows - 1 : 0),
        bytes_(2 * band.route.chroma.result().columns) {
    if (expands_) expanded_ = band.scratch.take(1, bytes_, 2);
  }

  const uint8_t* get(size_t y) {
    if (rows_ == nullptr) return neutral_;
    if (!expands_) return rows_->get(y);
    const size_t k = y / 2;
    if (expandedRow_ != k) {
      const uint8_t* row = rows_->get(k);
      const uint8_t* next = k < last_ ? rows_->get(k + 1) : row;
      expandRowKernel(false, bytes_)(expanded_.row(0), expanded_.row(1), row, next,
                                     bytes_, false);
      expandedRow_ = k;
    }
    return expanded_.row(y % 2);
  }
  bool uFirst() const { return rows_ == nullptr || rows_->uFirst(); }

 private:
  PairRows* rows_;
  const uint8_t* neutral_;
  const bool expands_;
  const size_t last_, bytes_;
  Region expanded_ = {};
  size_t expandedRow_ = SIZE_MAX;
};

// Chroma that is stored as it is read: every layer is made in its place.
bool makeChromaInPlace(Band& band) {
  const Route& route = band.route;
  const SourceLayers& layers = band.layers;
  const bool same = layers.pairs ? band.target.storesPairs(layers.uFirst)
                                 : band.target.storesPlanes();
  if (!same || route.recolours || route.work != route.to->sampling) return false;
  const Rect rect = chromaRect(route, band.first, band.rows, 0);
  for (int i = 0; i < (layers.pairs ? 1 : 2); ++i) {
    const Region sink = band.target.chromaRows(i, rect.row, rect.rows);
    makeLayer(route.chroma, layers.chroma[i].sample, rect, layers.chroma[i],
              band.scratch, &sink);
  }
  return true;
}

// Packed frames that are neither shaped nor recoloured are read once for luma and
// chroma.
bool isSplit(const Route& route) {
  return route.from->layout == Layout::kPacked && route.to->layout != Layout::kPacked &&
         route.work == route.to->sampling && !route.recolours && !route.luma.changes();
}

void splitPackedRows(Band& band) {
  const Route& route = band.route;
  const Target& target = band.target;
  const Region& from = band.layers.luma.plane;
  const size_t columns = route.targetRegion.columns, shared = route.rowsShared();
  const auto split = splitPackedKernel(columns);
  const bool stream = worthStreaming(route.frameBytes);
  for (size_t y = 0; y < band.rows; y += shared) {
    const size_t row = band.first + y;
    const bool two = shared == 2 && y + 1 < band.rows;
    uint8_t* luma[2] = {target.lumaPlace(row),
                        two ? target.lumaPlace(row + 1) : nullptr};
    uint8_t* pairs =
        target.uFirst() ? target.pairsPlace(row / shared) : target.scratchPairs();
    split(luma, pairs, {from.row(row), two ? from.row(row + 1) : nullptr}, columns,
          route.from->uFirst, route.chromaRows == Rows::kUpper, stream);
    target.writeLuma(row, luma[0]);
    if (two) target.writeLuma(row + 1, luma[1]);
    target.writePairs(row / shared, pairs, true);
  }
  if (stream) finishStreaming();
}

void yuvToYuv(Band& band) {
  const Route& route = band.route;
  const Target& target = band.target;
  if (isSplit(route)) {
    splitPackedRows(band);
    return;
  }
  const size_t columns = route.targetRegion.columns;
  const bool inPlace = target.hasPlainLuma() && !route.recolours;
  const Region sink = target.lumaRows(band.first, band.rows);
  const Region luma = band.luma(inPlace ? &sink : nullptr);
  const bool done =
      !route.to->hasChroma() || (route.needsChroma && makeChromaInPlace(band));
  if (done && inPlace) return;

  // Rows of luma to be recoloured want the chroma of their pixels, too.
  const size_t around = route.to->sampling == Sampling::k422 ? 1 : 0;
  PairRows pairs = route.needsChroma && !done
                       ? band.pairs(chromaRect(route, band.first, band.rows, around),
                                    route.recolours)
                       : PairRows();
  ChromaOfTarget chroma(band, route.needsChroma ? &pairs : nullptr,
                        done ? nullptr : band.neutralPairs());
  const auto recolour = recolourLumaKernel(columns);
  const bool mixes =
      route.needsChroma && (route.recolour.yu != 0 || route.recolour.yv != 0);
  const bool packed = route.to->layout == Layout::kPacked;
  const size_t shared = route.to->rowsShared();
  for (size_t y = 0; y < band.rows; ++y) {
    const size_t row = band.first + y;
    const uint8_t* own = luma.row(y);
    if (route.recolours) {
      uint8_t* place = target.lumaPlace(row);
      recolour(place, own, mixes ? pairs.original(row / route.rowsShared()) : nullptr,
               pairs.uFirst(), columns, route.recolour);
      own = place;
    }
    if (packed) {
      target.writePacked(row, own, chroma.get(row), chroma.uFirst());
      continue;
    }
    if (!inPlace) target.writeLuma(row, own);
    if (!done && row % shared == 0) {
      target.writePairs(row / shared, chroma.get(row / shared), chroma.uFirst());
    }
  }
}

}  // namespace

void makeRows(const Route& route, const ZelmFrame& dst, const ZelmFrame& src,
              size_t first, size_t rows, Scratch& scratch) {
  Band band = {route,
               first,
               rows,
               layersOf(src, *route.from, route.sourceRegion, route.chromaRows),
               Target(dst, *route.to, route.targetRegion, scratch),
               scratch};
  if (route.from->isRgb()) {
    route.to->isRgb() ? rgbToRgb(band) : rgbToYuv(band);
  } else {
    route.to->isRgb() ? yuvToRgb(band) : yuvToYuv(band);
  }
}

size_t scratchFor(const Route& route, size_t first, size_t rows) {
  const size_t columns = route.targetRegion.columns;
  const size_t pixel = route.from->isRgb() ? (route.from->bytes == 3 ? 3 : 4) : 1;
  size_t bytes = layerScratch(route.luma, pixel, lumaRect(route, first, rows)) +
                 Target::scratchBytes(columns) + PairRows::scratchBytes(columns) +
                 4 * Scratch::bytesFor(columns + 1, 1);
  if (route.needsChroma && !route.from->isRgb()) {
    // Planes of U and of V take as much as pairs, and the padding of one more.
    const Rect rect = chromaRect(route, first, rows, 1);
    bytes +=
        2 * layerScratch(route.chroma, 1, rect) + layerScratch(route.chroma, 2, rect);
  }
  return bytes;
}

}  // namespace zelm
