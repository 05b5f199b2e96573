#!/usr/bin/env bash
# Uses the installed libraries as other programs do.
#   install_test.sh tree BUILD [CONFIG]      from an installed tree, before and after
#                                            the tree was moved
#   install_test.sh packages BUILD [DEB...]  from unpacked Debian packages, by default
#                                            made from BUILD
# CC, CXX, CFLAGS and CXXFLAGS apply to the programs. Ends with 77 where tools are missing.
set -Eeuo pipefail
tests=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# Of each library: a program, a version to ask for, and one that is not offered.
declare -A programs=([zelm_imageutil]=c_program.c [zelm_frames]=c_frames_program.c)
declare -A version=([zelm_imageutil]=1.0 [zelm_frames]=0.1)
declare -A not_offered=([zelm_imageutil]=2.0 [zelm_frames]=0.2)
mode=$1 build=$(cd "$2" && pwd)
CC=${CC:-cc} CXX=${CXX:-c++}
export CC CXX
work=$(mktemp -d "$build/install-XXXXXX")
trap 'rm -rf "$work"' EXIT
trap 'echo "install_test: failed in line $LINENO" >&2' ERR

fail() {
  echo "install_test: $*" >&2
  exit 1
}

need() {
  local command
  for command in "$@"; do
    command -v "$command" >/dev/null || { echo "skipped: no $command here"; exit 77; }
  done
}

# uses PROGRAM FILE: the program runs with this shared library of ours and with no other,
# or with none if empty.
uses() {
  local found
  "$1" || fail "$1 fails"
  found=$({ ldd "$1" 2>&1 || true; } |
    sed -n 's/.*libzelm_[^ ]* => \([^ ]*\) .*/\1/p')
  [ -n "$found" ] && found=$(realpath "$found")
  [ "$found" = "$2" ] || fail "$1 runs with '$found' instead of '$2'"
}

# through_cmake TREE LIBRARY FILE
through_cmake() {
  local tree=$1 library=$2 file=$3 language
  for language in C CXX; do
    cmake -S "$tests/consumer" -B "$work/$language" -DLANGUAGE=$language \
      -DLIBRARY="$library" -DVERSION="${version[$library]}" \
      -DNOT_OFFERED="${not_offered[$library]}" -DSOURCE="$tests/${programs[$library]}" \
      -DTREE="$tree" -DCMAKE_PREFIX_PATH="$tree" >"$work/log" ||
      { cat "$work/log"; fail cmake; }
    cmake --build "$work/$language" >"$work/log" || { cat "$work/log"; fail build; }
    uses "$work/$language/shared" "$file"
    uses "$work/$language/static" ""
    rm -rf "${work:?}/$language"
  done
}

# through_pkg_config TREE LIBRARY FILE
through_pkg_config() {
  local tree=$1 library=$2 file=$3 program=$tests/${programs[$2]} shared static
  PKG_CONFIG_LIBDIR=$(dirname "$(find "$tree" -name "$library.pc")")
  export PKG_CONFIG_LIBDIR LD_LIBRARY_PATH
  LD_LIBRARY_PATH=$(dirname "$file")
  pkg-config --atleast-version="${version[$library]}" "$library"
  shared=$(pkg-config --cflags --libs "$library")
  static=$(pkg-config --static --cflags --libs "$library")
  # shellcheck disable=SC2086  # lists of words
  {
    $CC ${CFLAGS:-} "$program" $shared -o "$work/program"
    uses "$work/program" "$file"
    $CXX ${CXXFLAGS:-} -x c++ "$program" -x none $shared -o "$work/program"
    uses "$work/program" "$file"
    $CC ${CFLAGS:-} -static "$program" $static -o "$work/program"
    uses "$work/program" ""
    $CXX ${CXXFLAGS:-} -static -x c++ "$program" -x none $static -o "$work/program"
    uses "$work/program" ""
  }
  unset LD_LIBRARY_PATH
}

# The program makes a frame and has its manual page, and bash completes its commands.
try_tool() {
  local tree=$1 bytes
  bytes=$("$tree/bin/zelm-imageutil" testcard - --size 64x48 --to nv21 | wc -c)
  [ "$bytes" -eq $((64 * 48 * 3 / 2)) ] || fail "the program wrote $bytes bytes"
  zcat -f "$tree"/share/man/man1/zelm-imageutil.1* | grep -q '^\.TH ZELM' ||
    fail "no manual page"
  (
    # shellcheck disable=SC1091  # checked by itself
    . "$tree/share/bash-completion/completions/zelm-imageutil"
    COMP_WORDS=(zelm-imageutil convert card.nv21 --fil) COMP_CWORD=3
    _zelm_imageutil
    [ "${COMPREPLY[*]}" = --filter ] || fail "completed to '${COMPREPLY[*]}'"
  )
}

try_tree() {
  local tree=$1 library file
  for library in "${!programs[@]}"; do
    file=$(find "$tree" -name "lib$library.so.*" -type f)
    [ -f "$file" ] || fail "no shared lib$library in $tree"
    through_cmake "$tree" "$library" "$file"
    through_pkg_config "$tree" "$library" "$file"
  done
  [ ! -e "$build/tools/zelm-imageutil" ] || try_tool "$tree"
  echo "linked and ran from $tree"
}

make_packages() {
  need dpkg-shlibdeps file
  cpack -G DEB --config "$build/CPackConfig.cmake" -B "$work/deb" >"$work/log" 2>&1 ||
    { cat "$work/log"; fail cpack; }
  packages=("$work"/deb/*.deb)
}

depends() {
  dpkg-deb --field "$work/$1" Depends
}

try_packages() {
  local package twice
  for package in "${packages[@]}"; do
    dpkg-deb -x "$package" "$work/root"
    dpkg-deb -c "$package" | grep -v '^d' | sed 's/.* \.\//\.\//' >>"$work/files"
    ln -s "$(realpath "$package")" "$work/$(dpkg-deb --field "$package" Package)"
  done
  twice=$(sort "$work/files" | uniq -d)
  [ -z "$twice" ] || fail "in two packages: $twice"
  for package in libzelm-imageutil1 libzelm-frames0; do
    [[ $(depends $package) =~ ^libc6\ \([^,]*\)$ ]] ||
      fail "$package needs more than the C library: $(depends $package)"
  done
  [[ $(depends libzelm-imageutil-dev) == "libzelm-imageutil1 (= "* ]] ||
    fail "the development files do not need the library of their version"
  [[ $(depends libzelm-frames-dev) =~ ^libzelm-frames0\ \(=.*libzelm-imageutil-dev\ \(= ]] ||
    fail "libzelm-frames-dev does not need what its libraries are linked with"
  try_tree "$work/root/usr"
}

need pkg-config ldd
case $mode in
  tree)
    cmake --install "$build" --prefix "$work/tree" ${3:+--config "$3"} >/dev/null
    try_tree "$work/tree"
    mkdir "$work/elsewhere"
    mv "$work/tree" "$work/elsewhere/moved"
    try_tree "$work/elsewhere/moved"
    ;;
  packages)
    need dpkg-deb
    packages=("${@:3}")
    [ ${#packages[@]} -gt 0 ] || make_packages
    try_packages
    ;;
esac
