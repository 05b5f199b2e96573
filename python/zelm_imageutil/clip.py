"""The frames of a file."""

from __future__ import annotations

import os
from pathlib import Path
from typing import Any, Iterator, Optional, Union, overload

from . import formats, frames, mapped
from .description import Description
from .encoded import EncodedFrames, Part
from .frames import Frame
from .mapped import MappedFrames
from .values import Size, size_of

FilePath = Union[str, "os.PathLike[str]"]


class Clip:
    """The frames of a raw, Y4M or encoded file, by index, slice and iteration.

    :param format: of raw frames; by default what the file's suffix says, as in ``a.nv12``
    :param size: width and height of raw frames
    :param matrix: another one than the file states; ``range`` likewise
    :raises ValueError: with one sentence that says what is wrong with the file

    Frames of raw and Y4M files are views of the mapped file: nothing is read before it is
    used, and nothing is copied. Those of encoded files, for which PyAV is needed, are views
    of what it decoded. A frame is what :func:`convert` takes: an array in the usual shape of
    its format, or a tuple of planes.

    ``format``, ``size``, ``matrix`` and ``range`` say what frames are, ``rate`` how many a
    second there are and ``aspect`` how wide a sample is for its height, as fractions or
    None. Raw frames are full-range BT.601. Others are what the file states, or limited
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
        path: FilePath,
        *,
        format: Optional[str] = None,
        size: Optional[Size] = None,
        matrix: Optional[str] = None,
        range: Optional[str] = None,
    ) -> None:
        self.path = Path(path)
        given = None if size is None else size_of("size", size)
        try:
            self._frames = _opened(str(path), format, given)
        except ValueError as error:
            raise ValueError(f"{path}: {error}") from None
        found = self._frames.described
        self.format, self.size = found.format.name, found.size
        self.rate, self.aspect = found.rate, found.aspect
        self.matrix, self.range = matrix or found.matrix, range or found.range
        formats.colour(self.matrix, self.range)

    def __len__(self) -> int:
        return len(self._frames)

    @overload
    def __getitem__(self, index: int) -> Frame:
        ...

    @overload
    def __getitem__(self, index: slice) -> list[Frame]:
        ...

    def __getitem__(self, index: Union[int, slice]) -> Any:
        """A frame, or a list of frames. Negative indices count from the end."""
        places = range(len(self))[index]
        if isinstance(places, int):
            return self._frames.frame(places)
        return [self._frames.frame(place) for place in places]

    def __iter__(self) -> Iterator[Frame]:
        return self.run(0, len(self))

    def run(self, first: int, count: int) -> Iterator[Frame]:
        """Iterates over ``count`` frames from ``first`` on."""
        return iter(self._frames.run(first, count))

    def part(self, first: int, count: int) -> Optional[Part]:
        """What ``count`` encoded frames from ``first`` on are decoded from; None of frames
        that lie in the file as they are."""
        if isinstance(self._frames, EncodedFrames):
            return self._frames.part(first, count)
        return None

    def cuts(self, count: int) -> list[int]:
        """Where ranges of about ``count`` frames begin that can be read by themselves."""
        return self._frames.cuts(count)


def _opened(
    path: str, format: Optional[str], size: Optional[Size]
) -> Union[MappedFrames, EncodedFrames]:
    if os.stat(path).st_size == 0:
        raise ValueError("there is no frame in it")
    if mapped.is_y4m(path):
        found: Union[MappedFrames, EncodedFrames] = mapped.y4m_file(path)
    else:
        name = format or formats.of_suffix(path)
        if name is not None:
            return mapped.raw(path, _raw_frames(name, size))
        if size is not None:
            raise ValueError("raw frames need format=, too")
        found = EncodedFrames(path)
    is_of = found.described
    if format is not None and formats.named(format) is not is_of.format:
        raise ValueError(f"its frames are {is_of.format.name}, not {format}")
    if size is not None and size != is_of.size:
        raise ValueError(f"its frames are of {is_of.size[0]}x{is_of.size[1]}")
    return found


def _raw_frames(name: str, size: Optional[Size]) -> Description:
    format = formats.named(name)
    if size is None:
        raise ValueError(f"raw {format.name} frames need size=(width, height)")
    if frames.bytes_of(format, size) == 0:
        raise ValueError(f"there are no {format.name} frames of {size[0]}x{size[1]}")
    return Description(format, size, "bt601", "full")
