#!/usr/bin/env bash
# Builds the Python package's wheel, or takes the one that ZELM_WHEEL names, installs it
# into a virtual environment of its own and runs its tests there. As root it installs what
# is missing.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
# shellcheck source=scripts/python.sh
. scripts/python.sh

# shellcheck disable=SC2086  # a list of words
require_packages $python_packages
install_wheel
cd build-python  # away from the sources, so that the installed package is tested
venv/bin/python -m pytest -q -p no:cacheprovider ../python/tests
venv/bin/python -m pytest -q -p no:cacheprovider --pyargs --doctest-modules zelm_imageutil
venv/bin/python -m mypy --strict -p zelm_imageutil
