// What is wrong with frames and edits.
#include "frames/check.h"

#include <cstdarg>
#include <cstdio>

#include "frames/planes.h"

namespace zelm {
namespace {

size_t absolute(ptrdiff_t stride) {
  const auto bits = static_cast<size_t>(stride);
  return stride < 0 ? size_t{0} - bits : bits;
}

// The bytes of a row whose samples lie `step` apart; behind the last one may be none.
size_t rowBytesWithStep(const PlaneExtent& extent, const ZelmPlane& plane) {
  return plane.step == 2 ? 2 * extent.rowBytes - 1 : extent.rowBytes;
}

int checkStep(const NamedFrame& frame, const Format& format, int p,
              ZelmMessage* message) {
  const int32_t step = frame.frame->planes[p].step;
  const bool chroma = p > 0;
  const int own = format.layout == Layout::kPairs && chroma ? 2
                  : format.layout == Layout::kTiles         ? 1
                                                            : format.bytes;
  if (step == 0 || step == own || (step == 2 && mayHaveSteps(format, p))) {
    return ZELM_OK;
  }
  return refuse(message, ZELM_BAD_PLANE,
                "%s: the %s plane of %s has a step of %ld bytes; 0 or %d would do%s",
                frame.name, planeName(format, p), format.name, static_cast<long>(step),
                own, mayHaveSteps(format, p) ? ", and 2" : "");
}

int checkPlane(const NamedFrame& frame, const Format& format, int p,
               ZelmMessage* message) {
  const ZelmPlane& plane = frame.frame->planes[p];
  const char* name = planeName(format, p);
  if (plane.data == nullptr) {
    return refuse(message, ZELM_BAD_PLANE, "%s: the %s plane of %s is null", frame.name,
                  name, format.name);
  }
  if (const int code = checkStep(frame, format, p, message)) return code;

  const PlaneExtent extent =
      planeExtent(format, p, frame.frame->width, frame.frame->height);
  const size_t rowBytes = rowBytesWithStep(extent, plane),
               stride = absolute(plane.stride);
  const char* rows = format.layout == Layout::kTiles ? "rows of tiles" : "rows";
  if (extent.rows > 1 && stride < rowBytes) {
    return refuse(message, ZELM_BAD_PLANE,
                  "%s: the %s plane has a stride of %lld bytes, which is less than the "
                  "%zu bytes of a row",
                  frame.name, name, static_cast<long long>(plane.stride), rowBytes);
  }
  // All rows but the last, without a product that is too large.
  const size_t above = extent.rows - 1;
  const size_t most = static_cast<size_t>(PTRDIFF_MAX) - rowBytes;
  if (above > 0 && stride > most / above) {
    return refuse(
        message, ZELM_BAD_PLANE,
        "%s: the %s plane has a stride of %lld bytes, and %zu %s of it are more "
        "than can be addressed",
        frame.name, name, static_cast<long long>(plane.stride), extent.rows, rows);
  }
  const size_t needed = above * stride + rowBytes;
  if (plane.size != 0 && plane.size < needed) {
    if (above == 0 || stride == rowBytes) {
      return refuse(message, ZELM_BAD_PLANE,
                    "%s: the %s plane has %zu bytes and needs %zu (%zu %s of %zu)",
                    frame.name, name, plane.size, needed, extent.rows, rows, rowBytes);
    }
    return refuse(message, ZELM_BAD_PLANE,
                  "%s: the %s plane has %zu bytes and needs %zu (%zu %s of %zu, %zu "
                  "bytes apart)",
                  frame.name, name, plane.size, needed, extent.rows, rows, rowBytes,
                  stride);
  }
  const auto address = reinterpret_cast<uintptr_t>(plane.data);
  const bool wraps = plane.stride < 0
                         ? address < above * stride || UINTPTR_MAX - address < rowBytes
                         : UINTPTR_MAX - address < needed;
  if (wraps) {
    return refuse(message, ZELM_BAD_PLANE,
                  "%s: the %s plane's rows go beyond the end of memory", frame.name,
                  name);
  }
  return ZELM_OK;
}

// One side of a region.
struct Span {
  const char* side;  // "column" or "row"
  uint32_t first, size, all;
  size_t shared;
};

int checkSpan(const NamedFrame& frame, const Format& format, const Span& span,
              bool isTarget, ZelmMessage* message) {
  if (span.size == 0) {
    return refuse(message, ZELM_BAD_REGION,
                  "%s: the region has 0 %ss; all zero would be the whole frame",
                  frame.name, span.side);
  }
  if (span.first > span.all || span.size > span.all - span.first) {
    return refuse(
        message, ZELM_BAD_REGION,
        "%s: the region's %ss %lu to %llu are not all in the frame, which has "
        "%lu",
        frame.name, span.side, static_cast<unsigned long>(span.first),
        static_cast<unsigned long long>(span.first) + span.size - 1,
        static_cast<unsigned long>(span.all));
  }
  if (span.first % span.shared != 0) {
    return refuse(message, ZELM_BAD_REGION,
                  "%s: the region begins at %s %lu, but %s shares chroma between two "
                  "%ss; %lu or %lu would do",
                  frame.name, span.side, static_cast<unsigned long>(span.first),
                  format.name, span.side, static_cast<unsigned long>(span.first - 1),
                  static_cast<unsigned long>(span.first + 1));
  }
  const uint32_t end = span.first + span.size;
  if (isTarget && end % span.shared != 0 && end != span.all) {
    return refuse(message, ZELM_BAD_REGION,
                  "%s: the region ends before %s %lu, but %s shares chroma between two "
                  "%ss; %lu or %lu %ss would do",
                  frame.name, span.side, static_cast<unsigned long>(end), format.name,
                  span.side, static_cast<unsigned long>(span.size - 1),
                  static_cast<unsigned long>(span.size + 1), span.side);
  }
  return ZELM_OK;
}

// Where the bytes of a region lie in one plane: rows of `bytes`, `stride` apart, from
// the lowest address on.
struct Bytes {
  uintptr_t start;
  size_t rows, stride, bytes;

  uintptr_t end() const { return start + (rows - 1) * stride + bytes; }
};

Bytes bytesOf(const ZelmFrame& frame, const Format& format, int p, const Rect& region) {
  const ZelmPlane& plane = frame.planes[p];
  const bool tiles = format.layout == Layout::kTiles;
  Rect part = tiles ? Rect{0, 0, frame.width, frame.height} : region;
  const PlaneExtent extent = planeExtent(format, p, part.columns, part.rows);
  if (p > 0) part = sharedBy(part, format.columnsShared(), format.rowsShared());
  const size_t sample = format.layout == Layout::kPairs && p > 0     ? 2
                        : plane.step == 2 && mayHaveSteps(format, p) ? 2
                                                                     : format.bytes;
  const size_t stride = absolute(plane.stride);
  auto start = reinterpret_cast<uintptr_t>(plane.data) + part.column * sample;
  start += static_cast<uintptr_t>(static_cast<ptrdiff_t>(part.row) * plane.stride);
  if (plane.stride < 0) start -= (extent.rows - 1) * stride;
  return {start, extent.rows, stride, rowBytesWithStep(extent, plane)};
}

bool apart(const Bytes& a, const Bytes& b) {
  if (a.end() <= b.start || b.end() <= a.start) return true;
  // Side by side in rows of the same length.
  if (a.stride != b.stride || a.stride == 0) return false;
  const size_t distance = b.start >= a.start
                              ? (b.start - a.start) % a.stride
                              : (a.stride - (a.start - b.start) % a.stride) % a.stride;
  return distance >= a.bytes && distance + b.bytes <= a.stride;
}

}  // namespace

int refuse(ZelmMessage* message, int code, const char* sentence, ...) {
  if (message != nullptr) {
    va_list values;
    va_start(values, sentence);
    std::vsnprintf(message->text, sizeof message->text, sentence, values);
    va_end(values);
  }
  return code;
}

int checkRecord(const NamedFrame& frame, ZelmMessage* message) {
  if (frame.frame == nullptr) {
    return refuse(message, ZELM_NULL, "%s: the frame is null", frame.name);
  }
  const ZelmFrame& f = *frame.frame;
  const Format* format = findFormat(f.format);
  if (format == nullptr) {
    return refuse(message, ZELM_BAD_FORMAT,
                  "%s: there is no format %lu; formats are 1 (I420) to 17 (tiled)",
                  frame.name, static_cast<unsigned long>(f.format));
  }
  if (f.width == 0 || f.height == 0 || f.width > kLargestSide ||
      f.height > kLargestSide) {
    return refuse(message, ZELM_BAD_SIZE,
                  "%s: a frame of %lu x %lu pixels is not possible; sides are 1 to %lu",
                  frame.name, static_cast<unsigned long>(f.width),
                  static_cast<unsigned long>(f.height),
                  static_cast<unsigned long>(kLargestSide));
  }
  if (!format->isRgb() && f.colour > ZELM_BT2020_LIMITED) {
    return refuse(
        message, ZELM_BAD_COLOUR,
        "%s: there is no colour description %lu; they are 0 (BT.601 full) to 5 "
        "(BT.2020 limited)",
        frame.name, static_cast<unsigned long>(f.colour));
  }
  return ZELM_OK;
}

int checkPlanes(const NamedFrame& frame, ZelmMessage* message) {
  const Format& format = *findFormat(frame.frame->format);
  for (int p = 0; p < format.planes; ++p) {
    if (const int code = checkPlane(frame, format, p, message)) return code;
  }
  return ZELM_OK;
}

int checkRegion(const NamedFrame& frame, const ZelmRegion& region, bool isTarget,
                Rect* rect, ZelmMessage* message) {
  const ZelmFrame& f = *frame.frame;
  const Format& format = *findFormat(f.format);
  if (region.x == 0 && region.y == 0 && region.width == 0 && region.height == 0) {
    *rect = {0, 0, f.width, f.height};
    return ZELM_OK;
  }
  const Span columns = {"column", region.x, region.width, f.width,
                        format.columnsShared()};
  const Span rows = {"row", region.y, region.height, f.height, format.rowsShared()};
  if (const int code = checkSpan(frame, format, columns, isTarget, message))
    return code;
  if (const int code = checkSpan(frame, format, rows, isTarget, message)) return code;
  *rect = {region.x, region.y, region.width, region.height};
  return ZELM_OK;
}

int checkEdit(const ZelmEdit& edit, ZelmMessage* message) {
  const struct {
    const char* name;
    uint32_t filter;
  } filters[] = {{"luma", edit.lumaFilter}, {"chroma", edit.chromaFilter}};
  for (const auto& f : filters) {
    if (f.filter <= ZELM_CUBIC) continue;
    return refuse(
        message, ZELM_BAD_FILTER,
        "there is no %s filter %lu; filters are 0 (linear), 1 (nearest) and 2 "
        "(cubic)",
        f.name, static_cast<unsigned long>(f.filter));
  }
  if (edit.turn != 0 && edit.turn != 90 && edit.turn != 180 && edit.turn != 270) {
    return refuse(message, ZELM_BAD_TURN,
                  "frames are turned by 0, 90, 180 or 270 degrees, not by %lu",
                  static_cast<unsigned long>(edit.turn));
  }
  if (edit.mirror > 1) {
    return refuse(message, ZELM_BAD_TURN, "mirror is 0 or 1, not %lu",
                  static_cast<unsigned long>(edit.mirror));
  }
  return ZELM_OK;
}

int checkOverlap(const ZelmFrame& dst, const Rect& target, const ZelmFrame& src,
                 const Rect& source, ZelmMessage* message) {
  const Format &to = *findFormat(dst.format), &from = *findFormat(src.format);
  for (int i = 0; i < to.planes; ++i) {
    const Bytes written = bytesOf(dst, to, i, target);
    for (int j = 0; j < from.planes; ++j) {
      if (apart(written, bytesOf(src, from, j, source))) continue;
      return refuse(
          message, ZELM_OVERLAP,
          "the destination's %s plane and the source's %s plane share bytes; a "
          "frame cannot be converted in place",
          planeName(to, i), planeName(from, j));
    }
  }
  return ZELM_OK;
}

}  // namespace zelm
