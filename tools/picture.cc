// Encodes PNG pictures with libpng.
#include "picture.h"

#include <png.h>
#include <zelm_imageutil.h>

#include "failure.h"

namespace zelm_tool {
namespace {

png_uint_32 pngFormat(const Format& format) {
  if (format.order == Order::kLumaOnly) return PNG_FORMAT_GRAY;
  return format.code == FORMAT_RGBA8888 ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB;
}

}  // namespace

bool fitsPng(const Format& format) {
  return format.order == Order::kLumaOnly || format.code == FORMAT_RGB888 ||
         format.code == FORMAT_RGBA8888;
}

std::vector<uint8_t> encodePng(const Format& format, Size size, const uint8_t* pixels) {
  png_image image = {};
  image.version = PNG_IMAGE_VERSION;
  image.width = size.width;
  image.height = size.height;
  image.format = pngFormat(format);
  png_alloc_size_t bytes = PNG_IMAGE_PNG_SIZE_MAX(image);
  std::vector<uint8_t> file(bytes);
  if (!png_image_write_to_memory(&image, file.data(), &bytes, 0, pixels, 0, nullptr)) {
    fail("the PNG picture cannot be made: ", image.message);
  }
  file.resize(bytes);
  return file;
}

}  // namespace zelm_tool
