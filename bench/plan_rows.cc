// The table of all plans that are measured, and their memory.
#include "plan_rows.h"

#include <string.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <stdexcept>
#include <thread>

#include "frames.h"

namespace bench {
namespace {

struct Size {
  uint32_t width, height;
};
const Size kSizes[] = {{640, 480}, {1920, 1080}, {3840, 2160}};

std::string text(const Size& s) {
  return std::to_string(s.width) + "x" + std::to_string(s.height);
}

// What the functions of zelm_imageutil.h do from NV12 to RGBA, always in full range.
void convertWithCore(const PlanJob& job) {
  const auto record = [](uint32_t format, const ZelmFrame& frame) {
    return zelmWholeFrame(format, frame.width, frame.height, frame.planes[0].data);
  };
  Zelm_Resize_and_Convert(record(FORMAT_YUV420SP, job.src),
                          record(FORMAT_RGBA8888, job.dst), RESIZE_LINEAR,
                          RESIZE_LINEAR, 0);
}

struct Conversion {
  const char *name, *family;
  uint32_t from, to, colour, turn, mirror;
  double target;
  bool core;  // to be compared with zelm_imageutil.h
} const kConversions[] = {
    {"RGB24 to NV12", "RGB to YUV", ZELM_RGB24, ZELM_NV12, 0, 0, 0, 1, false},
    {"RGBA to NV12", "RGB to YUV", ZELM_RGBA, ZELM_NV12, 0, 0, 0, 1, false},
    {"RGB24 to I420", "RGB to YUV", ZELM_RGB24, ZELM_I420, 0, 0, 0, 1, false},
    {"RGBA to I420", "RGB to YUV", ZELM_RGBA, ZELM_I420, 0, 0, 0, 1, false},
    {"NV12 of BT.709 to RGBA", "YUV to RGB", ZELM_NV12, ZELM_RGBA, ZELM_BT709_LIMITED,
     0, 0, 1, true},
    {"I420 to RGBA", "YUV to RGB", ZELM_I420, ZELM_RGBA, 0, 0, 0, 1, false},
    {"YUYV to NV12", "YUV to YUV", ZELM_YUYV, ZELM_NV12, 0, 0, 0, 1, false},
    {"NV12 mirrored", "turns", ZELM_NV12, ZELM_NV12, 0, 0, 1, 1, false},
    {"NV12 turned by 90 to RGBA", "turns", ZELM_NV12, ZELM_RGBA, 0, 90, 0, 1, false},
    {"RGBA turned by 90", "turns", ZELM_RGBA, ZELM_RGBA, 0, 90, 0, 1, false},
};

PlanRow conversionRow(const Conversion& c, const Size& size) {
  PlanRow row = {};
  row.stage = c.name;
  row.family = c.family;
  row.size = text(size);
  row.target = c.target;
  row.src = {c.from, size.width, size.height, c.colour, 0};
  row.dst = {c.to, size.width, size.height, 0, 0};
  row.edit.turn = c.turn;
  row.edit.mirror = c.mirror;
  row.threads = 1;
  if (c.turn == 90) std::swap(row.dst.width, row.dst.height);
  if (c.core) {
    row.own = "zelm_imageutil";
    row.ownTarget = 1 / 1.15;
    row.other = convertWithCore;
  }
  return row;
}

// The middle of a frame with padded rows, scaled and converted into padded rows.
PlanRow partRow(const Size& size) {
  const Size to = {size.width * 2 / 3 & ~1u, size.height * 2 / 3};
  PlanRow row = conversionRow({"part of NV12 scaled to RGBA", "scaling", ZELM_NV12,
                               ZELM_RGBA, ZELM_BT709_LIMITED, 0, 0, 1.3, false},
                              size);
  row.size += " to " + text(to);
  row.src.padding = 64;
  row.dst = {ZELM_RGBA, to.width, to.height, 0, 256};
  const uint32_t evenTop = size.height / 8 & ~1u;
  row.edit.source = {size.width / 8, evenTop, size.width * 3 / 4, size.height * 3 / 4};
  return row;
}

PlanRow halvedRow(const Size& size) {
  PlanRow row = conversionRow(
      {"NV12 halved to RGBA", "scaling", ZELM_NV12, ZELM_RGBA, 0, 0, 0, 1, true}, size);
  const Size to = {size.width / 2, size.height / 2};
  row.size += " to " + text(to);
  row.dst.width = to.width;
  row.dst.height = to.height;
  return row;
}

PlanRow threadsRow(const Conversion& c) {
  PlanRow row = conversionRow(c, kSizes[2]);
  row.own = "one thread";
  row.ownTarget = 1.8;
  row.threads = 2;
  return row;
}

// A frame in memory of its own.
class Picture {
 public:
  Picture(const Side& side, Buffer::Role role, size_t atLeast)
      : buffer_(std::max(bytes(side), atLeast), role), size_(bytes(side)) {
    // As many pixels more in each row as make the padding, which are then left out.
    if (zelmFrameInit(&frame, side.format, side.width + pixels(side), side.height,
                      buffer_.data(), size_, 1) != ZELM_OK) {
      throw std::logic_error("a frame that cannot be");
    }
    frame.width = side.width;
    frame.colour = side.colour;
  }

  static size_t bytes(const Side& side) {
    return zelmFrameBytes(side.format, side.width + pixels(side), side.height, 1);
  }
  uint8_t* data() const { return buffer_.data(); }
  size_t size() const { return size_; }

  ZelmFrame frame;

 private:
  static uint32_t pixels(const Side& side) {
    return side.format == ZELM_RGBA ? side.padding / 4 : side.padding;
  }
  Buffer buffer_;
  size_t size_;
};

// Waves in every plane. What bytes are called does not matter for that: a frame of one
// plane is painted as if it had planes of luma and pairs, which end behind it.
void fill(const Picture& picture) {
  const bool planar = picture.frame.format == ZELM_I420;
  const size_t width = static_cast<size_t>(picture.frame.planes[0].stride);
  const size_t rows = (picture.size() + width - 1) / width;
  const size_t height = (rows * 2 / 3 + 1) & ~size_t{1};  // rows are 1.5 times as many
  const Frame frame(shape(planar ? FORMAT_YUV420P : FORMAT_YUV420SP,
                          static_cast<int>(width), static_cast<int>(height)),
                    Buffer::kBetween, picture.size());
  paint(frame);
  memcpy(picture.data(), frame.record.data, picture.size());
}

void runPlan(const ZelmPlan* plan, const PlanJob& job, int threads) {
  if (threads == 1) {
    zelmPlanRun(plan, &job.dst, &job.src);
    return;
  }
  std::atomic<int> next(0);
  const auto work = [&] {
    for (int band; (band = next++) < zelmPlanBands(plan);) {
      zelmPlanRunBand(plan, band, &job.dst, &job.src);
    }
  };
  std::thread helper(work);
  work();
  helper.join();
}

double difference(const Picture& dst, const Peer& peer, const uint8_t* ours) {
  const size_t chroma =
      peer.exchanged
          ? static_cast<size_t>(dst.frame.planes[1].data - dst.frame.planes[0].data)
          : dst.size();
  Error error;
  for (size_t i = 0; i < dst.size(); ++i) {
    error.add(ours[i], dst.data()[i >= chroma ? i ^ 1 : i]);
  }
  return error.psnr();
}

}  // namespace

std::vector<PlanRow> allPlanRows() {
  std::vector<PlanRow> rows;
  for (const Conversion& c : kConversions) {
    for (const Size& size : kSizes) rows.push_back(conversionRow(c, size));
  }
  for (const Size& size : kSizes) rows.push_back(partRow(size));
  for (const Size& size : kSizes) rows.push_back(halvedRow(size));
  rows.push_back(threadsRow({"NV12 to RGBA by two threads", "threads", ZELM_NV12,
                             ZELM_RGBA, 0, 0, 0, 0, false}));
  rows.push_back(threadsRow({"RGB24 to NV12 by two threads", "threads", ZELM_RGB24,
                             ZELM_NV12, 0, 0, 0, 0, false}));
  return rows;
}

Result measure(const PlanRow& row, const Ceilings& ceilings,
               const std::vector<Library>& peers) {
  const size_t moved = (Picture::bytes(row.src) + Picture::bytes(row.dst)) / 2;
  const Picture src(row.src, Buffer::kSource, moved);
  const Picture dst(row.dst, Buffer::kDestination, moved);
  fill(src);
  const PlanJob job = {src.frame, dst.frame, row.edit};
  ZelmPlan* made = nullptr;
  ZelmMessage message;
  if (zelmPlanCreate(&made, &job.dst, &job.src, &job.edit, &message) != ZELM_OK) {
    throw std::logic_error(message.text);
  }
  const std::unique_ptr<ZelmPlan, void (*)(ZelmPlan*)> plan(made, zelmPlanDestroy);

  Trial trial = {};
  trial.name = row.name();
  trial.ours = [&] { runPlan(plan.get(), job, row.threads); };
  trial.correct = [&] {
    const zelm::InstructionSet ceiling = zelm::instructionSetCeiling();
    zelm::setInstructionSetCeiling(zelm::InstructionSet::kPlain);
    memset(dst.data(), 0x5A, dst.size());
    runPlan(plan.get(), job, 1);
    const std::vector<uint8_t> expected(dst.data(), dst.data() + dst.size());
    zelm::setInstructionSetCeiling(ceiling);
    memset(dst.data(), 0x5A, dst.size());
    trial.ours();
    return memcmp(expected.data(), dst.data(), dst.size()) == 0;
  };
  if (row.threads > 1) {
    trial.own = [&] { runPlan(plan.get(), job, 1); };
  } else if (row.other != nullptr) {
    trial.own = [&] { row.other(job); };
  }
  trial.threads = row.threads > 1;
  trial.read = src.data();
  trial.written = dst.data();
  trial.moved = moved;
  trial.size = dst.size();
  for (const Library& library : peers) {
    if (library.offerPlan == nullptr || trial.threads) continue;
    const Peer peer = library.offerPlan(job);
    if (peer.run != nullptr) trial.peers.emplace_back(library.name, peer);
  }
  trial.difference = [&](const Peer& peer, const uint8_t* ours) {
    return difference(dst, peer, ours);
  };
  return measure(trial, ceilings);
}

}  // namespace bench
