#!/usr/bin/env bash
# Makes the pictures of docs/gallery.md with the program.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

tool=$(realpath "${TOOL:-build/tools/zelm-imageutil}")
out=$PWD/docs/gallery
work=$(mktemp -d)
trap 'rm -r "$work"' EXIT
# shellcheck source=docs/join.sh
. docs/join.sh
mkdir -p "$out"
cd "$work"

convert() {
  "$tool" convert "$@" --quiet
}

enlarged() {
  local filter
  for filter in nearest linear cubic; do
    convert card.png $filter.png --crop 240,260,32x20 --resize 160x --filter $filter
  done
  beside "$out/enlarged.png" nearest.png linear.png cubic.png
}

# An odd size is not averaged first. The results are enlarged for the eye, sample by
# sample.
reduced() {
  local filter name
  for filter in nearest linear cubic; do
    convert card.png odd-$filter.png --crop 943,169,239x239 --resize 48x48 --filter $filter
  done
  convert card.png box.png --crop 942,168,240x240 --resize 48x48
  for name in odd-nearest odd-linear odd-cubic box; do
    convert $name.png large-$name.png --resize 192x192 --filter nearest
  done
  beside "$out/reduced.png" large-odd-nearest.png large-odd-linear.png \
    large-odd-cubic.png large-box.png
}

colours() {
  convert clip.y4m right.png --crop 0,440,1280x280 --resize 420x
  convert clip.y4m matrix.png --crop 0,440,1280x280 --resize 420x --matrix bt601
  convert clip.y4m range.png --crop 0,440,1280x280 --resize 420x --range full
  below "$out/colours.png" right.png matrix.png range.png
}

turns() {
  local angle
  for angle in 0 90 180 270; do
    convert card.png turned-$angle.png --crop 280,0,720x720 --resize 84x84 --rotate $angle
    convert card.png mirrored-$angle.png --crop 280,0,720x720 --resize 84x84 \
      --rotate $angle --mirror
  done
  beside turned.png turned-{0,90,180,270}.png
  beside mirrored.png mirrored-{0,90,180,270}.png
  below "$out/turns.png" turned.png mirrored.png
}

# The luma tiles are read as if they were rows of gray.
tiles() {
  convert card.png small.png --resize 256x144 --filter cubic
  convert small.png small.tiled
  head -c $((256 * 144)) small.tiled >bytes.gray
  convert bytes.gray bytes.png --size 256x144
  convert small.png gray.pgm
  beside tiles.png gray.pgm bytes.png
  convert tiles.png "$out/tiles.png" --resize 200% --filter nearest
}

fit() {
  convert card.png wide.png --resize fit:140x140 --canvas 140x140
  convert card.png high.png --rotate 90 --resize fit:140x140 --canvas 140x140
  convert card.png stretched.png --resize 140x140
  convert card.png cut.png --crop 280,0,720x720 --resize 140x140
  beside "$out/fit.png" wide.png high.png stretched.png cut.png
}

"$tool" testcard card.png --size 1280x720
"$tool" testcard clip.y4m --size 1280x720
enlarged
reduced
colours
turns
tiles
fit
