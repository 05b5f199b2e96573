#!/usr/bin/env bash
# Compares the library's binary interface with the stored description of it.
#   scripts/check-abi.sh [--store] [LIBRARY]
#   --store   write the description anew: for a change that is meant
#   LIBRARY   a shared library built with -g, default: it is built in build-abi
# Any difference is a failure. Installs missing packages as root.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh

description=cmake/zelm_imageutil.abi
library=''
store=false
for argument in "$@"; do
  case $argument in
    --store) store=true ;;
    -*)
      sed -n '3,5s/^# *//p' scripts/check-abi.sh >&2
      exit 2
      ;;
    *) library=$argument ;;
  esac
done

if [ "$(uname -m)" != x86_64 ]; then
  echo "skipped: the description is that of x86-64"
  exit 0
fi
# shellcheck disable=SC2086  # a list of words
require_packages $abi_packages
if [ -z "$library" ]; then
  cmake -S . -B build-abi -DCMAKE_BUILD_TYPE=RelWithDebInfo -DZELM_BUILD_TESTS=OFF \
    -DZELM_BUILD_TOOL=OFF >/dev/null
  cmake --build build-abi -j "$(nproc)" --target zelm_imageutil
  library=build-abi/src/libzelm_imageutil.so
fi
if ! readelf -SW "$library" | grep -q '\.debug_info'; then
  echo "$library was built without -g: there is nothing to compare" >&2
  exit 1
fi

# Types are not sorted into public and private ones: abidiff would take uint32_t, which
# the header does not define itself, for private, and pass over a field of another type.
if $store; then
  abidw --exported-interfaces-only --no-comp-dir-path --no-corpus-path --short-locs \
    --type-id-style hash --out-file "$description" "$library"
  echo "written: $description"
elif abidiff --harmless "$description" "$library"; then
  echo "the binary interface is that of $description"
else
  echo "The binary interface differs from $description; see above." >&2
  exit 1
fi
