// The main pipeline: scales a region and converts it.
#include "convert/exchange_chroma.h"
#include "pipeline/frame.h"
#include "pipeline/methods.h"
#include "plane.h"
#include "zelm_imageutil.h"

namespace {

using zelm::Stage;

constexpr uint32_t kSemiPlanar = FORMAT_YUV420SP | FORMAT_YUV420SPVU;

// One call, with its own copies of the records after validation.
struct Call {
  ImageStruct src;
  ImageStruct dst;
  int lumaMethod;
  int chromaMethod;
  int reserved;
};

// What turns semi-planar 4:2:0 into the destination's format.
struct Converter {
  uint32_t to;
  Stage from[2];  // from FORMAT_YUV420SP, from FORMAT_YUV420SPVU
};

constexpr Converter kConverters[] = {
    {FORMAT_YUV420SP, {convYUV420SP_YUV420SP, convYUV420SP_VU2UV}},
    {FORMAT_YUV420SPVU, {convYUV420SP_VU2UV, convYUV420SP_YUV420SP}},
    {FORMAT_YUV422SP, {convYUV420SP_YUV422SP, convYUV420SP_YUV422SP_VU2UV}},
    {FORMAT_YUV422SPVU, {convYUV420SP_YUV422SP_VU2UV, convYUV420SP_YUV422SP}},
    {FORMAT_RGB565, {convYUV420SP_RGB565, convYUV420SP_RGB565}},
    {FORMAT_RGB888, {convYUV420SP_RGB888, convYUV420SP_RGB888}},
    {FORMAT_RGBA8888, {convYUV420SP_RGBA8888, convYUV420SP_RGBA8888}},
    {FORMAT_YUV420SPMB, {nullptr, convYUV420SPVU_YUV420SPMB}},
};

Stage findConverter(uint32_t from, uint32_t to) {
  for (const Converter& converter : kConverters) {
    if (converter.to != to) continue;
    return converter.from[from == FORMAT_YUV420SP ? 0 : 1];
  }
  return nullptr;
}

// Converts between planar and semi-planar whole frames of the same geometry.
int convertPlanar(Call& call) {
  ImageStruct &src = call.src, &dst = call.dst;
  if (src.width != dst.width || src.height != dst.height || src.roiX != dst.roiX ||
      src.roiY != dst.roiY || !zelm::sameRegionSize(src, dst)) {
    return RESULT_GEOMETRY_MISMATCH;
  }
  if (src.format == FORMAT_YUV420P) {
    convYUV420P_YUV420SP(&dst, &src);
  } else {
    convYUV420SP_YUV420P(&dst, &src);
  }
  return RESULT_OK;
}

int convertSameSize(Call& call) {
  const Stage convert = findConverter(call.src.format, call.dst.format);
  if (convert == nullptr) return RESULT_UNSUPPORTED_CONVERSION;
  convert(&call.dst, &call.src);
  return RESULT_OK;
}

// Averages boxes while the source is at least twice as large as the destination: by 4,
// and by 2 for a last odd halving. At the end `working` is the frame to be scaled; its
// buffer is one of `frames`, or still the source's. The last average is written to
// `target`, if there is one, which then has the right size.
int reduce(ImageStruct* working, zelm::Frame (&frames)[2], int halvings,
           const ImageStruct* target) {
  for (int i = 0; halvings > 0; i ^= 1) {
    const int shift = halvings == 1 ? 1 : 2;
    halvings -= shift;
    ImageStruct& reduced = frames[i].record;
    if (halvings == 0 && target != nullptr) {
      reduced = *target;
    } else {
      reduced = *working;
      reduced.width = static_cast<uint16_t>(working->roiWidth >> shift);
      reduced.height = static_cast<uint16_t>(working->roiHeight >> shift);
      zelm::setRegion(&reduced, 0, 0, reduced.width, reduced.height);
      reduced.uvOffset = static_cast<uint32_t>(zelm::lumaBytes(reduced));
      if (!frames[i].allocate(zelm::lumaBytes(reduced))) return RESULT_NO_MEMORY;
    }
    if (shift == 1) {
      resize_averageOfPixel2_420LP(&reduced, working);
    } else {
      resize_averageOfPixel4_420LP(&reduced, working);
    }
    frames[i ^ 1].release();
    *working = reduced;
  }
  return RESULT_OK;
}

// Tells whether averages alone lead to the destination's size with methods that exist.
bool reducesToSize(const Call& call, int halvings) {
  return call.src.roiWidth >> halvings == call.dst.roiWidth &&
         call.src.roiHeight >> halvings == call.dst.roiHeight &&
         zelm::checkMethods(call.lumaMethod, call.chromaMethod) == RESULT_OK;
}

// Reads a tiled frame back before it is written: that happens as a whole, and bytes
// outside of the region have to stay as they are.
int readBackTiled(ImageStruct* target, const ImageStruct& dst) {
  const uint64_t chroma = zelm::tiledLumaBytes(dst.width, dst.height);
  if (chroma > UINT32_MAX) return RESULT_NO_MEMORY;
  ImageStruct tiled = dst;
  tiled.uvOffset = static_cast<uint32_t>(chroma);
  zelm::setRegion(&tiled, 0, 0, dst.width, dst.height);
  convYUV420SPMB_YUV420SPVU(target, &tiled);
  return RESULT_OK;
}

// Reduces and scales into a destination of the source's format.
int scaleAlike(Call& call, int halvings) {
  const bool reducesOnly = halvings > 0 && reducesToSize(call, halvings);
  zelm::Frame reduced[2];
  ImageStruct working = call.src;
  if (const int code =
          reduce(&working, reduced, halvings, reducesOnly ? &call.dst : nullptr)) {
    return code;
  }
  if (reducesOnly) return RESULT_OK;
  return zelm::scaleFrame(&call.dst, &working, call.lumaMethod, call.chromaMethod);
}

// Scales between two formats that differ only in the order of chroma bytes, which is
// exchanged in place at the end.
int scaleExchanged(Call& call, int halvings) {
  if (const int code = zelm::checkMethods(call.lumaMethod, call.chromaMethod)) {
    return code;
  }
  if (const int code = scaleAlike(call, halvings)) return code;
  zelm::exchangeChroma(call.dst);
  return RESULT_OK;
}

// Reduces, scales in the source's format and converts. Steps that would only copy are
// left out.
int scale(Call& call) {
  ImageStruct &src = call.src, &dst = call.dst;
  if (zelm::emptyRegion(dst)) return RESULT_OK;
  if (zelm::emptyRegion(src)) return RESULT_BAD_ROI;
  const int halvings = getReductionRate(&dst, &src);
  if (src.format == dst.format) return scaleAlike(call, halvings);
  if ((dst.format & kSemiPlanar) != 0) return scaleExchanged(call, halvings);

  zelm::Frame reduced[2];
  ImageStruct working = src;
  if (const int code = reduce(&working, reduced, halvings, nullptr)) return code;

  const Stage convert = findConverter(src.format, dst.format);
  const bool tiled = dst.format == FORMAT_YUV420SPMB;
  const bool convertible =
      !tiled || (zelm::isWholeFrame(working) && zelm::isWholeFrame(dst));
  if (zelm::sameRegionSize(working, dst) && convertible) {
    if (const int code = zelm::checkMethods(call.lumaMethod, call.chromaMethod)) {
      return code;
    }
    if (convert == nullptr) return RESULT_BAD_FORMAT;
    convert(&dst, &working);
    return RESULT_OK;
  }

  // The target holds the destination's region alone, or a whole tiled frame.
  zelm::Frame scaled;
  ImageStruct& target = scaled.record;
  target = dst;
  target.format = src.format;
  if (!tiled) {
    target.width = dst.roiWidth;
    target.height = dst.roiHeight;
    zelm::setRegion(&target, 0, 0, dst.roiWidth, dst.roiHeight);
  }
  target.uvOffset = static_cast<uint32_t>(zelm::lumaBytes(dst));
  if (!scaled.allocate(zelm::lumaBytes(dst))) return RESULT_NO_MEMORY;
  if (tiled && !zelm::isWholeFrame(dst)) {
    if (const int code = readBackTiled(&target, dst)) return code;
  }
  if (const int code =
          zelm::scaleFrame(&target, &working, call.lumaMethod, call.chromaMethod)) {
    return code;
  }

  if (convert == nullptr) return RESULT_BAD_FORMAT;
  if (tiled) {
    zelm::setRegion(&dst, 0, 0, dst.width, dst.height);
    zelm::setRegion(&target, 0, 0, target.width, target.height);
  }
  convert(&dst, &target);
  return RESULT_OK;
}

int convertOrScale(Call& call) {
  return zelm::sameRegionSize(call.src, call.dst) ? convertSameSize(call) : scale(call);
}

int convertFirst(Call& call) {
  return Zelm_Convert_and_Resize(call.src, call.dst, call.lumaMethod, call.chromaMethod,
                                 call.reserved);
}

int badFormat(Call&) { return RESULT_BAD_FORMAT; }
int unsupported(Call&) { return RESULT_UNSUPPORTED_CONVERSION; }

constexpr uint32_t kAny = ~0u;
constexpr uint32_t kConvertedFirst =
    FORMAT_YUV422IUYVY | FORMAT_RGB565 | FORMAT_YUV420SPMB;

// Formats are one bit each, so a row names sets of them. The first row that
// matches applies.
struct Route {
  uint32_t from;
  uint32_t to;
  int (*run)(Call&);
};

constexpr Route kRoutes[] = {
    {FORMAT_YUV420P, FORMAT_YUV420SPVU, convertPlanar},
    {FORMAT_YUV420P, kAny, badFormat},
    {FORMAT_YUV420SPVU, FORMAT_YUV420P, convertPlanar},
    {FORMAT_YUV420SPVU, FORMAT_YUV420SPMB, scale},
    {FORMAT_YUV420SP, FORMAT_YUV420SPMB, unsupported},
    {kSemiPlanar, kAny, convertOrScale},
    {kConvertedFirst, FORMAT_YUV420SPVU, convertFirst},
    {kConvertedFirst, kAny, unsupported},
    {kAny, kAny, badFormat},
};

}  // namespace

extern "C" int16_t Zelm_Resize_and_Convert(ImageStruct src, ImageStruct dst,
                                           int lumaMethod, int chromaMethod,
                                           int reserved) {
  if (const int code = checkStruct(&src)) return static_cast<int16_t>(code);
  if (const int code = checkStruct(&dst)) return static_cast<int16_t>(code);

  Call call = {src, dst, lumaMethod, chromaMethod, reserved};
  const Route* route = kRoutes;
  while ((route->from & src.format) == 0 || (route->to & dst.format) == 0) ++route;
  return static_cast<int16_t>(route->run(call));
}
