"""Frames of raw and Y4M files, mapped into memory."""

from __future__ import annotations

import mmap
import os
from typing import Iterator

import numpy as np

from . import frames, y4m
from .description import Description
from .frames import Array

_MOST_LINE = 4096


class MappedFrames:
    """Frames that lie in a file as they are: views of the file."""

    def __init__(
        self, file: mmap.mmap, described: Description, starts: "range | list[int]"
    ) -> None:
        self.described = described
        self._file, self._starts = file, starts
        self._bytes = described.bytes
        self._shape = frames.shape_of(described.format, described.size)
        if described.format.layout == "words":
            self._shape += (2,)

    def __len__(self) -> int:
        return len(self._starts)

    def frame(self, index: int) -> Array:
        """One frame."""
        start = self._starts[index]
        return np.frombuffer(self._file, np.uint8, self._bytes, start).reshape(
            self._shape
        )

    def run(self, first: int, count: int) -> Iterator[Array]:
        """The frames of a range, in order."""
        return (self.frame(i) for i in range(first, first + count))

    def cuts(self, count: int) -> list[int]:
        """Where ranges of about so many frames begin that can be read by themselves."""
        return list(range(0, len(self), count))


def _map(path: str) -> mmap.mmap:
    with open(path, "rb") as file:
        if os.fstat(file.fileno()).st_size == 0:
            raise ValueError("there is no frame in it")
        return mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ)


def is_y4m(path: str) -> bool:
    """Whether a file begins as Y4M files do."""
    with open(path, "rb") as file:
        return file.read(len(y4m.MAGIC)) == y4m.MAGIC


def raw(path: str, described: Description) -> MappedFrames:
    """Frames one behind the other."""
    file, count = _map(path), described.bytes
    if len(file) % count != 0:
        raise ValueError(
            f"its last frame is cut short: {len(file) % count} of the {count} bytes of "
            f"{described.size[0]}x{described.size[1]} {described.format.name}"
        )
    return MappedFrames(file, described, range(0, len(file), count))


def y4m_file(path: str) -> MappedFrames:
    """The frames of a Y4M file, each behind a line of its own."""
    file = _map(path)

    def line(start: int) -> bytes:
        end = file.find(b"\n", start, start + _MOST_LINE)
        if end < 0:
            raise ValueError("the Y4M file is damaged: a line has no end")
        return file[start:end]

    first = line(0)
    described = y4m.parsed(first)
    count = described.bytes
    if count == 0:
        width, height = described.size
        raise ValueError(f"there are no frames of {width}x{height}")
    starts: list[int] = []
    at = len(first) + 1
    while at < len(file):
        before = line(at)
        if before.split(b" ")[0] != b"FRAME":
            raise ValueError(f"frame {len(starts)} does not begin with FRAME")
        starts.append(at + len(before) + 1)
        at = starts[-1] + count
    if at > len(file):
        raise ValueError(f"frame {len(starts) - 1} is cut short")
    return MappedFrames(file, described, starts)
