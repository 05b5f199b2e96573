// Chooses what is written from --to and the output's name.
#include "output/target.h"

#include "failure.h"
#include "output/png_picture.h"

namespace zelm_tool {
namespace {

struct ContainerName {
  std::string_view name;
  Container container;
  std::string_view format;
};

constexpr ContainerName kContainers[] = {
    {"y4m", Container::kY4m, "yuv420p"},
    {"png", Container::kPng, "rgb24"},
    {"ppm", Container::kPnm, "rgb24"},
    {"pgm", Container::kPnm, "gray"},
};

const ContainerName* containerNamed(std::string_view name) {
  for (const ContainerName& entry : kContainers) {
    if (entry.name == name) return &entry;
  }
  return nullptr;
}

bool fits(const Target& target, const ContainerName& entry) {
  switch (target.container) {
    case Container::kY4m:
      return fitsY4m(*target.format);
    case Container::kPng:
      return fitsPng(*target.format);
    default:
      return target.format == findFormat(entry.format);
  }
}

void requireFit(const Target& target, const ContainerName& entry) {
  if (fits(target, entry)) return;
  if (target.container == Container::kY4m) {
    fail("Y4M holds yuv420p, yuv422p or gray and cannot hold ", target.format->name,
         ": omit --to, or write raw frames to a name without .y4m");
  }
  fail("a .", entry.name, " picture cannot hold ", target.format->name,
       ": omit --to, or choose another suffix");
}

// Where %d or %03d stands in a name.
struct Number {
  size_t start = std::string::npos;
  size_t end = 0;
  size_t digits = 0;
};

Number numberIn(const std::string& path) {
  const size_t percent = path.find('%');
  if (percent == std::string::npos) return {};
  const size_t end = path.find_first_not_of("0123456789", percent + 1);
  if (end == std::string::npos || path[end] != 'd' || end - percent > 3) return {};
  const std::string digits = path.substr(percent + 1, end - percent - 1);
  return {percent, end + 1, digits.empty() ? 0 : std::stoul(digits)};
}

const Format* defaultFormat(const ContainerName& entry,
                            const TargetDefaults& defaults) {
  if (entry.container == Container::kY4m && defaults.y4mFormat != nullptr) {
    return defaults.y4mFormat;
  }
  if (entry.container == Container::kPng && defaults.pngFormat != nullptr) {
    return defaults.pngFormat;
  }
  return findFormat(entry.format);
}

}  // namespace

Target chooseTarget(const OutputOptions& options, const TargetDefaults& defaults) {
  if (options.path.empty() && !options.md5) {
    fail("OUT is missing: a file name, or - for standard output");
  }
  Target target;
  target.path = options.path;
  target.md5 = options.md5;
  const std::string suffix = suffixOf(options.path);
  const ContainerName* bySuffix = containerNamed(suffix);
  const ContainerName* byOption = containerNamed(lowerCase(options.to));
  if (bySuffix != nullptr && byOption != nullptr && bySuffix != byOption) {
    fail("--to ", options.to, " contradicts the name ", options.path,
         ": omit one of the two");
  }
  const ContainerName* entry = byOption != nullptr ? byOption : bySuffix;
  target.format = findFormat(suffix);
  if (!options.to.empty() && byOption == nullptr) {
    target.format = &formatNamed(options.to);
  } else if (entry == nullptr && target.format == nullptr) {
    if (defaults.y4m && suffix.empty()) entry = containerNamed("y4m");
    target.format = defaults.format;
  }
  if (entry != nullptr) {
    target.container = entry->container;
    if (options.to.empty() || byOption != nullptr) {
      target.format = defaultFormat(*entry, defaults);
    }
    requireFit(target, *entry);
  }
  if (target.format == nullptr) {
    fail(options.path.empty() ? "--md5" : options.path,
         ": which format is to be written? Add --to y4m, png, ppm, pgm, ",
         formatNames());
  }
  const bool picture =
      target.container == Container::kPng || target.container == Container::kPnm;
  target.numbered = picture && numberIn(target.path).start != std::string::npos;
  return target;
}

bool holdsOneFrame(const Target& target) {
  return target.container == Container::kPng && !target.numbered && !target.md5;
}

Y4mHeader describeY4m(Y4mHeader header, const OutputOptions& options,
                      const Target& target, const FrameKind& kind) {
  if (!options.fps.empty()) {
    Ratio rate;
    if (target.container != Container::kY4m) {
      fail("--fps is for Y4M output, which tells its frame rate");
    }
    if (!parseRatio(options.fps, &rate)) {
      fail("--fps ", options.fps, ": expected a frame rate such as 25, 29.97 or ",
           "30000:1001");
    }
    header.setRate(rate);
  }
  if (fitsY4m(*kind.format)) header.setFrames(kind);
  return header;
}

std::string numberedName(const Target& target, uint64_t number) {
  const Number place = numberIn(target.path);
  std::string digits = std::to_string(number);
  if (digits.size() < place.digits) digits.insert(0, place.digits - digits.size(), '0');
  return target.path.substr(0, place.start) + digits + target.path.substr(place.end);
}

}  // namespace zelm_tool
