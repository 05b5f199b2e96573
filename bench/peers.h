// Other libraries that do the same steps. Each is compiled in when it is installed.
#ifndef ZELM_BENCH_PEERS_H
#define ZELM_BENCH_PEERS_H

#include <functional>
#include <string>
#include <vector>

#include "zelm_frames.h"
#include "zelm_imageutil.h"

namespace bench {

enum class Step {
  kCopy,
  kSwap,        // both planes, the bytes of each chroma pair exchanged
  kSwapChroma,  // the chroma plane alone
  kToPlanar,
  kFromPlanar,
  kTo422,
  kTo422Swapped,
  kFromUyvy,
  kFromRgb565,
  kToRgb,  // to the destination's format
  kFromTiles,
  kToTiles,
  kBox,        // both planes, by the ratio of the frames
  kRotate,     // luma
  kScaleLuma,  // one plane, to the extent of the destination
  kScaleChroma,
  kScaleRgb,  // three channels
  kPipeline
};

// What is asked for. The frames are whole.
struct Job {
  Step step;
  ImageStruct src, dst;
  int method;                    // ResizeMethod, of both planes
  int rotation;                  // RotationCode
  uint8_t* dstChroma = nullptr;  // where the chroma goes, if not into dst
};

struct Peer {
  Peer() = default;
  template <class Call>
  Peer(Call call, const char* remarkOnIt = "") : run(call), remark(remarkOnIt) {}

  std::function<void()> run;  // empty: the library has no such step
  std::string remark;         // what it does otherwise than asked
  bool counted = true;        // false: it answers another question
  bool exchanged = false;     // the bytes of its chroma pairs are in the other order
};

inline Peer notCounted(Peer peer, const char* remark) {
  peer.remark = remark;
  peer.counted = false;
  return peer;
}

// What a plan is asked for.
struct PlanJob {
  ZelmFrame src, dst;
  ZelmEdit edit;
};

struct Library {
  const char* name;
  std::string version;
  Peer (*offer)(const Job& job);
  Peer (*offerPlan)(const PlanJob& job);  // null: it has none for any plan
};

// Those that were found when this was built. OpenCV is held to AVX2 by its environment
// variable OPENCV_CPU_DISABLE instead; libyuv and swscale contain nothing above AVX2.
std::vector<Library> libraries(bool upToAvx2);

// The library's way to do the job. A pipeline is made of its steps unless it has one
// call for all; memory in between is taken beforehand.
Peer peerFor(const Library& library, const Job& job);

// A library's way to do what a plan does; empty where it has none.
Peer libyuvPlan(const PlanJob& job);
Peer opencvPlan(const PlanJob& job);
Peer swscalePlan(const PlanJob& job);

Library libyuvLibrary();
Library opencvLibrary();
Library swscaleLibrary();
Library zimgLibrary(bool upToAvx2);

// The job halves both sides exactly.
inline bool halves(const Job& job) {
  return job.src.width == 2 * job.dst.width && job.src.height == 2 * job.dst.height;
}

// The job divides both sides by three exactly.
inline bool thirds(const Job& job) {
  return job.src.width == 3 * job.dst.width && job.src.height == 3 * job.dst.height;
}

// The job takes three quarters of both sides exactly.
inline bool threeQuarters(const Job& job) {
  return 3 * job.src.width == 4 * job.dst.width &&
         3 * job.src.height == 4 * job.dst.height;
}

inline bool enlarges(const Job& job) { return job.dst.width > job.src.width; }

}  // namespace bench

#endif  // ZELM_BENCH_PEERS_H
