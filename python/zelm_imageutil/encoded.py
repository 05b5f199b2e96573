"""Frames of encoded clips, which PyAV decodes."""

from __future__ import annotations

import importlib
import os
import re
import threading
from bisect import bisect_left, bisect_right
from fractions import Fraction
from typing import Any, Iterator, NamedTuple, Optional, Tuple

import numpy as np

from . import formats
from .description import Description, usual_matrix
from .frames import Array, Frame, half

_FORMATS = {
    "yuv420p": "i420",
    "yuvj420p": "i420",
    "yuv422p": "i422",
    "yuvj422p": "i422",
    "nv12": "nv12",
    "nv21": "nv21",
    "nv16": "nv16",
    "yuyv422": "yuyv",
    "uyvy422": "uyvy",
    "gray": "gray",
    "rgb24": "rgb24",
    "bgr24": "bgr24",
    "rgba": "rgba",
    "bgra": "bgra",
    "rgb565le": "rgb565",
    "bgr565le": "bgr565",
}
# Of the numbers and names that decoders give to a stream's matrix and range.
_MATRICES = {1: "bt709", 5: "bt601", 6: "bt601", 9: "bt2020", 10: "bt2020"}
_MATRIX_NAMES = {
    "bt709": "bt709",
    "bt470bg": "bt601",
    "smpte170m": "bt601",
    "bt2020nc": "bt2020",
    "bt2020c": "bt2020",
}
_FULL = 2
# Beginnings that are tried before that of the clip.
_TRIED = 3


def _av() -> Any:
    try:
        return importlib.import_module("av")
    except ImportError:
        raise ValueError(
            "is neither Y4M nor raw frames of a known format (format= and size= say it), "
            "and PyAV, which reads encoded clips, is not installed (python3-av)"
        ) from None


class Part(NamedTuple):
    """Frames ``first`` to ``first + length - 1`` of a clip.

    ``begins`` are time stamps where decoding can begin, from the nearest one on; None is the
    beginning of the clip. ``times`` are those of the frames; without any they are counted
    from the first frame of the clip.
    """

    path: str
    frames: Description
    first: int
    length: int
    begins: Tuple[Optional[int], ...]
    times: Optional[Tuple[int, ...]]


class EncodedFrames:
    """Frames that are decoded when they are asked for.

    ``times`` and ``keys`` are the time stamps of all frames in the order of display and the
    indices of those that decoding can begin at, found by reading all packets once.
    """

    def __init__(self, path: str) -> None:
        self._path = os.path.realpath(path)
        self.times, self.keys = self._scan()
        self.described = self._describe()
        self._lock = threading.Lock()
        self._next = 0
        self._going: Optional[Iterator[Frame]] = None

    def __len__(self) -> int:
        return len(self.times)

    def _scan(self) -> tuple[list[int], list[int]]:
        with _open(self._path) as container:
            packets = [
                (packet.pts, packet.is_keyframe)
                for packet in container.demux(_stream(container))
                if packet.size
            ]
        if not packets:
            raise ValueError("there is no frame in it")
        stamps = sorted(pts for pts, _ in packets if pts is not None)
        if len(set(stamps)) != len(packets):
            # Without a time of its own a frame is found by counting from the first one.
            return list(range(len(packets))), [0]
        keys = [bisect_left(stamps, pts) for pts, is_key in packets if is_key]
        return stamps, sorted({0, *keys})

    def _describe(self) -> Description:
        with _open(self._path) as container:
            stream = _stream(container)
            frame = next(container.decode(stream), None)
            if frame is None:
                raise ValueError("there is no frame in it")
            name, size = frame.format.name, (frame.width, frame.height)
            if name not in _FORMATS:
                raise ValueError(
                    f"its frames are {name}, which cannot be taken as they are; "
                    "ffmpeg -pix_fmt yuv420p makes others of them"
                )
            matrix, value_range = _colour(frame, stream)
            rate, aspect = stream.average_rate, stream.sample_aspect_ratio
            return Description(
                formats.named(_FORMATS[name]),
                size,
                matrix or usual_matrix(size),
                "full" if name.startswith("yuvj") else value_range,
                Fraction(rate) if rate else None,
                Fraction(aspect) if aspect else None,
            )

    def part(self, first: int, count: int) -> Part:
        """What the frames of a range are decoded from."""
        if self.keys == [0]:
            return Part(self._path, self.described, first, count, (None,), None)
        nearest = bisect_right(self.keys, first)
        keys = self.keys[max(0, nearest - _TRIED) : nearest][::-1]
        begins = tuple(self.times[key] for key in keys if key > 0)
        times = tuple(self.times[first : first + count])
        return Part(self._path, self.described, first, count, (*begins, None), times)

    def run(self, first: int, count: int) -> Iterator[Frame]:
        """The frames of a range, in order."""
        return decoded(self.part(first, count))

    def frame(self, index: int) -> Frame:
        """One frame. The next one is found without decoding anew what is before it."""
        with self._lock:
            key = self.keys[bisect_right(self.keys, index) - 1]
            if self._going is None or not key <= self._next <= index:
                self._next, self._going = key, self.run(key, len(self) - key)
            for frame in self._going:
                self._next += 1
                if self._next > index:
                    return frame
            raise ValueError(f"{self._path}: frame {index} cannot be decoded")

    def cuts(self, count: int) -> list[int]:
        """Where ranges of about so many frames begin that can be read by themselves: at
        frames that decoding can begin at."""
        found = [0]
        for key in self.keys:
            if key - found[-1] >= count:
                found.append(key)
        return found


def decoded(part: Part) -> Iterator[Frame]:
    """The frames of a part of a clip, in order.

    Where a stream was cut so that frames behind a key refer to what is before it, the
    decoder leaves them out, and is given an earlier beginning.
    """
    done = 0
    for begin in part.begins:
        for frame in _decoded_from(begin, part, done):
            yield frame
            done += 1
        if done == part.length:
            return
    raise ValueError(f"{part.path}: frame {part.first + done} cannot be decoded")


def _decoded_from(begin: Optional[int], part: Part, done: int) -> Iterator[Frame]:
    """Those frames that come behind a beginning, without a gap, from the one on of which
    the others are done."""
    with _open(part.path) as container:
        stream = _stream(container)
        if begin is not None:
            container.seek(begin, stream=stream)
        for number, frame in enumerate(container.decode(stream)):
            if done == part.length:
                return
            if part.times is None:
                place, wanted = number, part.first + done
            elif frame.pts is None:
                continue
            else:
                place, wanted = frame.pts, part.times[done]
            if place > wanted:
                return
            if place == wanted:
                yield _planes(part, frame)
                done += 1


def _planes(part: Part, frame: Any) -> Frame:
    name, size, format = (
        frame.format.name,
        (frame.width, frame.height),
        part.frames.format,
    )
    if size != part.frames.size or _FORMATS.get(name) != format.name:
        raise ValueError(
            f"{part.path}: its frames change to {name} of {size[0]}x{size[1]}"
        )
    return _views(format, frame)


def _views(format: formats.Format, frame: Any) -> Frame:
    """A decoded frame's planes where the decoder put them."""
    width, height = frame.width, frame.height
    rows = [
        np.frombuffer(plane, np.uint8).reshape(-1, plane.line_size)
        for plane in frame.planes
    ]
    if format.layout in ("planar", "pairs"):
        chroma_rows = half(height) if format.rows_shared == 2 else height
        chroma_bytes = half(width) * (1 if format.layout == "planar" else 2)
        chroma = [plane[:chroma_rows, :chroma_bytes] for plane in rows[1:]]
        return (rows[0][:height, :width], *chroma)
    columns = width + width % 2 if format.name in ("yuyv", "uyvy") else width
    used: Array = rows[0][:height, : columns * format.channels]
    return used if format.layout == "gray" else used.reshape(height, columns, -1)


def _open(path: str) -> Any:
    av = _av()
    try:
        return av.open(path)
    except av.error.FFmpegError as error:
        raise ValueError(f"cannot be read as a clip: {error}") from None


def _stream(container: Any) -> Any:
    if not container.streams.video:
        raise ValueError("there is no video in it")
    return container.streams.video[0]


def _colour(frame: Any, stream: Any) -> tuple[Optional[str], str]:
    """Matrix and range that the stream states; limited where it states none."""
    if hasattr(frame, "colorspace"):
        is_full = int(frame.color_range) == _FULL
        return _MATRICES.get(int(frame.colorspace)), "full" if is_full else "limited"
    # Older releases of PyAV do not hand these out, but a filter prints them.
    av, logging = importlib.import_module("av.filter"), _logging()
    graph = av.Graph()
    source, printer = graph.add_buffer(template=stream), graph.add("showinfo")
    sink = graph.add("buffersink")
    source.link_to(printer)
    printer.link_to(sink)
    graph.configure()
    before = logging.get_level()
    logging.set_level(logging.INFO)
    try:
        with logging.Capture(local=True) as lines:
            source.push(frame)
            sink.pull()
    finally:
        logging.set_level(before)
    text = "".join(line[2] for line in lines)
    matrix = re.search(r"color_space:(\w+)", text)
    value_range = re.search(r"color_range:(\w+)", text)
    return (
        _MATRIX_NAMES.get(matrix.group(1)) if matrix else None,
        "full" if value_range and value_range.group(1) == "pc" else "limited",
    )


def _logging() -> Any:
    return importlib.import_module("av.logging")
