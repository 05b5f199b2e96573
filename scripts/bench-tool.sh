#!/usr/bin/env bash
# Times the program beside ffmpeg, which does the same with its default threads.
#   scripts/bench-tool.sh [--quick] [--before=PROGRAM] [--store] [REGEX]
#   --quick     fewer rounds
#   --before=   an earlier version of the program, which is timed as well where it can do
#               the same
#   --store     replaces the values in bench/results/, for a machine of this kind
#   REGEX       only rows whose name matches
# Clips lie in memory (in ZELM_BENCH_FOLDER, /dev/shm unless given; about 2 GB). Every row
# is timed to a file there, to /dev/null, and through pipes with cat at both ends. The
# contenders take turns, and the least time of all rounds counts. Each has to succeed, and
# all have to write equally many bytes of frames. Installs missing packages as root.
set -euo pipefail
shopt -s inherit_errexit
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
# shellcheck source=scripts/measuring.sh
. scripts/measuring.sh

rounds=5
quick=false
before=''
store=false
wanted=.
for argument in "$@"; do
  case $argument in
    --quick) quick=true rounds=3 ;;
    --before=*) before=$(realpath "${argument#*=}") ;;
    --store) store=true ;;
    [!-]*) wanted=$argument ;;
    *)
      sed -n '3,14s/^# *//p' scripts/bench-tool.sh >&2
      exit 2
      ;;
  esac
done

if $store && { $quick || [ "$wanted" != . ]; }; then
  echo "$0: what is stored has all rows at full length" >&2
  exit 2
fi

# shellcheck disable=SC2086  # a list of words
require_packages $demo_packages >&2
cmake -S . -B build -DCMAKE_BUILD_TYPE=Release -DZELM_BUILD_TOOL=ON >/dev/null
cmake --build build -j "$(nproc)" --target zelm-imageutil >/dev/null
tool=$PWD/build/tools/zelm-imageutil
work=$(mktemp -d "${ZELM_BENCH_FOLDER:-/dev/shm}/zelm-bench-XXXXXX")
trap 'rm -r "$work"' EXIT
results=$work/results.csv

# clip NAME SIZE DRAWN TIMES: nv12 and Y4M; drawing is slow, so frames are repeated.
clip() {
  local i
  "$tool" testcard "$work/drawn.nv12" --size "$2" --frames "$3"
  for ((i = 0; i < $4; ++i)); do cat "$work/drawn.nv12"; done >"$work/$1.nv12"
  "$tool" convert "$work/$1.nv12" "$work/$1.y4m" --size "$2" --range limited \
    --matrix bt709
  rm "$work/drawn.nv12"
}

# run COMMAND: pipes fail if any part does.
run() {
  bash -o pipefail -c "$1" || {
    echo "$0: this failed: $1" >&2
    exit 1
  }
}

# once COMMAND: microseconds of wall time.
once() {
  local start end
  start=$(date +%s%N)
  run "$1"
  end=$(date +%s%N)
  echo $(((end - start) / 1000))
}

# least COMMAND...: the least time of each command; they take turns.
least() {
  local i time best=()
  for ((round = 0; round < rounds; ++round)); do
    for ((i = 0; i < $#; ++i)); do
      rm -f "$work/out" "$work/out."*
      time=$(once "${@:i+1:1}")
      if [ "$round" -eq 0 ] || [ "$time" -lt "${best[i]}" ]; then best[i]=$time; fi
    done
  done
  echo "${best[@]}"
}

# payload FILE: its bytes without the header of Y4M, which names what not all write.
payload() {
  local bytes
  bytes=$(stat -c %s "$1")
  if [[ $1 == *.y4m ]]; then bytes=$((bytes - $(sed q "$1" | wc -c))); fi
  echo "$bytes"
}

# check_sizes NAME FILE COMMAND...: as many bytes from each, or their times mean nothing.
check_sizes() {
  local command bytes=()
  for command in "${@:3}"; do
    rm -f "$2"
    run "$command"
    bytes+=("$(payload "$2")")
    if [ "${bytes[-1]}" -ne "${bytes[0]}" ]; then
      echo "$0: $1: frames of ${bytes[*]} bytes" >&2
      exit 1
    fi
  done
}

# timed ROW WAY OURS THEIRS [BEFORE]: a line of the table.
timed() {
  local times best
  times=$(least "${@:3}")
  read -r -a best <<<"$times"
  printf '%s,%s,%s,%s,%s\n' "$1" "$2" "${best[0]}" "${best[1]}" "${best[2]:-}" \
    >>"$results"
  awk -F, -v row="$1" -v way="$2" -v a="${best[0]}" -v b="${best[1]}" \
    -v c="${best[2]:-}" 'BEGIN {
      printf "%-28s %-10s %8.1f %8.1f %6.2f", row, way, a / 1000, b / 1000, b / a
      if (c != "") printf " %8.1f %6.2f", c / 1000, c / a
      print ""
    }'
}

# row NAME CLIP SIZE SUFFIX OPTIONS FILTER PIXELS: the clip's suffix tells how it is read,
# SUFFIX what is written. FILTER and PIXELS are ffmpeg's filters and pixel format. With the
# earlier version the row is timed if `old` is not empty: its options.
row() {
  local name=$1 clip=$2 size=$3 suffix=$4 options=$5 filter=$6 pixels=$7
  local in=$work/$clip to=$suffix read='' read_pipe write
  [[ $name =~ $wanted ]] || return 0
  if [[ $clip == *.nv12 ]]; then
    read="--from nv12 --size $size"
    read_pipe="-f rawvideo -pix_fmt nv12 -s $size"
  else
    read_pipe="-f yuv4mpegpipe"
  fi
  write="-f rawvideo"
  if [ "$suffix" = y4m ]; then write="-f yuv4mpegpipe"; fi
  local ours="convert IN OUT $read --to $to $options --quiet"
  local theirs="ffmpeg -v error -nostdin -y $read_pipe -i IN ${filter:+-vf $filter} -pix_fmt $pixels $write OUT"
  local ways=("$in" "$work/out.$to" "$in" /dev/null - -) i
  for i in 0 2 4; do
    local from=${ways[i]} out=${ways[i + 1]} way=file lead='' tail=''
    if [ "$i" -eq 2 ]; then way=/dev/null; fi
    if [ "$i" -eq 4 ]; then way=pipes lead="cat $in | " tail=" | cat >/dev/null"; fi
    local commands=("$lead$tool $ours$tail" "$lead$theirs$tail")
    if [ -n "$before" ] && [ -n "${old:-}" ]; then
      commands+=("$lead$before $old --quiet$tail")
    fi
    commands=("${commands[@]//IN/$from}")
    commands=("${commands[@]//OUT/$out}")
    if [ "$i" -eq 0 ]; then check_sizes "$name" "$out" "${commands[@]}"; fi
    timed "$name" "$way" "${commands[@]}"
  done
}

{
  provenance
  echo "# processor: $(processor_name), $(nproc) at a time"
  echo "# ffmpeg: $(ffmpeg -version | sed -n '1s/ffmpeg version \([^ ]*\).*/\1/p')"
  echo "row,way,us,ffmpeg us,before us"
} >"$results"
printf '%-28s %-10s %8s %8s %6s' "Row" "to" "ms" "ffmpeg" "ratio"
if [ -n "$before" ]; then printf ' %8s %6s' "before" "ratio"; fi
echo

clip hd 1920x1080 5 20
old="convert IN OUT --from nv12 --size 1920x1080 --to rgba" \
  row "1080p nv12 to rgba" hd.nv12 1920x1080 rgba "" "" rgba
old="convert IN OUT --from nv12 --size 1920x1080 --to yuv420p" \
  row "1080p nv12 to yuv420p" hd.nv12 1920x1080 yuv420p "" "" yuv420p
old="convert IN OUT --to y4m --resize 640x360" \
  row "1080p y4m to 640x360" hd.y4m 1920x1080 y4m "--resize 640x360" \
  scale=640:360:flags=bilinear yuv420p
old="convert IN OUT --to y4m --resize 1280x720 --filter cubic" \
  row "1080p y4m to 720p cubic" hd.y4m 1920x1080 y4m \
  "--resize 1280x720 --filter cubic" scale=1280:720:flags=bicubic yuv420p
old="rotate IN OUT --to y4m --angle 90" \
  row "1080p y4m turned by 90" hd.y4m 1920x1080 y4m "--rotate 90" transpose=1 yuv420p
rm "$work"/hd.*
clip uhd 3840x2160 2 20
old="convert IN OUT --to y4m --resize 1920x1080" \
  row "2160p y4m to 1080p" uhd.y4m 3840x2160 y4m "--resize 1920x1080" \
  scale=1920:1080:flags=bilinear yuv420p
old="convert IN OUT --from nv12 --size 3840x2160 --to rgb24 --resize 1280x720" \
  row "2160p nv12 to rgb24 720p" uhd.nv12 3840x2160 rgb24 "--resize 1280x720" \
  scale=1280:720:flags=bilinear rgb24

if $store; then
  mkdir -p bench/results
  cp "$results" "bench/results/$(processor_kind)-tool.csv"
fi
