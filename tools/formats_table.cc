// The command formats: prints the formats and what each can become.
#include <algorithm>
#include <cstdio>

#include "commands.h"
#include "converter.h"
#include "formats.h"
#include "frame.h"

namespace zelm_tool {
namespace {

void print(std::string_view text, int width) {
  printf("%-*.*s", width, static_cast<int>(text.size()), text.data());
}

void printFormats(Size size) {
  printf("%-9s%-20s%-11s%12s%12s  %s\n", "name", "library format", "used as",
         "file bytes", "in memory", "layout in a file");
  for (const Format& format : allFormats()) {
    print(format.name, 9);
    print(format.codeName, 20);
    print(format.readable && format.writable ? "in, out"
          : format.readable                  ? "in"
                                             : "out",
          11);
    printf("%12llu%12zu  ", static_cast<unsigned long long>(fileBytes(format, size)),
           Frame(format.code, size).bytes());
    print(format.about, 0);
    for (std::string_view alias : format.aliases) {
      if (!alias.empty())
        printf("%s%.*s", alias == format.aliases[0] ? "; also " : ", ",
               static_cast<int>(alias.size()), alias.data());
    }
    printf("\n");
  }
}

void printConversions() {
  printf("%-9s", "");
  for (const Format& to : allFormats()) {
    if (to.writable) print(to.name, 9);
  }
  printf("\n");
  for (const Format& from : allFormats()) {
    if (!from.readable) continue;
    print(from.name, 9);
    for (const Format& to : allFormats()) {
      if (!to.writable) continue;
      const size_t calls = conversionRoute(from.code, to.code, true).size() - 1;
      printf("%-9zu", calls);
    }
    printf("\n");
  }
}

}  // namespace

void runFormats(const FormatsOptions& options) {
  const Size size = parseSize("--size", options.size);
  requireFrameSize("--size", size);
  printf(
      "Bytes of a frame of %ux%u (another with --size). 'In memory' is the buffer\n"
      "that the library needs.\n\n",
      size.width, size.height);
  printFormats(size);
  printf(
      "\nWhat becomes what, from the rows to the columns: the number of calls of the\n"
      "library; 1 is a route of its own, more go through nv21. All can be scaled.\n\n");
  printConversions();
  printf(
      "\nnv16 and nv61 are read by 'rotate --luma-only'; rgb24, rgba and gray also "
      "fit\n"
      "into PNG, rgb24 into PPM, gray into PGM, yuv420p into Y4M.\n");
}

}  // namespace zelm_tool
