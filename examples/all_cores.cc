// One 2160p frame on all cores, with std::thread:
//   all_cores <nv12 >rgba
#include <zelm_frames.h>

#include <atomic>
#include <cstdio>
#include <thread>
#include <vector>

// Runs a plan's bands on as many threads as there are cores. Whoever is free takes the
// next band, in any order: the bytes are the same.
static int runOnAllCores(const ZelmPlan* plan, const ZelmFrame& dst,
                         const ZelmFrame& src) {
  std::atomic<int> next(0), code(ZELM_OK);
  const auto work = [&] {
    for (int band; (band = next++) < zelmPlanBands(plan);) {
      if (const int failed = zelmPlanRunBand(plan, band, &dst, &src)) code = failed;
    }
  };
  std::vector<std::thread> helpers;
  for (unsigned i = 1; i < std::thread::hardware_concurrency(); ++i) {
    helpers.emplace_back(work);
  }
  work();
  for (std::thread& helper : helpers) helper.join();
  return code;
}

int main() {
  constexpr uint32_t kWidth = 3840, kHeight = 2160;
  std::vector<uint8_t> nv12(zelmFrameBytes(ZELM_NV12, kWidth, kHeight, 1));
  std::vector<uint8_t> rgba(zelmFrameBytes(ZELM_RGBA, kWidth, kHeight, 1));
  if (std::fread(nv12.data(), 1, nv12.size(), stdin) != nv12.size()) return 1;

  ZelmFrame src, dst;
  zelmFrameInit(&src, ZELM_NV12, kWidth, kHeight, nv12.data(), nv12.size(), 1);
  zelmFrameInit(&dst, ZELM_RGBA, kWidth, kHeight, rgba.data(), rgba.size(), 1);
  src.colour = ZELM_BT709_LIMITED;
  ZelmPlan* plan;
  ZelmMessage message;
  if (zelmPlanCreate(&plan, &dst, &src, nullptr, &message) != ZELM_OK) {
    std::fprintf(stderr, "%s\n", message.text);
    return 1;
  }
  const int code = runOnAllCores(plan, dst, src);
  zelmPlanDestroy(plan);
  return code != ZELM_OK ||
         std::fwrite(rgba.data(), 1, rgba.size(), stdout) != rgba.size();
}
