// Frames and streams for tests of the program, and what the libraries make of them.
#include "tool_frames.h"

#include <png.h>
#include <zelm_imageutil.h>

#include <algorithm>
#include <cmath>

const std::vector<FormatCase> kFormats = {
    {ZELM_I420, {"yuv420p", "i420", "iyuv", "yuv"}, 59},
    {ZELM_YV12, {"yv12"}, 59},
    {ZELM_NV12, {"nv12"}, 59},
    {ZELM_NV21, {"nv21", "NV21"}, 59},
    {ZELM_I422, {"yuv422p", "i422", "YUV422P"}, 75},
    {ZELM_NV16, {"nv16"}, 75},
    {ZELM_NV61, {"nv61"}, 75},
    {ZELM_YUYV, {"yuyv422", "yuyv", "yuy2", "YUY2"}, 80},
    {ZELM_UYVY, {"uyvy422", "uyvy"}, 80},
    {ZELM_GRAY8, {"gray", "grey", "gray8", "y8"}, 35},
    {ZELM_RGB24, {"rgb24", "rgb888", "rgb", "RGB24"}, 105},
    {ZELM_BGR24, {"bgr24", "bgr888", "bgr"}, 105},
    {ZELM_RGBA, {"rgba", "rgba8888", "Rgba"}, 140},
    {ZELM_BGRA, {"bgra", "bgra8888"}, 140},
    {ZELM_RGB565, {"rgb565", "rgb565le"}, 70},
    {ZELM_BGR565, {"bgr565", "bgr565le"}, 70},
    {ZELM_TILED, {"tiled", "nv12-tiled16"}, 384}};

namespace {

uint8_t* bytesOf(std::string& text) { return reinterpret_cast<uint8_t*>(text.data()); }

ZelmFrame frameOf(Picture& picture) {
  ZelmFrame frame;
  EXPECT_EQ(zelmFrameInit(&frame, picture.format, picture.width, picture.height,
                          bytesOf(picture.bytes), picture.bytes.size(), 1),
            ZELM_OK);
  frame.colour = picture.colour;
  return frame;
}

struct PngWriter {
  png_structp png =
      png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  std::string file;

  PngWriter() {
    png_set_write_fn(
        png, &file,
        [](png_structp p, png_bytep data, size_t size) {
          static_cast<std::string*>(png_get_io_ptr(p))
              ->append(reinterpret_cast<char*>(data), size);
        },
        nullptr);
  }
  ~PngWriter() { png_destroy_write_struct(&png, &info); }
  void write(std::string pixels, uint32_t height) const {
    png_write_info(png, info);
    const size_t row = pixels.size() / height;
    for (uint32_t y = 0; y < height; ++y) png_write_row(png, bytesOf(pixels) + y * row);
    png_write_end(png, info);
  }
};

char rounded(double value) { return static_cast<char>(std::lround(value)); }

}  // namespace

Picture blank(uint32_t format, uint32_t width, uint32_t height, uint32_t colour) {
  Picture picture = {format, width, height,
                     std::string(zelmFrameBytes(format, width, height, 1), '\0'),
                     colour};
  if (format == ZELM_TILED) {
    const size_t luma = (width + 15) / 16 * ((height + 15) / 16) * 256;
    picture.bytes.replace(luma, luma / 2, luma / 2, '\x80');
  }
  return picture;
}

std::string converted(const Picture& from, Picture to, ZelmEdit edit) {
  Picture source = from;
  const ZelmFrame src = frameOf(source), dst = frameOf(to);
  ZelmMessage message;
  EXPECT_EQ(zelmConvert(&dst, &src, &edit, &message), ZELM_OK) << message.text;
  return to.bytes;
}

std::string convertedNv21(std::string source, int width, int height, uint32_t format) {
  std::string result(zelmFrameLayout(format, width, height).size, '\0');
  const ImageStruct from =
      zelmWholeFrame(FORMAT_YUV420SPVU, width, height, bytesOf(source));
  const ImageStruct to = zelmWholeFrame(format, width, height, bytesOf(result));
  EXPECT_EQ(Zelm_Resize_and_Convert(from, to, RESIZE_LINEAR, RESIZE_LINEAR, 0), 0);
  return result;
}

std::string turned(const std::string& plane, uint32_t width, uint32_t height,
                   uint32_t sampleBytes, uint32_t turn, bool mirror) {
  const bool quarter = turn % 180 != 0;
  const uint32_t columns = quarter ? height : width;
  std::string result(plane.size(), '\0');
  for (uint32_t y = 0; y < height; ++y) {
    for (uint32_t x = 0; x < width; ++x) {
      uint32_t tx = x, ty = y;
      if (turn == 90) tx = height - 1 - y, ty = x;
      if (turn == 180) tx = width - 1 - x, ty = height - 1 - y;
      if (turn == 270) tx = y, ty = width - 1 - x;
      if (mirror) tx = columns - 1 - tx;
      result.replace((ty * columns + tx) * sampleBytes, sampleBytes, plane,
                     (y * width + x) * sampleBytes, sampleBytes);
    }
  }
  return result;
}

Triple rgbOf(const Triple& yuv, const Colours& c) {
  const double y = c.full ? yuv[0] : (yuv[0] - 16) * 255 / 219;
  const double chroma = c.full ? 1 : 255.0 / 224;
  const double u = (yuv[1] - 128) * chroma, v = (yuv[2] - 128) * chroma;
  const double r = y + 2 * (1 - c.kr) * v, b = y + 2 * (1 - c.kb) * u;
  return {r, (y - c.kr * r - c.kb * b) / (1 - c.kr - c.kb), b};
}

Triple yuvOf(const Triple& rgb, const Colours& c) {
  const double y = c.kr * rgb[0] + (1 - c.kr - c.kb) * rgb[1] + c.kb * rgb[2];
  const double chroma = c.full ? 1 : 224.0 / 255;
  return {c.full ? y : 16 + y * 219 / 255,
          128 + chroma * (rgb[2] - y) / (2 * (1 - c.kb)),
          128 + chroma * (rgb[0] - y) / (2 * (1 - c.kr))};
}

std::string uniformRaw(uint32_t width, uint32_t height, const Triple& yuv) {
  const size_t chroma = size_t{(width + 1) / 2} * ((height + 1) / 2);
  return std::string(size_t{width} * height, rounded(yuv[0])) +
         std::string(chroma, rounded(yuv[1])) + std::string(chroma, rounded(yuv[2]));
}

std::string uniformY4m(const std::string& header, uint32_t width, uint32_t height,
                       const Triple& yuv) {
  return "YUV4MPEG2 W" + std::to_string(width) + " H" + std::to_string(height) +
         header + "\nFRAME\n" + uniformRaw(width, height, yuv);
}

std::string smallY4m() {
  std::string stream = "YUV4MPEG2 W8 H4 F30000:1001 It A2:1 C420mpeg2 XTEST=1\n";
  for (const char* planes : {"akv", "blw", "cmx"}) {
    stream += (planes[0] == 'b' ? "FRAME Ixyz\n" : "FRAME\n") +
              std::string(32, planes[0]) + std::string(8, planes[1]) +
              std::string(8, planes[2]);
  }
  return stream;
}

std::string firstLine(const std::string& stream) {
  return stream.substr(0, stream.find('\n'));
}

::testing::AssertionResult sameBytes(const std::string& actual,
                                     const std::string& expected) {
  if (actual == expected) return ::testing::AssertionSuccess();
  const size_t both = std::min(actual.size(), expected.size());
  size_t at = 0;
  while (at < both && actual[at] == expected[at]) ++at;
  ::testing::AssertionResult result = ::testing::AssertionFailure();
  result << actual.size() << " bytes instead of " << expected.size()
         << ", the first other one is number " << at;
  if (at == both) return result;
  return result << ": " << int{static_cast<uint8_t>(actual[at])} << " instead of "
                << int{static_cast<uint8_t>(expected[at])};
}

std::string repeat(const std::string& text, size_t times) {
  std::string result;
  while (times-- > 0) result += text;
  return result;
}

std::string noise(size_t count, uint32_t seed) {
  std::string bytes(count, '\0');
  for (char& byte : bytes) {
    seed = seed * 1664525u + 1013904223u;
    byte = static_cast<char>(seed >> 24);
  }
  return bytes;
}

std::string pngOf(const std::string& pixels, uint32_t width, uint32_t height,
                  int channels, int depth, double gamma) {
  constexpr int kKinds[] = {0, PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_GRAY_ALPHA,
                            PNG_COLOR_TYPE_RGB, PNG_COLOR_TYPE_RGB_ALPHA};
  PngWriter writer;
  png_set_IHDR(writer.png, writer.info, width, height, depth, kKinds[channels],
               PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
               PNG_FILTER_TYPE_DEFAULT);
  if (gamma > 0) png_set_gAMA(writer.png, writer.info, gamma);
  std::string samples;
  for (char sample : pixels) samples.append(depth == 16 ? 2 : 1, sample);
  writer.write(samples, height);
  return writer.file;
}

std::string pngWithPalette(const std::string& pixels, uint32_t width, uint32_t height,
                           const std::string& palette) {
  PngWriter writer;
  png_set_IHDR(writer.png, writer.info, width, height, 8, PNG_COLOR_TYPE_PALETTE,
               PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
               PNG_FILTER_TYPE_DEFAULT);
  png_set_PLTE(writer.png, writer.info,
               reinterpret_cast<png_const_colorp>(palette.data()),
               static_cast<int>(palette.size() / 3));
  writer.write(pixels, height);
  return writer.file;
}

std::string pixelsOf(const std::string& png, int channels) {
  constexpr png_uint_32 kKinds[] = {0, PNG_FORMAT_GRAY, PNG_FORMAT_GA, PNG_FORMAT_RGB,
                                    PNG_FORMAT_RGBA};
  png_image image = {};
  image.version = PNG_IMAGE_VERSION;
  EXPECT_TRUE(png_image_begin_read_from_memory(&image, png.data(), png.size()))
      << image.message;
  EXPECT_EQ(image.format, kKinds[channels]);
  std::string pixels(PNG_IMAGE_SIZE(image), '\0');
  EXPECT_TRUE(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr));
  return pixels;
}
