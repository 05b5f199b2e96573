// The libraries that were found, and pipelines that are made of their steps.
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
    const ImageStruct& end = job_.dst;
    if (!semiPlanar(at.format)) {
      at = add({stepInto420(at.format)}, at, FORMAT_YUV420SPVU, at.width, at.height);
    } else {
      for (int n = getReductionRate(&job_.dst, &at); n > 0; n -= std::min(n, 2)) {
        const int k = std::min(n, 2);
        at = add({Step::kBox}, at, at.format, at.width >> k, at.height >> k);
      }
    }
    if (!sameExtent(at, end)) {
      at = add({Step::kScaleLuma, Step::kScaleChroma}, at, at.format, end.width,
               end.height);
    }
    if (at.format != end.format) addLast(at);
    if (incomplete_) return {};
    peer_.run = [calls = calls_, frames = frames_] {
      for (const auto& call : calls) call();
    };
    return peer_;
  }

 private:
  // Adds steps that write a semi-planar frame and returns it. A frame like the
  // destination is the destination. When only the order of the chroma differs, the luma
  // goes there at once and the chroma follows with its pairs exchanged.
  ImageStruct add(std::initializer_list<Step> steps, const ImageStruct& src,
                  uint32_t format, int width, int height) {
    Job job = {Step::kCopy, src, job_.dst, job_.method, 0};
    ImageStruct frame = shape(format, width, height);
    const bool last = sameExtent(frame, job_.dst);
    const bool swap = last && semiPlanar(job_.dst.format) && format != job_.dst.format;
    if (!last || format != job_.dst.format) {
      frames_.emplace_back(frame, Buffer::kBetween);
      frame = frames_.back().record;
      if (swap) {
        job.dstChroma = frame.data + frame.uvOffset;
      } else {
        job.dst = frame;
      }
    }
    for (Step step : steps) {
      job.step = step;
      add(job);
    }
    if (swap) add({Step::kSwapChroma, frame, job_.dst, 0, 0});
    return job.dst;
  }

  void addLast(const ImageStruct& src) {
    const Step step = semiPlanar(job_.dst.format)            ? Step::kSwap
                      : job_.dst.format == FORMAT_YUV420SPMB ? Step::kToTiles
                                                             : Step::kToRgb;
    add({step, src, job_.dst, 0, 0});
  }

  void add(const Job& job) {
    const Peer peer = library_.offer(job);
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

std::vector<Library> libraries([[maybe_unused]] bool upToAvx2) {
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
#ifdef ZELM_BENCH_ZIMG
      zimgLibrary(upToAvx2),
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
