#!/usr/bin/env bash
# Times the Python package beside OpenCV and PyAV, what a call costs, and clusters of one
# worker and of two on this machine.
#   scripts/bench-python.sh [--quick] [--store] [frames|calls|clusters]...
#   --quick     fewer rounds
#   --store     replaces the values in bench/results/, for a machine of this kind
# Contenders take turns in one process, and the least time of all rounds counts. Clips lie
# in ZELM_BENCH_FOLDER, /dev/shm unless given. Installs missing packages as root.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
# shellcheck source=scripts/python.sh
. scripts/python.sh
# shellcheck source=scripts/measuring.sh
. scripts/measuring.sh

store=false
given=()
for argument in "$@"; do
  case $argument in
    --quick) given+=(--rounds=16) ;;
    --store) store=true ;;
    frames | calls | clusters) given+=("$argument") ;;
    *)
      sed -n '3,9s/^# *//p' scripts/bench-python.sh >&2
      exit 2
      ;;
  esac
done
if $store && [ ${#given[@]} -gt 0 ]; then
  echo "$0: what is stored has all rows at full length" >&2
  exit 2
fi

# shellcheck disable=SC2086  # a list of words
require_packages $python_packages python3-opencv >&2
install_wheel >&2
file=build-python/$(processor_kind)-python.csv
{
  provenance
  echo "# processor: $(processor_name), $(nproc) at a time"
  ZELM_BENCH_FOLDER=${ZELM_BENCH_FOLDER:-/dev/shm} \
    build-python/venv/bin/python bench/python.py "${given[@]}"
} | tee "$file"
if $store; then cp "$file" bench/results/; fi
