#!/usr/bin/env bash
# Makes HTML pages of the public headers in build-docs/. Installs missing packages as root.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh

# shellcheck disable=SC2086  # a list of words
require_packages $docs_packages
version=$(sed -n 's/^#define ZELM_IMAGEUTIL_VERSION_[A-Z]* //p' include/zelm_imageutil.h |
  paste -s -d .)
rm -rf build-docs
mkdir build-docs
{
  cat docs/Doxyfile
  echo "PROJECT_NUMBER = $version"
} | doxygen -
echo "The pages begin with $PWD/build-docs/index.html"
