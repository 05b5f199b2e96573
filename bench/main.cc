// Times every stage and pipeline, or the plans of libzelm_frames, beside other
// libraries or with one instruction set after the other, and prints comma-separated
// values.
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include <cmath>
#include <iostream>
#include <regex>

#include "measure.h"
#include "plan_rows.h"

namespace {

using zelm::InstructionSet;

constexpr char kUsage[] =
    "usage: zelm-bench [--frames] [--quick] [--ceiling=SET | --sets | --list]\n"
    "                  [--rows=REGEX]\n"
    "  --frames       plans of libzelm_frames instead of stages and pipelines\n"
    "  --quick        fewer and shorter repetitions\n"
    "  --rows=REGEX   only rows whose name contains a match\n"
    "  --list         print the names of the rows\n"
    "  --ceiling=SET  the library runs at most this instruction set: plain, sse4, "
    "avx2,\n"
    "                 avx512 or all. Peers are held to AVX2 along with it, apart from\n"
    "                 OpenCV, and are not asked below that.\n"
    "  --sets         the library alone, with each of these instruction sets\n";

const char* const kPeers[] = {"libyuv", "OpenCV", "swscale", "zimg"};
const char* const kSets[] = {"plain", "sse4", "avx2", "avx512", "all"};

InstructionSet setNamed(const char* name) {
  InstructionSet set;
  if (!zelm::findInstructionSet(name, &set)) throw std::invalid_argument(name);
  return set;
}

struct Options {
  bool frames = false, quick = false, list = false, sets = false;
  std::string ceiling = "all";
  std::regex rows = std::regex(".");
};

bool parse(int count, char** arguments, Options* options) {
  for (int i = 1; i < count; ++i) {
    const std::string a = arguments[i];
    if (a == "--frames") {
      options->frames = true;
    } else if (a == "--quick") {
      options->quick = true;
    } else if (a == "--list") {
      options->list = true;
    } else if (a == "--sets") {
      options->sets = true;
    } else if (a.compare(0, 10, "--ceiling=") == 0) {
      options->ceiling = a.substr(10);
    } else if (a.compare(0, 7, "--rows=") == 0) {
      options->rows = std::regex(a.substr(7));
    } else {
      return false;
    }
  }
  return true;
}

// On a terminal, the line is overwritten by the next one.
void showProgress(const std::string& text) {
  if (isatty(STDERR_FILENO)) fprintf(stderr, "\r\033[K%s", text.c_str());
}

void printNanoseconds(double time) { printf(time < 1000 ? ",%.1f" : ",%.0f", time); }

void printHeading(const Options& options, const bench::Effort& effort,
                  const std::vector<bench::Library>& peers) {
  fputs(bench::machine().c_str(), stdout);
  if (!options.sets) {
    printf("# peers:");
    for (const bench::Library& peer : peers) printf(" %s;", peer.version.c_str());
    printf(" memcpy of the C library\n");
  }
  printf(
      "# times: nanoseconds of one thread; the lower quartile of %d repetitions of"
      " %.0f ms or more, contenders in random order\n",
      effort.repetitions, effort.seconds * 1000);
  printf("stage,size,family");
  if (options.sets) {
    for (const char* set : kSets) printf(",%s_ns", set);
    puts("");
    return;
  }
  puts(
      ",ceiling,ours_ns,memcpy_ns,libyuv_ns,opencv_ns,swscale_ns,zimg_ns,best_peer,"
      "ratio,target,memcpy_target,not_counted,remarks,psnr_db,own,own_ns,own_target");
}

// Sets that the processor lacks run as the highest one that it has.
void printSets(const bench::Label& row, const bench::Result& result) {
  printf("%s,%s,%s", row.stage.c_str(), row.size.c_str(), row.family.c_str());
  for (const double time : result.times) printNanoseconds(time);
  puts("");
}

void printPeers(const bench::Label& row, const std::string& ceiling,
                const bench::Result& result) {
  printf("%s,%s,%s,%s", row.stage.c_str(), row.size.c_str(), row.family.c_str(),
         ceiling.c_str());
  printNanoseconds(result.times[0]);
  printNanoseconds(result.memcpyTime);
  std::string notCounted, remarks, differences;
  for (const char* const name : kPeers) {
    const bench::PeerResult* const peer = result.find(name);
    if (peer == nullptr) {
      printf(",");
      continue;
    }
    printNanoseconds(peer->time);
    const auto add = [name](std::string* list, const std::string& text) {
      *list += (list->empty() ? "" : "; ") + (name + (": " + text));
    };
    if (!peer->remark.empty())
      add(peer->counted ? &remarks : &notCounted, peer->remark);
    char psnr[32] = "equal";
    if (!std::isinf(peer->difference)) {
      snprintf(psnr, sizeof psnr, "%.1f", peer->difference);
    }
    add(&differences, psnr);
  }
  if (const bench::PeerResult* const best = result.best()) {
    printf(",%s,%.3f,%.2f", best->library.c_str(), best->time / result.times[0],
           row.target);
  } else {
    printf(",,,");
  }
  printf(row.roof > 0 ? ",%.2f" : ",", row.roof);
  printf(",%s,%s,%s", notCounted.c_str(), remarks.c_str(), differences.c_str());
  if (row.own.empty()) {
    puts(",,,");
  } else {
    printf(",%s,%.0f,%.2f\n", row.own.c_str(), result.ownTime, row.ownTarget);
  }
}

// Measures those of the rows that are asked for; returns how many were wrong.
template <class Rows>
int measureAll(const Rows& rows, const Options& options,
               const bench::Ceilings& ceilings,
               const std::vector<bench::Library>& peers) {
  int wrong = 0;
  for (const auto& row : rows) {
    if (!std::regex_search(row.name(), options.rows)) continue;
    if (options.list) {
      puts(row.name().c_str());
      continue;
    }
    showProgress(row.name());
    const bench::Result result = bench::measure(row, ceilings, peers);
    showProgress("");
    if (!result.correct) {
      fprintf(stderr, "%s: wrong output, not timed\n", row.name().c_str());
      ++wrong;
    } else if (options.sets) {
      printSets(row, result);
    } else {
      printPeers(row, options.ceiling, result);
    }
    fflush(stdout);
  }
  return wrong;
}

int run(const Options& options) {
  const bench::Effort effort =
      options.quick ? bench::Effort{5, 0.008} : bench::Effort{25, 0.02};
  bench::prepare(effort);
  bench::Ceilings ceilings = {setNamed(options.ceiling.c_str())};
  std::vector<bench::Library> peers;
  if (options.sets) {
    ceilings.clear();
    for (const char* set : kSets) ceilings.push_back(setNamed(set));
  } else if (ceilings[0] >= InstructionSet::kAvx2) {
    peers = bench::libraries(ceilings[0] == InstructionSet::kAvx2);
  }
  if (!options.list) printHeading(options, effort, peers);
  const int wrong = options.frames
                        ? measureAll(bench::allPlanRows(), options, ceilings, peers)
                        : measureAll(bench::allRows(), options, ceilings, peers);
  return wrong == 0 ? 0 : 1;
}

}  // namespace

int main(int count, char** arguments) {
  Options options;
  try {
    if (parse(count, arguments, &options)) return run(options);
  } catch (const std::exception& error) {  // of a regular expression or a set's name
    fprintf(stderr, "zelm-bench: %s\n", error.what());
  }
  fputs(kUsage, stderr);
  return 2;
}
