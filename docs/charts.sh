#!/usr/bin/env bash
# Makes the charts of the README and of docs/performance.md from measured values.
#   docs/charts.sh [FOLDER]    a folder with the files that scripts/bench.sh writes
# Installs missing packages as root.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
require_packages $chart_packages

folder=${1:-bench/results}
kind=avx2  # what most processors have
work=$(mktemp -d)
trap 'rm -r "$work"' EXIT

# draw OUTPUT TITLE AXIS FIRST SERIES...: a chart of what stands on the standard input,
# lines of a label and a value for each series, separated by tabulators. FIRST is bars or
# points: how the first series is drawn.
draw() {
  local output=$1 title=$2
  cat >"$work/data"
  gnuplot -e "data='$work/data'; output='$output'; chart_title='$title'; axis='$3'" \
    -e "first='$4'; series='$(printf '%s|' "${@:5}")'" docs/chart.gp
  # Programs that show the chart to people who do not see read its title.
  sed -i "s|<title>[^<]*</title>|<title>$title</title>|" "$output"
}

# by_size FILE SIZE...: stages whose rows have these sizes, with the ratio to the
# fastest peer at each.
by_size() {
  local file=$1
  shift
  awk -F , -v sizes="$(printf '%s|' "$@")" '
    /^#/ { next }
    $1 == "stage" { for (i = 1; i <= NF; ++i) column[$i] = i; next }
    BEGIN { n = split(sizes, size, "|") - 1 }
    $3 == "pipelines" { next }
    {
      for (i = 1; i <= n; ++i) if ($2 == size[i]) {
        if (!($1 in seen)) { seen[$1]; stage[++stages] = $1 }
        ratio[$1, i] = $column["ratio"]
      }
    }
    END {
      for (s = 1; s <= stages; ++s) {
        printf "%s", stage[s]
        for (i = 1; i <= n; ++i)
          printf "\t%s", ratio[stage[s], i] == "" ? "NaN" : ratio[stage[s], i]
        print ""
      }
    }' "$file"
}

# gains FILE: the family, then the geometric means of the gain of each set over plain code.
gains() {
  awk -F , '
    /^#/ || $1 == "stage" { next }
    {
      if (!($3 in count)) family[++families] = $3
      ++count[$3]
      for (i = 5; i <= 8; ++i) sum[$3, i] += log($4 / $i)
    }
    END {
      for (f = 1; f <= families; ++f) {
        printf "%s", family[f]
        for (i = 5; i <= 8; ++i) printf "\t%s", exp(sum[family[f], i] / count[family[f]])
        print ""
      }
    }' "$1"
}

peers=$folder/$kind.csv
awk -f bench/families.awk "$peers" | grep -v "^all" | draw docs/speed.svg \
  "Speed beside other libraries, geometric means of each family" \
  "times as fast as the peer" bars \
  "fastest peer of each row" libyuv OpenCV swscale zimg
by_size "$peers" 640x480 1920x1080 3840x2160 | draw docs/speed-by-size.svg \
  "Speed beside the fastest peer, by the size of the frame" \
  "times as fast as the peer" points \
  640x480 1920x1080 3840x2160
scalings=("1920x1080 to 1280x720" "1920x1080 to 1000x562" "1920x1080 to 640x360"
  "3840x2160 to 1920x1080" "1280x720 to 1920x1080" "640x480 to 1920x1440")
by_size "$peers" "${scalings[@]}" | draw docs/speed-of-scaling.svg \
  "Speed of scaling beside the fastest peer" "times as fast as the peer" points "${scalings[@]}"
gains "$folder/avx512-vbmi-instruction-sets.csv" | draw docs/instruction-sets.svg \
  "What each instruction set gains over plain code" "times as fast as plain code" points SSE4 AVX2 AVX-512 \
  "AVX-512 with VBMI"
