#!/usr/bin/env bash
# Counts the instructions that each stage and libyuv's way to do the same execute for one
# frame on 32-bit Arm and on AArch64, in an emulator, and prints them in thousands.
#   scripts/count-instructions.sh [--store] [REGEX]
#   --store  replaces the values in bench/results/
#   REGEX    only rows whose name contains a match
# libyuv is built from Debian's source package with its own vector code. The values stand
# in build-count/arm-instructions.csv. Installs missing packages as root.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh

work=$PWD/build-count

# The sources of the package, by way of a list of its own, as none may be configured.
fetch_libyuv() {
  [ -d "$work/libyuv/source" ] && return
  mkdir -p "$work/apt/parts" "$work/apt/lists/partial" "$work/libyuv"
  local list
  for list in /etc/apt/sources.list.d/*.sources; do
    [ -f "$list" ] && sed 's/^Types: deb$/Types: deb-src/' "$list" >"$work/apt/parts/${list##*/}"
  done
  for list in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
    [ -f "$list" ] && sed -n 's/^deb /deb-src /p' "$list" >"$work/apt/parts/${list##*/}.list"
  done
  local options=(-q -o Dir::Etc::SourceList=/dev/null -o "Dir::Etc::SourceParts=$work/apt/parts"
    -o "Dir::State::Lists=$work/apt/lists" -o APT::Sandbox::User=root)
  apt-get "${options[@]}" update
  (cd "$work/apt" && apt-get "${options[@]}" source --download-only libyuv)
  tar -xzf "$work"/apt/libyuv_*.orig.tar.gz -C "$work/libyuv" --strip-components=1
}

# build_libyuv TARGET PREFIX [FLAG...]
build_libyuv() {
  local folder=$work/$1/libyuv
  [ -f "$folder/libyuv.a" ] && return
  mkdir -p "$folder"
  find "$work/libyuv/source" -name '*.cc' ! -name '*mjpeg*' -print0 |
    (cd "$folder" && xargs -0 -P "$(nproc)" -n 8 "$2-g++" -c -O2 "${@:3}" \
      -I "$work/libyuv/include")
  "$2-ar" rc "$folder/libyuv.a" "$folder"/*.o
}

# build TARGET TOOLCHAIN
build() {
  cmake -S . -B "$work/$1" -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/$2.cmake" \
    -DCMAKE_BUILD_TYPE=Release -DZELM_BUILD_BENCHMARKS=ON -DZELM_BUILD_TESTS=OFF \
    -DZELM_BUILD_TOOL=OFF -DLIBYUV_INCLUDE="$work/libyuv/include" \
    -DLIBYUV_LIBRARY="$work/$1/libyuv/libyuv.a"
  cmake --build "$work/$1" -j "$(nproc)" --target zelm-count
}

# libyuv looks there for the processor's abilities.
processor_file() {
  mkdir -p "$work/root/proc"
  echo "Features : half thumb fastmult vfp edsp neon vfpv3 vfpv4" >"$work/root/proc/cpuinfo"
}

# run TARGET EMULATOR PROCESSOR: lines of target, step, size, family, contender and count.
run() {
  "$2" -L "$work/root" -cpu "$3" -plugin "$work/counter.so" \
    "$work/$1/bench/zelm-count" "${regex[@]}" | sed "s/^/$1,/"
}

# A line for each row.
values() {
  echo "# date: $(date -u +%F)"
  echo "# source: $(git describe --always --dirty 2>/dev/null || echo unknown)"
  echo "# compilers: $(arm-linux-gnueabihf-g++ --version | head -n 1);" \
    "$(aarch64-linux-gnu-g++ --version | head -n 1)"
  echo "# instructions of one call on one frame; 32-bit: Thumb-2 with NEON"
  awk -F , '
    { row = $2 "," $3 "," $4
      if (!(row in seen)) { seen[row]; order[++rows] = row }
      if ($5 == "libyuv*") { $5 = "libyuv"; other[row] = 1 }
      count[$1, row, $5] = $6 }
    END {
      print "stage,size,family,armv7,armv7_libyuv,aarch64,aarch64_libyuv,not_counted"
      for (r = 1; r <= rows; ++r) {
        row = order[r]
        print row "," count["armv7", row, "ours"] "," count["armv7", row, "libyuv"] "," \
          count["aarch64", row, "ours"] "," count["aarch64", row, "libyuv"] "," \
          (other[row] ? "libyuv" : "")
      }
    }'
}

regex=()
store=false
for argument in "$@"; do
  case $argument in
    --store) store=true ;;
    *) regex=("$argument") ;;
  esac
done
{
  # shellcheck disable=SC2086  # a list of words
  require_packages $count_packages
  mkdir -p "$work"
  fetch_libyuv
  build_libyuv armv7 arm-linux-gnueabihf -march=armv7-a -mfpu=neon -mthumb -DLIBYUV_NEON
  build_libyuv aarch64 aarch64-linux-gnu
  build armv7 armv7-neon
  build aarch64 aarch64
  gcc -shared -fPIC -O2 -o "$work/counter.so" bench/instruction_counter.c
  processor_file
} >&2
{
  run armv7 qemu-arm cortex-a9
  run aarch64 qemu-aarch64 cortex-a53
} | values >"$work/arm-instructions.csv"
awk -f bench/instructions_table.awk "$work/arm-instructions.csv"
if $store; then
  mkdir -p bench/results
  cp "$work/arm-instructions.csv" bench/results/
fi
