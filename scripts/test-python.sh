#!/usr/bin/env bash
# Builds the Python package's wheel, or takes the one that ZELM_WHEEL names, installs it
# into a virtual environment of its own and runs its tests there. As root it installs what
# is missing.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh

# shellcheck disable=SC2086  # a list of words
require_packages $python_packages
python=/usr/bin/python3
work=$PWD/build-python
rm -rf "$work/venv"
mkdir -p "$work"
wheel=${ZELM_WHEEL:-}
if [ -z "$wheel" ]; then
  rm -rf "$work/wheel"
  $python -m pip wheel --quiet --no-deps --wheel-dir "$work/wheel" ./python
  wheel=$(ls "$work"/wheel/*.whl)
fi
echo "Python: $($python --version), $(basename "$wheel")"
$python -m venv --system-site-packages "$work/venv"
"$work/venv/bin/pip" install --quiet --no-deps "$wheel"
cd "$work"  # away from the sources, so that the installed package is tested
venv/bin/python -m pytest -q -p no:cacheprovider ../python/tests
venv/bin/python -m pytest -q -p no:cacheprovider --pyargs --doctest-modules zelm_imageutil
venv/bin/python -m mypy --strict -p zelm_imageutil
