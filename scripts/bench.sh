#!/usr/bin/env bash
# Times the stages and pipelines and prints a table in Markdown.
#   scripts/bench.sh [--quick] [--profile] [REGEX]
#   --quick    fewer and shorter repetitions
#   --profile  the library alone, once for each instruction set, instead of peers
#   REGEX      only rows whose name contains a match
# Installs missing packages as root.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh

programs=build-bench/bench/zelm-bench
profile=false
options=()
for argument in "$@"; do
  case $argument in
    --profile) profile=true ;;
    --quick) options+=(--quick) ;;
    -*)
      sed -n '3,6s/^# *//p' scripts/bench.sh >&2
      exit 2
      ;;
    *) options+=("--rows=$argument") ;;
  esac
done

build() {
  # shellcheck disable=SC2086  # a list of words
  require_packages $bench_packages
  cmake -S . -B build-bench -DCMAKE_BUILD_TYPE=Release -DZELM_BUILD_BENCHMARKS=ON \
    -DZELM_BUILD_TESTS=OFF -DZELM_BUILD_TOOL=OFF
  cmake --build build-bench -j "$(nproc)"
}

# Reads "set TAB row TAB nanoseconds" and prints a line for each row.
profile_table() {
  awk -F '\t' -v sets="$1" '
    { if (!($2 in seen)) { seen[$2]; order[++rows] = $2 } time[$2, $1] = $3 }
    END {
      n = split(sets, name, " ")
      line = "| Step and size |"; rule = "|---|"
      for (i = 1; i <= n; ++i) { line = line " " name[i] " |"; rule = rule "---:|" }
      print line; print rule
      for (r = 1; r <= rows; ++r) {
        line = "| " order[r] " |"
        for (i = 1; i <= n; ++i) {
          line = line sprintf(" %.1f µs |", time[order[r], name[i]] / 1000)
          gain[i] += log(time[order[r], name[1]] / time[order[r], name[i]])
        }
        print line
      }
      line = "| geometric mean of the gain |"
      for (i = 1; i <= n; ++i) line = line sprintf(" %.2f |", exp(gain[i] / rows))
      print line
    }'
}

# Each program knows the instruction sets up to the one in its name, the last all.
run_profile() {
  local sets="" set
  for set in plain sse4 avx2 avx512; do
    [ -x "$programs-$set" ] && sets+="$set "
  done
  {
    for set in $sets; do
      "$programs-$set" --times "${options[@]}" | sed "s/^/$set\t/"
    done
    "$programs" --times "${options[@]}" | sed "s/^/all\t/"
  } | profile_table "$sets all"
}

build >&2
if $profile; then
  run_profile
else
  "$programs" "${options[@]}"
fi
