#!/usr/bin/env bash
# Uses the installed library as other programs do.
#   install_test.sh tree BUILD [CONFIG]      from an installed tree, before and after
#                                            the tree was moved
#   install_test.sh packages BUILD [DEB...]  from unpacked Debian packages, by default
#                                            made from BUILD
# CC, CXX, CFLAGS and CXXFLAGS apply to the programs. Ends with 77 where tools are missing.
set -Eeuo pipefail
program=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)/c_program.c
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

# uses PROGRAM LIBRARY: the program runs with this shared library, or with none if empty.
uses() {
  local found
  "$1" || fail "$1 fails"
  found=$({ ldd "$1" 2>&1 || true; } |
    sed -n 's/.*libzelm_imageutil[^ ]* => \([^ ]*\) .*/\1/p')
  [ -n "$found" ] && found=$(realpath "$found")
  [ "$found" = "$2" ] || fail "$1 runs with '$found' instead of '$2'"
}

through_cmake() {
  local tree=$1 library=$2 language
  for language in C CXX; do
    cmake -S "$(dirname "$program")/consumer" -B "$work/$language" \
      -DLANGUAGE=$language -DSOURCE="$program" -DTREE="$tree" \
      -DCMAKE_PREFIX_PATH="$tree" >"$work/log" || { cat "$work/log"; fail cmake; }
    cmake --build "$work/$language" >"$work/log" || { cat "$work/log"; fail build; }
    uses "$work/$language/shared" "$library"
    uses "$work/$language/static" ""
    rm -rf "${work:?}/$language"
  done
}

through_pkg_config() {
  local tree=$1 library=$2 shared static
  PKG_CONFIG_LIBDIR=$(dirname "$(find "$tree" -name zelm_imageutil.pc)")
  export PKG_CONFIG_LIBDIR LD_LIBRARY_PATH
  LD_LIBRARY_PATH=$(dirname "$library")
  pkg-config --exact-version="$(pkg-config --modversion zelm_imageutil)" zelm_imageutil
  shared=$(pkg-config --cflags --libs zelm_imageutil)
  static=$(pkg-config --static --cflags --libs zelm_imageutil)
  # shellcheck disable=SC2086  # lists of words
  {
    $CC ${CFLAGS:-} "$program" $shared -o "$work/program"
    uses "$work/program" "$library"
    $CXX ${CXXFLAGS:-} -x c++ "$program" -x none $shared -o "$work/program"
    uses "$work/program" "$library"
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
  local tree=$1 library
  library=$(find "$tree" -name 'libzelm_imageutil.so.*' -type f)
  [ -f "$library" ] || fail "no shared library in $tree"
  through_cmake "$tree" "$library"
  through_pkg_config "$tree" "$library"
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
  [[ $(depends libzelm-imageutil1) =~ ^libc6\ \([^,]*\)$ ]] ||
    fail "the library needs more than the C library: $(depends libzelm-imageutil1)"
  [[ $(depends libzelm-imageutil-dev) == "libzelm-imageutil1 (= "* ]] ||
    fail "the development files do not need the library of their version"
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
