"""Conversions, prepared once and run for every frame."""

from __future__ import annotations

import threading
from concurrent.futures import ThreadPoolExecutor
from functools import lru_cache
from typing import Any, Optional, Tuple

from . import formats, frames
from ._native import ffi, lib
from .frames import Frame, Size

Region = Tuple[int, int, int, int]


def _message(code: int, message: Any) -> Exception:
    if code == -12:
        return MemoryError("no memory for the plan")
    return ValueError(ffi.string(message.text).decode())


def size_after(part: Size, rotate: int) -> Size:
    """Width and height of a part of a frame after a turn."""
    return (part[1], part[0]) if rotate in (90, 270) else (part[0], part[1])


class Plan:
    """A conversion of frames of one format and size, prepared once.

    :param src: format of the frames that are read, for example ``"nv12"``
    :param dst: format of the frames that are written, for example ``"rgb24"``
    :param size: width and height of the frames that are read, in pixels
    :param crop: x, y, width and height of the part that is taken; all of it by default
    :param resize: width and height of what is written, after the turn
    :param rotate: 0, 90, 180 or 270 degrees clockwise
    :param mirror: exchanges left and right, after the turn
    :param filter: ``"linear"``, ``"nearest"`` or ``"cubic"``
    :param src_matrix: ``"bt601"``, ``"bt709"`` or ``"bt2020"``; ``src_range`` is ``"full"``
        or ``"limited"``. Both are of YUV; RGB has none.
    :param dst_matrix: the same of what is written. By default YUV keeps what the source
        has, and YUV made of RGB is full-range BT.601.
    :param threads: how many threads make a frame; the bytes are the same with any number
    :raises ValueError: with one sentence that says what is wrong

    >>> import numpy as np
    >>> plan = Plan("nv12", "rgb24", size=(64, 48), src_range="limited", src_matrix="bt709")
    >>> white = np.full((72, 64), 128, np.uint8)
    >>> white[:48] = 235
    >>> plan(white)[0, 0].tolist()
    [255, 255, 255]
    """

    def __init__(
        self,
        src: str,
        dst: str,
        *,
        size: Size,
        crop: Optional[Region] = None,
        resize: Optional[Size] = None,
        rotate: int = 0,
        mirror: bool = False,
        filter: str = "linear",
        src_matrix: str = "bt601",
        src_range: str = "full",
        dst_matrix: Optional[str] = None,
        dst_range: Optional[str] = None,
        threads: int = 1,
    ) -> None:
        self._src, self._dst = formats.named(src), formats.named(dst)
        if threads < 1:
            raise ValueError(f"threads is 1 or more, not {threads}")
        kept = not self._src.rgb
        self.out_matrix = dst_matrix or (src_matrix if kept else "bt601")
        self.out_range = dst_range or (src_range if kept else "full")
        self._colours = (
            formats.colour(src_matrix, src_range),
            formats.colour(self.out_matrix, self.out_range),
        )
        part = size if crop is None else (crop[2], crop[3])
        self.size: Size = (int(size[0]), int(size[1]))
        self.out_size: Size = (
            size_after(part, rotate)
            if resize is None
            else (int(resize[0]), int(resize[1]))
        )
        code = formats.filter_code(filter)
        edit = ffi.new("ZelmEdit *")
        if crop is not None:
            if min(crop) < 0:
                raise ValueError(f"crop {crop} begins outside of the frame")
            edit.source = tuple(crop)
        edit.lumaFilter = edit.chromaFilter = code
        edit.turn, edit.mirror = rotate, int(mirror)
        self._plan = self._prepare(edit)
        self._bands = int(lib.zelmPlanBands(self._plan))
        self._threads = min(threads, self._bands)
        self._pool: Optional[ThreadPoolExecutor] = None
        self._lock = threading.Lock()

    def _prepare(self, edit: Any) -> Any:
        for format, size in ((self._src, self.size), (self._dst, self.out_size)):
            if frames.bytes_of(format, size) == 0:
                raise ValueError(
                    f"there are no {format.name} frames of {size[0]}x{size[1]}"
                )
        # Nothing of these is touched.
        examples = [
            frames.of_source(format, frames.empty(format, size), size)
            for format, size in ((self._src, self.size), (self._dst, self.out_size))
        ]
        plan, message = ffi.new("ZelmPlan **"), ffi.new("ZelmMessage *")
        source, target = self._records(*examples)
        code = lib.zelmPlanCreate(plan, target, source, edit, message)
        if code != 0:
            raise _message(code, message)
        return ffi.gc(plan[0], lib.zelmPlanDestroy)

    def _records(self, source: frames.Planes, target: frames.Planes) -> tuple[Any, Any]:
        from_, to = ffi.new("ZelmFrame *"), ffi.new("ZelmFrame *")
        frames.fill(from_, self._src, self._colours[0], source)
        frames.fill(to, self._dst, self._colours[1], target)
        return from_, to

    def __call__(self, frame: Frame, out: Optional[Frame] = None) -> Any:
        """Converts a frame: an array or a tuple of planes, read where it lies.

        Returns a new array, or ``out`` if that is given. Any number of threads may call it
        at the same time.
        """
        return self.run(frames.of_source(self._src, frame, self.size), out)

    def empty(self) -> frames.Array:
        """An array for a frame that is written, with any content."""
        return frames.empty(self._dst, self.out_size)

    def run(self, source: frames.Planes, out: Optional[Frame] = None) -> Any:
        """The same for planes that have been found before."""
        made: Frame = self.empty() if out is None else out
        target = frames.of_destination(self._dst, made, self.out_size)
        from_, to = self._records(source, target)
        if self._threads == 1:
            code = lib.zelmPlanRun(self._plan, to, from_)
        else:
            code = self._run_bands(to, from_)
        if code == -9:
            raise ValueError("the frame and out= share bytes")
        if code != 0:
            raise MemoryError("no memory") if code == -12 else ValueError(
                f"refused: {code}"
            )
        return made

    def _run_bands(self, to: Any, from_: Any) -> int:
        with self._lock:
            if self._pool is None:
                self._pool = ThreadPoolExecutor(self._threads - 1, "zelm_imageutil")

        def share(first: int) -> int:
            for band in range(first, self._bands, self._threads):
                code = int(lib.zelmPlanRunBand(self._plan, band, to, from_))
                if code != 0:
                    return code
            return 0

        others = [self._pool.submit(share, i) for i in range(1, self._threads)]
        codes = [share(0)] + [other.result() for other in others]
        return min(codes)


@lru_cache(maxsize=32)
def _cached_plan(src: str, dst: str, **options: Any) -> Plan:
    return Plan(src, dst, **options)


def convert(
    frame: Frame,
    src: str,
    dst: str,
    *,
    size: Optional[Size] = None,
    crop: Optional[Region] = None,
    resize: Optional[Size] = None,
    rotate: int = 0,
    mirror: bool = False,
    filter: str = "linear",
    src_matrix: str = "bt601",
    src_range: str = "full",
    dst_matrix: Optional[str] = None,
    dst_range: Optional[str] = None,
    out: Optional[Frame] = None,
    threads: int = 1,
) -> Any:
    """Converts one frame; see :class:`Plan` for what the options mean.

    ``frame`` is an array in the usual shape of its format, or a tuple of planes with any
    strides: ``(height * 3 // 2, width)`` for 4:2:0 and ``(height * 2, width)`` for 4:2:2 with
    planes, ``(height, width, 2)`` for YUYV and UYVY, ``(height, width, 3)`` or ``4`` for RGB,
    ``(height, width)`` for gray and, of uint16, for RGB565. ``size`` is needed where shapes
    do not tell it: for tiled frames and arrays of one axis.

    >>> import numpy as np
    >>> convert(np.zeros((72, 64), np.uint8), "nv12", "rgb24", resize=(32, 24)).shape
    (24, 32, 3)
    """
    format = formats.named(src)
    planes = frames.of_source(format, frame, size)
    plan = _cached_plan(
        src,
        dst,
        size=planes.size,
        crop=None if crop is None else tuple(crop),
        resize=None if resize is None else tuple(resize),
        rotate=rotate,
        mirror=bool(mirror),
        filter=filter,
        src_matrix=src_matrix,
        src_range=src_range,
        dst_matrix=dst_matrix,
        dst_range=dst_range,
        threads=threads,
    )
    return plan.run(planes, out)
