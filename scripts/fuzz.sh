#!/usr/bin/env bash
# Builds the fuzzers and runs each of them on the corpus in the repository.
#   scripts/fuzz.sh [--memory | --plain] [--runs=N] [--keep] [SECONDS [TARGET...]]
#   --memory  with the memory sanitizer instead of those for addresses and undefined
#             behaviour; the targets that need nothing of the program
#   --plain   without sanitizers, several times as fast: codes and bytes are still compared
#             and pages beside the buffers inaccessible; not the readers
#   --runs=N  at most so many executions of each target
#   --keep    puts what was found, of the fewest and smallest files with the same coverage
#             up to 150 and 40 KB per target, into fuzz/corpus
#   SECONDS   for each target; 60 unless given, 0 for no limit
# Prints a table; exit status 1 when anything was found. The inputs that did it are left
# in build-fuzz*/findings. Installs missing packages as root.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh

build=build-fuzz
sanitizers=,address,undefined
targets=(fuzz_stages fuzz_pipelines fuzz_checks fuzz_frames fuzz_readers fuzz_texts fuzz_options)
keep=false
runs=-1
while [ "${1:-}" != "${1#--}" ]; do
  case $1 in
    --memory)
      build=build-fuzz-memory
      sanitizers=,memory
      targets=(fuzz_stages fuzz_pipelines fuzz_checks fuzz_frames)
      ;;
    --plain)
      build=build-fuzz-plain
      sanitizers=''
      targets=(fuzz_stages fuzz_pipelines fuzz_checks fuzz_frames fuzz_texts fuzz_options)
      ;;
    --runs=*) runs=${1#--runs=} ;;
    --keep) keep=true ;;
    *)
      sed -n '3,13s/^# *//p' scripts/fuzz.sh >&2
      exit 2
      ;;
  esac
  shift
done
seconds=${1:-60}
[ $# -gt 1 ] && targets=("${@:2}")

build() {
  # shellcheck disable=SC2086  # a list of words
  require_packages $fuzz_packages
  local launcher=()
  command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
  cmake -G Ninja -S . -B $build -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_C_COMPILER=clang-14 -DCMAKE_CXX_COMPILER=clang++-14 "${launcher[@]}" \
    -DZELM_BUILD_FUZZERS=ON -DZELM_FUZZ_SANITIZERS="$sanitizers" \
    -DZELM_BUILD_TESTS=OFF -DZELM_BUILD_TOOL=OFF
  cmake --build $build -j "${JOBS:-$(nproc)}" --target fuzzers
}

# The value of a line that libFuzzer prints at its end.
statistic() {
  sed -n "s/^stat::$1: *//p" "$2"
}

# minimise TARGET: the corpus in the repository from that in the build folder.
minimise() {
  local target=$1 small=$build/small/$1 total=0 count=0 every file size
  rm -rf "$small"
  mkdir -p "$small"
  "$build/fuzz/$target" -merge=1 -rss_limit_mb=4096 "$small" "fuzz/corpus/$target" \
    "$build/corpus/$target" >"$build/$target.merge.log" 2>&1 || return 0
  rm -rf "fuzz/corpus/$target"
  mkdir -p "fuzz/corpus/$target"
  every=$(($(find "$small" -type f | wc -l) / 150 + 1))
  while read -r size file; do
    [ $((count++ % every)) -eq 0 ] || continue
    total=$((total + size))
    [ $total -gt 40000 ] && break
    cp "$file" "fuzz/corpus/$target/"
  done < <(find "$small" -type f -printf '%s %p\n' | sort -n)
}

# run TARGET: one row of the table.
run() {
  local target=$1 status=0 log=$build/$1.log dictionary=()
  mkdir -p "$build/corpus/$target" "$build/findings" "fuzz/corpus/$target"
  [ -f "fuzz/$target.dict" ] && dictionary=("-dict=fuzz/$target.dict")
  "$build/fuzz/$target" -max_total_time="$seconds" -runs="$runs" -print_final_stats=1 -timeout=20 \
    -rss_limit_mb=4096 -max_len=1024 -artifact_prefix="$build/findings/$target-" \
    "${dictionary[@]}" "$build/corpus/$target" "fuzz/corpus/$target" \
    >"$log" 2>&1 || status=$?
  local result=passed
  if [ $status -ne 0 ]; then
    result="FOUND, see $log"
    grep -hE 'FINDING|ERROR|runtime error|WARNING: Memory' "$log" | head -3 >&2 || true
  fi
  printf '| %-14s | %12s | %10s | %8s | %s |\n' "$target" \
    "$(statistic number_of_executed_units "$log")" \
    "$(statistic average_exec_per_sec "$log")" \
    "$(sed -n 's/.* cov: \([0-9]*\) .*/\1/p' "$log" | tail -1)" "$result"
  if $keep; then minimise "$target"; fi
}

build >&2
printf '| %-14s | %12s | %10s | %8s | %s |\n' Target Executions "per second" Coverage Result
echo "|---|---:|---:|---:|---|"
# As many at a time as there are processors; rows in the order of the list.
for target in "${targets[@]}"; do
  while [ "$(jobs -rp | wc -l)" -ge "${JOBS:-$(nproc)}" ]; do wait -n; done
  run "$target" >"$build/$target.row" &
done
wait
for target in "${targets[@]}"; do cat "$build/$target.row"; done
for target in "${targets[@]}"; do
  if grep -q FOUND "$build/$target.row"; then exit 1; fi
done
