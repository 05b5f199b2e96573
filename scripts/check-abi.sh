#!/usr/bin/env bash
# Compares the libraries' binary interfaces with the stored descriptions of them.
#   scripts/check-abi.sh [--store] [LIBRARY...]
#   --store   write the descriptions anew: for a change that is meant
#   LIBRARY   a shared library built with -g, default: both are built in build-abi
# Any difference is a failure. In libzelm_imageutil it breaks a promise unless it is an
# addition; in libzelm_frames, before 1.0, only the description has to be stored again.
# Installs missing packages as root.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh

opaque='--suppressions cmake/opaque_types.abignore'
libraries=()
store=false
for argument in "$@"; do
  case $argument in
    --store) store=true ;;
    -*)
      sed -n '3,5s/^# *//p' scripts/check-abi.sh >&2
      exit 2
      ;;
    *) libraries+=("$argument") ;;
  esac
done

if [ "$(uname -m)" != x86_64 ]; then
  echo "skipped: the description is that of x86-64"
  exit 0
fi
# shellcheck disable=SC2086  # a list of words
require_packages $abi_packages
if [ ${#libraries[@]} -eq 0 ]; then
  cmake -S . -B build-abi -DCMAKE_BUILD_TYPE=RelWithDebInfo -DZELM_BUILD_TESTS=OFF \
    -DZELM_BUILD_TOOL=OFF >/dev/null
  cmake --build build-abi -j "$(nproc)" --target zelm_imageutil zelm_frames
  libraries=(build-abi/src/libzelm_imageutil.so build-abi/frames/libzelm_frames.so)
fi

# advice DESCRIPTION: what a difference means.
advice() {
  case $1 in
    cmake/zelm_frames.abi)
      echo "Before 1.0 it may, with another minor version: scripts/check-abi.sh --store" \
        "describes the new one."
      ;;
    *)
      echo "Programs that were linked with 1.x rely on it. If all that is in it stayed as" \
        "it was, scripts/check-abi.sh --store describes the new one."
      ;;
  esac
}

# check LIBRARY
check() {
  local library=$1 description
  description=cmake/$(basename "$library" | sed 's/^lib//; s/\.so.*//').abi
  if ! readelf -SW "$library" | grep -q '\.debug_info'; then
    echo "$library was built without -g: there is nothing to compare" >&2
    return 1
  fi
  # Types are not sorted into public and private ones: abidiff would take uint32_t, which
  # the header does not define itself, for private, and pass over a field of another type.
  # shellcheck disable=SC2086  # two words
  if $store; then
    abidw --exported-interfaces-only --no-comp-dir-path --no-corpus-path --short-locs \
      --type-id-style hash $opaque --out-file "$description" "$library" &&
      echo "written: $description"
  elif abidiff --harmless $opaque "$description" "$library"; then
    echo "the binary interface is that of $description"
  else
    echo "The binary interface differs from $description; see above." >&2
    advice "$description" >&2
    return 1
  fi
}

code=0
for library in "${libraries[@]}"; do check "$library" || code=1; done
exit $code
