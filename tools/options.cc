// Describes the options to CLI11 and holds the text of the help.
#include "options.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <cstdio>

#include "failure.h"
#include "formats.h"

#ifndef ZELM_VERSION
#error "the build passes the version"
#endif

namespace zelm_tool {
namespace {

constexpr char kFooter[] =
    R"(Formats (FORMAT_ is the library's name):
  yuv420p  FORMAT_YUV420P      planar 4:2:0, in files Y, U, V (also .yuv, i420)
  yv12     FORMAT_YUV420P      planar 4:2:0, in files Y, V, U
  nv12     FORMAT_YUV420SP     semi-planar 4:2:0, pairs U V
  nv21     FORMAT_YUV420SPVU   semi-planar 4:2:0, pairs V U
  nv16     FORMAT_YUV422SP     semi-planar 4:2:2, pairs U V; output
  nv61     FORMAT_YUV422SPVU   semi-planar 4:2:2, pairs V U; output
  uyvy422  FORMAT_YUV422IUYVY  packed 4:2:2, U Y V Y; input
  rgb565   FORMAT_RGB565       little-endian words, red in the high bits
  bgr565   FORMAT_RGB565       little-endian words, red in the low bits
  rgb24    FORMAT_RGB888       bytes R G B; output
  rgba     FORMAT_RGBA8888     bytes R G B A, A is 255; output
  tiled    FORMAT_YUV420SPMB   4:2:0 in 16x16 tiles, pairs U V
  gray                         the luma plane alone; output

Files hold planes and bits in the order that other programs expect. The library's
own planar frames have V before U: they are rearranged, Y4M and yuv420p are Y, U, V.
The library reads 16-bit words with red in the high bits and writes them with red in
the low bits: rgb565 means red high and bgr565 red low, for input and for output.
RGB is made with the BT.601 matrix from full-range YUV; video of limited range is
expanded first, with ffmpeg: -vf scale=out_range=full.

IN is a raw file, a Y4M stream (known by its first bytes; 4:2:0 of 8 bits) or - for
standard input. OUT is known by its suffix: .y4m, .png, .ppm (all frames one after
the other), .pgm, or a format's name (.nv12, .rgb565, ...); --to decides otherwise.
- is standard output. A Y4M stream's frame rate and other tags pass through. A PNG
takes the first frame; a name with %d or %03d makes numbered pictures, from 1.
Sizes and positions are even. Names that begin with a dash stand behind --.
Output appears when it is complete; of numbered pictures, those that were complete
before an error stay. Frames written have less than 4 GiB. Exit status: 0, or 2 with
one line that says what was wrong.)";

// Whole numbers of a range; a sign or a number too large would otherwise wrap around.
CLI::Validator numberFrom(uint64_t least, uint64_t most) {
  const auto check = [=](std::string& text) -> std::string {
    uint64_t number;
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error == std::errc() && rest == end && number >= least && number <= most) {
      return "";
    }
    return text + " is no whole number from " + std::to_string(least) + " to " +
           std::to_string(most);
  };
  return CLI::Validator(check, "");
}

void addInput(CLI::App* command, InputOptions* in) {
  command->add_option("IN", in->path, "Raw frames or Y4M; - for standard input")
      ->required()
      ->type_name("");
  command->add_option("--size", in->size, "Size of raw frames")->type_name("WxH");
  command->add_option("--from", in->from, "Format of raw frames (default: the suffix)")
      ->type_name("FORMAT");
  command
      ->add_option("--stride", in->stride,
                   "Bytes from row to row of raw frames with padded rows; chroma "
                   "rows of yuv420p and yv12 lie half as far apart")
      ->check(numberFrom(1, UINT32_MAX))
      ->type_name("BYTES");
  command->add_option("--crop", in->crop, "The source region")->type_name("X,Y,WxH");
  command->add_option("--skip", in->skip, "Frames to pass over at the start")
      ->check(numberFrom(0, UINT64_MAX))
      ->type_name("N");
  command->add_option("--frames", in->frames, "Frames to take at most")
      ->check(numberFrom(1, UINT64_MAX))
      ->type_name("N");
}

void addOutput(CLI::App* command, OutputOptions* out, bool digests) {
  CLI::Option* path =
      command->add_option("OUT", out->path, "File to write; - for standard output")
          ->type_name("");
  command
      ->add_option("--to,--format", out->to,
                   "Format to write, or y4m, png, ppm, pgm (default: the suffix)")
      ->type_name("FORMAT");
  command->add_flag("-q,--quiet", out->quiet,
                    "No progress line (there is one on a terminal only)");
  if (digests) {
    command->add_flag(
        "--md5", out->md5,
        "Print a frame's number and the MD5 of its bytes for every frame; "
        "OUT may be omitted and is not written");
  } else {
    path->required();
  }
}

void addConvert(CLI::App* app, ConvertOptions* options) {
  CLI::App* command =
      app->add_subcommand("convert", "Convert and scale the frames of IN into OUT");
  addInput(command, &options->in);
  addOutput(command, &options->out, true);
  command
      ->add_option("--resize", options->resize,
                   "What the source region is scaled to (default: no scaling)")
      ->type_name("WxH");
  command
      ->add_option("--canvas", options->canvas,
                   "Frames written (default: as large as the picture); black "
                   "around the picture")
      ->type_name("WxH");
  command
      ->add_option("--at", options->at,
                   "Place of the picture in the canvas: with --resize the "
                   "destination region (default: 0,0)")
      ->type_name("X,Y");
  command
      ->add_option("--filter", options->filter,
                   "linear, cubic or nearest, for luma and chroma (default: linear)")
      ->type_name("METHOD");
  command->add_option("--luma", options->luma, "The same for luma only")
      ->type_name("METHOD");
  command->add_option("--chroma", options->chroma, "The same for chroma only")
      ->type_name("METHOD");
}

void addRotate(CLI::App* app, RotateOptions* options) {
  CLI::App* command =
      app->add_subcommand("rotate", "Turn the frames of IN clockwise into OUT");
  addInput(command, &options->in);
  addOutput(command, &options->out, true);
  command->add_option("--angle", options->angle, "0, 90, 180 or 270 degrees clockwise")
      ->required()
      ->type_name("DEGREES");
  command->add_flag(
      "--luma-only", options->lumaOnly,
      "Turn the luma plane alone; written as gray, or with neutral chroma "
      "when --to or the suffix asks for a YUV format");
}

void addTestcard(CLI::App* app, TestcardOptions* options) {
  CLI::App* command =
      app->add_subcommand("testcard", "Make a test picture that moves, in any format");
  addOutput(command, &options->out, false);
  command->add_option("--size", options->size, "Size of the picture")
      ->required()
      ->type_name("WxH");
  command->add_option("--frames", options->frames, "Number of frames (default: 1)")
      ->check(numberFrom(1, UINT64_MAX))
      ->type_name("N");
}

void addFormats(CLI::App* app, FormatsOptions* options) {
  CLI::App* command = app->add_subcommand(
      "formats", "Show all formats, what each can become and how large frames are");
  command
      ->add_option("--size", options->size,
                   "What the sizes are given for (default: 640x480)")
      ->type_name("WxH");
}

Command chosenCommand(const CLI::App& app) {
  if (app.got_subcommand("convert")) return Command::kConvert;
  if (app.got_subcommand("rotate")) return Command::kRotate;
  if (app.got_subcommand("testcard")) return Command::kTestcard;
  return Command::kFormats;
}

}  // namespace

Options parseOptions(int argc, char** argv) {
  Options options;
  CLI::App app("Converts, scales and turns camera and video frames.", "zelm-imageutil");
  app.set_help_flag();
  app.set_help_all_flag("-h,--help", "Print this help and exit");
  app.set_version_flag("--version", std::string("zelm-imageutil ") + ZELM_VERSION);
  app.footer(kFooter);
  app.require_subcommand(1);
  addConvert(&app, &options.convert);
  addRotate(&app, &options.rotate);
  addTestcard(&app, &options.testcard);
  addFormats(&app, &options.formats);
  for (CLI::App* command : app.get_subcommands({})) {
    command->set_help_all_flag();
    command->set_help_flag("-h,--help", "Print this help and exit");
    command->footer(kFooter);
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& help) {
    app.exit(help);
    return options;
  } catch (const CLI::ParseError& error) {
    fail(error.what(), "; see zelm-imageutil --help");
  }
  options.command = chosenCommand(app);
  return options;
}

}  // namespace zelm_tool
