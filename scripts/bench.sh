#!/usr/bin/env bash
# Times the stages and pipelines, or the plans of libzelm_frames, and prints a table.
#   scripts/bench.sh [peers|sets|frames] [OPTION...] [REGEX]
#   peers          beside other libraries; this is what is done without a word
#   sets           the library alone, with each instruction set of the machine; rows where
#                  one with more instructions is slower are measured again twice, and those
#                  that are so each time are named; also --profile
#   frames         plans beside other libraries, zelm_imageutil and one thread
#   --quick        fewer and shorter repetitions
#   --ceiling=SET  peers, frames: the library is held to plain, sse4, avx2, avx512 or all;
#                  at avx2 the peers are held to AVX2, too
#   --store        replaces the values in bench/results/, for a machine of this kind
#   REGEX          only rows whose name contains a match
# The values stand in build-bench/ as comma-separated values. Installs missing packages as
# root.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
# shellcheck source=scripts/measuring.sh
. scripts/measuring.sh

word=peers
ceiling=all
store=false
options=()
for argument in "$@"; do
  case $argument in
    peers | sets | frames) word=$argument ;;
    --profile) word=sets ;;
    --quick) options+=(--quick) ;;
    --ceiling=*) ceiling=${argument#*=} ;;
    --store) store=true ;;
    -*)
      sed -n '3,16s/^# *//p' scripts/bench.sh >&2
      exit 2
      ;;
    *) options+=("--rows=$argument") ;;
  esac
done

if $store && [ ${#options[@]} -gt 0 ]; then
  echo "$0: what is stored has all rows at full length" >&2
  exit 2
fi

build() {
  # shellcheck disable=SC2086  # a list of words
  require_packages $bench_packages
  cmake -S . -B build-bench -DCMAKE_BUILD_TYPE=Release -DZELM_BUILD_BENCHMARKS=ON \
    -DZELM_BUILD_TESTS=OFF -DZELM_BUILD_TOOL=OFF
  cmake --build build-bench -j "$(nproc)" --target zelm-bench
}

# measure FILE TABLE OPTION...: runs the program, keeps its values and shows a table of them.
measure() {
  local file=build-bench/$1.csv
  {
    provenance
    build-bench/bench/zelm-bench "${@:3}" "${options[@]}"
  } | tee "$file" | awk -f "bench/$2_table.awk"
  echo "Values: $file"
  if $store; then
    mkdir -p bench/results
    cp "$file" bench/results/
  fi
}

# beside_peers NAME OPTION...
beside_peers() {
  local name=$1
  [ "$ceiling" = all ] || name+=-held-to-$ceiling
  # OpenCV reads this before a program can say anything to it.
  [ "$ceiling" != avx2 ] || export OPENCV_CPU_DISABLE=AVX512-SKX
  measure "$name" peers "--ceiling=$ceiling" "${@:2}"
  echo
  {
    printf 'geometric mean\tfastest\tlibyuv\tOpenCV\tswscale\tzimg\tmemcpy\trows\n'
    awk -f bench/families.awk "build-bench/$name.csv"
  } | awk -F '\t' '{
    printf "%-20s", $1
    for (i = 2; i <= NF; ++i) {
      if ($i ~ /\./) $i = sprintf("%.2f", $i)
      printf " %8s", $i == "NaN" ? "-" : $i
    }
    print ""
  }'
}

measure_peers() { beside_peers "$(processor_kind)"; }

measure_frames() { beside_peers "$(processor_kind)-frames" --frames; }

measure_sets() {
  local name slow
  name="$(processor_kind)-instruction-sets"
  measure "$name" sets --sets
  for _ in once twice; do
    slow=$(awk -v marked=1 -f bench/sets_table.awk "build-bench/$name.csv")
    [ -n "$slow" ] || break
    echo "Measured again:"
    options+=("--rows=^($(paste -s -d '|' <<<"$slow"))\$")
    store=false name=again
    measure $name sets --sets
  done
  slow=$(awk -v marked=1 -f bench/sets_table.awk "build-bench/$name.csv")
  echo "Slower with more instructions, each time: ${slow:-none}"
}

build >&2
"measure_$word"
