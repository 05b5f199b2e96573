// Encodes PNG pictures.
#include "output/png_picture.h"

#include <png.h>
#include <zelm_frames.h>

#include "failure.h"

namespace zelm_tool {

bool fitsPng(const Format& format) {
  return format.code == ZELM_GRAY8 || format.code == ZELM_RGB24 ||
         format.code == ZELM_RGBA;
}

std::vector<uint8_t> encodePng(const Format& format, Size size, const uint8_t* pixels) {
  png_image image = {};
  image.version = PNG_IMAGE_VERSION;
  image.width = size.width;
  image.height = size.height;
  image.format = format.code == ZELM_GRAY8  ? PNG_FORMAT_GRAY
                 : format.code == ZELM_RGBA ? PNG_FORMAT_RGBA
                                            : PNG_FORMAT_RGB;
  png_alloc_size_t bytes = PNG_IMAGE_PNG_SIZE_MAX(image);
  std::vector<uint8_t> file(bytes);
  if (!png_image_write_to_memory(&image, file.data(), &bytes, 0, pixels, 0, nullptr)) {
    fail("the PNG picture cannot be made: ", image.message);
  }
  file.resize(bytes);
  return file;
}

}  // namespace zelm_tool
