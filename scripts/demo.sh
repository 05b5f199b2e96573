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

camera_frames() {
  "$tool" testcard $out/testcard.png --size 1280x720
  "$tool" testcard $out/camera.nv21 --size 1280x720 --frames 50
  row "test card" $out/testcard.png "1280x720"
  row "camera frames, made in code" $out/camera.nv21 "50 frames nv21, 1280x720"
}

preview() {
  "$tool" convert $out/camera.nv21 $out/preview.rgb565 --size 1280x720 --resize 640x360 \
    --quiet
  "$tool" convert $out/camera.nv21 $out/preview.png --size 1280x720 --resize 640x360 \
    --skip 20 --quiet
  row "preview for a display" $out/preview.rgb565 "50 frames rgb565, 640x360"
  row "one of its frames" $out/preview.png "640x360"
}

thumbnail() {
  "$tool" convert $out/camera.nv21 $out/thumbnail.png --size 1280x720 --skip 20 \
    --crop 280,0,720x720 --resize 144x144 --canvas 160x160 --at 8,8 --filter cubic --quiet
  row "thumbnail of a square region" $out/thumbnail.png "144x144 in 160x160"
}

rotation() {
  "$tool" rotate $out/camera.nv21 $out/upright.png --size 1280x720 --angle 90 --quiet
  "$tool" convert $out/testcard.png $out/story.png --rotate 90 --mirror \
    --resize fit:540x640 --canvas 540x640
  row "a quarter turn clockwise" $out/upright.png "720x1280"
  row "turned, mirrored, between bars" $out/story.png "540x640"
}

tiled_round_trip() {
  "$tool" convert $out/camera.nv21 $out/camera.tiled --size 1280x720 --frames 5
  "$tool" convert $out/camera.tiled $out/again.nv21 --size 1280x720
  cmp -n "$(stat -c %s $out/again.nv21)" $out/again.nv21 $out/camera.nv21
  [ "$(stat -c %s $out/again.nv21)" -eq $((5 * 1280 * 720 * 3 / 2)) ]
  row "nv21 to tiles and back" $out/camera.tiled "5 frames, the same bytes again"
}

# A clip as most are: limited range, BT.709. No word about colours is needed on the way.
video() {
  if ! command -v ffmpeg >/dev/null; then
    row "real video" "-" "left out: ffmpeg is not installed"
    return
  fi
  "$tool" testcard - --size 1280x720 --frames 50 --to y4m |
    ffmpeg -v error -y -i - -c:v mpeg4 -q:v 3 -color_range tv -colorspace bt709 \
      -color_primaries bt709 -color_trc bt709 $out/video.mp4
  ffmpeg -v error -i $out/video.mp4 -pix_fmt yuv420p -f yuv4mpegpipe - |
    "$tool" convert - $out/video-small.y4m --resize 640x
  "$tool" convert $out/video-small.y4m $out/video.png --quiet
  "$tool" convert $out/testcard.png $out/video-wanted.png --resize 640x
  row "video, encoded by ffmpeg" $out/video.mp4 "50 frames, MPEG-4"
  row "decoded, scaled through a pipe" $out/video-small.y4m \
    "$("$tool" info $out/video-small.y4m | awk '{ value[$1] = $2 } END {
      print value["frames"], "frames", value["format"] ", " value["size"] ", " \
        value["range"] " range, " value["matrix"] }')"
  row "one of its frames" $out/video.png "640x360"
  row "how far it is from the test card" $out/video-wanted.png \
    "$("$tool" compare $out/video.png $out/video-wanted.png | awk '/dB/ {
      printf "%s%s %s", separator, $1, $2; separator = ", " } END { print " dB" }')"
}

require_all
build
mkdir -p $out
camera_frames
preview
thumbnail
rotation
tiled_round_trip
video

printf '\n%-34s  %-30s  %s\n' "What was made" "File" ""
printf '%s\n' "${rows[@]}"
printf '\nThe pictures are in %s. For a look at a raw file, for example:\n' "$PWD/$out"
printf '  ffplay -f rawvideo -pix_fmt rgb565le -video_size 640x360 %s/preview.rgb565\n' $out
