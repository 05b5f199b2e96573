// Lays frames out in memory and makes up conversions.
#include "frames_cases.h"

#include <algorithm>

#include "frames_reference.h"

namespace frames_test {
namespace {

using frames_reference::Extent;
using frames_reference::extentOf;
using frames_reference::Format;
using frames_reference::formatOf;

// What stands in planes that a format has not. Nobody may look at it.
const ZelmPlane kNoPlane = {reinterpret_cast<uint8_t*>(8), 1, 77, 1};

void addFrame(const Layout& layout, harness::Text* text) {
  const ZelmFrame& f = layout.frame;
  const char* const colours[] = {"601 full",    "601 limited", "709 full",
                                 "709 limited", "2020 full",   "2020 limited"};
  text->add("%s %u x %u", formatOf(f.format).name, f.width, f.height);
  if (f.colour < 6) text->add(" %s", colours[f.colour]);
  for (int p = 0; p < formatOf(f.format).planes; ++p) {
    const ZelmPlane& plane = f.planes[p];
    text->add(", stride %td", plane.stride);
    if (plane.step != 0) text->add(" step %d", static_cast<int>(plane.step));
    if (layout.places[p].block != p) {
      text->add(" %td bytes from plane 1",
                static_cast<ptrdiff_t>(layout.places[p].first) -
                    static_cast<ptrdiff_t>(layout.places[1].first));
    }
  }
  if (f.planes[0].size != 0) text->add(", sized");
}

void addRegion(const char* name, const ZelmRegion& r, harness::Text* text) {
  if (r.width == 0) return;
  text->add(", %s (%u, %u, %u, %u)", name, r.x, r.y, r.width, r.height);
}

}  // namespace

ZelmFrame Layout::at(uint8_t* const (&memory)[3]) const {
  ZelmFrame f = frame;
  for (int p = 0; p < formatOf(f.format).planes; ++p) {
    f.planes[p].data = memory[places[p].block] + places[p].first;
  }
  return f;
}

Layout layOut(uint32_t format, uint32_t width, uint32_t height, uint32_t colour,
              const Style& style) {
  const Format& kind = formatOf(format);
  const Chroma chroma = kind.separate ? style.chroma : kApart;
  const bool pairs = chroma >= kPairsUV && chroma <= kAlmostPairs;
  const bool shared = pairs || chroma == kSideBySide;
  Layout l = {};
  l.frame = {format, width, height, colour, {kNoPlane, kNoPlane, kNoPlane}};
  l.blocks = shared ? 2 : kind.planes;
  for (int p = 0; p < kind.planes; ++p) {
    const bool isChroma = p > 0 && kind.separate;
    const bool stepped =
        pairs || chroma == kApartStep2 || (chroma == kMixedSteps && p == 1);
    const int step = isChroma && stepped ? 2 : isChroma ? 1 : 0;
    const Extent e = extentOf(format, width, height, p, step);
    const size_t both = 2 * ((width + 1) / 2);
    const size_t rowBytes = isChroma && shared ? both : e.rowBytes;
    const bool sparse = chroma == kAlmostPairs && p == 2;
    const size_t stride = (rowBytes + style.padding) * (sparse ? 2 : 1);
    // The planes that share a block begin at its first byte and a little later.
    const bool uLater = (chroma == kPairsVU) != (format == ZELM_YV12);
    const bool ordered = chroma == kSideBySide || chroma == kAlmostPairs;
    const bool later = ordered ? p == 2 : shared && (p == 1) == uLater;
    const size_t first = !isChroma || !later ? 0 : chroma == kSideBySide ? both / 2 : 1;
    const int block = shared && p == 2 ? 1 : p;
    l.bytes[block] = (e.rows - 1) * stride + rowBytes;
    l.rows[block] = rowBytes + style.padding;
    const bool bottomUp = (style.bottomUp >> p & 1) != 0;
    l.places[p] = {block, first + (bottomUp ? (e.rows - 1) * stride : 0)};
    const ptrdiff_t down = static_cast<ptrdiff_t>(stride);
    l.frame.planes[p] = {nullptr, bottomUp ? -down : down, step == 2 ? 2 : 0,
                         style.sizes ? (e.rows - 1) * stride + e.rowBytes : 0};
  }
  return l;
}

harness::Text describe(const Case& c) {
  harness::Text text;
  addFrame(c.src, &text);
  addRegion("region", c.edit.source, &text);
  text.add(" -> ");
  addFrame(c.dst, &text);
  addRegion("region", c.edit.destination, &text);
  text.add("; filters %u %u, turn %u, mirror %u", c.edit.lumaFilter,
           c.edit.chromaFilter, c.edit.turn, c.edit.mirror);
  return text;
}

Case anyCase(const std::function<int(int)>& below) {
  // Mostly small, and around the widths of vectors.
  const auto extent = [&below] {
    const int kind = below(16);
    if (kind < 9) return 1 + below(20);
    if (kind < 15) return (1 + below(4)) * 32 - 2 + below(5);
    return 1 + below(200);
  };
  const auto style = [&below] {
    Style s;
    if (below(2) == 0) s.padding = static_cast<size_t>(below(70));
    if (below(4) == 0) s.bottomUp = below(2) == 0 ? 7 : static_cast<unsigned>(below(8));
    s.chroma = static_cast<Chroma>(below(kChromas));
    s.sizes = below(2) == 0;
    return s;
  };
  const auto format = [&below] { return static_cast<uint32_t>(1 + below(17)); };
  const uint32_t from = format(), to = format();
  Case c = {};
  ZelmEdit& e = c.edit;
  e.lumaFilter = static_cast<uint32_t>(below(3));
  e.chromaFilter = static_cast<uint32_t>(below(3));
  if (below(2) == 0) {
    e.turn = static_cast<uint32_t>(below(4)) * 90;
    e.mirror = static_cast<uint32_t>(below(2));
  }

  // The sizes of the two regions: free, of multiples, or equal.
  int w = extent(), h = extent(), sourceW = extent(), sourceH = extent();
  const int relation = below(8);
  if (relation < 5) {
    const bool quarter = e.turn % 180 != 0;
    const int times = relation < 2 ? 2 + below(9) : 1;
    while (times > 1 && times * w * times * h > 60000) (w > h ? w : h) /= 2;
    sourceW = times * (quarter ? h : w) + (times > 1 ? below(3) : 0);
    sourceH = times * (quarter ? w : h) + (times > 1 ? below(3) : 0);
  }
  // How far a region begins from the edge, and what lies behind it.
  const auto before = [&below](int shared) {
    const int distance = below(3) == 0 ? below(40) : 0;
    return static_cast<uint32_t>(shared == 2 ? distance / 2 * 2 : distance);
  };
  const auto behind = [&below](int shared, bool destination, int size) {
    if (destination && shared == 2 && size % 2 == 1) return 0u;
    return static_cast<uint32_t>(below(3) == 0 ? below(40) : 0);
  };
  const auto frame = [&](uint32_t f, bool destination, int wide, int high,
                         ZelmRegion* r) {
    const Format& kind = formatOf(f);
    *r = {before(kind.across), before(kind.down), static_cast<uint32_t>(wide),
          static_cast<uint32_t>(high)};
    const uint32_t width = r->x + r->width + behind(kind.across, destination, wide);
    const uint32_t height = r->y + r->height + behind(kind.down, destination, high);
    if (r->width == width && r->height == height && below(2) == 0) *r = {};
    // RGB has no colour description, so that any number will do.
    const uint32_t colours = kind.channels != 0 ? 256 : below(2) == 0 ? 6 : 1;
    const uint32_t colour = static_cast<uint32_t>(below(static_cast<int>(colours)));
    return layOut(f, width, height, colour, style());
  };
  c.src = frame(from, false, sourceW, sourceH, &e.source);
  c.dst = frame(to, true, w, h, &e.destination);
  return c;
}

}  // namespace frames_test
