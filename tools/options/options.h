// What the command line can say.
#ifndef ZELM_TOOLS_OPTIONS_OPTIONS_H
#define ZELM_TOOLS_OPTIONS_OPTIONS_H

#include <cstdint>
#include <string>

namespace zelm_tool {

// What the command line said; empty texts and zeros were not given.
struct ColourOptions {
  std::string range;
  std::string matrix;
};

struct InputOptions {
  std::string path;
  std::string size;
  std::string from;
  uint32_t stride = 0;
  uint64_t skip = 0;
  std::string frames;  // N or FIRST:COUNT
  ColourOptions colour;
};

struct OutputOptions {
  std::string path;
  std::string to;
  ColourOptions colour;
  std::string fps;
  bool md5 = false;
  bool quiet = false;
  uint32_t threads = 0;  // 0: one for each processor
};

struct EditOptions {
  std::string crop;
  std::string resize;
  std::string canvas;
  std::string at;
  std::string rotate;
  bool mirror = false;
  bool lumaOnly = false;
  std::string filter;
  std::string luma;
  std::string chroma;
};

struct ConvertOptions {
  InputOptions in;
  EditOptions edit;
  OutputOptions out;
  bool rotateCommand = false;  // the source's format is the default of the output
};

struct TestcardOptions {
  OutputOptions out;
  std::string size;
  uint64_t frames = 1;
};

struct FormatsOptions {
  std::string size = "640x480";
};

struct InfoOptions {
  InputOptions in;
};

struct CompareOptions {
  InputOptions in;  // what holds for both
  std::string other;
};

enum class Command { kNone, kConvert, kTestcard, kFormats, kInfo, kCompare };

struct Options {
  Command command = Command::kNone;  // kNone: help or the version was printed
  ConvertOptions convert;
  TestcardOptions testcard;
  FormatsOptions formats;
  InfoOptions info;
  CompareOptions compare;
};

// Fails in words on a command line that cannot be understood.
Options parseOptions(int argc, char** argv);

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_OPTIONS_OPTIONS_H
