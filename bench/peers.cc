#include "peers.h"

#include <algorithm>

#include "frames.h"

namespace bench {
namespace {

bool sameExtent(const ImageStruct& a, const ImageStruct& b) {
  return a.width == b.width && a.height == b.height;
}

bool semiPlanar(uint32_t format) {
  return format == FORMAT_YUV420SP || format == FORMAT_YUV420SPVU;
}

Step stepInto420(uint32_t format) {
  return format == FORMAT_RGB565        ? Step::kFromRgb565
         : format == FORMAT_YUV422IUYVY ? Step::kFromUyvy
                                        : Step::kFromTiles;
}

// A pipeline put together from the steps of one library, none of them needless.
class Chain {
 public:
  Chain(const Library& library, const Job& job) : library_(library), job_(job) {}

  Peer build() {
    ImageStruct at = job_.src;
    if (!semiPlanar(at.format)) {
      at = add(stepInto420(at.format), at, FORMAT_YUV420SPVU, at.width, at.height);
    } else {
      int n = getReductionRate(&job_.dst, &at);
      for (; n > 0; n -= std::min(n, 2)) {
        const int k = std::min(n, 2);
        at = add(Step::kBox, at, at.format, at.width >> k, at.height >> k);
      }
    }
    const bool swap = semiPlanar(job_.dst.format) && job_.dst.format != at.format;
    if (!sameExtent(at, job_.dst)) {
      const ImageStruct from = at;
      at = add(Step::kScaleChroma, from, from.format, job_.dst.width, job_.dst.height);
      add(Step::kScaleLuma, from, swap ? job_.dst : at);
      if (swap) add(Step::kSwapChroma, at, job_.dst);
    } else if (swap) {
      add(Step::kSwap, at, job_.dst);
    }
    if (job_.dst.format == FORMAT_YUV420SPMB) {
      add(Step::kToTiles, at, job_.dst);
    } else if (!semiPlanar(job_.dst.format)) {
      add(Step::kToRgb, at, job_.dst);
    }
    if (incomplete_) return {};
    peer_.run = [calls = calls_, frames = frames_] {
      for (const auto& call : calls) call();
    };
    return peer_;
  }

 private:
  // Adds a step into a new frame, or into the destination if it is such a frame.
  ImageStruct add(Step step, const ImageStruct& src, uint32_t format, int width,
                  int height) {
    ImageStruct dst = shape(format, width, height);
    if (format == job_.dst.format && sameExtent(dst, job_.dst)) {
      dst = job_.dst;
    } else {
      frames_.emplace_back(dst, Buffer::kBetween);
      dst = frames_.back().record;
    }
    add(step, src, dst);
    return dst;
  }

  void add(Step step, const ImageStruct& src, const ImageStruct& dst) {
    const Peer peer = library_.offer({step, src, dst, job_.method, job_.rotation});
    incomplete_ |= peer.run == nullptr;
    calls_.push_back(peer.run);
    peer_.counted &= peer.counted;
    peer_.exchanged |= peer.exchanged;
    if (peer_.remark.empty()) peer_.remark = peer.remark;
  }

  const Library& library_;
  Job job_;
  std::vector<std::function<void()>> calls_;
  std::vector<Frame> frames_;
  Peer peer_;
  bool incomplete_ = false;
};

}  // namespace

std::vector<Library> libraries() {
  return {
#ifdef ZELM_BENCH_LIBYUV
      libyuvLibrary(),
#endif
#ifdef ZELM_BENCH_OPENCV
      opencvLibrary(),
#endif
#ifdef ZELM_BENCH_SWSCALE
      swscaleLibrary(),
#endif
  };
}

Peer peerFor(const Library& library, const Job& job) {
  Peer peer = library.offer(job);
  if (peer.run == nullptr && job.step == Step::kPipeline) {
    peer = Chain(library, job).build();
  }
  return peer;
}

}  // namespace bench
