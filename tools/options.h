// What the command line can say.
#ifndef ZELM_TOOLS_OPTIONS_H
#define ZELM_TOOLS_OPTIONS_H

#include <cstdint>
#include <string>

namespace zelm_tool {

// What the command line said; empty texts and zeros were not given.
struct InputOptions {
  std::string path;
  std::string size;
  std::string from;
  std::string crop;
  uint32_t stride = 0;
  uint64_t skip = 0;
  uint64_t frames = 0;
};

struct OutputOptions {
  std::string path;
  std::string to;
  bool md5 = false;
  bool quiet = false;
};

struct ConvertOptions {
  InputOptions in;
  OutputOptions out;
  std::string resize;
  std::string at;
  std::string canvas;
  std::string luma;
  std::string chroma;
  std::string filter;
};

struct RotateOptions {
  InputOptions in;
  OutputOptions out;
  std::string angle;
  bool lumaOnly = false;
};

struct TestcardOptions {
  OutputOptions out;
  std::string size;
  uint64_t frames = 1;
};

struct FormatsOptions {
  std::string size = "640x480";
};

enum class Command { kNone, kConvert, kRotate, kTestcard, kFormats };

struct Options {
  Command command = Command::kNone;  // kNone: help or the version was printed
  ConvertOptions convert;
  RotateOptions rotate;
  TestcardOptions testcard;
  FormatsOptions formats;
};

// Fails in words on a command line that cannot be understood.
Options parseOptions(int argc, char** argv);

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_OPTIONS_H
