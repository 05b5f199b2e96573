// The texts of the help.
#include "options/help.h"

#include "frame/formats.h"

namespace zelm_tool {
namespace {

constexpr char kFiles[] =
    R"(IN is a file or - for standard input. Y4M (4:2:0, 4:2:2 and luma alone, of 8 bits), PNG,
PPM and PGM are known by their first bytes; anything else is raw frames, which need
--size, and --from where the suffix does not tell the format. OUT is known by its suffix:
.y4m, .png, .ppm, .pgm, or a format's name (.nv12, .rgb565, ...); --to decides otherwise.
- is standard output. A PNG takes the first frame; a name with %d or %03d makes numbered
files of PNG, PPM or PGM, from 1 (with --frames FIRST:COUNT from FIRST + 1). A .ppm
without a number holds all frames one after the other. Output appears when it is
complete; of numbered pictures, those that were complete before an error stay. Names
that begin with a dash stand behind --. Names of formats may be in upper case.

Exit status: 0; 1 of compare when the inputs differ; 2 with one line that says what was
wrong.)";

constexpr char kGeometry[] =
    R"(In this order: --crop, --resize, --rotate, --mirror. --resize is the size of the picture
as it is written, after the turn:
  640x360      exactly that
  640x, x360   the other side follows, so that the picture keeps its aspect
  50%          both sides
  fit:640x640  the largest of the same aspect in there; with --canvas in its middle
A side that follows becomes even. Sizes may be odd; of formats that share chroma between
two pixels, regions begin at even places. The sample aspect of Y4M follows scaling and
turns.)";

constexpr char kColour[] =
    R"(auto is, for the input: what a Y4M header says (XCOLORRANGE), else limited for Y4M and full
for raw frames; BT.709 for Y4M from 1280 wide or 720 high on, BT.601 otherwise. For the
output: what the input has; of RGB pictures Y4M becomes limited and BT.709 or BT.601 by
the same sizes, raw frames full BT.601. RGB itself is always full. Where pixels depend on
what was assumed, one line on standard error says so. A Y4M stream is written with its
range, and with XCOLORMATRIX where the matrix is not the one that auto would choose.)";

}  // namespace

std::string generalHelp() {
  std::string text = "Formats:\n";
  for (const Format& format : allFormats()) {
    std::string name(format.name);
    name.resize(10, ' ');
    text += "  " + name + std::string(format.about);
    const char* before = "; also ";
    for (std::string_view alias : format.aliases) {
      if (alias.empty()) continue;
      text += before + std::string(alias);
      before = ", ";
    }
    text += '\n';
  }
  return text + '\n' + kFiles +
         "\n\nMore about a command: zelm-imageutil COMMAND --help";
}

std::string geometryHelp() { return kGeometry; }

std::string colourHelp() { return kColour; }

}  // namespace zelm_tool
