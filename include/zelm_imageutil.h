/* zelm_imageutil.h - converts, scales and rotates camera frames in memory.
 *
 * How to use it
 * -------------
 * Describe the source frame and the destination frame with one ImageStruct
 * each and call one of three pipelines:
 *
 *   Zelm_Resize_and_Convert   scale a region and convert it: the usual call
 *   Zelm_Convert_and_Resize   the same for UYVY, RGB565 and tiled sources
 *   Zelm_Rotate_and_Convert   turn a luma plane by 0, 90, 180 or 270 degrees
 *
 * zelmFrameLayout() tells how large a frame's buffer must be and where its
 * chroma plane starts, and zelmWholeFrame() fills a record for a whole frame:
 *
 *   ImageStruct src = zelmWholeFrame(FORMAT_YUV420SP, 1280, 720, camera);
 *   ImageStruct dst = zelmWholeFrame(FORMAT_RGBA8888, 640, 360, preview);
 *   int code = Zelm_Resize_and_Convert(src, dst, RESIZE_LINEAR,
 *                                      RESIZE_LINEAR, 0);
 *
 * Every stage that the pipelines are made of is exported as well (conv...,
 * resize_..., rotate...). A stage checks nothing; see "Stages" below.
 *
 * What can be converted
 * ---------------------
 *   from \ to        420P  420SP  420SPVU  422SP  422SPVU  RGB   420SPMB
 *   YUV420P           .      .       1       .       .      .       .
 *   YUV420SP          .      2       2       2       2      2       .
 *   YUV420SPVU        1      2       2       2       2      2       2
 *   YUV422IUYVY       .      .       2       .       .      .       .
 *   RGB565            .      .       2       .       .      .       .
 *   YUV420SPMB        .      .       2       .       .      .       .
 *
 *   1 = at equal geometry only, 2 = with scaling, . = rejected with a code;
 *   RGB = RGB565, RGB888 and RGBA8888.
 *
 * Units
 * -----
 * Sizes and positions are in pixels and rows, offsets in bytes. A plane's row
 * stride is not a field: it follows from `width` and the format (below).
 *
 * Colour
 * ------
 * YUV is full range (0 to 255 for luma and chroma, neutral chroma 128) with
 * the BT.601 matrix, in both directions.
 *
 * Determinism
 * -----------
 * All pixels are computed with integers. The same input gives the same bytes
 * on every processor, with every instruction set and from every compiler.
 *
 * Memory
 * ------
 * Buffers need no alignment and no padding: nothing is read or written outside
 * the region described. Whether a buffer is large enough is never checked, nor
 * whether two buffers overlap: source and destination must not. A pipeline may
 * take intermediate buffers with malloc; it frees them before it returns.
 *
 * Threads
 * -------
 * There is no global state, no initialisation and no locking. Calls may run at
 * the same time on any threads as long as no two write the same bytes (or pass
 * the same record to checkStruct).
 */
#ifndef ZELM_IMAGEUTIL_H
#define ZELM_IMAGEUTIL_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>

/* The version of this header: major * 10000 + minor * 100 + patch, as in
 * #if ZELM_IMAGEUTIL_VERSION >= 10100. Programs that run with a library of
 * another 1.x get what that one does. */
#define ZELM_IMAGEUTIL_VERSION_MAJOR 1
#define ZELM_IMAGEUTIL_VERSION_MINOR 1
#define ZELM_IMAGEUTIL_VERSION_PATCH 0
#define ZELM_IMAGEUTIL_VERSION                                             \
  (ZELM_IMAGEUTIL_VERSION_MAJOR * 10000 + ZELM_IMAGEUTIL_VERSION_MINOR * 100 + \
   ZELM_IMAGEUTIL_VERSION_PATCH)

#if defined(__GNUC__)
#define ZELM_API __attribute__((visibility("default")))
#else
#define ZELM_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ------------------------------------------------------------------ formats
 *
 * Pixel format codes: one bit each, a record holds exactly one of them.
 * W and H stand for the record's `width` and `height`; a pair is the two
 * adjacent chroma bytes that serve one chroma position.
 */
typedef enum ImageFormat {
  /* Planar 4:2:0. Luma plane of W x H bytes, then a V plane, then a U plane
   * (the plane order of YV12, not of I420), each of W/2 x H/2 samples.
   * As a source:      V at uvOffset, row stride W/2, U at uvOffset + W*H/4.
   * As a destination: with Ys = W rounded up to a multiple of 16 and Cs = Ys/2
   * rounded up to a multiple of 16, V at H*Ys, U at H*Ys + H*Cs/2, both with
   * row stride Cs; luma rows lie packed with stride W; uvOffset is not used.
   * The two are the same when W is a multiple of 32 and uvOffset is W*H. */
  FORMAT_YUV420P = 1,
  /* Semi-planar 4:2:0, NV12. Luma plane of W x H bytes, row stride W; chroma
   * plane at uvOffset with H/2 rows of W bytes: W/2 pairs, U then V, one for
   * every 2 x 2 pixels. */
  FORMAT_YUV420SP = 2,
  /* Semi-planar 4:2:0 with pairs V then U, NV21. */
  FORMAT_YUV420SPVU = 4,
  /* Semi-planar 4:2:2, NV16. As FORMAT_YUV420SP, but the chroma plane has a
   * row of W bytes for every luma row: H rows. */
  FORMAT_YUV422SP = 16,
  /* Semi-planar 4:2:2 with pairs V then U, NV61. */
  FORMAT_YUV422SPVU = 32,
  /* Packed 4:2:2: the four bytes U, Y, V, Y hold two pixels; row stride 2*W. */
  FORMAT_YUV422IUYVY = 256,
  /* One little-endian 16-bit word per pixel, row stride 2*W. The order of the
   * fields depends on the direction:
   * read as a source:           red in bits 15-11, green 10-5, blue 4-0;
   * written as a destination:   red in bits 4-0, green 10-5, blue 15-11. */
  FORMAT_RGB565 = 1024,
  /* Three bytes per pixel, R, G, B in memory; row stride 3*W. */
  FORMAT_RGB888 = 2048,
  /* Four bytes per pixel, R, G, B, A in memory, A always 255; stride 4*W. */
  FORMAT_RGBA8888 = 4096,
  /* Semi-planar 4:2:0, pairs U then V, both planes in tiles. A luma tile is
   * 16 x 16 samples in 256 bytes: its left 8 columns as 16 rows of 8 bytes,
   * then its right 8 columns. A chroma tile is 16 bytes x 8 rows in 128 bytes,
   * halved the same way. Tiles follow each other in raster order; the ones at
   * the right and bottom edge are stored whole. With TW = W/16 and TH = H/16,
   * both rounded up, luma takes TW*TH*256 and chroma TW*TH*128 bytes. Chroma
   * is read from uvOffset and written straight after the tiled luma, at
   * TW*TH*256 (which is W*H when both are multiples of 16). */
  FORMAT_YUV420SPMB = 0x1000000
} ImageFormat;

/* -------------------------------------------------------------- result codes */
typedef enum ResultCode {
  RESULT_OK = 0,
  RESULT_NULL = -1,                   /* record or its `data` is null */
  RESULT_BAD_SIZE = -2,               /* width or height is 0 or odd */
  RESULT_BAD_ROI = -3,                /* region outside the image, or an empty
                                         source region to be scaled */
  RESULT_BAD_FORMAT = -4,             /* unknown format, or one that cannot be a
                                         source (or destination) here */
  RESULT_UNSUPPORTED_CONVERSION = -5, /* no way from source to destination format */
  RESULT_GEOMETRY_MISMATCH = -6,      /* planar: both sides must have the same size
                                         and region */
  RESULT_BAD_LUMA_METHOD = -7,        /* luma method is not 2, 3 or 4 */
  RESULT_BAD_CHROMA_METHOD = -8,      /* chroma method is not 2, 3 or 4 */
  RESULT_BAD_ROTATION = -9,           /* rotation is not 0, 1, 2 or 4 */
  RESULT_BAD_MODE = -10,              /* rotation mode is not 1 */
  RESULT_ROI_MISMATCH = -11,          /* region sizes do not fit the rotation */
  RESULT_NO_MEMORY = -12              /* an intermediate buffer was not to be had */
} ResultCode;

/* Scaling methods. All three are corner-aligned: the first and last sample of
 * the destination lie on the first and last sample of the source region. */
typedef enum ResizeMethod {
  RESIZE_LINEAR = 2,  /* bilinear, weights in 1/256, rounded half up */
  RESIZE_CUBIC = 3,   /* cubic convolution with a = -1 over 4 x 4 samples */
  RESIZE_NEAREST = 4  /* nearest sample */
} ResizeMethod;

/* Rotation codes; clockwise as the image is displayed, row 0 at the top. */
typedef enum RotationCode {
  ROTATE_0 = 0,
  ROTATE_90 = 1,  /* a quarter turn clockwise */
  ROTATE_180 = 2, /* a half turn */
  ROTATE_270 = 4  /* a quarter turn counter-clockwise */
} RotationCode;

/* ---------------------------------------------------------------- the record
 *
 * Describes one frame. The buffer belongs to the caller; no function keeps a
 * pointer to it or to the record beyond the call. A region of interest is
 * rounded down to even position and size before it is used. In the chroma plane
 * of a semi-planar 4:2:0 frame it covers the rows roiY/2 to (roiY+roiHeight)/2
 * and the byte columns roiX to roiX+roiWidth.
 */
typedef struct ImageStruct {
  uint8_t reserved0[16]; /* never read; copied with the record */
  uint32_t format;       /* one ImageFormat code */
  uint16_t width;        /* pixels, even; also the stride of one-byte planes */
  uint16_t height;       /* rows, even */
  int32_t roiX;          /* region of interest: left column, */
  int32_t roiY;          /* top row, */
  uint16_t roiWidth;     /* width in pixels, */
  uint16_t roiHeight;    /* height in rows */
  uint8_t *data;         /* start of the buffer: the luma or only plane */
  uint8_t reserved1[28]; /* never read; copied with the record */
  uint32_t uvOffset;     /* bytes from `data` to the chroma plane(s) */
  uint32_t dataSize;     /* bytes in the buffer; read by no function */
  uint8_t reserved2[4];  /* never read; copied with the record */
} ImageStruct;

/* The layout of the record is part of the binary interface. */
#if defined(__cplusplus)
#define ZELM_LAYOUT_ASSERT(what) static_assert(what, "layout of ImageStruct")
#elif defined(__STDC_VERSION__) && __STDC_VERSION__ >= 201112L
#define ZELM_LAYOUT_ASSERT(what) _Static_assert(what, "layout of ImageStruct")
#else /* C99: an array of size -1 does not compile */
#define ZELM_LAYOUT_JOIN2(a, b) a##b
#define ZELM_LAYOUT_JOIN(a, b) ZELM_LAYOUT_JOIN2(a, b)
#define ZELM_LAYOUT_ASSERT(what) \
  extern const char ZELM_LAYOUT_JOIN(zelm_layout_, __LINE__)[(what) ? 1 : -1]
#endif
ZELM_LAYOUT_ASSERT(offsetof(ImageStruct, format) == 16);
ZELM_LAYOUT_ASSERT(offsetof(ImageStruct, width) == 20);
ZELM_LAYOUT_ASSERT(offsetof(ImageStruct, roiX) == 24);
ZELM_LAYOUT_ASSERT(offsetof(ImageStruct, roiWidth) == 32);
ZELM_LAYOUT_ASSERT(offsetof(ImageStruct, data) == (sizeof(void *) == 4 ? 36 : 40));
ZELM_LAYOUT_ASSERT(offsetof(ImageStruct, uvOffset) ==
                   (sizeof(void *) == 4 ? 68 : 76));
ZELM_LAYOUT_ASSERT(sizeof(ImageStruct) == (sizeof(void *) == 4 ? 80 : 88));

/* -------------------------------------------------------- how large, and where
 *
 * These three are plain inline functions: the library exports nothing for them.
 */
typedef struct ZelmFrameLayout {
  size_t size;       /* bytes in the buffer; 0: no such frame */
  uint32_t uvOffset; /* bytes from its start to the chroma; 0 where the format
                        has a single plane */
} ZelmFrameLayout;

/* zelmFrameLayout - buffer size and chroma offset of a frame.
 *
 * The size is enough for the frame as a source and as a destination of every
 * function (for FORMAT_YUV420P that includes the padding of the written chroma
 * rows). Both members are 0 for an unknown format, for a width or height that
 * is 0, odd or above 65534, and for a frame that cannot be addressed.
 */
static inline ZelmFrameLayout zelmFrameLayout(uint32_t format, uint32_t width,
                                              uint32_t height) {
  const ZelmFrameLayout none = {0, 0};
  ZelmFrameLayout layout;
  const uint64_t w = width, h = height, luma = w * h;
  const uint64_t w16 = (w + 15) / 16 * 16, h16 = (h + 15) / 16 * 16;
  uint64_t chroma = luma, size = 0;
  if (w == 0 || h == 0 || w % 2 != 0 || h % 2 != 0 || w > 65534 || h > 65534) {
    return none;
  }
  switch (format) {
    case FORMAT_YUV420P:
      size = h * w16 + h * ((w16 / 2 + 15) / 16 * 16);
      break;
    case FORMAT_YUV420SP:
    case FORMAT_YUV420SPVU:
      size = luma + luma / 2;
      break;
    case FORMAT_YUV422SP:
    case FORMAT_YUV422SPVU:
      size = 2 * luma;
      break;
    case FORMAT_YUV422IUYVY:
    case FORMAT_RGB565:
      size = 2 * luma;
      chroma = 0;
      break;
    case FORMAT_RGB888:
      size = 3 * luma;
      chroma = 0;
      break;
    case FORMAT_RGBA8888:
      size = 4 * luma;
      chroma = 0;
      break;
    case FORMAT_YUV420SPMB:
      size = w16 * h16 + w16 * h16 / 2;
      chroma = w16 * h16;
      break;
    default:
      return none;
  }
  if (size > (uint64_t)SIZE_MAX / 2 || chroma > 0xFFFFFFFFu) {
    return none;
  }
  layout.size = (size_t)size;
  layout.uvOffset = (uint32_t)chroma;
  return layout;
}

/* zelmWholeFrame - a record for a whole frame.
 *
 * The region is the whole image, uvOffset and dataSize are those of
 * zelmFrameLayout(), the reserved areas are zero. Set roiX, roiY, roiWidth and
 * roiHeight afterwards to work on a part of the frame.
 *
 * checkStruct and the pipelines that validate refuse the record of a frame that
 * cannot exist: with RESULT_BAD_SIZE where a side is 0, odd or too large (the
 * size of the record is then 0 x 0), with RESULT_BAD_FORMAT where no such
 * format is known.
 */
static inline ImageStruct zelmWholeFrame(uint32_t format, uint32_t width,
                                         uint32_t height, uint8_t *data) {
  const ZelmFrameLayout layout = zelmFrameLayout(format, width, height);
  ImageStruct frame;
  memset(&frame, 0, sizeof frame);
  frame.format = format;
  frame.data = data;
  if (width <= 0xFFFF && height <= 0xFFFF) {
    frame.width = frame.roiWidth = (uint16_t)width;
    frame.height = frame.roiHeight = (uint16_t)height;
  }
  frame.uvOffset = layout.uvOffset;
  frame.dataSize = (uint32_t)layout.size;
  return frame;
}

/* zelmPaddedFrame - a record for a frame whose rows are padded.
 *
 * Cameras and decoders often hand out rows that are longer than the picture is
 * wide, and a chroma plane that does not begin where the luma plane's last row
 * would end. A record has no field for the stride: its `width` is the stride,
 * and the picture is a region of the frame.
 *
 *   width, height  of the picture in pixels
 *   rowStride      bytes from one luma row (or packed row) to the next
 *   chromaOffset   bytes from `data` to the chroma plane; 0 where the format
 *                  has a single plane
 *
 * Formats are the semi-planar and the packed ones. The chroma rows of a
 * semi-planar frame have the luma's stride. The record's `height` is that of
 * the picture; dataSize is 0, as only the caller knows where the buffer ends.
 *
 *   ImageStruct src = zelmPaddedFrame(FORMAT_YUV420SP, 1280, 720, 1344,
 *                                     1344 * 736, camera);
 *
 * The record of a frame that cannot be described like this is 0 x 0 pixels
 * large, and checkStruct refuses it with RESULT_BAD_SIZE: a side that is 0, odd
 * or above 65534; a stride that is shorter than a row, above 65534 pixels, or
 * no even number of pixels; a planar, tiled or unknown format.
 */
static inline ImageStruct zelmPaddedFrame(uint32_t format, uint32_t width,
                                          uint32_t height, uint32_t rowStride,
                                          uint32_t chromaOffset, uint8_t *data) {
  const ZelmFrameLayout picture = zelmFrameLayout(format, width, height);
  const uint32_t pixelBytes = format == FORMAT_RGBA8888 ? 4
                              : format == FORMAT_RGB888 ? 3
                              : picture.uvOffset == 0   ? 2
                                                        : 1;
  const uint32_t columns = rowStride / pixelBytes;
  const int possible = picture.size != 0 && format != FORMAT_YUV420P &&
                       format != FORMAT_YUV420SPMB && columns >= width &&
                       columns % 2 == 0 && columns <= 65534 &&
                       rowStride % pixelBytes == 0;
  ImageStruct frame = zelmWholeFrame(format, possible ? columns : 0,
                                     possible ? height : 0, data);
  if (possible) {
    frame.roiWidth = (uint16_t)width;
    frame.uvOffset = chromaOffset;
    frame.dataSize = 0;
  }
  return frame;
}

/* ----------------------------------------------------------------- pipelines
 *
 * Records are passed by value: the caller's own are never changed. A call that
 * returns anything but RESULT_OK has not touched the destination, with the one
 * exception of -8 (below). Intermediate buffers are freed on every return.
 */

/* Zelm_Resize_and_Convert - source region, scaled and converted, into the
 * destination region.
 *
 *   src, dst       source and destination; the conversions possible are in the
 *                  table at the top of this file
 *   lumaMethod     ResizeMethod for the luma plane
 *   chromaMethod   ResizeMethod for the chroma plane
 *   reserved       not used; pass 0
 *
 * Regions of equal size are converted without scaling, and the methods are not
 * looked at (except towards FORMAT_YUV420SPMB). A source at least twice as
 * large as the destination in both directions is first reduced by averages of
 * 2 x 2 or 4 x 4 samples (see getReductionRate), then scaled. Scaling happens
 * in the source's format, conversion afterwards; for UYVY, RGB565 and tiled
 * sources it is the other way round (see Zelm_Convert_and_Resize).
 *
 * A tiled destination keeps the bytes of its frame that lie outside the region.
 * An empty destination region (a side below 2) is a success that writes nothing.
 *
 * Returns
 *   RESULT_OK
 *   RESULT_NULL, RESULT_BAD_SIZE, RESULT_BAD_ROI, RESULT_BAD_FORMAT
 *        as checkStruct says of the source, then of the destination
 *   RESULT_BAD_FORMAT
 *        the source is 4:2:2 semi-planar, RGB888 or RGBA8888; or it is planar
 *        and the destination is not FORMAT_YUV420SPVU; or regions of different
 *        size and a destination that is planar or UYVY
 *   RESULT_UNSUPPORTED_CONVERSION
 *        regions of equal size and a destination that is planar or UYVY; or
 *        FORMAT_YUV420SP to FORMAT_YUV420SPMB; or a UYVY, RGB565 or tiled
 *        source and a destination other than FORMAT_YUV420SPVU
 *   RESULT_GEOMETRY_MISMATCH
 *        a planar conversion whose sides differ in width, height or region
 *   RESULT_BAD_ROI
 *        the source region is empty and would have to be scaled
 *   RESULT_BAD_LUMA_METHOD, RESULT_BAD_CHROMA_METHOD
 *        on the scaling routes only; with -8 and equal formats on both sides
 *        the luma of the destination region has already been written
 *   RESULT_NO_MEMORY
 */
ZELM_API int16_t Zelm_Resize_and_Convert(ImageStruct src, ImageStruct dst,
                                         int lumaMethod, int chromaMethod,
                                         int reserved);

/* Zelm_Convert_and_Resize - UYVY, RGB565 or tiled region, converted and scaled,
 * into a FORMAT_YUV420SPVU region.
 *
 * Parameters as for Zelm_Resize_and_Convert, which hands these sources here
 * after it has validated both records. This function validates nothing: both
 * records must satisfy what checkStruct demands, with regions as it leaves them
 * (even), and the destination is written as FORMAT_YUV420SPVU whatever its
 * `format` says. When regions are equal in size (and, for a tiled source, both
 * are whole frames) the chroma is written at width * height; otherwise at the
 * destination's uvOffset. Keep the two equal.
 *
 * Returns
 *   RESULT_OK
 *   RESULT_BAD_FORMAT         source is not UYVY, RGB565 or tiled
 *   RESULT_BAD_ROI            the source region is empty and is to be scaled
 *   RESULT_BAD_LUMA_METHOD    region sizes differ and the method is unknown
 *   RESULT_BAD_CHROMA_METHOD  the same for chroma; luma has been written
 *   RESULT_NO_MEMORY
 */
ZELM_API int Zelm_Convert_and_Resize(ImageStruct src, ImageStruct dst,
                                     int lumaMethod, int chromaMethod,
                                     int reserved);

/* Zelm_Rotate_and_Convert - source luma region, turned, into the destination
 * luma region. No chroma is read or written.
 *
 *   src, dst   any of the planar and semi-planar formats, not necessarily alike
 *   mode       must be 1
 *   rotation   RotationCode
 *
 * Returns
 *   RESULT_OK
 *   RESULT_BAD_FORMAT    a format other than the five with a separate luma plane;
 *                        found before anything else
 *   RESULT_NULL, RESULT_BAD_SIZE, RESULT_BAD_ROI   as checkStruct
 *   RESULT_BAD_MODE      mode is not 1
 *   RESULT_BAD_ROTATION  rotation is not 0, 1, 2 or 4
 *   RESULT_ROI_MISMATCH  regions are not of equal size (0, 180 degrees), or the
 *                        destination's is not the source's with width and height
 *                        exchanged (90, 270 degrees)
 */
ZELM_API int16_t Zelm_Rotate_and_Convert(ImageStruct src, ImageStruct dst,
                                         int mode, int rotation);

/* -------------------------------------------------------------- checks, helpers */

/* checkStruct - validates a record and makes its region even.
 *
 * Returns, testing in this order: RESULT_NULL for a null record or `data`;
 * RESULT_BAD_SIZE for a width or height that is 0 or odd; RESULT_BAD_ROI for a
 * roiX outside 0..width or a roiY outside 0..height; then roiX, roiY, roiWidth
 * and roiHeight lose their lowest bit in the record itself; RESULT_BAD_ROI when
 * that region leaves the image; RESULT_BAD_FORMAT for an unknown format;
 * RESULT_OK. An empty region is valid. Whether the buffer is large enough is
 * not checked. Not to be called for one record on two threads at once.
 */
ZELM_API int checkStruct(ImageStruct *img);

/* checkRotateParam - the argument tests of Zelm_Rotate_and_Convert.
 *
 * Reads only the size of the two regions. Returns RESULT_BAD_MODE,
 * RESULT_BAD_ROTATION, RESULT_ROI_MISMATCH (tested in this order) or RESULT_OK.
 */
ZELM_API int checkRotateParam(ImageStruct *src, ImageStruct *dst, int mode,
                              int rotation);

/* getReductionRate - how often the source region may be halved before scaling.
 *
 * Returns n >= 0: both sides of the source region can be divided by 2^n without
 * becoming odd or smaller than the destination region. Reads only the size of
 * the two regions. Returns 0 for an empty destination region or an odd source
 * region. The destination comes first.
 */
ZELM_API int getReductionRate(ImageStruct *dst, ImageStruct *src);

/* logn - logarithm of x to the given base, log(x) / log(base) in double; the
 * base comes first. Base 1 gives an infinity or not-a-number. */
ZELM_API double logn(int base, int x);

/* clipping - value limited to low..high; the lower bound is tested first. */
ZELM_API int clipping(int value, int low, int high);

/* -------------------------------------------------------------------- stages
 *
 * Every stage takes the destination first, returns nothing, checks nothing and
 * changes no record. Both records must satisfy what checkStruct demands (even
 * regions inside their images, non-null data), the buffers must be as large as
 * zelmFrameLayout() says and must not overlap. Unless said otherwise a stage
 * reads the source region and writes the destination region, both of the same
 * size, and no byte outside of it. `format` is not read unless said so. An empty
 * region writes nothing.
 */

/* Semi-planar 4:2:0 to packed RGB. Chroma order is U, V when the source's
 * format is FORMAT_YUV420SP and V, U otherwise. Chroma is interpolated inside
 * the region: to the right for odd columns, upward (V) or downward (U) for one
 * of the two rows; the region's outer chroma rows and columns are taken as they
 * are. Byte and bit orders stand with the formats above. */
ZELM_API void convYUV420SP_RGBA8888(ImageStruct *dst, ImageStruct *src);
ZELM_API void convYUV420SP_RGB565(ImageStruct *dst, ImageStruct *src);
ZELM_API void convYUV420SP_RGB888(ImageStruct *dst, ImageStruct *src);

/* Semi-planar 4:2:0 region copied, bytes unchanged. */
ZELM_API void convYUV420SP_YUV420SP(ImageStruct *dst, ImageStruct *src);
/* The same with the two bytes of every chroma pair exchanged (NV12 <-> NV21). */
ZELM_API void convYUV420SP_VU2UV(ImageStruct *dst, ImageStruct *src);
/* Whole semi-planar frame to planar (FORMAT_YUV420P as a destination): the
 * first byte of each pair goes to the first chroma plane. Regions are ignored;
 * both frames must have the same size. */
ZELM_API void convYUV420SP_YUV420P(ImageStruct *dst, ImageStruct *src);
/* Whole planar frame (FORMAT_YUV420P as a source) to semi-planar: the first
 * plane supplies the first byte of each pair. Regions are ignored; both frames
 * must have the same size. */
ZELM_API void convYUV420P_YUV420SP(ImageStruct *dst, ImageStruct *src);

/* Semi-planar 4:2:0 to 4:2:2. Luma is copied; even chroma rows are copies, odd
 * ones the mean with the next row, rounded down; the last row is repeated. */
ZELM_API void convYUV420SP_YUV422SP(ImageStruct *dst, ImageStruct *src);
/* The same with the two bytes of every pair exchanged. */
ZELM_API void convYUV420SP_YUV422SP_VU2UV(ImageStruct *dst, ImageStruct *src);

/* UYVY to semi-planar V, U. Chroma is that of the upper row of every two. The
 * chroma plane is written at width * height; uvOffset is not read. An odd last
 * row or column is not converted. */
ZELM_API void convYUV422IUYVY_YUV420SPVU(ImageStruct *dst, ImageStruct *src);
/* RGB565 to semi-planar V, U. Chroma is that of the upper left of every 2 x 2
 * pixels. The chroma plane is written at width * height; uvOffset is not read.
 * An odd last row is converted with its chroma, an odd last column is written
 * twice (so the destination region is one wider). */
ZELM_API void convRGB565_YUV420SPVU(ImageStruct *dst, ImageStruct *src);

/* Tiled to linear semi-planar V, U and back: whole frames of the source region's
 * size, which is also the row stride of the linear frame; region origins are
 * ignored. The source's chroma is read at its uvOffset. Linear chroma is written
 * at width * height, tiled chroma at width * height with both rounded up to
 * multiples of 16. Bytes of an edge tile outside the frame are not touched. */
ZELM_API void convYUV420SPMB_YUV420SPVU(ImageStruct *dst, ImageStruct *src);
ZELM_API void convYUV420SPVU_YUV420SPMB(ImageStruct *dst, ImageStruct *src);

/* Scalers: the source region, of any size, to the destination region, of any
 * size. The plain name scales the luma plane, the suffix VU the interleaved
 * chroma plane at uvOffset, pair by pair in either order. An empty source
 * region writes nothing. Results never depend on bytes outside the region. */
ZELM_API void resize_nearest(ImageStruct *dst, ImageStruct *src);
ZELM_API void resize_nearestVU(ImageStruct *dst, ImageStruct *src);
ZELM_API void resize_linear(ImageStruct *dst, ImageStruct *src);
ZELM_API void resize_linearVU(ImageStruct *dst, ImageStruct *src);
ZELM_API void resize_cubic(ImageStruct *dst, ImageStruct *src);
ZELM_API void resize_cubicVU(ImageStruct *dst, ImageStruct *src);
/* Bilinear for three interleaved bytes per pixel (FORMAT_RGB888). The
 * destination is a packed block at `data`: roiHeight rows of 3 * roiWidth bytes;
 * its width, roiX and roiY are not read. */
ZELM_API void resize_linear3ch(ImageStruct *dst, ImageStruct *src);

/* Reduces a semi-planar 4:2:0 region by exactly 2 or 4 in both directions; every
 * sample is the mean of 2 x 2 or 4 x 4 samples, rounded down, both planes. The
 * destination region sets the size of the work: the source region must be at
 * least 2 (4) times as wide and high, what is beyond is ignored. */
ZELM_API void resize_averageOfPixel2_420LP(ImageStruct *dst, ImageStruct *src);
ZELM_API void resize_averageOfPixel4_420LP(ImageStruct *dst, ImageStruct *src);

/* Luma region copied or turned. The source region sets the size of the work,
 * odd sizes included; a quarter turn writes roiHeight columns by roiWidth rows.
 * A half turn or quarter turn cannot be done in place. */
ZELM_API void rotate0_Y(ImageStruct *dst, ImageStruct *src);
ZELM_API void rotate90_Y(ImageStruct *dst, ImageStruct *src);  /* clockwise */
ZELM_API void rotate180_Y(ImageStruct *dst, ImageStruct *src);
ZELM_API void rotate270_Y(ImageStruct *dst, ImageStruct *src); /* counter-clockwise */

#ifdef __cplusplus
}
#endif

#endif /* ZELM_IMAGEUTIL_H */
