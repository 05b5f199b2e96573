"""Frames of raw and Y4M files, mapped into memory."""

from __future__ import annotations

import mmap
import os
from pathlib import Path
from typing import Any, Iterator, Optional, Union, overload

import numpy as np

from . import formats, frames
from .frames import Array, Size

_MAGIC = b"YUV4MPEG2 "
_MOST_LINE = 4096
_CHROMA = {
    "420": "i420",
    "420jpeg": "i420",
    "420mpeg2": "i420",
    "420paldv": "i420",
    "422": "i422",
    "mono": "gray",
}
_MATRIX_TAGS = {"BT.601": "bt601", "BT.709": "bt709", "BT.2020": "bt2020"}


def usual_matrix(size: Size) -> str:
    """The matrix of video that says nothing about it, as players take it."""
    return "bt709" if size[0] >= 1280 or size[1] >= 720 else "bt601"


class Clip:
    """The frames of a raw file or a Y4M file, by index, slice and iteration.

    Frames are views of the mapped file: nothing is read before it is used, and nothing is
    copied. A frame is what :func:`convert` takes, an array in the usual shape of its format,
    or of one axis for odd sizes.

    ``format``, ``size``, ``matrix`` and ``range`` describe them. Raw files need ``format``
    and ``size`` and are full-range BT.601; a Y4M file has what its header says, or limited
    range, and BT.709 from 1280 wide or 720 high on.

    >>> import numpy as np, os, tempfile
    >>> path = os.path.join(tempfile.mkdtemp(), "clip.y4m")
    >>> with open(path, "wb") as file:
    ...     _ = file.write(b"YUV4MPEG2 W4 H2 F25:1\\n" + 3 * (b"FRAME\\n" + bytes(12)))
    >>> clip = Clip(path)
    >>> len(clip), clip.format, clip[0].shape, clip.range, clip.matrix
    (3, 'i420', (3, 4), 'limited', 'bt601')
    """

    def __init__(
        self,
        path: Union[str, "os.PathLike[str]"],
        *,
        format: Optional[str] = None,
        size: Optional[Size] = None,
    ) -> None:
        self.path = Path(path)
        self.rate: Optional[str] = None
        with open(path, "rb") as file:
            if os.fstat(file.fileno()).st_size == 0:
                raise ValueError(f"{path}: there is no frame in it")
            self._file = mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ)
        if self._file[: len(_MAGIC)] == _MAGIC:
            self._starts = self._open_y4m(format, size)
        else:
            self._starts = self._open_raw(format, size)
        self._bytes = frames.bytes_of(self._format, self.size)

    def _describe(self, format: str, size: Size, matrix: str, value_range: str) -> int:
        self._format = formats.named(format)
        self.format, self.size = self._format.name, (int(size[0]), int(size[1]))
        self.matrix, self.range = matrix, value_range
        count = frames.bytes_of(self._format, self.size)
        if count == 0:
            raise ValueError(
                f"{self.path}: there are no {format} frames of {size[0]}x{size[1]}"
            )
        return count

    def _open_raw(self, format: Optional[str], size: Optional[Size]) -> list[int]:
        if format is None or size is None:
            raise ValueError(
                f"{self.path}: raw frames need format= and size=(width, height)"
            )
        count = self._describe(format, size, "bt601", "full")
        if len(self._file) % count != 0:
            raise ValueError(
                f"{self.path}: its last frame is cut short: {len(self._file) % count} of the "
                f"{count} bytes of {size[0]}x{size[1]} {self.format}"
            )
        return list(range(0, len(self._file), count))

    def _line(self, start: int) -> bytes:
        end = self._file.find(b"\n", start, start + _MOST_LINE)
        if end < 0:
            raise ValueError(f"{self.path}: the Y4M file is damaged: a line has no end")
        return self._file[start:end]

    def _open_y4m(self, format: Optional[str], size: Optional[Size]) -> list[int]:
        line = self._line(0)
        tags = line[len(_MAGIC) :].decode("ascii", "replace").split()
        width = height = 0
        chroma, value_range, matrix = "420", "limited", ""
        for tag in tags:
            if tag[0] in "WH" and not tag[1:].isdecimal():
                raise ValueError(
                    f"{self.path}: the Y4M header's {tag} is no width or height"
                )
            if tag[0] == "W":
                width = int(tag[1:])
            elif tag[0] == "H":
                height = int(tag[1:])
            elif tag[0] == "C":
                chroma = tag[1:]
            elif tag[0] == "F":
                self.rate = tag[1:]
            elif tag == "XCOLORRANGE=FULL":
                value_range = "full"
            elif tag.startswith("XCOLORMATRIX="):
                matrix = _MATRIX_TAGS.get(tag.partition("=")[2], "")
        if chroma not in _CHROMA:
            raise ValueError(f"{self.path}: Y4M with chroma C{chroma} cannot be read")
        known = formats.named(_CHROMA[chroma])
        if format is not None and formats.named(format) is not known:
            raise ValueError(f"{self.path} is a Y4M file of {known.name}, not {format}")
        if size is not None and tuple(size) != (width, height):
            raise ValueError(f"{self.path} is a Y4M file of {width}x{height}")
        matrix = matrix or usual_matrix((width, height))
        count = self._describe(known.name, (width, height), matrix, value_range)
        starts: list[int] = []
        at = len(line) + 1
        while at < len(self._file):
            frame_line = self._line(at)
            if frame_line.split(b" ")[0] != b"FRAME":
                raise ValueError(
                    f"{self.path}: frame {len(starts)} does not begin with FRAME"
                )
            starts.append(at + len(frame_line) + 1)
            at = starts[-1] + count
        if at > len(self._file):
            raise ValueError(f"{self.path}: frame {len(starts) - 1} is cut short")
        return starts

    def __len__(self) -> int:
        return len(self._starts)

    def _frame(self, start: int) -> Array:
        flat = np.frombuffer(self._file, np.uint8, self._bytes, start)
        shape = frames.shape_of(self._format, self.size)
        if self._format.layout == "words":
            return flat.reshape(*shape, 2)
        return flat.reshape(shape)

    @overload
    def __getitem__(self, index: int) -> Array:
        ...

    @overload
    def __getitem__(self, index: slice) -> list[Array]:
        ...

    def __getitem__(self, index: Union[int, slice]) -> Any:
        """A frame, or a list of frames. Negative indices count from the end."""
        if isinstance(index, slice):
            return [self._frame(start) for start in self._starts[index]]
        return self._frame(self._starts[index])

    def __iter__(self) -> Iterator[Array]:
        return (self._frame(start) for start in self._starts)
