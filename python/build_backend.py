"""Builds the package with setuptools, cffi and wheel as the system has them.

pip builds in an environment of its own, without the system's modules. Where they are
installed they are used from there, so that nothing has to be fetched; otherwise they are
asked for as any other requirement.
"""

import importlib.util
import sys

_NEEDED = ("setuptools", "cffi", "wheel")
_SYSTEM = "/usr/lib/python3/dist-packages"

sys.path.append(_SYSTEM)
_MISSING = [name for name in _NEEDED if importlib.util.find_spec(name) is None]


def get_requires_for_build_wheel(config_settings=None):
    return _MISSING


def _setuptools():
    from setuptools import build_meta

    return build_meta


def prepare_metadata_for_build_wheel(directory, config_settings=None):
    return _setuptools().prepare_metadata_for_build_wheel(directory, config_settings)


def build_wheel(directory, config_settings=None, metadata_directory=None):
    return _setuptools().build_wheel(directory, config_settings, metadata_directory)
