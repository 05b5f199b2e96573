#!/usr/bin/env bash
# Runs checks that the tests alone do not make, by name or all, and prints a line for
# each; exit status 1 when one failed.
#   scripts/check.sh [NAME...]
#   gcc       everything, warnings are errors
#   clang     the same with the other compiler, release 14
#   clang19   the same with release 19
#   asan      the whole suite, address and undefined-behaviour sanitizers, and clang 14's
#             warnings as errors on the way
#   tsan      the whole suite, thread sanitizer
#   msan      the fuzzers of the library, memory sanitizer
#   valgrind  the tests of the library up to AVX2 in valgrind
#   tidy      clang-tidy with the repository's configuration
#   cppcheck  the other static analyser
#   format    clang-format
#   rooms     intrinsics and assembly stand in files named after their instruction set
# Each has its folder build-NAME and its log build-NAME/check.log. JOBS and SECONDS_PER_FUZZER
# set the number of compilers and how long a fuzzer runs, LEAVE_OUT is a regular expression
# of tests that the sanitizers leave out. Installs missing packages as
# root.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 2
# shellcheck source=scripts/packages.sh
. scripts/packages.sh

all=(format rooms gcc clang clang19 asan tsan msan valgrind tidy cppcheck)
jobs=${JOBS:-$(nproc)}
seconds=${SECONDS_PER_FUZZER:-20}

# configure FOLDER [OPTION...]
configure() {
  local folder=$1 launcher=()
  command -v ccache >/dev/null &&
    launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache)
  cmake -G Ninja -S . -B "$folder" -DCMAKE_BUILD_TYPE=RelWithDebInfo "${launcher[@]}" \
    -DZELM_BUILD_TOOL=ON -DZELM_BUILD_TESTS=ON "${@:2}"
}

# sanitized NAME SANITIZERS [OPTION...]: the whole suite with these. With -O2 and all that
# debuggers want to know, compilers would take more than twice as long for vector kernels.
sanitized() {
  local flags="-fsanitize=$2 -fno-sanitize-recover=all -fno-omit-frame-pointer"
  configure "build-$1" -DCMAKE_C_FLAGS="$flags" -DCMAKE_CXX_FLAGS="$flags" \
    -DCMAKE_C_FLAGS_RELWITHDEBINFO="-O1 -g1" \
    -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O1 -g1" "${@:3}" &&
    cmake --build "build-$1" -j "$jobs" &&
    ctest --test-dir "build-$1" --no-tests=error --output-on-failure -j "$jobs" \
      -E "${LEAVE_OUT:-^$}"
}

# without_warnings C_COMPILER C++_COMPILER
without_warnings() {
  configure "build-$1" -DZELM_WARNINGS_AS_ERRORS=ON -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_C_COMPILER="$1" -DCMAKE_CXX_COMPILER="$2" -DZELM_BUILD_BENCHMARKS=OFF &&
    cmake --build "build-$1" -j "$jobs"
}

check_gcc() { without_warnings gcc g++; }

check_clang() { without_warnings clang-14 clang++-14; }

check_clang19() { without_warnings clang-19 clang++-19; }

# With clang, which compiles vector kernels with sanitizers in a third of gcc's time. The
# runtime is shared, because libraries are linked without undefined symbols.
check_asan() {
  local runtime
  runtime=$(dirname "$(clang-14 -print-file-name="libclang_rt.asan-$(uname -m).so")")
  UBSAN_OPTIONS=print_stacktrace=1 sanitized asan address,undefined \
    -DCMAKE_C_COMPILER=clang-14 -DCMAKE_CXX_COMPILER=clang++-14 \
    -DZELM_WARNINGS_AS_ERRORS=ON -DZELM_BUILD_BENCHMARKS=OFF \
    -DCMAKE_SHARED_LINKER_FLAGS=-shared-libasan \
    -DCMAKE_EXE_LINKER_FLAGS="-shared-libasan -Wl,-rpath,$runtime"
}

check_tsan() { sanitized tsan thread; }

check_msan() { JOBS=$jobs scripts/fuzz.sh --memory "$seconds"; }

check_valgrind() {
  configure build-valgrind && cmake --build build-valgrind -j "$jobs" --target library_test &&
    ZELM_INSTRUCTION_SET=avx2 valgrind --quiet --error-exitcode=1 --track-origins=no \
      build-valgrind/tests/library_test \
      --gtest_filter='*StageTest*:Values.*:Pipeline.*-*.FormatTable:*.RandomScaling'
}

# Sources of ours that are compiled.
sources() {
  git ls-files '*.cc' "$@"
}

# One file is compiled for 32-bit Arm alone.
check_tidy() {
  configure build-tidy &&
    sources ':!bench' ':!fuzz' ':!examples' ':!tests/top_gigabyte.cc' |
    xargs -P "$jobs" -n 1 clang-tidy -p build-tidy --quiet --warnings-as-errors='*'
}

# Two of its warnings are wrong here: rows that are filled before they are read, and a
# condition within a condition that it takes for a comparison of its result.
check_cppcheck() {
  configure build-cppcheck &&
    cppcheck --project=build-cppcheck/compile_commands.json -j "$jobs" --quiet \
      --enable=warning,performance,portability --inline-suppr --error-exitcode=1 \
      --suppress='*:/usr/*' --suppress='*:build-cppcheck/*' \
      --suppress='uninitMemberVar:src/resize/*' \
      --suppress='compareBoolExpressionWithInt:src/resize/*' \
      --suppress=internalAstError --suppress=unknownMacro --suppress=syntaxError
}

check_format() {
  # The public header has a style of its own.
  git ls-files '*.cc' '*.h' '*.c' ':!include' | xargs clang-format --dry-run -Werror
}

# What only one instruction set can do has a file that says so in its name, and those
# files are included by the stage or the helpers that they belong to, nowhere else. An
# empty assembly statement, which only stops the compiler from looking, is no assembly.
check_rooms() {
  local names='_mm[0-9]*_\w|\b__m(128|256|512)|\bv[a-z0-9]+(_[a-z0-9]+)*_[usp](8|16|32|64)\b'
  names+='|\bu?int(8|16|32|64)x[0-9]|\basm\b[^"]*"[^"]|\.raw\b|__builtin_(ia32|arm|neon)'
  names+='|\b(arm_neon|[a-z]*mmintrin|immintrin)\.h'
  ! git ls-files src frames | grep -vE '_(x86|avx2|vbmi|neon|armv7)[-._]|/neon(_\w+)?\.h$' |
    xargs grep -nE "$names"
}

# Packages that each needs.
declare -A needs=(
  [format]="$format_packages" [gcc]="$test_packages ninja-build"
  [clang]="$test_packages ninja-build clang-14" [rooms]="git grep"
  [clang19]="$test_packages ninja-build clang-19" [asan]="$test_packages ninja-build clang-14 llvm-14 libclang-rt-14-dev"
  [tsan]="$test_packages ninja-build" [msan]="$fuzz_packages"
  [valgrind]="$test_packages ninja-build valgrind"
  [tidy]="$test_packages ninja-build clang-tidy"
  [cppcheck]="$test_packages ninja-build cppcheck")

failed=0
for name in "${@:-${all[@]}}"; do
  if ! declare -F "check_$name" >/dev/null; then
    echo "no check is called $name; known are ${all[*]}" >&2
    exit 2
  fi
  # shellcheck disable=SC2086  # a list of words
  require_packages ${needs[$name]} || exit 2
  mkdir -p "build-$name"
  if "check_$name" >"build-$name/check.log" 2>&1; then
    echo "$name: passed"
  else
    tail -n 20 "build-$name/check.log" >&2
    echo "$name: failed, see build-$name/check.log"
    failed=1
  fi
done
exit $failed
