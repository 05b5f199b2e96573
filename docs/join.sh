# shellcheck shell=bash disable=SC2154
# Sourced by the scripts beside it: joins pictures that the program made. They set
# `tool`, the program, and `work`, a folder for what lies between.

# Prints width and height of a picture.
size_of() {
  "$tool" info "$1" | sed -n 's/^size *\([0-9]*\)x\([0-9]*\)/\1 \2/p'
}

# below OUT PICTURE...: pictures of one width from top to bottom, white between them.
below() {
  local out=$1 gap=8 total=0 picture width height
  shift
  for picture; do
    read -r width height < <(size_of "$picture")
    if [ "$total" -gt 0 ]; then
      head -c $((3 * width * gap)) /dev/zero | tr '\0' '\377'
      total=$((total + gap))
    fi
    "$tool" convert "$picture" - --to rgb24
    total=$((total + height))
  done >"$work/joined.rgb24"
  "$tool" convert "$work/joined.rgb24" "$out" --size "${width}x$total"
}

# beside OUT PICTURE...: pictures of one height from left to right. Each is laid on its
# side, so that its columns are rows.
beside() {
  local out=$1 picture sides=()
  shift
  for picture; do
    sides+=("$work/side${#sides[@]}.png")
    "$tool" rotate "$picture" "${sides[-1]}" --angle 90
  done
  below "$work/column.png" "${sides[@]}"
  "$tool" rotate "$work/column.png" "$out" --angle 270
}
