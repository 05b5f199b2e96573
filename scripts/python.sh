# shellcheck shell=bash
# Sourced by the scripts beside it that need the Python package.

# Builds the package's wheel, or takes the one that ZELM_WHEEL names, and installs it into a
# virtual environment of its own, build-python/venv.
install_wheel() {
  local work=build-python wheel=${ZELM_WHEEL:-}
  rm -rf $work/venv
  mkdir -p $work
  if [ -z "$wheel" ]; then
    rm -rf $work/wheel
    /usr/bin/python3 -m pip wheel --quiet --no-deps --wheel-dir $work/wheel ./python
    wheel=$(ls $work/wheel/*.whl)
  fi
  echo "$(/usr/bin/python3 --version), $(basename "$wheel")"
  /usr/bin/python3 -m venv --system-site-packages $work/venv
  $work/venv/bin/pip install --quiet --no-deps "$wheel"
}
