"""Pixel formats and colours by their names."""

from __future__ import annotations

import os
from dataclasses import dataclass
from pathlib import PurePath
from typing import Optional, Union


@dataclass(frozen=True)
class Format:
    """How frames of one pixel format lie in arrays.

    ``layout`` is ``planar`` (planes Y and two of chroma), ``pairs`` (Y and chroma pairs),
    ``pixels`` (``channels`` bytes per pixel), ``words`` (16 bits per pixel), ``gray`` or
    ``tiles``. Chroma has one row for ``rows_shared`` rows of pixels, and one column for two.
    """

    name: str
    code: int
    layout: str
    channels: int = 1
    rows_shared: int = 1
    rgb: bool = False

    @property
    def chroma(self) -> bool:
        """Whether chroma lies in planes of its own."""
        return self.layout in ("planar", "pairs")


_FORMATS = (
    Format("i420", 1, "planar", rows_shared=2),
    Format("yv12", 2, "planar", rows_shared=2),
    Format("nv12", 3, "pairs", rows_shared=2),
    Format("nv21", 4, "pairs", rows_shared=2),
    Format("i422", 5, "planar"),
    Format("nv16", 6, "pairs"),
    Format("nv61", 7, "pairs"),
    Format("yuyv", 8, "pixels", channels=2),
    Format("uyvy", 9, "pixels", channels=2),
    Format("gray", 10, "gray"),
    Format("rgb24", 11, "pixels", channels=3, rgb=True),
    Format("bgr24", 12, "pixels", channels=3, rgb=True),
    Format("rgba", 13, "pixels", channels=4, rgb=True),
    Format("bgra", 14, "pixels", channels=4, rgb=True),
    Format("rgb565", 15, "words", channels=2, rgb=True),
    Format("bgr565", 16, "words", channels=2, rgb=True),
    Format("tiled", 17, "tiles", rows_shared=2),
)
_ALIASES = {
    "yuv420p": "i420",
    "yuv422p": "i422",
    "yuyv422": "yuyv",
    "uyvy422": "uyvy",
    "gray8": "gray",
    "grey": "gray",
    "rgb": "rgb24",
    "bgr": "bgr24",
    "rgb565le": "rgb565",
    "bgr565le": "bgr565",
}
_BY_NAME = {f.name: f for f in _FORMATS}
_BY_NAME.update({alias: _BY_NAME[name] for alias, name in _ALIASES.items()})

_MATRICES = {"bt601": 0, "bt709": 2, "bt2020": 4}
_RANGES = {"full": 0, "limited": 1}
_FILTERS = {"linear": 0, "nearest": 1, "cubic": 2}


def names() -> list[str]:
    """The names of all formats, without aliases."""
    return [f.name for f in _FORMATS]


def _chosen(kind: str, name: str, values: dict[str, int]) -> int:
    value = values.get(name.lower()) if isinstance(name, str) else None
    if value is None:
        raise ValueError(f"unknown {kind} {name!r}; known are {', '.join(values)}")
    return value


def named(name: str) -> Format:
    """The format of a name or an alias, in upper or lower case."""
    found = _BY_NAME.get(name.lower()) if isinstance(name, str) else None
    if found is None:
        raise ValueError(f"unknown format {name!r}; known are {', '.join(names())}")
    return found


def of_suffix(path: Union[str, "os.PathLike[str]"]) -> Optional[str]:
    """The name of the format that a file's suffix says, if it says one."""
    found = _BY_NAME.get(PurePath(path).suffix[1:].lower())
    return None if found is None else found.name


def colour(matrix: str, value_range: str) -> int:
    """The library's number of a colour description."""
    return _chosen("matrix", matrix, _MATRICES) + _chosen("range", value_range, _RANGES)


def filter_code(name: str) -> int:
    """The library's number of a filter."""
    return _chosen("filter", name, _FILTERS)
