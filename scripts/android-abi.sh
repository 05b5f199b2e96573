#!/usr/bin/env bash
# Builds both libraries as an Android app would load them, for armeabi-v7a and for
# arm64-v8a, with clang and lld and without the vendor's kit, and checks page size, names,
# and what is needed at run time. The 64-bit ones are also run, in an emulator.
#   scripts/android-abi.sh
# Installs missing packages as root.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh

readelf=llvm-readelf-14
nm=llvm-nm-14

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
  stub "$stubs" "$2" libc.so malloc calloc free memcpy memset memcmp vsnprintf raise
  stub "$stubs" "$2" libm.so log
  cmake -S . -B "build-android/$1" -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/android-abi.cmake" \
    -DZELM_ANDROID_ABI="$1" -DZELM_ANDROID_STUBS="$stubs" -DCMAKE_BUILD_TYPE=Release \
    -DZELM_BUILD_TOOL=OFF -DZELM_BUILD_TESTS=OFF
  cmake --build "build-android/$1" -j "$(nproc)" --target zelm_imageutil zelm_frames
}

# check ABI FOLDER NAME MAP: the library libNAME.so
check() {
  local library=build-android/$1/$2/lib$3.so map=cmake/$4 dynamic needed
  dynamic=$($readelf -d "$library")
  $readelf -lW "$library" | awk '$1 == "LOAD" && $NF != "0x4000" { exit 1 }' ||
    fail "$1, $3: a segment is not aligned to 16 KiB"
  needed=$(sed -n 's/.*NEEDED.*\[\(.*\)\]/\1/p' <<<"$dynamic" | sort | paste -s -d ' ')
  [[ $needed =~ ^libc.so(\ libm.so)?$ ]] || fail "$1, $3: other libraries are needed: $needed"
  grep -q "SONAME.*\[lib$3.so\]" <<<"$dynamic" || fail "$1, $3: another SONAME"
  diff <($nm -D --defined-only --format=just-symbols "$library" | sort) \
    <(sed -n '/global:/,/local:/s/^ *\([A-Za-z0-9_]*\);$/\1/p' "$map" | sort) ||
    fail "$1, $3: other names than $map has"
  echo "$1, $3: 16 KiB pages, needs $needed," \
    "$($nm -D --defined-only --format=just-symbols "$library" | wc -l) names," \
    "$(stat -c %s "$library") bytes"
}

# The C library of the cross compiler stands in for Android's.
run_64() {
  local folder=$PWD/build-android/run
  mkdir -p "$folder"
  ln -sf /usr/aarch64-linux-gnu/lib/libc.so.6 "$folder/libc.so"
  ln -sf /usr/aarch64-linux-gnu/lib/libm.so.6 "$folder/libm.so"
  cp build-android/arm64-v8a/src/libzelm_imageutil.so \
    build-android/arm64-v8a/frames/libzelm_frames.so "$folder"
  run_example preview zelm_imageutil c14ff8492c54506dc9c66ad7a570e02f
  run_example camera_preview zelm_frames aaebe5575bd0d58cb732fb82de7bb572
}

# run_example NAME LIBRARY SUM: the picture has this sum, as on every processor.
run_example() {
  local folder=$PWD/build-android/run sum
  aarch64-linux-gnu-gcc "examples/$1.c" -Iinclude -L"$folder" "-l$2" \
    -Wl,--allow-shlib-undefined -o "$folder/$1"
  sum=$(head -c $((1280 * 720 * 3 / 2)) < <(yes "a camera frame") |
    qemu-aarch64 -L /usr/aarch64-linux-gnu -E LD_LIBRARY_PATH="$folder" "$folder/$1" |
    md5sum)
  [ "${sum%% *}" = "$3" ] || fail "arm64-v8a: $1 makes another picture, $sum"
  echo "arm64-v8a: $1 runs, and makes the expected picture"
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
for abi in armeabi-v7a arm64-v8a; do
  check "$abi" src zelm_imageutil exports.map
  check "$abi" frames zelm_frames frames_exports.map
done
run_64
check_example
