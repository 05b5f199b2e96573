# shellcheck shell=bash disable=SC2034
# Sourced by the scripts beside it: Debian packages that a build needs.

build_packages="g++ make cmake libhwy-dev libcli11-dev libpng-dev nettle-dev"
test_packages="$build_packages libgtest-dev googletest dpkg-dev file pkg-config"
python_packages="g++ make cmake libhwy-dev python3-dev python3-pip python3-venv python3-cffi python3-numpy python3-setuptools python3-wheel python3-pytest python3-hypothesis python3-distributed python3-av python3-tqdm ffmpeg mypy"
arm_packages="make cmake libhwy-dev googletest qemu-user g++-arm-linux-gnueabihf g++-aarch64-linux-gnu"
bench_packages="$build_packages libbenchmark-dev libyuv-dev libopencv-imgproc-dev libswscale-dev libzimg-dev"
count_packages="$arm_packages gcc dpkg-dev"
android_packages="make cmake libhwy-dev clang-14 llvm-14 lld-14 qemu-user g++-arm-linux-gnueabihf g++-aarch64-linux-gnu"
package_packages="$build_packages dpkg-dev file pkg-config"
abi_packages="$build_packages abigail-tools"
demo_packages="$build_packages ffmpeg"
fuzz_packages="$build_packages clang-14 llvm-14 libclang-rt-14-dev ninja-build"
docs_packages="doxygen doxygen-awesome-css"
chart_packages="gnuplot-nox"
format_packages="clang-format git"
chroot_packages="mmdebstrap git"

# Prints those of the packages that are not installed.
missing_packages() {
  local package
  for package in "$@"; do
    if ! dpkg-query -W -f '${db:Status-Status}\n' "$package" 2>/dev/null |
        grep -qx installed; then
      printf '%s ' "$package"
    fi
  done
}

# Installs what is missing. Without the right to do so it says what to install.
require_packages() {
  local missing
  if ! command -v dpkg-query >/dev/null; then
    echo "No Debian packages here; needed are a C++17 compiler, CMake, and what" \
      "these packages hold: $*"
    return 0
  fi
  missing=$(missing_packages "$@")
  [ -z "$missing" ] && return 0
  if [ "$(id -u)" -ne 0 ]; then
    echo "Not installed: $missing" >&2
    echo "Install them first: apt-get install $missing" >&2
    return 1
  fi
  echo "Installing: $missing"
  apt-get update -q
  # shellcheck disable=SC2086  # a list of words
  DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends $missing
}
