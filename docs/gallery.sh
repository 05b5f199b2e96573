#!/usr/bin/env bash
# Makes the pictures of docs/gallery.md with the program.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

tool="build/tools/zelm-imageutil"
out=docs/gallery
work=$(mktemp -d)
trap 'rm -r "$work"' EXIT
mkdir -p "$out"

# part HEIGHT FILE OPTION...: the next part of a strip from the left, behind a white gap.
# Parts are laid on their side, so that they can be joined row by row.
parts=()
length=0
part() {
  local height=$1 ppm=$work/part.ppm side=$work/side${#parts[@]}.rgb24 gap=8
  "$tool" convert "$work/$2" "$ppm" "${@:3}" --quiet
  [ ${#parts[@]} -gt 0 ] || gap=0
  head -c $((3 * gap * height)) /dev/zero | tr '\0' '\377' >"$side"
  "$tool" convert "$ppm" - --to rgb24 --rotate 90 >>"$side"
  parts+=("$side")
  length=$(($(cat "${parts[@]}" | wc -c) / 3 / height))
}

# strip NAME HEIGHT: joins the parts.
strip() {
  cat "${parts[@]}" | "$tool" convert - "$out/$1.png" --from rgb24 \
    --size "$2x$length" --rotate 270
  parts=()
}

"$tool" testcard "$work/card.nv12" --size 1280x720
"$tool" testcard "$work/clip.y4m" --size 1280x720
card=(card.nv12 --size 1280x720)

# A detail that is enlarged.
for filter in nearest linear cubic; do
  part 160 "${card[@]}" --crop 198,262,40x40 --resize 160x160 --filter $filter
done
strip enlarged 160

# Fine rings that are reduced, and the result enlarged sample by sample to be seen. Of an
# odd size nothing is averaged first.
small() {
  "$tool" convert "$work/card.nv12" "$work/small.ppm" --size 1280x720 "$@" \
    --resize 60x60 --quiet
  part 180 small.ppm --resize 180x180 --filter nearest
}
small --crop 942,168,241x241 --filter nearest
small --crop 942,168,241x241
small --crop 942,168,240x240
small --crop 942,168,240x240 --filter cubic
strip reduced 180

# A clip of limited range and BT.709 with its own colour, and with others.
for colour in "" "--range full" "--matrix bt601" "--range full --matrix bt601"; do
  # shellcheck disable=SC2086  # a list of options
  part 126 clip.y4m --resize 224x126 $colour
done
strip colours 126

for mirror in "" --mirror; do
  for turn in 0 90 180 270; do
    # shellcheck disable=SC2086  # an option or none
    part 96 "${card[@]}" --crop 320,0,640x640 --rotate $turn $mirror --resize 96x96
  done
done
strip turns 96

# The luma of a tiled frame, as if its bytes were rows.
"$tool" convert "$work/card.nv12" "$work/card.tiled" --size 1280x720 --resize 320x192 \
  --quiet
head -c $((320 * 192)) "$work/card.tiled" >"$work/tiles.gray"
"$tool" convert "$work/card.tiled" "$work/rows.gray" --size 320x192 --quiet
part 192 rows.gray --size 320x192
part 192 tiles.gray --size 320x192
strip tiles 192

part 160 "${card[@]}" --resize fit:160x160 --canvas 160x160
part 160 "${card[@]}" --rotate 90 --resize fit:284x160 --canvas 284x160
part 160 "${card[@]}" --crop 280,0,720x720 --resize 144x144 --canvas 160x160 --at 8,8
strip bars 160
ls -l "$out"
