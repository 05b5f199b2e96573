"""Compiles libzelm_frames and describes it to cffi."""

import os
import subprocess
from pathlib import Path

import cffi

HERE = Path(__file__).resolve().parent
SOURCES = HERE.parent
# Where the libraries are built; one that is named by the environment is ready to build in.
GIVEN = os.environ.get("ZELM_BUILD_FOLDER")
BUILD = Path(GIVEN) if GIVEN else HERE / "build" / "native"

# What of zelm_frames.h is used. The values of constants and the layout of structures are
# taken from the header when this is compiled.
DECLARATIONS = """
typedef struct { uint8_t *data; ptrdiff_t stride; int32_t step; size_t size; } ZelmPlane;
typedef struct {
  uint32_t format;
  uint32_t width, height;
  uint32_t colour;
  ZelmPlane planes[3];
} ZelmFrame;
typedef struct { uint32_t x, y, width, height; } ZelmRegion;
typedef struct {
  ZelmRegion source;
  ZelmRegion destination;
  uint32_t lumaFilter;
  uint32_t chromaFilter;
  uint32_t turn;
  uint32_t mirror;
} ZelmEdit;
typedef struct { char text[240]; } ZelmMessage;
typedef struct ZelmPlan ZelmPlan;
size_t zelmFrameBytes(uint32_t format, uint32_t width, uint32_t height,
                      size_t rowAlignment);
int zelmFrameInit(ZelmFrame *frame, uint32_t format, uint32_t width, uint32_t height,
                  void *buffer, size_t size, size_t rowAlignment);
int zelmPlanCreate(ZelmPlan **plan, const ZelmFrame *dst, const ZelmFrame *src,
                   const ZelmEdit *edit, ZelmMessage *message);
int zelmPlanBands(const ZelmPlan *plan);
int zelmPlanRun(const ZelmPlan *plan, const ZelmFrame *dst, const ZelmFrame *src);
void zelmPlanDestroy(ZelmPlan *plan);
static void placeFrame(ZelmFrame *frame, const ZelmFrame *model, const void *start);
static int makeBands(const ZelmPlan *plan, int *next, const ZelmFrame *dst,
                     const ZelmFrame *src);
static void channelsFirst(const uint8_t *rgb, size_t pixels, uint8_t *planes);
static void channelsFirstFloat(const uint8_t *rgb, size_t pixels, const float *mean,
                               const float *scale, float *planes);
"""


def build_libraries() -> list[str]:
    """Builds the static libraries and returns their paths, in the order of linking."""
    if not GIVEN:
        options = [
            "CMAKE_BUILD_TYPE=Release",
            "ZELM_BUILD_TOOL=OFF",
            "ZELM_BUILD_TESTS=OFF",
        ]
        chosen = [f"-D{option}" for option in options]
        subprocess.run(["cmake", "-S", SOURCES, "-B", BUILD, *chosen], check=True)
    targets = ["zelm_frames_static", "zelm_imageutil_static"]
    jobs = str(os.cpu_count() or 1)
    subprocess.run(
        ["cmake", "--build", BUILD, "-j", jobs, "--target", *targets], check=True
    )
    return [
        str(BUILD / "frames/libzelm_frames.a"),
        str(BUILD / "src/libzelm_imageutil.a"),
    ]


ffi = cffi.FFI()
ffi.cdef(DECLARATIONS)
ffi.set_source(
    "zelm_imageutil._native",
    (HERE / "native.c").read_text(),
    include_dirs=[str(SOURCES / "include")],
    extra_objects=build_libraries(),
    libraries=["m"],
    extra_compile_args=["-O3"],
    # The libraries' own names stay inside, and what is not called is left out.
    extra_link_args=["-Wl,--exclude-libs,ALL", "-Wl,--gc-sections"],
    py_limited_api=True,
)
