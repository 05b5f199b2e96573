// All entry points on several threads at once, on shared sources.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "harness.h"
#include "stages.h"

namespace harness {
namespace {

struct Job {
  std::function<void(ImageStruct* dst, ImageStruct* src)> run;
  ImageStruct dst, src;
  Bytes input, expected;
};

TEST(Threads, SameBytes) {
  std::vector<Job> jobs;
  const auto add = [&jobs](auto product, auto reference, const Frame& dst,
                           const Frame& src) {
    Job job{product, dst.record, src.record, Bytes(src.bytes), Bytes(dst.bytes, 0x5A)};
    fill(job.input.data(), src.bytes, src.stride, kRandom, 3);
    job.dst.data = job.expected.data();
    job.src.data = job.input.data();
    reference(&job.dst, &job.src);
    jobs.push_back(std::move(job));
  };
  for (const Stage& stage : stages()) {
    const std::vector<Case> cases = casesOf(stage);
    for (size_t i = 100; i < cases.size(); i += 97) {
      if (cases[i].dst.bytes == 0) continue;
      add(stage.product, stage.expected, cases[i].dst, cases[i].src);
    }
  }
  const auto pipelines = [](ImageStruct* d, ImageStruct* s) {
    Zelm_Resize_and_Convert(*s, *d, 3, 2, 0);
    Zelm_Rotate_and_Convert(*s, *d, 1, 0);
  };
  const auto expected = [](ImageStruct* d, ImageStruct* s) {
    reference::Zelm_Resize_and_Convert(*s, *d, 3, 2, 0);
    reference::Zelm_Rotate_and_Convert(*s, *d, 1, 0);
  };
  for (uint32_t to : {4u, 2u, 2048u, 0x1000000u}) {
    for (uint32_t from : {4u, 1024u, 0x1000000u}) {
      for (uint32_t width : {64u, 20u}) {
        add(pipelines, expected,
            {zelmWholeFrame(to, width, 48, nullptr), 64 * 48 * 4, 64, 0},
            {zelmWholeFrame(from, 64, 48, nullptr), 64 * 48 * 2, 64, 0});
      }
    }
  }

  std::atomic<int> waiting{4}, wrong{0};
  const auto work = [&](size_t first) {
    --waiting;
    while (waiting > 0) std::this_thread::yield();
    for (size_t i = 0; i < 2 * jobs.size(); ++i) {
      const Job& job = jobs[(first + i) % jobs.size()];
      Bytes out(job.expected.size(), 0x5A);
      ImageStruct dst = job.dst, src = job.src;
      dst.data = out.data();
      job.run(&dst, &src);
      if (out != job.expected) ++wrong;
    }
  };
  std::vector<std::thread> threads;
  for (size_t t = 0; t < 4; ++t) threads.emplace_back(work, t * jobs.size() / 8);
  for (std::thread& thread : threads) thread.join();
  EXPECT_GT(jobs.size(), 300u);
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace harness
