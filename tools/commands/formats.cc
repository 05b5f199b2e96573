// The command formats: prints the formats and how large their frames are.
#include <zelm_frames.h>

#include <cstdio>

#include "commands/commands.h"
#include "frame/formats.h"
#include "frame/geometry.h"
#include "frame/y4m.h"
#include "output/png_picture.h"

namespace zelm_tool {
namespace {

void print(std::string_view text, int width) {
  printf("%-*.*s", width, static_cast<int>(text.size()), text.data());
}

// What holds such frames beside raw files.
std::string alsoIn(const Format& format) {
  std::string names;
  const auto add = [&names](const char* name) {
    names += (names.empty() ? "" : " ") + std::string(name);
  };
  if (fitsY4m(format)) add("y4m");
  if (fitsPng(format)) add("png");
  if (format.code == ZELM_RGB24) add("ppm");
  if (format.code == ZELM_GRAY8) add("pgm");
  return names;
}

}  // namespace

void runFormats(const FormatsOptions& options) {
  const Size size = parseSize("--size", options.size);
  requireFrameSize("--size", size);
  printf(
      "Every format can be read, and every one can become every other. Bytes of a "
      "frame\n"
      "of %ux%u (another with --size):\n\n%-10s%12s  %-13s%s\n",
      size.width, size.height, "name", "bytes", "also in", "layout");
  for (const Format& format : allFormats()) {
    print(format.name, 10);
    printf("%12zu  ", zelmFrameBytes(format.code, size.width, size.height, 1));
    print(alsoIn(format), 13);
    print(format.about, 0);
    const char* before = "; also ";
    for (std::string_view alias : format.aliases) {
      if (alias.empty()) continue;
      print(before, 0);
      print(alias, 0);
      before = ", ";
    }
    printf("\n");
  }
}

}  // namespace zelm_tool
