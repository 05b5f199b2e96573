#!/usr/bin/env bash
# Builds libzelm_imageutil.so as an Android app would load it, for armeabi-v7a and for
# arm64-v8a, with clang and lld and without the vendor's kit, and checks page size, names,
# and what is needed at run time. The 64-bit library is also run, in an emulator.
#   scripts/android-abi.sh
# Installs missing packages as root.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh

readelf=llvm-readelf-14
nm=llvm-nm-14
expected_sum=c14ff8492c54506dc9c66ad7a570e02f  # as on every processor

fail() {
  echo "$0: $*" >&2
  exit 1
}

# stub FOLDER TRIPLE LIBRARY NAME...: a library with these names, to link with.
stub() {
  local name
  for name in "${@:4}"; do echo "void $name(void) {}"; done |
    clang-14 --target="$2" -w -fno-builtin -shared -nostdlib -fuse-ld=lld-14 \
      -Wl,-soname,"$3" -x c - -o "$1/$3"
}

# build ABI TRIPLE
build() {
  local stubs=$PWD/build-android/$1/stubs
  mkdir -p "$stubs/gnu"
  touch "$stubs/gnu/stubs-soft.h"  # asked for by the headers of a hard-float C library
  stub "$stubs" "$2" libc.so malloc free memcpy memset raise
  stub "$stubs" "$2" libm.so log
    cmake -S . -B "build-android/$1" -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/android-abi.cmake" \
    -DZELM_ANDROID_ABI="$1" -DZELM_ANDROID_STUBS="$stubs" -DCMAKE_BUILD_TYPE=Release \
    -DZELM_BUILD_TOOL=OFF -DZELM_BUILD_TESTS=OFF
  cmake --build "build-android/$1" -j "$(nproc)" --target zelm_imageutil
}

# check ABI
check() {
  local library=build-android/$1/src/libzelm_imageutil.so dynamic
  dynamic=$($readelf -d "$library")
  $readelf -lW "$library" | awk '$1 == "LOAD" && $NF != "0x4000" { exit 1 }' ||
    fail "$1: a segment is not aligned to 16 KiB"
  diff <(sed -n 's/.*NEEDED.*\[\(.*\)\]/\1/p' <<<"$dynamic" | sort) \
    <(printf '%s\n' libc.so libm.so) || fail "$1: other libraries are needed"
  grep -q 'SONAME.*\[libzelm_imageutil.so\]' <<<"$dynamic" || fail "$1: another SONAME"
  diff <($nm -D --defined-only --format=just-symbols "$library" | sort) \
    <(sed -n '/global:/,/local:/s/^ *\([A-Za-z0-9_]*\);$/\1/p' cmake/exports.map | sort) ||
    fail "$1: other names than cmake/exports.map has"
  echo "$1: 16 KiB pages, needs libc.so and libm.so," \
    "$($nm -D --defined-only --format=just-symbols "$library" | wc -l) names," \
    "$(stat -c %s "$library") bytes"
}

# The C library of the cross compiler stands in for Android's.
run_64() {
  local folder=$PWD/build-android/run
  mkdir -p "$folder"
  ln -sf /usr/aarch64-linux-gnu/lib/libc.so.6 "$folder/libc.so"
  ln -sf /usr/aarch64-linux-gnu/lib/libm.so.6 "$folder/libm.so"
  cp build-android/arm64-v8a/src/libzelm_imageutil.so "$folder"
  aarch64-linux-gnu-gcc examples/preview.c -Iinclude -L"$folder" -lzelm_imageutil \
    -Wl,--allow-shlib-undefined -o "$folder/preview"
  local sum
  sum=$(head -c $((1280 * 720 * 3 / 2)) < <(yes "a camera frame") |
    qemu-aarch64 -L /usr/aarch64-linux-gnu -E LD_LIBRARY_PATH="$folder" \
      "$folder/preview" | md5sum)
  [ "${sum%% *}" = "$expected_sum" ] || fail "arm64-v8a: another picture, $sum"
  echo "arm64-v8a: runs, and makes the expected picture"
}

# Nobody has the kit's jni.h here; what the example uses of it is little.
check_example() {
  mkdir -p build-android/example
  cat >build-android/example/jni.h <<'H'
#include <stdint.h>
#define JNIEXPORT
#define JNICALL
typedef int32_t jint;
typedef int64_t jlong;
typedef struct Object *jobject, *jclass;
typedef const struct Functions* JNIEnv;
struct Functions {
  void* (*GetDirectBufferAddress)(JNIEnv*, jobject);
  jlong (*GetDirectBufferCapacity)(JNIEnv*, jobject);
};
H
  clang-14 -std=c99 -Wall -Wextra -Werror -fsyntax-only -Iinclude -Ibuild-android/example \
    examples/android/preview_jni.c
  echo "examples/android/preview_jni.c: compiles"
}

# shellcheck disable=SC2086  # a list of words
require_packages $android_packages
build armeabi-v7a armv7a-linux-androideabi21 >/dev/null
build arm64-v8a aarch64-linux-android21 >/dev/null
check armeabi-v7a
check arm64-v8a
run_64
check_example
