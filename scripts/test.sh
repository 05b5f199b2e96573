#!/usr/bin/env bash
# Builds everything and runs all tests. Installs missing packages as root. What
# ZELM_CMAKE_OPTIONS holds goes to CMake.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh

# shellcheck disable=SC2086  # a list of words
require_packages $test_packages $python_packages
# shellcheck disable=SC2086  # a list of words
cmake -S . -B build -DCMAKE_BUILD_TYPE=Release -DZELM_BUILD_TOOL=ON -DZELM_BUILD_TESTS=ON \
  ${ZELM_CMAKE_OPTIONS:-}
cmake --build build -j "$(nproc)"
echo "Instruction sets of the tests:"
ctest --test-dir build -V -R InstructionSet.Choice | sed -n 's/.*\[   NOTE   \] /  /p' || true
ctest --test-dir build --no-tests=error --output-on-failure -j "$(nproc)"
ZELM_BUILD_FOLDER=$PWD/build bash scripts/test-python.sh
