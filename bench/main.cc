// Times every stage and pipeline beside other libraries and prints a table.
#include <stdio.h>
#include <unistd.h>

#include <iostream>
#include <regex>

#include "measure.h"
#include "table.h"

namespace {

constexpr char kUsage[] =
    "usage: zelm-bench [--quick] [--list | --differences | --times] [--rows=REGEX]\n"
    "  --quick        fewer and shorter repetitions\n"
    "  --rows=REGEX   only rows whose name contains a match\n"
    "  --list         print the names of the rows\n"
    "  --differences  how far the peers' outputs are from ours; nothing is timed\n"
    "  --times        our times alone: name, tab, nanoseconds\n";

struct Options {
  bool quick = false, list = false, differences = false, times = false;
  std::regex rows = std::regex(".");
};

bool parse(int count, char** arguments, Options* options) {
  for (int i = 1; i < count; ++i) {
    const std::string a = arguments[i];
    if (a == "--quick") {
      options->quick = true;
    } else if (a == "--list") {
      options->list = true;
    } else if (a == "--differences") {
      options->differences = true;
    } else if (a == "--times") {
      options->times = true;
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

int run(const Options& options) {
  const bench::Effort effort =
      options.quick ? bench::Effort{5, 0.008} : bench::Effort{25, 0.02};
  const bench::Mode mode = options.times         ? bench::Mode::kOurTimeOnly
                           : options.differences ? bench::Mode::kDifferencesOnly
                                                 : bench::Mode::kEverything;
  bench::prepare(effort);
  bench::Measured measured;
  int wrong = 0;
  for (const bench::Row& row : bench::allRows()) {
    if (!std::regex_search(row.name(), options.rows)) continue;
    if (options.list) {
      std::cout << row.name() << "\n";
      continue;
    }
    showProgress(row.name());
    const bench::Result result = bench::measure(row, mode);
    if (!result.correct) {
      showProgress("");
      fprintf(stderr, "%s: wrong output, not timed\n", row.name().c_str());
      ++wrong;
    } else if (options.times) {
      std::cout << row.name() << "\t" << result.time << "\n";
    } else {
      measured.emplace_back(row, result);
    }
  }
  showProgress("");
  if (options.differences) {
    bench::printDifferences(measured, std::cout);
  } else if (!options.list && !options.times) {
    std::cout << bench::machine() << "Each time is the lower quartile of "
              << effort.repetitions << " repetitions of at least "
              << effort.seconds * 1000
              << " ms (processor time, one thread, contenders in random order).\n\n";
    bench::printTable(measured, std::cout);
  }
  return wrong == 0 ? 0 : 1;
}

}  // namespace

int main(int count, char** arguments) {
  Options options;
  try {
    if (parse(count, arguments, &options)) return run(options);
  } catch (const std::regex_error& error) {
    fprintf(stderr, "zelm-bench: %s\n", error.what());
  }
  fputs(kUsage, stderr);
  return 2;
}
