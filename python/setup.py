"""What pyproject.toml cannot say: the compiled part, for every Python from 3.9 on."""

from setuptools import setup

setup(
    cffi_modules=["build_native.py:ffi"],
    options={"bdist_wheel": {"py_limited_api": "cp39"}},
)
