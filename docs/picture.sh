#!/usr/bin/env bash
# Makes docs/picture.png with the program: a frame scaled, turned and cut out.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

tool=${TOOL:-build/tools/zelm-imageutil}
work=$(mktemp -d)
trap 'rm -r "$work"' EXIT
# shellcheck source=docs/join.sh
. docs/join.sh

# part NAME OPTION...: a part of the picture, made of one camera frame.
part() {
  "$tool" convert "$work/card.nv21" "$work/$1.png" --size 1280x720 --filter cubic --quiet "${@:2}"
}

"$tool" testcard "$work/card.nv21" --size 1280x720
part scaled --resize x256
part turned --rotate 90 --resize x256
part enlarged --crop 550,34,180x180 --resize x256
beside docs/picture.png "$work/scaled.png" "$work/turned.png" "$work/enlarged.png"
