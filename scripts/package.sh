#!/usr/bin/env bash
# Builds the Debian packages into build-package/ and tries them. Installs missing
# packages as root.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh

# shellcheck disable=SC2086  # a list of words
require_packages $package_packages
cmake -S . -B build-package -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr \
  -DZELM_BUILD_TESTS=OFF
cmake --build build-package -j "$(nproc)"
rm -f build-package/*.deb
(cd build-package && cpack -G DEB)
bash tests/install_test.sh packages build-package build-package/*.deb
for package in build-package/*.deb; do
  echo "$package"
  dpkg-deb --info "$package" | grep -E '^ (Package|Version|Architecture|Depends):'
done
