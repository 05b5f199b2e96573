// Describes the options to CLI11.
#include "options/options.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <cstdio>

#include "failure.h"
#include "options/help.h"

#ifndef ZELM_VERSION
#error "the build passes the version"
#endif

namespace zelm_tool {
namespace {

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

void addRawInput(CLI::App* command, InputOptions* in) {
  command->add_option("--from", in->from, "Format of raw frames (default: the suffix)")
      ->type_name("FORMAT");
  command->add_option("--size", in->size, "Size of raw frames")->type_name("WxH");
  command
      ->add_option("--stride", in->stride,
                   "Bytes from row to row of raw frames with padded rows; chroma "
                   "rows of yuv420p, yv12 and yuv422p lie half as far apart")
      ->check(numberFrom(1, UINT32_MAX))
      ->type_name("BYTES");
  command->add_option("--skip", in->skip, "Frames to pass over at the start")
      ->check(numberFrom(0, UINT64_MAX))
      ->type_name("N");
  command
      ->add_option("--frames", in->frames,
                   "Frames to take at most; or those from FIRST on, counted from 0")
      ->type_name("N|FIRST:COUNT");
}

// `start` begins the names, `done` says what is done to the frames.
void addColour(CLI::App* command, ColourOptions* colour, const std::string& start,
               const std::string& done) {
  command
      ->add_option(start + "range", colour->range,
                   "auto, full or limited: the range of YUV that is " + done)
      ->type_name("RANGE");
  command
      ->add_option(start + "matrix", colour->matrix,
                   "auto, bt601, bt709 or bt2020: the matrix of YUV that is " + done)
      ->type_name("MATRIX");
}

void addInput(CLI::App* command, InputOptions* in) {
  command->add_option("IN", in->path, "Frames or a picture; - for standard input")
      ->required()
      ->type_name("");
  addRawInput(command, in);
  addColour(command, &in->colour, "--", "read");
}

void addOutput(CLI::App* command, OutputOptions* out, bool digests) {
  CLI::Option* path =
      command->add_option("OUT", out->path, "File to write; - for standard output")
          ->type_name("");
  command
      ->add_option("--to,--format", out->to,
                   "Format to write, or y4m, png, ppm, pgm (default: the suffix)")
      ->type_name("FORMAT");
  addColour(command, &out->colour, "--to-", "written");
  command
      ->add_option("--fps", out->fps,
                   "Frame rate of Y4M that is written, such as 25, 29.97 or 30000:1001")
      ->type_name("RATE");
  command
      ->add_option("--threads", out->threads,
                   "Frames computed at the same time (default: one for each processor)")
      ->check(numberFrom(1, 1024))
      ->type_name("N");
  command->add_flag("-q,--quiet", out->quiet,
                    "No progress line (there is one on a terminal only) and nothing "
                    "about colours that were assumed");
  if (digests) {
    command->add_flag(
        "--md5", out->md5,
        "Print a frame's number and the MD5 of its bytes for every frame; "
        "OUT may be omitted and is not written");
  } else {
    path->required();
  }
}

void addPicture(CLI::App* command, EditOptions* edit) {
  command->add_option("--crop", edit->crop, "The part of the source that is taken")
      ->type_name("X,Y,WxH");
  command
      ->add_option("--resize", edit->resize,
                   "What it is scaled to: 640x360, 640x, x360, 50% or fit:640x640 "
                   "(default: no scaling)")
      ->type_name("SIZE");
  command
      ->add_option("--canvas", edit->canvas,
                   "Frames written (default: as large as the picture); black "
                   "around the picture")
      ->type_name("WxH");
  command
      ->add_option("--at", edit->at,
                   "Place of the picture in the canvas (default: 0,0; with fit: the "
                   "middle)")
      ->type_name("X,Y");
  command->add_flag("--mirror", edit->mirror,
                    "Exchange left and right, after the turn");
  command->add_flag(
      "--luma-only", edit->lumaOnly,
      "Take the luma plane alone; written as gray, or with neutral chroma when --to or "
      "the suffix asks for a YUV format");
  command
      ->add_option("--filter", edit->filter,
                   "linear, cubic or nearest, for luma and chroma (default: linear)")
      ->type_name("METHOD");
  command->add_option("--luma", edit->luma, "The same for luma only")
      ->type_name("METHOD");
  command->add_option("--chroma", edit->chroma, "The same for chroma only")
      ->type_name("METHOD");
}

// The two names of the same work: the option of one is the other's purpose.
void addConvert(CLI::App* app, ConvertOptions* options) {
  CLI::App* convert = app->add_subcommand(
      "convert", "Convert, crop, scale, turn and mirror the frames of IN into OUT");
  CLI::App* rotate = app->add_subcommand(
      "rotate", "The same for a turn alone; OUT has the format of IN by default");
  for (CLI::App* command : {convert, rotate}) {
    addInput(command, &options->in);
    addPicture(command, &options->edit);
    addOutput(command, &options->out, true);
    command->footer(geometryHelp() + "\n\n" + colourHelp());
  }
  convert
      ->add_option("--rotate", options->edit.rotate,
                   "0, 90, 180 or 270 degrees clockwise")
      ->type_name("DEGREES");
  rotate
      ->add_option("--angle,--rotate", options->edit.rotate,
                   "0, 90, 180 or 270 degrees clockwise")
      ->required()
      ->type_name("DEGREES");
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
  command->footer(colourHelp());
}

void addFormats(CLI::App* app, FormatsOptions* options) {
  CLI::App* command =
      app->add_subcommand("formats", "Show all formats and how large frames are");
  command
      ->add_option("--size", options->size,
                   "What the sizes are given for (default: 640x480)")
      ->type_name("WxH");
}

void addInfo(CLI::App* app, InfoOptions* options) {
  CLI::App* command = app->add_subcommand(
      "info", "Show format, size, frames, rate and colour of IN, and what was assumed");
  addInput(command, &options->in);
  command->footer(colourHelp());
}

void addCompare(CLI::App* app, CompareOptions* options) {
  CLI::App* command = app->add_subcommand(
      "compare",
      "Compare the samples of A and B: exit status 0 if all are equal, or 1");
  command
      ->add_option("A", options->in.path, "Frames or a picture; - for standard input")
      ->required()
      ->type_name("");
  command->add_option("B", options->other, "What it is compared with")
      ->required()
      ->type_name("");
  addRawInput(command, &options->in);
  command->footer(
      "Prints the peak signal-to-noise ratio of every plane over all frames and the "
      "first pixel\nthat differs. Both have the same size and the same subsampling, or "
      "are RGB; in which\nplanes and order their bytes lie does not matter. --size, "
      "--from, --stride, --skip and\n--frames hold for both; without --from the suffix "
      "of each tells its format.");
}

Command chosenCommand(const CLI::App& app) {
  if (app.got_subcommand("testcard")) return Command::kTestcard;
  if (app.got_subcommand("formats")) return Command::kFormats;
  if (app.got_subcommand("info")) return Command::kInfo;
  if (app.got_subcommand("compare")) return Command::kCompare;
  return Command::kConvert;
}

// The parser would only say that a subcommand is missing.
void requireCommand(const CLI::App& app, int argc, char** argv) {
  if (argc < 2 || argv[1][0] == '-') return;
  std::string names;
  for (const CLI::App* command : app.get_subcommands({})) {
    if (command->check_name(argv[1])) return;
    names += (names.empty() ? "" : ", ") + command->get_name();
  }
  fail("unknown command '", argv[1], "'; commands are ", names);
}

}  // namespace

Options parseOptions(int argc, char** argv) {
  Options options;
  CLI::App app("Converts, scales and turns camera and video frames.", "zelm-imageutil");
  app.set_help_flag("-h,--help", "Print this help and exit");
  app.set_version_flag("--version", std::string("zelm-imageutil ") + ZELM_VERSION);
  app.require_subcommand(1);
  addConvert(&app, &options.convert);
  addTestcard(&app, &options.testcard);
  addFormats(&app, &options.formats);
  addInfo(&app, &options.info);
  addCompare(&app, &options.compare);
  app.footer(generalHelp());  // not of commands, which would have inherited it
  requireCommand(app, argc, argv);
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& help) {
    app.exit(help);
    return options;
  } catch (const CLI::ParseError& error) {
    fail(error.what(), "; see zelm-imageutil --help");
  }
  options.command = chosenCommand(app);
  options.convert.rotateCommand = app.got_subcommand("rotate");
  return options;
}

}  // namespace zelm_tool
