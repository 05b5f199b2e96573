#!/usr/bin/env bash
# Runs the two commands of the README in a fresh clone of what is committed, on a bare
# Debian of its own: a chroot with g++, make and git, where the scripts install the rest.
#   scripts/test-debian.sh [12|13] [demo|test]...    by default 13, demo and test
#   scripts/test-debian.sh 13 test-python           or other scripts
# What ZELM_CMAKE_OPTIONS holds goes to CMake, ZELM_TEST_STEP to the tests; if ZELM_WHEEL
# names a wheel of the Python package, that one is tested there. As root; the chroot is made
# anew in build-debian13/ (or 12) each time. Ends with 77 where no chroot can be made.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh

release=${1:-13}
commands=("${@:2}")
[ ${#commands[@]} -gt 0 ] || commands=(demo test)
case $release in
  12) suite=bookworm ;;
  13) suite=trixie ;;
  *) echo "$0: no Debian '$release'; known are 12 and 13" >&2; exit 2 ;;
esac
if [ "$(id -u)" -ne 0 ]; then
  echo "$0: needs root, for a chroot" >&2
  exit 1
fi
# shellcheck disable=SC2086  # a list of words
require_packages $chroot_packages

if ! unshare --mount --fork true 2>/dev/null; then
  echo "$0: skipped, nothing can be mounted here"
  exit 77
fi

folder=$PWD/build-debian$release
root=$folder/root
# Never into a mount that a run which was stopped half-way may have left.
rm -rf --one-file-system "$folder"
mkdir -p "$folder"

# The mirror that this machine installs from.
mirror=$(sed -n 's/^URIs: //p; s/^deb [^h]*\(http[^ ]*\) .*/\1/p' \
  /etc/apt/sources.list.d/*.sources /etc/apt/sources.list 2>/dev/null | head -n 1) || true
mmdebstrap --quiet --variant=minbase --include=g++,make,git,ca-certificates \
  "$suite" "$root" ${mirror:+"$mirror"}
cp -r /etc/apt/apt.conf.d/. "$root/etc/apt/apt.conf.d/"
cp -L /etc/resolv.conf "$root/etc/resolv.conf"
git clone --quiet . "$root/zelm_imageutil"
wheel=
if [ -n "${ZELM_WHEEL:-}" ]; then
  cp "$ZELM_WHEEL" "$root/root/"
  wheel=/root/$(basename "$ZELM_WHEEL")
fi

# Mounts of a namespace of its own vanish with it, however this ends.
inside() {
  # shellcheck disable=SC2016  # expanded inside
  unshare --mount --fork bash -c '
    mount --bind /proc "$0/proc" && mount --bind /dev "$0/dev" &&
      exec chroot "$0" /usr/bin/env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin \
        ZELM_CMAKE_OPTIONS="$2" ZELM_TEST_STEP="$3" ZELM_WHEEL="$4" \
        bash -c "cd /zelm_imageutil && $1"' "$root" "$1" "${ZELM_CMAKE_OPTIONS:-}" \
    "${ZELM_TEST_STEP:-1}" "$wheel"
}

for command in "${commands[@]}"; do
  echo "== Debian $release: scripts/$command.sh"
  inside "bash scripts/$command.sh"
done
rm -rf --one-file-system "$folder"
echo "== Debian $release: passed (${commands[*]})"
