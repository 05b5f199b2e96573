// Converts frames in as many calls of the library as their formats need.
#include "converter.h"

#include "result_text.h"

namespace zelm_tool {
namespace {

constexpr uint32_t kHub = FORMAT_YUV420SPVU;

// Whether one call of the library converts and scales from `from` to `to`.
bool isDirect(uint32_t from, uint32_t to) {
  switch (from) {
    case FORMAT_YUV420SP:
    case FORMAT_YUV420SPVU:
      return to != FORMAT_YUV420P && to != FORMAT_YUV422IUYVY &&
             (to != FORMAT_YUV420SPMB || from == kHub);
    case FORMAT_YUV422IUYVY:
    case FORMAT_RGB565:
    case FORMAT_YUV420SPMB:
      return to == kHub;
    default:
      return false;
  }
}

bool isUnchanged(const Geometry& geometry) {
  return geometry.in == geometry.canvas && geometry.crop == wholeRegion(geometry.in) &&
         geometry.at == wholeRegion(geometry.canvas);
}

}  // namespace

Geometry unchangedGeometry(Size size) {
  return {size, wholeRegion(size), size, wholeRegion(size)};
}

bool canConvertFrom(uint32_t code) {
  return code == FORMAT_YUV420P || isDirect(code, kHub);
}

bool canConvertTo(uint32_t code) {
  return code == FORMAT_YUV420P || isDirect(kHub, code);
}

std::vector<uint32_t> conversionRoute(uint32_t from, uint32_t to, bool sameGeometry) {
  std::vector<uint32_t> route = {from};
  if (from == FORMAT_YUV420P) route.push_back(kHub);
  const uint32_t last = to == FORMAT_YUV420P ? kHub : to;
  const bool planarEnd = from == FORMAT_YUV420P || to == FORMAT_YUV420P;
  if (route.back() != last || !sameGeometry || !planarEnd) {
    if (!isDirect(route.back(), last)) route.push_back(kHub);
    route.push_back(last);
  }
  if (to == FORMAT_YUV420P) route.push_back(to);
  return route;
}

// Planar frames are converted whole at one end of the route; the first step between
// other formats scales from the source region to the destination region, and the
// steps behind it work on the destination region.
Converter::Converter(uint32_t from, uint32_t to, const Geometry& geometry,
                     Methods methods)
    : methods_(methods) {
  const std::vector<uint32_t> route = conversionRoute(from, to, isUnchanged(geometry));
  bool scaled = false;
  for (size_t i = 1; i < route.size(); ++i) {
    if (route[i - 1] == FORMAT_YUV420P) {
      const Region whole = wholeRegion(geometry.in);
      steps_.push_back({whole, whole, Frame(route[i], geometry.in)});
    } else if (route[i] == FORMAT_YUV420P) {
      const Region whole = wholeRegion(geometry.canvas);
      steps_.push_back({whole, whole, Frame(route[i], geometry.canvas)});
    } else {
      steps_.push_back({scaled ? geometry.at : geometry.crop, geometry.at,
                        Frame(route[i], geometry.canvas)});
      scaled = true;
    }
  }
}

Frame& Converter::convert(Frame& source) {
  Frame* from = &source;
  for (Step& step : steps_) {
    requireOk(Zelm_Resize_and_Convert(from->record(step.from),
                                      step.frame.record(step.to), methods_.luma,
                                      methods_.chroma, 0));
    from = &step.frame;
  }
  return *from;
}

}  // namespace zelm_tool
