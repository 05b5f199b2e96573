// Chooses what is written from --to and the output's name.
#include <zelm_imageutil.h>

#include "failure.h"
#include "frame_writer.h"
#include "picture.h"

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

std::string writableNames() {
  return formatNames([](const Format& f) { return f.writable; });
}

void requireFit(const Target& target, const ContainerName& entry) {
  const bool fits = target.container == Container::kPng
                        ? fitsPng(*target.format)
                        : target.format == findFormat(entry.format);
  if (fits) return;
  if (target.container == Container::kY4m) {
    fail("Y4M holds planar 4:2:0 (yuv420p) and cannot hold ", target.format->name,
         ": omit --to, or write raw frames to a name without .y4m");
  }
  fail("a .", entry.name, " picture cannot hold ", target.format->name,
       ": omit --to, or choose another suffix");
}

bool isNumbered(const std::string& path) {
  const size_t percent = path.find('%');
  if (percent == std::string::npos) return false;
  const size_t end = path.find_first_not_of("0123456789", percent + 1);
  return end != std::string::npos && path[end] == 'd' && end - percent <= 3;
}

}  // namespace

Target chooseTarget(const OutputOptions& options, const TargetDefaults& defaults) {
  if (options.path.empty() && !options.md5) {
    fail("OUT is missing: a file name, or - for standard output");
  }
  Target target;
  target.path = options.path;
  target.md5 = options.md5;
  const ContainerName* bySuffix = containerNamed(suffixOf(options.path));
  const ContainerName* byOption = containerNamed(options.to);
  if (bySuffix != nullptr && byOption != nullptr && bySuffix != byOption) {
    fail("--to ", options.to, " contradicts the name ", options.path,
         ": omit one of the two");
  }
  const ContainerName* entry = byOption != nullptr ? byOption : bySuffix;
  target.format = findFormat(suffixOf(options.path));
  if (!options.to.empty() && byOption == nullptr) {
    target.format = &formatNamed(options.to);
  } else if (entry == nullptr && target.format == nullptr) {
    if (defaults.y4m && suffixOf(options.path).empty()) entry = containerNamed("y4m");
    target.format = defaults.format;
  }
  if (entry != nullptr) {
    target.container = entry->container;
    if (options.to.empty() || byOption != nullptr)
      target.format = findFormat(entry->format);
    requireFit(target, *entry);
  }
  if (target.format == nullptr) {
    fail(options.path.empty() ? "--md5" : options.path,
         ": which format is to be written? Add --to y4m, png, ppm, pgm, ",
         writableNames());
  }
  target.numbered = target.container == Container::kPng && isNumbered(target.path);
  return target;
}

bool holdsOneFrame(const Target& target) {
  return target.container == Container::kPng && !target.numbered && !target.md5;
}

}  // namespace zelm_tool
