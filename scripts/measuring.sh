# shellcheck shell=bash
# Sourced by the scripts beside it that measure: what their values are of.

# The highest instruction set that the library has kernels for and this machine runs.
processor_kind() {
  local flag
  for flag in avx512vbmi avx512bw avx2 sse4_2; do
    grep -qw "$flag" /proc/cpuinfo || continue
    case $flag in
      avx512vbmi) echo avx512-vbmi ;;
      avx512bw) echo avx512 ;;
      sse4_2) echo sse4 ;;
      *) echo $flag ;;
    esac
    return
  done
  uname -m
}

# The first lines of a file of values: when, and of which state of the sources.
provenance() {
  echo "# date: $(date -u +%F)"
  echo "# source: $(git describe --always --dirty 2>/dev/null || echo unknown)"
}

processor_name() { sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -1; }
