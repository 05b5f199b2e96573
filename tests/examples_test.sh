#!/usr/bin/env bash
# Runs the examples and compares what they write with the pictures of zelm-imageutil.
#   examples_test.sh BUILD FOLDER
# BUILD is where the tests are built, FOLDER an empty place for pictures.
set -Eeuo pipefail
trap 'echo "examples_test: failed in line $LINENO" >&2' ERR
build=$(cd "$1" && pwd)
export PATH="$build/../tools:$build:$PATH"
rm -rf "$2"
mkdir -p "$2"
cd "$2"

# same NAME: NAME.ours and NAME.theirs have the same bytes.
same() {
  cmp "$1.ours" "$1.theirs"
  echo "$1: the same bytes"
}

# alike NAME DECIBELS
alike() {
  echo -n "$1: "
  example_frames compare "$1.ours" "$1.theirs" "$2"
}

zelm-imageutil testcard card.nv21 --size 1280x720
preview <card.nv21 >preview.ours
zelm-imageutil convert card.nv21 preview.theirs --to ppm --size 1280x720 --resize 640x360
same preview

# The sensor of a front camera sees the card lying on its side.
zelm-imageutil testcard upright.nv12 --size 720x1280
zelm-imageutil rotate upright.nv12 sensor.nv12 --size 720x1280 --angle 270
camera_preview <sensor.nv12 >camera_preview.ours
example_frames mirror 720 <upright.nv12 >mirrored.nv12
zelm-imageutil convert mirrored.nv12 camera_preview.theirs --to ppm --size 720x1280
same camera_preview

# Video of limited range, made of the card: its picture is nearly that of the card.
zelm-imageutil testcard card.nv12 --size 1280x720
example_frames video 1280 <card.nv12 >video.nv12
zelm-imageutil convert video.nv12 video.yuv --size 1280x720
decoded_frame <video.yuv >decoded_frame.ours
zelm-imageutil convert card.nv12 decoded_frame.theirs --to ppm --size 1280x720 \
  --resize 640x360
alike decoded_frame 40

zelm-imageutil testcard large.nv12 --size 3840x2160
example_frames video 3840 <large.nv12 >large-video.nv12
zelm-imageutil convert large.nv12 large.rgba --size 3840x2160
for example in all_cores all_cores_openmp; do
  [ -x "$build/$example" ] || continue
  "$example" <large-video.nv12 >$example.ours
  ln -s large.rgba $example.theirs
  alike $example 40
done
rm -f ./*
