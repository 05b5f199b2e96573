#!/usr/bin/env bash
# Builds the program, makes pictures with it and shows what was made. Installs missing
# packages as root; ffmpeg is only needed for the part with a real video.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh

out=demo-output
tool=build/tools/zelm-imageutil
rows=()

# row WHAT FILE [REMARK]: a line of the table at the end.
row() {
  rows+=("$(printf '%-34s  %-30s  %s' "$1" "$2" "${3:-}")")
}

require_all() {
  # shellcheck disable=SC2086  # a list of words
  if [ "$(id -u)" -eq 0 ]; then
    require_packages $demo_packages || require_packages $build_packages
  else
    require_packages $build_packages
  fi
}

# The program, and the libraries as well: what `cmake --install build` installs.
build() {
  cmake -S . -B build -DCMAKE_BUILD_TYPE=Release -DZELM_BUILD_TOOL=ON >/dev/null
  cmake --build build -j "$(nproc)" --target zelm-imageutil zelm_imageutil \
    zelm_imageutil_static zelm_frames zelm_frames_static
}

# Full range and BT.601, which the program assumes of raw frames; --quiet, so that it does
# not say so each time.
camera_frames() {
  "$tool" testcard $out/testcard.png --size 1280x720
  "$tool" testcard $out/camera.nv21 --size 1280x720 --frames 50
  row "test card" $out/testcard.png "1280x720"
  row "camera frames, made in code" $out/camera.nv21 "50 frames nv21, 1280x720"
}

preview() {
  "$tool" convert $out/camera.nv21 $out/preview.rgb565 --size 1280x720 \
    --resize 640x360 --quiet
  "$tool" convert $out/camera.nv21 $out/preview.png --size 1280x720 --resize 640x360 \
    --skip 20 --quiet
  row "preview for a display" $out/preview.rgb565 "50 frames rgb565, 640x360"
  row "one of its frames" $out/preview.png "640x360"
}

thumbnail() {
  "$tool" convert $out/camera.nv21 $out/thumbnail.png --size 1280x720 --skip 20 \
    --crop 280,0,720x720 --resize 144x144 --canvas 160x160 --at 8,8 --filter cubic \
    --quiet
  row "thumbnail of a square region" $out/thumbnail.png "144x144 in 160x160"
}

# The whole picture in a square, with bars above and below.
square() {
  "$tool" convert $out/camera.nv21 $out/square.png --size 1280x720 --skip 20 \
    --resize fit:480x480 --canvas 480x480 --quiet
  row "the whole frame in a square" $out/square.png "480x270 in 480x480"
}

turns() {
  "$tool" rotate $out/camera.nv21 $out/upright.png --size 1280x720 --angle 90 --quiet
  "$tool" convert $out/camera.nv21 $out/mirrored.png --size 1280x720 --resize 360x640 \
    --rotate 90 --mirror --quiet
  row "a quarter turn clockwise" $out/upright.png "720x1280"
  row "the same mirrored, and smaller" $out/mirrored.png "360x640"
}

tiled_round_trip() {
  "$tool" convert $out/camera.nv21 $out/camera.tiled --size 1280x720 --frames 5
  "$tool" convert $out/camera.tiled $out/again.nv21 --size 1280x720
  row "nv21 to tiles" $out/camera.tiled "5 frames"
  "$tool" compare $out/again.nv21 $out/camera.nv21 --size 1280x720 --frames 5 >/dev/null
  row "and back" $out/again.nv21 "compare says: equal"
}

# A clip as ffmpeg and cameras make them: limited range, BT.709, and tagged as such.
encode() {
  "$tool" testcard $out/original.y4m --size 1280x720 --frames 50
  ffmpeg -v error -y -i $out/original.y4m -c:v mpeg4 -q:v 3 -colorspace bt709 \
    -color_primaries bt709 -color_trc bt709 -color_range tv $out/video.mp4
}

# Prints some of what `info` says of a file, in one line.
described() {
  "$tool" info "$1" | sed -n 's/ (.*//; s/^frames *\(.*\)/\1 frames/p
    s/^\(format\|size\|range\|matrix\)  *//p' | paste -sd' '
}

# Prints the peak signal-to-noise ratio of each channel, in one line.
quality() {
  "$tool" compare "$@" | sed -n 's/  \(.* dB\),.*/ \1/p' | paste -sd' '
}

video() {
  if ! command -v ffmpeg >/dev/null; then
    row "real video" "-" "left out: ffmpeg is not installed"
    return
  fi
  encode
  ffmpeg -v error -y -i $out/video.mp4 $out/video.y4m
  "$tool" convert $out/video.y4m $out/video-small.y4m --resize 640x
  "$tool" convert $out/video.y4m $out/video.png --frames 20:1 --resize 640x
  "$tool" convert $out/original.y4m $out/original.png --frames 20:1 --resize 640x
  row "video, encoded by ffmpeg" $out/video.mp4 "50 frames, MPEG-4"
  row "decoded by ffmpeg" $out/video.y4m "$(described $out/video.y4m)"
  row "scaled" $out/video-small.y4m "$(described $out/video-small.y4m)"
  row "one of its frames" $out/video.png "640x360"
  row "the same, before the encoder" $out/original.png \
    "$(quality $out/video.png $out/original.png)"
}

require_all
build
mkdir -p $out
camera_frames
preview
thumbnail
square
turns
tiled_round_trip
video

printf '\n%-34s  %-30s  %s\n' "What was made" "File" ""
printf '%s\n' "${rows[@]}"
printf '\nThe pictures are in %s. For a look at a raw file, for example:\n' "$PWD/$out"
printf '  ffplay -f rawvideo -pix_fmt rgb565le -video_size 640x360 %s/preview.rgb565\n' $out
