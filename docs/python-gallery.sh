#!/usr/bin/env bash
# Draws the pictures of docs/python-gallery.md with the Python package. Installs missing
# packages as root.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
# shellcheck source=scripts/python.sh
. scripts/python.sh

# shellcheck disable=SC2086  # a list of words
require_packages $python_packages python3-matplotlib
install_wheel
# The formula is the one that the tests compare with.
PYTHONPATH=python/tests build-python/venv/bin/python docs/python_gallery.py \
  docs/python-gallery
