#!/usr/bin/env bash
# Builds the library for 32-bit Arm and for AArch64 and runs its tests under emulation.
# As root it installs what is missing.
#   scripts/test-arm.sh [armv7-neon | armv7-plain | aarch64]...
#   SANITIZE=1 scripts/test-arm.sh ...    with the address and undefined-behaviour sanitizers
#   HIGHWAY_INCLUDE_DIR=FOLDER scripts/test-arm.sh ...    with these headers of Highway
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh

# shellcheck disable=SC2086  # a list of words
require_packages $arm_packages

highway=${HIGHWAY_INCLUDE_DIR:-/usr/include}
fpu=neon
grep -q HWY_BROKEN_ARM7_WITHOUT_VFP4 "$highway/hwy/detect_targets.h" && fpu=neon-vfpv4

[ $# -gt 0 ] || set -- armv7-neon armv7-plain aarch64
for target in "$@"; do
  vectors=ON runs="runs with NEON"
  case $target in
    armv7-neon | aarch64) toolchain=$target ;;
    armv7-plain) toolchain=armv7-neon vectors=OFF runs="runs with plain code" ;;
    *) echo "$0: no target '$target'" >&2; exit 2 ;;
  esac
  build=build-$target type=Release
  if [ -n "${SANITIZE:-}" ]; then
    build+=-sanitize type=RelWithDebInfo
    # Joined by CMake to the flags of the toolchain file.
    export CFLAGS="-fsanitize=address,undefined -fno-sanitize-recover=all"
    export CXXFLAGS=$CFLAGS
    export ZELM_TEST_STEP=17
    export ASAN_OPTIONS=detect_leaks=0  # needs ptrace, which the emulator has not
  fi
  cmake -S . -B "$build" -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/$toolchain.cmake" \
    -DCMAKE_BUILD_TYPE=$type -DZELM_VECTORS=$vectors -DHIGHWAY_INCLUDE_DIR="$highway" \
    -DZELM_ARMV7_FPU=$fpu \
    -DZELM_BUILD_TOOL=OFF -DZELM_BUILD_TESTS=ON
  cmake --build "$build" -j "$(nproc)"
  note=$(ctest --test-dir "$build" -V -R InstructionSet.Choice |
    sed -n 's/.*\[   NOTE   \] //p') || true
  echo "$target: $note"
  if [[ $note != *"$runs" ]]; then
    echo "$target: should be code that $runs" >&2
    exit 1
  fi
  ctest --test-dir "$build" --no-tests=error --output-on-failure -j "$(nproc)"
done
