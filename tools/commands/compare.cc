// The command compare: tells how far two inputs differ.
#include <algorithm>
#include <array>
#include <cinttypes>
#include <cmath>
#include <cstdio>

#include "commands/commands.h"
#include "failure.h"
#include "input/frame_source.h"
#include "process/plan.h"

namespace zelm_tool {
namespace {

// What frames are compared as: every channel in rows of its own, or side by side.
struct Channel {
  const char* name;
  size_t plane;   // of the frame that is compared
  size_t offset;  // of the first sample in a row
  size_t step;    // from sample to sample
  uint32_t columns;
  uint32_t rows;
  uint32_t across;  // pixels that share a sample
  uint32_t down;
};

bool hasAlpha(const Format& format) {
  return format.code == ZELM_RGBA || format.code == ZELM_BGRA;
}

// Without alpha, unless both have it.
uint32_t comparedAs(const Format& format, const Format& other) {
  switch (format.code) {
    case ZELM_GRAY8:
      return ZELM_GRAY8;
    case ZELM_I422:
    case ZELM_NV16:
    case ZELM_NV61:
    case ZELM_YUYV:
    case ZELM_UYVY:
      return ZELM_I422;
    default:
      if (!format.isRgb()) return ZELM_I420;
      return hasAlpha(format) && hasAlpha(other) ? ZELM_RGBA : ZELM_RGB24;
  }
}

std::vector<Channel> channelsOf(uint32_t format, Size size) {
  const uint32_t w = size.width, h = size.height;
  std::vector<Channel> channels;
  if (formatOf(format).isRgb()) {
    const char* const names[] = {"R", "G", "B", "A"};
    const size_t count = hasAlpha(formatOf(format)) ? 4 : 3;
    for (size_t c = 0; c < count; ++c) {
      channels.push_back({names[c], 0, c, count, w, h, 1, 1});
    }
    return channels;
  }
  channels.push_back({"Y", 0, 0, 1, w, h, 1, 1});
  if (format == ZELM_GRAY8) return channels;
  const uint32_t down = format == ZELM_I420 ? 2 : 1;
  for (size_t plane : {1u, 2u}) {
    channels.push_back({plane == 1 ? "U" : "V", plane, 0, 1, (w + 1) / 2,
                        (h + down - 1) / down, 2, down});
  }
  return channels;
}

// One of the inputs, with its frames in the layout that is compared.
class Side {
 public:
  Side(const InputOptions& options, const std::string& path) {
    InputOptions own = options;
    own.path = path;
    source_ = openFrames(own);
  }

  const FrameKind& kind() const { return source_->kind(); }
  uint64_t firstNumber() const { return source_->firstNumber(); }
  void compareAs(uint32_t format) {
    compared_ = kind();
    compared_.format = &formatOf(format);
    compared_.stride = 0;
  }
  // The next frame; false after the last one.
  bool next(ZelmFrame* frame) {
    const uint8_t* bytes = source_->next(&buffer_);
    if (bytes == nullptr) return false;
    const ZelmFrame from = kind().at(bytes);
    *frame = compared_.at(converted_.reserve(compared_.bytes()));
    if (!plan_) plan_ = std::make_unique<Plan>(*frame, from, ZelmEdit{});
    plan_->run(*frame, from);
    source_->requireWhole();
    return true;
  }

 private:
  std::unique_ptr<FrameSource> source_;
  FrameKind compared_;
  Buffer buffer_;
  Buffer converted_;
  std::unique_ptr<Plan> plan_;
};

class Comparison {
 public:
  // `first` is the number of the first frame in its file, from 1 on.
  Comparison(uint32_t format, Size size, uint64_t first)
      : channels_(channelsOf(format, size)), firstNumber_(first) {}

  void add(const ZelmFrame& a, const ZelmFrame& b) {
    ++frames_;
    for (size_t c = 0; c < channels_.size(); ++c) addChannel(c, a, b);
  }

  bool equal() const { return first_.empty(); }

  void print() const {
    for (size_t c = 0; c < channels_.size(); ++c) {
      const Channel& channel = channels_[c];
      if (squares_[c] == 0) {
        printf("%s  equal\n", channel.name);
        continue;
      }
      const double samples = static_cast<double>(channel.columns) * channel.rows *
                             static_cast<double>(frames_);
      const double psnr =
          10 * std::log10(255.0 * 255.0 * samples / static_cast<double>(squares_[c]));
      printf("%s  %.2f dB, largest difference %d\n", channel.name, psnr, largest_[c]);
    }
    if (!equal()) printf("%s\n", first_.c_str());
  }

  uint64_t frames() const { return frames_; }

 private:
  void addChannel(size_t c, const ZelmFrame& a, const ZelmFrame& b) {
    const Channel& channel = channels_[c];
    const ZelmPlane &pa = a.planes[channel.plane], &pb = b.planes[channel.plane];
    for (uint32_t y = 0; y < channel.rows; ++y) {
      const uint8_t* ra = pa.data + pa.stride * y + channel.offset;
      const uint8_t* rb = pb.data + pb.stride * y + channel.offset;
      for (uint32_t x = 0; x < channel.columns; ++x) {
        const int d = ra[x * channel.step] - rb[x * channel.step];
        if (d == 0) continue;
        squares_[c] += static_cast<uint64_t>(d * d);
        largest_[c] = std::max(largest_[c], std::abs(d));
        if (first_.empty()) {
          noteFirst(channel, x, y, ra[x * channel.step], rb[x * channel.step]);
        }
      }
    }
  }

  void noteFirst(const Channel& channel, uint32_t x, uint32_t y, int a, int b) {
    char text[160];
    snprintf(text, sizeof text,
             "first difference: frame %" PRIu64 ", pixel %u,%u: %s is %d and %d",
             firstNumber_ + frames_ - 1, x * channel.across, y * channel.down,
             channel.name, a, b);
    first_ = text;
  }

  const std::vector<Channel> channels_;
  std::array<uint64_t, 4> squares_ = {};
  std::array<int, 4> largest_ = {};
  const uint64_t firstNumber_;
  uint64_t frames_ = 0;
  std::string first_;
};

}  // namespace

bool runCompare(const CompareOptions& options) {
  Side a(options.in, options.in.path), b(options.in, options.other);
  const Format &formatA = *a.kind().format, &formatB = *b.kind().format;
  const uint32_t format = comparedAs(formatA, formatB);
  if (a.kind().size != b.kind().size || format != comparedAs(formatB, formatA)) {
    fail(options.in.path, " has frames of ", a.kind().size, ' ', formatA.name, ", ",
         options.other, " of ", b.kind().size, ' ', formatB.name,
         "; convert one of them first");
  }
  a.compareAs(format);
  b.compareAs(format);
  Comparison comparison(format, a.kind().size, a.firstNumber());
  ZelmFrame frameA, frameB;
  bool moreA = a.next(&frameA), moreB = b.next(&frameB);
  for (; moreA && moreB; moreA = a.next(&frameA), moreB = b.next(&frameB)) {
    comparison.add(frameA, frameB);
  }
  comparison.print();
  if (moreA != moreB) {
    printf("%s ends after %" PRIu64 " %s, %s goes on\n",
           (moreA ? options.other : options.in.path).c_str(), comparison.frames(),
           comparison.frames() == 1 ? "frame" : "frames",
           (moreA ? options.in.path : options.other).c_str());
  }
  return comparison.equal() && moreA == moreB;
}

}  // namespace zelm_tool
