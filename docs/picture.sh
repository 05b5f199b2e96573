#!/usr/bin/env bash
# Makes docs/picture.png with the program: a frame scaled, turned and cut out.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

tool=build/tools/zelm-imageutil
work=$(mktemp -d)
trap 'rm -r "$work"' EXIT
height=256
width=0
gap=0
parts=()

# part FILE WIDTH OPTION...: the next part from the left, laid on its side so that parts
# can be joined row by row.
part() {
  local wide=$(($2 + gap)) side=$work/side${#parts[@]}.nv21
  "$tool" convert "$work/$1" "$work/part.nv21" "${@:3}" --filter cubic --quiet \
    --resize "$2x$height" --canvas "${wide}x$height" --at "$gap,0"
  "$tool" rotate "$work/part.nv21" "$side" --size "${wide}x$height" --angle 90 --quiet
  parts+=("$side")
  width=$((width + wide))
  gap=8
}

# Luma planes one below the other, then chroma planes.
join() {
  local file
  for file; do head -c $(($(stat -c %s "$file") * 2 / 3)) "$file"; done
  for file; do tail -c $(($(stat -c %s "$file") / 3)) "$file"; done
}

"$tool" testcard "$work/card.nv21" --size 1280x720
"$tool" rotate "$work/card.nv21" "$work/turned.nv21" --size 1280x720 --angle 90 --quiet
part card.nv21 456 --size 1280x720
part turned.nv21 144 --size 720x1280
part card.nv21 256 --size 1280x720 --crop 550,34,180x180
join "${parts[@]}" >"$work/all.nv21"
"$tool" rotate "$work/all.nv21" docs/picture.png --size "${height}x$width" --angle 270 --quiet
