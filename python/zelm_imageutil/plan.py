"""Conversions, prepared once and run for every frame."""

from __future__ import annotations

from functools import lru_cache
from typing import Any, Optional

from . import formats, frames
from . import threads as pool
from ._native import ffi, lib
from .frames import Frame
from .values import Region, Size, count_of, region_of, size_of, switch_of, turn_of

_NO_MEMORY = -12


def _message(code: int, message: Any) -> Exception:
    if code == _NO_MEMORY:
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
        kept = not self._src.rgb
        self.out_matrix = dst_matrix or (src_matrix if kept else "bt601")
        self.out_range = dst_range or (src_range if kept else "full")
        source = formats.colour(src_matrix, src_range)
        target = formats.colour(self.out_matrix, self.out_range)
        self.size = size_of("size", size)
        self._edit = edit = ffi.new("ZelmEdit *")
        part = self.size
        if crop is not None:
            edit.source = region = region_of("crop", crop)
            part = region[2:]
        edit.lumaFilter = edit.chromaFilter = formats.filter_code(filter)
        edit.turn = turn = turn_of(rotate)
        edit.mirror = switch_of("mirror", mirror)
        self.out_size = (
            size_after(part, turn) if resize is None else size_of("resize", resize)
        )
        wanted = count_of("threads", threads)
        #: What the plan was made with, as keywords.
        self.options: dict[str, Any] = {
            "size": self.size,
            "crop": None if crop is None else region_of("crop", crop),
            "resize": self.out_size,
            "rotate": turn,
            "mirror": bool(edit.mirror),
            "filter": filter,
            "src_matrix": src_matrix,
            "src_range": src_range,
            "dst_matrix": self.out_matrix,
            "dst_range": self.out_range,
            "threads": wanted,
        }
        self._source = frames.WholeFrames(self._src, self.size, source, 4096)
        self._target = frames.WholeFrames(
            self._dst, self.out_size, target, self._source.end
        )
        self._plan = ffi.gc(
            self._create(self._source.model, self._target.model), lib.zelmPlanDestroy
        )
        self._threads = min(wanted, int(lib.zelmPlanBands(self._plan)))

    def _create(self, source: Any, target: Any) -> Any:
        """A plan for frames like these."""
        plan, message = ffi.new("ZelmPlan **"), ffi.new("ZelmMessage *")
        code = lib.zelmPlanCreate(plan, target, source, self._edit, message)
        if code != 0:
            raise _message(code, message)
        return plan[0]

    def __call__(self, frame: Frame, out: Optional[Frame] = None) -> Any:
        """Converts a frame: an array or a tuple of planes, read where it lies.

        Returns a new array, or ``out`` if that is given. Any number of threads may call it
        at the same time.
        """
        source = self._source.record(frame, written=False)
        if source is not None:
            return self._run(source, out)
        return self.run(frames.of_source(self._src, frame, self.size), out)

    def empty(self) -> frames.Array:
        """An array for a frame that is written, with any content."""
        return frames.empty(self._dst, self.out_size)

    def run(self, source: frames.Planes, out: Optional[Frame] = None) -> Any:
        """The same for planes that have been found before."""
        colour = self._source.model.colour
        return self._run(frames.record_of(self._src, colour, source), out)

    def _run(self, source: Any, out: Optional[Frame]) -> Any:
        made: Frame = self.empty() if out is None else out
        target = self._target.record(made, written=True)
        if target is None:
            planes = frames.of_destination(self._dst, made, self.out_size)
            target = frames.record_of(self._dst, self._target.model.colour, planes)
        if self._threads == 1:
            code = lib.zelmPlanRun(self._plan, target, source)
        else:
            band = ffi.new("int *")
            work = lib.makeBands
            code = pool.run(
                self._threads, lambda: int(work(self._plan, band, target, source))
            )
        if code != 0:
            self._refuse(code, source, target)
        return made

    def _refuse(self, code: int, source: Any, target: Any) -> None:
        """Says why frames like these cannot be worked on."""
        if code == _NO_MEMORY:
            raise MemoryError("no memory for the frame")
        lib.zelmPlanDestroy(self._create(source, target))
        raise RuntimeError(f"the plan refuses a frame with code {code}")


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
    do not tell it: for tiled frames and arrays of one axis. All other samples are uint8.

    :param out: an array or planes to write into, of the size that is written; without it the
        frame is in one new array of the usual shape
    :returns: ``out``, or the new array
    :raises ValueError: with one sentence that says what is wrong; nothing is written then

    >>> import numpy as np
    >>> convert(np.zeros((72, 64), np.uint8), "nv12", "rgb24", resize=(32, 24)).shape
    (24, 32, 3)
    """
    format = formats.named(src)
    if size is not None:
        size = size_of("size", size)
    planes = frames.of_source(format, frame, size)
    plan = _cached_plan(
        src,
        dst,
        size=planes.size,
        crop=None if crop is None else region_of("crop", crop),
        resize=None if resize is None else size_of("resize", resize),
        rotate=turn_of(rotate),
        mirror=switch_of("mirror", mirror),
        filter=filter,
        src_matrix=src_matrix,
        src_range=src_range,
        dst_matrix=dst_matrix,
        dst_range=dst_range,
        threads=count_of("threads", threads),
    )
    return plan.run(planes, out)
