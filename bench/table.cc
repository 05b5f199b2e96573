#include "table.h"

#include <stdio.h>

#include <algorithm>
#include <cmath>

namespace bench {
namespace {

// Two equally fast calls differ by this much, more when the data is in no cache. It is
// allowed for where the figure to reach is equality, nowhere else.
constexpr double kNoise = 0.02, kNoiseInMemory = 0.05;
constexpr size_t kInMemory = size_t{8} << 20;  // bytes read and written
constexpr double kFloor = 0.93;  // no row should be slower than this against any peer

std::string format(const char* pattern, double value) {
  char text[32];
  snprintf(text, sizeof text, pattern, value);
  return text;
}

std::string duration(double nanoseconds) {
  const double us = nanoseconds / 1e3;
  return us < 1000 ? format("%.1f µs", us) : format("%.2f ms", us / 1e3);
}

class Notes {
 public:
  std::string mark(const std::string& text) {
    const auto known = std::find(texts_.begin(), texts_.end(), text);
    const auto number = known - texts_.begin() + 1;
    if (known == texts_.end()) texts_.push_back(text);
    return "<sup>" + std::to_string(number) + "</sup>";
  }
  void print(std::ostream& out) const {
    for (size_t i = 0; i < texts_.size(); ++i) {
      out << "<sup>" << i + 1 << "</sup> " << texts_[i] << "  \n";
    }
  }

 private:
  std::vector<std::string> texts_;
};

struct Verdict {
  double ratio = 0;  // to the fastest peer that counts, 0 when there is none
  double roof = 0;
  bool ratioMet = true, roofMet = true;
  bool met() const { return ratioMet && roofMet; }
  bool compared() const { return ratio > 0; }
};

double leastRatio(const Row& row) {
  if (row.target > 1) return row.target;
  const size_t bytes = partRead(row.job).length + partWritten(row.job).length;
  return row.target - (bytes < kInMemory ? kNoise : kNoiseInMemory);
}

Verdict judge(const Row& row, const Result& result) {
  Verdict v;
  v.roof = result.roof / result.time;
  v.roofMet = v.roof >= row.roof;
  if (const PeerResult* best = result.best()) {
    v.ratio = best->time / result.time;
    v.ratioMet = v.ratio >= leastRatio(row);
  }
  return v;
}

std::string target(const Row& row) {
  std::string text = format("%.2f", row.target);
  if (row.roof > 0) text += format(", %.2f of memcpy", row.roof);
  return text;
}

const PeerResult* find(const Result& result, const char* library) {
  for (const PeerResult& p : result.peers) {
    if (p.library == library) return &p;
  }
  return nullptr;
}

std::string cell(const Result& result, const char* library, Notes* notes) {
  const PeerResult* peer = find(result, library);
  if (peer == nullptr) return "";
  std::string text = format("%.2f", peer->time / result.time);
  if (peer == result.best()) text = "**" + text + "**";
  if (!peer->counted) text = "(" + text + ")";
  return peer->remark.empty() ? text : text + notes->mark(peer->remark);
}

void heading(const std::vector<std::string>& cells, std::ostream& out) {
  for (const auto& c : cells) out << "| " << c << " ";
  out << "|\n";
  for (size_t i = 0; i < cells.size(); ++i) out << (i < 2 ? "|---" : "|---:");
  out << "|\n";
}

void printMissed(const Measured& rows, std::ostream& out) {
  std::string below, slow;
  int met = 0, compared = 0;
  for (const auto& [row, result] : rows) {
    const Verdict v = judge(row, result);
    if (!v.compared()) continue;
    ++compared;
    met += v.met();
    if (!v.ratioMet) {
      below += "- " + row.name() + format(": %.2f", v.ratio) +
               format(" instead of %.2f\n", row.target);
    }
    if (!v.roofMet) {
      below += "- " + row.name() + format(": %.2f of memcpy", v.roof) +
               format(" instead of %.2f\n", row.roof);
    }
    if (v.ratio < kFloor) {
      slow += "- " + row.name() + format(": %.2f\n", v.ratio);
    }
  }
  out << "\nFigures reached: " << met << " of " << compared << " rows. ";
  out << (below.empty() ? "None is missed.\n" : "Missed:\n\n" + below);
  out << "\nSlower than " << format("%.2f", kFloor)
      << " of the fastest peer: " << (slow.empty() ? "none.\n" : "\n\n" + slow);
}

}  // namespace

void printTable(const Measured& rows, std::ostream& out) {
  const std::vector<Library> peers = libraries();
  std::vector<std::string> columns = {"Step", "Size", "Time", "Of memcpy"};
  for (const Library& library : peers) columns.push_back(library.name);
  columns.insert(columns.end(), {"To reach", "Reached"});
  heading(columns, out);

  Notes notes;
  double logarithms = 0;
  int compared = 0;
  for (const auto& [row, result] : rows) {
    const Verdict v = judge(row, result);
    out << "| " << row.stage << " | " << row.size << " | " << duration(result.time)
        << " | " << format("%.2f", v.roof);
    for (const Library& library : peers) {
      out << " | " << cell(result, library.name, &notes);
    }
    out << " | " << target(row) << " | "
        << (!v.compared() ? ""
            : v.met()     ? "yes"
                          : "**no**")
        << " |\n";
    if (v.compared()) {
      logarithms += std::log(v.ratio);
      ++compared;
    }
  }
  out << "\nA peer's figure is its time divided by ours: above 1 we are faster. Bold "
         "is "
         "the fastest peer of the row; in brackets are peers that answer another "
         "question and are not counted. \"Of memcpy\" compares with copying half of "
         "all bytes read and written. A ratio of 1 counts as reached from "
      << format("%.2f", 1 - kNoise) << " on, from "
      << format("%.2f", 1 - kNoiseInMemory) << " on where more than "
      << (kInMemory >> 20) << " MiB are moved.\n\n";
  notes.print(out);
  printMissed(rows, out);
  if (compared > 0) {
    out << "\nGeometric mean of the ratio to the fastest peer, " << compared
        << " rows: " << format("%.2f", std::exp(logarithms / compared)) << "\n";
  }
}

void printDifferences(const Measured& rows, std::ostream& out) {
  heading({"Step", "Size", "Peer", "PSNR", "Counted"}, out);
  for (const auto& [row, result] : rows) {
    for (const PeerResult& p : result.peers) {
      out << "| " << row.stage << " | " << row.size << " | " << p.library << " | "
          << (std::isinf(p.difference) ? "equal" : format("%.1f dB", p.difference))
          << " | " << (p.counted ? "yes" : "no") << (p.remark.empty() ? "" : ": ")
          << p.remark << " |\n";
    }
  }
}

}  // namespace bench
