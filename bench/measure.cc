// Checks rows against the plain rules and times their contenders with Google Benchmark.
#include "measure.h"

#include <benchmark/benchmark.h>
#include <stdio.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>

#include "frames.h"

namespace bench {
namespace {

// Takes the lower quartile of each contender's repetitions. What disturbs a repetition
// makes it longer, and the very shortest one is a matter of luck.
class LowerQuartile : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration) continue;
      const bool clock = run.run_name.time_type == "real_time";
      times_[run.run_name.function_name].push_back(clock ? run.GetAdjustedRealTime()
                                                         : run.GetAdjustedCPUTime());
    }
  }
  double of(const std::string& name) {
    std::vector<double>& all = times_.at(name);
    std::sort(all.begin(), all.end());
    return all[all.size() / 4];
  }

 private:
  std::map<std::string, std::vector<double>> times_;
};

void contend(const std::string& name, zelm::InstructionSet ceiling, bool threads,
             std::function<void()> run) {
  auto* const benchmark =
      benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
        zelm::setInstructionSetCeiling(ceiling);
        for (auto _ : state) {
          run();
          benchmark::ClobberMemory();
        }
      });
  benchmark->Unit(benchmark::kNanosecond);
  threads ? benchmark->UseRealTime() : benchmark->MeasureProcessCPUTime();
}

double difference(const Row& row, const Peer& peer, const uint8_t* ours,
                  const uint8_t* theirs) {
  const Part part = partWritten(row.job);
  Error error;
  if (row.job.dst.format == FORMAT_RGB565) {
    for (size_t i = 0; i + 1 < part.length; i += 2) {
      const int a = ours[i] | ours[i + 1] << 8, b = theirs[i] | theirs[i + 1] << 8;
      error.add((a & 31) << 3, (b & 31) << 3);
      error.add((a >> 5 & 63) << 2, (b >> 5 & 63) << 2);
      error.add(a >> 11 << 3, b >> 11 << 3);
    }
  } else {
    for (size_t i = part.start; i < part.start + part.length; ++i) {
      const bool other = peer.exchanged && i >= row.job.dst.uvOffset;
      error.add(ours[i], theirs[other ? i ^ 1 : i]);
    }
  }
  return error.psnr();
}

bool correct(const Row& row, ImageStruct src, ImageStruct dst) {
  Frame expected(row.job.dst, Buffer::kDestination);
  const int code = row.ours(&dst, &src);
  return code == 0 && row.expected(&expected.record, &src) == 0 &&
         memcmp(expected.record.data, dst.data, dst.dataSize) == 0;
}

std::string fromFile(const char* path, const std::string& key) {
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    if (line.compare(0, key.size(), key) == 0) return line.substr(line.find(':') + 2);
  }
  return "unknown";
}

}  // namespace

const PeerResult* Result::best() const {
  const PeerResult* best = nullptr;
  for (const PeerResult& p : peers) {
    if (p.counted && (best == nullptr || p.time < best->time)) best = &p;
  }
  return best;
}

const PeerResult* Result::find(const std::string& library) const {
  for (const PeerResult& p : peers) {
    if (p.library == library) return &p;
  }
  return nullptr;
}

void prepare(const Effort& effort) {
  std::vector<std::string> words = {
      "zelm-bench", "--benchmark_enable_random_interleaving=true",
      "--benchmark_repetitions=" + std::to_string(effort.repetitions),
      "--benchmark_min_time=" + std::to_string(effort.seconds)};
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(&word[0]);
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
}

double Error::psnr() const {
  return sum_ == 0 ? INFINITY : 10 * std::log10(255.0 * 255.0 * count_ / sum_);
}

Result measure(const Trial& trial, const Ceilings& ceilings) {
  Result result = {};
  for (const zelm::InstructionSet ceiling : ceilings) {
    zelm::setInstructionSetCeiling(ceiling);
    if (!trial.correct()) return result;
  }
  result.correct = true;
  const std::vector<uint8_t> ours(trial.written, trial.written + trial.size);

  benchmark::ClearRegisteredBenchmarks();
  const auto nameOf = [&trial](const std::string& who) {
    return trial.name + "/" + who;
  };
  const auto enter = [&](const std::string& who, zelm::InstructionSet ceiling,
                         const std::function<void()>& run) {
    contend(nameOf(who), ceiling, trial.threads, run);
  };
  for (size_t i = 0; i < ceilings.size(); ++i) {
    enter(std::to_string(i), ceilings[i], trial.ours);
  }
  if (trial.own != nullptr) enter("own", ceilings[0], trial.own);
  enter("memcpy", ceilings[0],
        [&trial] { memcpy(trial.written, trial.read, trial.moved); });
  for (const auto& [library, peer] : trial.peers) {
    peer.run();
    result.peers.push_back(
        {library, peer.remark, peer.counted, 0, trial.difference(peer, ours.data())});
    enter(library, ceilings[0], peer.run);
  }

  LowerQuartile times;
  benchmark::RunSpecifiedBenchmarks(&times, ".");
  for (size_t i = 0; i < ceilings.size(); ++i) {
    result.times.push_back(times.of(nameOf(std::to_string(i))));
  }
  if (trial.own != nullptr) result.ownTime = times.of(nameOf("own"));
  result.memcpyTime = times.of(nameOf("memcpy"));
  for (PeerResult& p : result.peers) p.time = times.of(nameOf(p.library));
  return result;
}

Result measure(const Row& row, const Ceilings& ceilings,
               const std::vector<Library>& peers) {
  const size_t moved = (partRead(row.job).length + partWritten(row.job).length) / 2;
  Frame src(row.job.src, Buffer::kSource, moved);
  Frame dst(row.job.dst, Buffer::kDestination, moved);
  paint(src);
  Trial trial;
  trial.name = row.name();
  trial.ours = [&] { row.ours(&dst.record, &src.record); };
  trial.correct = [&] { return correct(row, src.record, dst.record); };
  trial.read = src.record.data;
  trial.written = dst.record.data;
  trial.moved = moved;
  trial.size = dst.record.dataSize;
  Job job = row.job;
  job.src = src.record;
  job.dst = dst.record;
  for (const Library& library : peers) {
    const Peer peer = peerFor(library, job);
    if (peer.run != nullptr) trial.peers.emplace_back(library.name, peer);
  }
  trial.difference = [&](const Peer& peer, const uint8_t* ours) {
    return difference(row, peer, ours, dst.record.data);
  };
  return measure(trial, ceilings);
}

std::string machine() {
  std::string text = "# processor: " + fromFile("/proc/cpuinfo", "model name");
  for (const char* field : {"cpu family", "model"}) {
    text +=
        "; " + (field + (" " + fromFile("/proc/cpuinfo", std::string(field) + "\t")));
  }
  for (const auto& cache : benchmark::CPUInfo::Get().caches) {
    if (cache.type == "Instruction") continue;
    text += "; L" + std::to_string(cache.level) + " " +
            std::to_string(cache.size >> 10) + " KiB";
  }
#ifndef __clang__
  text += "\n# compiler: GCC " __VERSION__;
#else
  text += "\n# compiler: " __VERSION__;
#endif
  return text + "\n";
}

}  // namespace bench
