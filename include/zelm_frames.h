/* zelm_frames.h - converts, crops, scales, turns and mirrors frames as cameras,
 * decoders and bitmaps hand them out.
 *
 * A first program
 * ---------------
 * A decoder's NV12 frame of limited-range BT.709 becomes an RGBA picture:
 *
 *   ZelmFrame src = {ZELM_NV12, 1920, 1080, ZELM_BT709_LIMITED,
 *                    {{luma, lumaStride}, {chroma, chromaStride}}};
 *   ZelmFrame dst;
 *   ZelmMessage message;
 *   zelmFrameInit(&dst, ZELM_RGBA, 1920, 1080, pixels, 4 * 1920 * 1080, 1);
 *   if (zelmConvert(&dst, &src, NULL, &message) != ZELM_OK) {
 *     fprintf(stderr, "%s\n", message.text);
 *   }
 *
 * A destination of another size is scaled to. Everything else that a frame goes
 * through is asked for with a ZelmEdit: a region of the source, a region of the
 * destination, filters, a turn, a mirror. A stream prepares a plan once and runs
 * it for every frame, which then allocates nothing:
 *
 *   ZelmEdit edit = {0};
 *   edit.turn = 90;
 *   ZelmPlan *plan;
 *   zelmPlanCreate(&plan, &dst, &src, &edit, &message);
 *   while (nextFrame(&src)) zelmPlanRun(plan, &dst, &src);
 *   zelmPlanDestroy(plan);
 *
 * What happens to a frame, in this order: the source region is cropped, reduced
 * and scaled, turned, mirrored, and its colours are converted. docs/frames.md of
 * the source tree has the exact rule of every step.
 *
 * Units
 * -----
 * Sizes and positions are in pixels and rows, strides, steps and sizes of planes
 * in bytes.
 *
 * Determinism
 * -----------
 * Pixels are computed with integers. The same input gives the same bytes on
 * every processor, with every instruction set, from every compiler, for every
 * number and order of bands, for all strides and alignments. Where the functions
 * of zelm_imageutil.h do the same work, the bytes are the same as theirs.
 *
 * Memory
 * ------
 * Planes need no alignment and no padding. Nothing is read or written outside of
 * the rows of the regions, and nothing is written when a call fails. The library
 * owns no buffer but a plan's. What is checked is in ZelmPlane: pointers, strides,
 * steps, sizes where they are given. Whether the memory behind a pointer is there
 * is never checked.
 *
 * Threads
 * -------
 * There is no global state and no thread of the library's own. A plan that is not
 * being destroyed may be used by any number of threads at the same time, as long
 * as no two write the same bytes; see zelmPlanRunBand().
 */
#ifndef ZELM_FRAMES_H
#define ZELM_FRAMES_H

#include <stddef.h>
#include <stdint.h>

/* The version of this header: major * 10000 + minor * 100 + patch. While the major
 * version is 0 the interface may change with the minor one. */
#define ZELM_FRAMES_VERSION_MAJOR 0
#define ZELM_FRAMES_VERSION_MINOR 1
#define ZELM_FRAMES_VERSION_PATCH 0
#define ZELM_FRAMES_VERSION                                          \
  (ZELM_FRAMES_VERSION_MAJOR * 10000 + ZELM_FRAMES_VERSION_MINOR * 100 + \
   ZELM_FRAMES_VERSION_PATCH)

#if defined(__GNUC__)
#define ZELM_FRAMES_API __attribute__((visibility("default")))
#else
#define ZELM_FRAMES_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Pixel formats. Every one can be a source and a destination. W and H are the
 * frame's width and height; halves are rounded up. A pair is the two chroma bytes
 * of one position, side by side. */
typedef enum ZelmFormat {
  /* 4:2:0, a luma plane of W x H and two chroma planes of W/2 x H/2 samples: */
  ZELM_I420 = 1, /* planes Y, U, V */
  ZELM_YV12 = 2, /* planes Y, V, U */
  /* 4:2:0, a luma plane and a plane of W/2 x H/2 pairs: */
  ZELM_NV12 = 3, /* planes Y, pairs U V */
  ZELM_NV21 = 4, /* planes Y, pairs V U */
  /* 4:2:2, chroma has all rows: */
  ZELM_I422 = 5, /* planes Y, U, V; chroma planes of W/2 x H */
  ZELM_NV16 = 6, /* planes Y, pairs U V; W/2 x H pairs */
  ZELM_NV61 = 7, /* planes Y, pairs V U */
  /* 4:2:2 in one plane, four bytes hold two pixels. In rows of an odd number of
   * pixels the last four hold one; its luma is written twice. */
  ZELM_YUYV = 8, /* bytes Y U Y V */
  ZELM_UYVY = 9, /* bytes U Y V Y */
  /* Luma alone, one byte per pixel. */
  ZELM_GRAY8 = 10,
  /* One plane of pixels, channels in the order of memory: */
  ZELM_RGB24 = 11,
  ZELM_BGR24 = 12,
  ZELM_RGBA = 13, /* A is 255 where the source has none */
  ZELM_BGRA = 14,
  /* One plane of little-endian 16-bit words: */
  ZELM_RGB565 = 15, /* red in bits 15-11, green 10-5, blue 4-0 */
  ZELM_BGR565 = 16, /* blue in bits 15-11, green 10-5, red 4-0 */
  /* 4:2:0 in tiles, pairs U V. A luma tile is 16 x 16 samples in 256 bytes: its
   * left 8 columns as 16 rows of 8 bytes, then its right 8 columns. A chroma tile
   * is 8 pairs x 8 rows in 128 bytes, halved the same way. A row of tiles lies in
   * one piece; the tiles at the right and the bottom edge are whole. */
  ZELM_TILED = 17 /* planes luma tiles, chroma tiles */
} ZelmFormat;

/* What luma and chroma mean: a matrix and a range. In full range luma and chroma go
 * from 0 to 255, in limited range luma from 16 to 235 and chroma from 16 to 240;
 * neutral chroma is 128. BT.2020 is its non-constant luminance form. Ordinary video
 * is limited, BT.709 from 720 rows on and BT.601 below; cameras and JPEG are BT.601
 * full. RGB formats have no colour description: it is not read for them. */
typedef enum ZelmColour {
  ZELM_BT601_FULL = 0, /* what the functions of zelm_imageutil.h use */
  ZELM_BT601_LIMITED = 1,
  ZELM_BT709_FULL = 2,
  ZELM_BT709_LIMITED = 3,
  ZELM_BT2020_FULL = 4,
  ZELM_BT2020_LIMITED = 5
} ZelmColour;

/* How a plane is scaled. All three are aligned at the corners: the first and the last
 * sample of the destination lie on the first and the last one of the source. Before
 * that, box averages halve what is at least twice too large. */
typedef enum ZelmFilter {
  ZELM_LINEAR = 0,
  ZELM_NEAREST = 1,
  ZELM_CUBIC = 2 /* cubic convolution, a = -1 */
} ZelmFilter;

typedef enum ZelmResult {
  ZELM_OK = 0,
  ZELM_NULL = -1,        /* a frame or plan is null */
  ZELM_BAD_SIZE = -2,    /* a width or height is 0 or above 65535 */
  ZELM_BAD_REGION = -3,  /* a region outside its frame, or at a place that its format
                            cannot express */
  ZELM_BAD_FORMAT = -4,  /* unknown format */
  ZELM_BAD_COLOUR = -5,  /* unknown colour description */
  ZELM_BAD_FILTER = -6,  /* unknown filter */
  ZELM_BAD_TURN = -7,    /* no turn by 0, 90, 180 or 270, no mirror of 0 or 1 */
  ZELM_BAD_PLANE = -8,   /* a plane that is null or too small, a stride that is
                            shorter than a row, a step that the format has not */
  ZELM_OVERLAP = -9,     /* source and destination share bytes */
  ZELM_WRONG_FRAME = -10, /* not a frame that the plan was made for */
  ZELM_BAD_BAND = -11,   /* no such band */
  ZELM_NO_MEMORY = -12
} ZelmResult;

/* A plane in the caller's memory. */
typedef struct ZelmPlane {
  uint8_t *data;    /* the first sample of the top row */
  ptrdiff_t stride; /* bytes from a row to the one below it; negative where the frame
                       is stored bottom-up. Of ZELM_TILED: from one row of tiles to
                       the next. */
  int32_t step;     /* bytes from one sample to the next. 0 is what the format says.
                       The chroma planes of I420, YV12 and I422 may have 2, as camera
                       services hand them out; where U and V then lie one byte apart,
                       they are worked on as pairs. */
  size_t size;      /* how many bytes there are from the lowest address of a row to the
                       end of the highest; 0 if unknown. All strides but one and a last
                       row without padding are needed; of a plane with a step of 2 the
                       last sample need not be followed by another byte. */
} ZelmPlane;

/* A frame: a description of the caller's memory. Planes that the format has not are
 * never read. Of a source nothing is written. */
typedef struct ZelmFrame {
  uint32_t format; /* a ZelmFormat */
  uint32_t width, height;
  uint32_t colour; /* a ZelmColour */
  ZelmPlane planes[3];
} ZelmFrame;

/* A part of a frame. All zero is the whole frame. */
typedef struct ZelmRegion {
  uint32_t x, y, width, height;
} ZelmRegion;

/* What happens on the way. All zero is: convert the whole frame, scaled where the
 * sizes differ.
 *
 * Regions begin at even columns where the format shares chroma between two columns,
 * and at even rows where it shares it between two rows. In the source they may have any
 * size; in the destination they end at an even place or with the frame. */
typedef struct ZelmEdit {
  ZelmRegion source;      /* what is taken of the source */
  ZelmRegion destination; /* where it goes; the rest of the frame keeps its bytes */
  uint32_t lumaFilter;    /* a ZelmFilter; of RGB frames for all channels */
  uint32_t chromaFilter;  /* a ZelmFilter */
  uint32_t turn;          /* 0, 90, 180 or 270 degrees clockwise, after scaling */
  uint32_t mirror;        /* 1 exchanges left and right, after the turn */
} ZelmEdit;

/* One sentence that says what is wrong and what would do, in English, ending with a
 * zero byte; an empty one where nothing is wrong. */
typedef struct ZelmMessage {
  char text[240];
} ZelmMessage;

/* zelmFrameBytes - the bytes of a buffer for a whole frame.
 *
 * The planes follow each other in the order of the format, with strides that are a
 * multiple of rowAlignment bytes, which is 0 or 1 for none or a power of two up to
 * 4096. Returns 0 if there is no such frame: an unknown format, a side of 0 or above
 * 65535, another alignment, more bytes than can be addressed. */
ZELM_FRAMES_API size_t zelmFrameBytes(uint32_t format, uint32_t width, uint32_t height,
                                      size_t rowAlignment);

/* zelmFrameInit - describes a frame that lies in one buffer.
 *
 * Fills *frame for the planes that zelmFrameBytes() counts, in `buffer` of `size`
 * bytes, with the colour ZELM_BT601_FULL; set frame->colour afterwards for another.
 * Returns ZELM_OK; ZELM_NULL, ZELM_BAD_FORMAT, ZELM_BAD_SIZE, and ZELM_BAD_PLANE where
 * the buffer is too small or the alignment is none. *frame is all zero then, which every
 * other function refuses. */
ZELM_FRAMES_API int zelmFrameInit(ZelmFrame *frame, uint32_t format, uint32_t width,
                                  uint32_t height, void *buffer, size_t size,
                                  size_t rowAlignment);

/* A prepared conversion. It depends on formats, sizes, colours and the edit, and holds
 * positions, weights and working memory, but no pointer into a frame. */
typedef struct ZelmPlan ZelmPlan;

/* zelmPlanCreate - prepares a conversion from frames like *src to frames like *dst.
 *
 * `edit` may be null, which is an edit of all zero, and so may `message`. Checks
 * everything: both records, their planes, the edit, whether the frames overlap. On
 * success *plan is to be given to zelmPlanDestroy(); on failure it is null, the code
 * says what kind of thing is wrong, and *message says it in a sentence. Pixels are
 * neither read nor written. */
ZELM_FRAMES_API int zelmPlanCreate(ZelmPlan **plan, const ZelmFrame *dst,
                                   const ZelmFrame *src, const ZelmEdit *edit,
                                   ZelmMessage *message);

/* zelmPlanBands - how many bands the plan's destination region is cut into: 1 or more;
 * 0 of a null plan. A band is some rows of the region, few enough for the second-level
 * cache. */
ZELM_FRAMES_API int zelmPlanBands(const ZelmPlan *plan);

/* zelmPlanRunBand - makes one band, 0 to zelmPlanBands() - 1, of the destination.
 *
 * Bands may be made in any order and by any threads at the same time; together they
 * make the frame. The frames are to have the format, size and colour that the plan was
 * made for; pointers, strides and sizes may be others each time, and are checked.
 * Returns ZELM_OK; ZELM_NULL, ZELM_BAD_BAND, ZELM_WRONG_FRAME, ZELM_BAD_PLANE or
 * ZELM_OVERLAP, and then nothing was written. Allocates nothing, unless more than 64
 * threads, or more than the plan has bands, work with it at the same time: then
 * ZELM_NO_MEMORY may come back, too. */
ZELM_FRAMES_API int zelmPlanRunBand(const ZelmPlan *plan, int band, const ZelmFrame *dst,
                                    const ZelmFrame *src);

/* zelmPlanRun - makes all bands, on the calling thread. Returns what zelmPlanRunBand()
 * returns. */
ZELM_FRAMES_API int zelmPlanRun(const ZelmPlan *plan, const ZelmFrame *dst,
                                const ZelmFrame *src);

/* zelmPlanDestroy - frees the plan. It must not be in use. A null plan is left alone. */
ZELM_FRAMES_API void zelmPlanDestroy(ZelmPlan *plan);

/* zelmConvert - prepares, runs and frees a plan: for single frames. Parameters, codes
 * and message are those of zelmPlanCreate(). */
ZELM_FRAMES_API int zelmConvert(const ZelmFrame *dst, const ZelmFrame *src,
                                const ZelmEdit *edit, ZelmMessage *message);

#ifdef __cplusplus
}
#endif

#endif /* ZELM_FRAMES_H */
