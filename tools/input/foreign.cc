// Knows encoded files by their first bytes.
#include "input/foreign.h"

#include "failure.h"

namespace zelm_tool {
namespace {

using namespace std::string_view_literals;

struct Kind {
  size_t offset;
  std::string_view bytes;
  std::string_view also;  // eight bytes after the start; empty: nothing else is needed
  const char* name;
  bool still;
};

constexpr Kind kKinds[] = {{4, "ftyp"sv, ""sv, "MP4 or MOV", false},
                           {4, "moov"sv, ""sv, "MOV", false},
                           {0, "\x1A\x45\xDF\xA3"sv, ""sv, "Matroska or WebM", false},
                           {0, "RIFF"sv, "AVI "sv, "AVI", false},
                           {0, "RIFF"sv, "WEBP"sv, "WebP", true},
                           {0, "OggS"sv, ""sv, "Ogg", false},
                           {0, "FLV\x01"sv, ""sv, "FLV", false},
                           {0, "\x00\x00\x01\xBA"sv, ""sv, "MPEG", false},
                           {0, "DKIF"sv, ""sv, "IVF", false},
                           {0, "\xFF\xD8\xFF\xDB"sv, ""sv, "JPEG", true},
                           {0, "\xFF\xD8\xFF\xE0"sv, ""sv, "JPEG", true},
                           {0, "\xFF\xD8\xFF\xE1"sv, ""sv, "JPEG", true},
                           {0, "\xFF\xD8\xFF\xE2"sv, ""sv, "JPEG", true},
                           {0, "\xFF\xD8\xFF\xEE"sv, ""sv, "JPEG", true},
                           {0, "\xFF\xD8\xFF\xFE"sv, ""sv, "JPEG", true},
                           {0, "GIF87a"sv, ""sv, "GIF", true},
                           {0, "GIF89a"sv, ""sv, "GIF", true},
                           {0, "II*\0"sv, ""sv, "TIFF", true},
                           {0, "MM\0*"sv, ""sv, "TIFF", true}};

bool begins(std::string_view text, size_t offset, std::string_view with) {
  return text.size() >= offset && text.substr(offset, with.size()) == with;
}

}  // namespace

void refuseForeign(const std::string& path, std::string_view start) {
  for (const Kind& kind : kKinds) {
    if (!begins(start, kind.offset, kind.bytes) || !begins(start, 8, kind.also))
      continue;
    const std::string name = path == "-" ? "standard input" : path;
    const char* how = kind.still ? " -f image2pipe -c:v png - | "
                                 : " -f yuv4mpegpipe -pix_fmt yuv420p - | ";
    fail(name, " is an encoded file (", kind.name,
         "); ffmpeg decodes it: ", "ffmpeg -v error -i ", path, how,
         "zelm-imageutil convert - OUT");
  }
}

}  // namespace zelm_tool
