// Semi-planar 4:2:0 to packed RGB, full-range BT.601.
//
// With SU and SV the sums of four chroma samples (a sample that stands alone or in
// a pair is repeated), the rule is
//   R = clamp(Y + ((11485 * (SV - 512) + 2^14) >> 15))                     1.402
//   G = clamp(Y + ((-2819 * (SU - 512) - 5850 * (SV - 512) + 2^14) >> 15)) 0.344, 0.714
//   B = clamp(Y + ((14516 * (SU - 512) + 2^14) >> 15))                     1.772
// Chroma is interpolated in opposite directions: the upper luma row of a chroma row
// takes V between it and the row above, the lower one U between it and the row
// below; the right pixel of a pair takes both between it and the next pair. The
// region's first and last chroma row and pair stand without a partner.
#include "plane.h"
#include "zelm_imageutil.h"

namespace {

using zelm::Region;

struct Rgb {
  uint8_t r, g, b;
};

uint8_t clampToByte(int value) {
  return static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
}

Rgb toRgb(int y, int sumU, int sumV) {
  const int u = sumU - 512, v = sumV - 512;
  return {clampToByte(y + ((11485 * v + (1 << 14)) >> 15)),
          clampToByte(y + ((-2819 * u - 5850 * v + (1 << 14)) >> 15)),
          clampToByte(y + ((14516 * u + (1 << 14)) >> 15))};
}

struct StoreRgba8888 {
  static constexpr size_t kBytes = 4;
  static void store(uint8_t* to, Rgb c) {
    to[0] = c.r;
    to[1] = c.g;
    to[2] = c.b;
    to[3] = 255;
  }
};

struct StoreRgb888 {
  static constexpr size_t kBytes = 3;
  static void store(uint8_t* to, Rgb c) {
    to[0] = c.r;
    to[1] = c.g;
    to[2] = c.b;
  }
};

// Red lies in the low bits.
struct StoreRgb565 {
  static constexpr size_t kBytes = 2;
  static void store(uint8_t* to, Rgb c) {
    const unsigned word = (c.r >> 3) | (c.g >> 2) << 5 | (c.b >> 3) << 11;
    to[0] = static_cast<uint8_t>(word);
    to[1] = static_cast<uint8_t>(word >> 8);
  }
};

// One luma row: U is the mean of its own and of `uPartner`'s chroma row, V the same
// with `vPartner`. `u` and `v` are the bytes' positions in a pair.
struct ChromaRows {
  const uint8_t* own;
  const uint8_t* uPartner;
  const uint8_t* vPartner;
  int u;
  int v;
};

template <class Store>
void convertRow(uint8_t* to, const uint8_t* luma, const ChromaRows& chroma,
                size_t pairs) {
  for (size_t j = 0; j < pairs; ++j) {
    const size_t here = 2 * j;
    const size_t next = j > 0 && j + 1 < pairs ? here + 2 : here;
    const int u = chroma.own[here + chroma.u] + chroma.uPartner[here + chroma.u];
    const int v = chroma.own[here + chroma.v] + chroma.vPartner[here + chroma.v];
    const int uNext = chroma.own[next + chroma.u] + chroma.uPartner[next + chroma.u];
    const int vNext = chroma.own[next + chroma.v] + chroma.vPartner[next + chroma.v];
    Store::store(to, toRgb(luma[here], 2 * u, 2 * v));
    Store::store(to + Store::kBytes, toRgb(luma[here + 1], u + uNext, v + vNext));
    to += 2 * Store::kBytes;
  }
}

template <class Store>
void convertRegion(const ImageStruct& dst, const ImageStruct& src) {
  const Region to = zelm::packedRegion(dst, Store::kBytes);
  const Region luma = zelm::lumaRegion(src);
  const Region chroma = zelm::chromaRegion(src);
  const int u = src.format == FORMAT_YUV420SP ? 0 : 1;

  for (size_t k = 0; k < chroma.rows; ++k) {
    const bool partners = k > 0 && k + 1 < chroma.rows;
    const uint8_t* own = chroma.row(k);
    const uint8_t* above = partners ? chroma.row(k - 1) : own;
    const uint8_t* below = partners ? chroma.row(k + 1) : own;
    convertRow<Store>(to.row(2 * k), luma.row(2 * k), {own, own, above, u, 1 - u},
                      chroma.columns);
    convertRow<Store>(to.row(2 * k + 1), luma.row(2 * k + 1),
                      {own, below, own, u, 1 - u}, chroma.columns);
  }
}

}  // namespace

extern "C" void convYUV420SP_RGBA8888(ImageStruct* dst, ImageStruct* src) {
  convertRegion<StoreRgba8888>(*dst, *src);
}

extern "C" void convYUV420SP_RGB888(ImageStruct* dst, ImageStruct* src) {
  convertRegion<StoreRgb888>(*dst, *src);
}

extern "C" void convYUV420SP_RGB565(ImageStruct* dst, ImageStruct* src) {
  convertRegion<StoreRgb565>(*dst, *src);
}
