"""Arrays as frames: where each plane lies, without copying it."""

from __future__ import annotations

from typing import Any, NamedTuple, Optional, Sequence, Union

import numpy as np
import numpy.typing as npt

from ._native import ffi, lib
from .formats import Format
from .values import Size

Array = npt.NDArray[Any]
Frame = Union[Array, Sequence[Array]]


class Plane(NamedTuple):
    """A plane in memory: what ZelmPlane says, and the array that keeps it alive."""

    array: Array
    stride: int
    step: int
    bytes: int


class Planes(NamedTuple):
    """The planes of a frame of a size, width and height."""

    size: Size
    planes: tuple[Plane, ...]


def half(side: int) -> int:
    """A side of chroma, rounded up."""
    return (side + 1) // 2


def _rows(format: Format, height: int) -> int:
    """The rows of chroma of so many rows of pixels."""
    return half(height) if format.rows_shared == 2 else height


def bytes_of(format: Format, size: Size) -> int:
    """The bytes of a frame without padding; 0 if there are no frames of that size."""
    if min(size) < 1:
        return 0
    return int(lib.zelmFrameBytes(format.code, *size, 1))


def shape_of(format: Format, size: Size) -> tuple[int, ...]:
    """The shape of a frame in one array of bytes, or of uint16 for formats of words."""
    width, height = size
    if format.layout == "pixels":
        return (
            height,
            width + width % 2 if format.channels == 2 else width,
            format.channels,
        )
    if format.layout in ("gray", "words"):
        return (height, width)
    if format.chroma and width % 2 == 0:
        return (height + _rows(format, height), width)
    return (bytes_of(format, size),)


def dtype_of(format: Format) -> Any:
    """The type of a frame's samples in one array."""
    return np.dtype(np.uint16 if format.layout == "words" else np.uint8)


def empty(format: Format, size: Size) -> Array:
    """An array for a frame, with any content."""
    return np.empty(shape_of(format, size), dtype_of(format))


def _fail(format: Format, what: str, array: Array) -> ValueError:
    return ValueError(
        f"{format.name} {what}, not an array of {array.dtype} with the shape {array.shape}"
    )


def _other_size(format: Format, found: Size, size: Size) -> ValueError:
    return ValueError(
        f"this {format.name} frame has {found[0]}x{found[1]} pixels, not {size[0]}x{size[1]}"
    )


def _plane(array: Array, row_bytes: int, step: int = 0) -> Optional[Plane]:
    """A plane whose rows are the array's first axis; None if its samples do not lie so.

    ``row_bytes`` are the bytes from the first to the last byte of a row.
    """
    rows = array.shape[0]
    stride = array.strides[0] if rows > 1 else row_bytes
    if abs(stride) < row_bytes or not array.flags.aligned:
        return None
    return Plane(array, stride, step, abs(stride) * (rows - 1) + row_bytes)


def _packed(array: Array) -> bool:
    """Whether all axes but the first lie side by side."""
    expected = array.itemsize
    for length, stride in zip(array.shape[:0:-1], array.strides[:0:-1]):
        if length > 1 and stride != expected:
            return False
        expected *= length
    return True


def _luma(array: Array) -> Optional[Plane]:
    return _plane(array, array.shape[1]) if _packed(array) else None


def _one_plane(format: Format, array: Array, size: Optional[Size]) -> Planes | None:
    """Gray, pixels and words, which have one plane."""
    words = format.layout == "words" and array.dtype == np.uint16
    axes = 2 if format.layout == "gray" or words else 3
    if array.ndim != axes or (axes == 3 and array.shape[2] != format.channels):
        raise _fail(format, f"has {format.channels} bytes per pixel", array)
    height, columns = array.shape[:2]
    width = columns if size is None else size[0]
    if size is not None and (
        size[1] != height or not width <= columns <= width + width % 2
    ):
        raise _other_size(format, (columns, height), size)
    if format.layout == "pixels" and format.channels == 2 and columns % 2:
        raise _fail(
            format, "has an even number of columns, also for an odd width,", array
        )
    if not _packed(array):
        return None
    plane = _plane(array, columns * format.channels)
    return None if plane is None else Planes((width, height), (plane,))


def _split(format: Format, array: Array, size: Optional[Size]) -> Planes | None:
    """Luma above chroma in one array, as video libraries hand such frames out."""
    if array.ndim != 2:
        raise _fail(
            format, "in one array has rows of luma above those of chroma", array
        )
    rows, width = array.shape
    height = rows // 2 if format.rows_shared == 1 else (rows * 2 + 1) // 3
    if size is not None and size != (width, height):
        raise _other_size(format, (width, height), size)
    if width % 2:
        raise _fail(
            format, "of an odd width is a tuple of planes or has one axis", array
        )
    if height < 1 or rows != height + _rows(format, height):
        raise _fail(
            format, "in one array has rows of luma above those of chroma", array
        )
    if not _packed(array):
        return None
    luma, chroma = array[:height], array[height:]
    if format.layout == "pairs":
        first, second = _luma(luma), _luma(chroma)
        return (
            None if not (first and second) else Planes((width, height), (first, second))
        )
    if not array.flags.c_contiguous:
        return None
    planes = chroma.reshape(2, _rows(format, height), width // 2)
    parts = [_luma(p) for p in (luma, planes[0], planes[1])]
    return Planes((width, height), tuple(p for p in parts if p is not None))


def _chroma_plane(array: Array) -> Optional[Plane]:
    """U or V, whose samples may lie two bytes apart."""
    step = array.strides[1] if array.shape[1] > 1 else 1
    if step not in (1, 2):
        return None
    return _plane(array, step * (array.shape[1] - 1) + 1, step)


def _of_planes(
    format: Format, planes: Sequence[Array], size: Optional[Size]
) -> Planes | None:
    """A tuple of planes, each with strides of its own."""
    wanted = 3 if format.layout == "planar" else 2
    if not format.chroma or len(planes) != wanted:
        raise ValueError(
            f"{format.name} is {f'{wanted} planes' if format.chroma else 'one array'}, "
            f"not {len(planes)} planes"
        )
    luma = planes[0]
    if luma.ndim != 2:
        raise _fail(format, "has a luma plane of two axes", luma)
    height, width = luma.shape
    if size is not None and size != (width, height):
        raise _other_size(format, (width, height), size)
    rows, columns = _rows(format, height), half(width)
    found = [_luma(luma)]
    for chroma in planes[1:]:
        if format.layout == "planar":
            if chroma.shape != (rows, columns):
                raise _fail(format, f"has chroma planes of {rows} x {columns}", chroma)
            found.append(_chroma_plane(chroma))
        else:
            if chroma.shape not in ((rows, columns, 2), (rows, 2 * columns)):
                raise _fail(
                    format, f"has {rows} rows of {columns} chroma pairs", chroma
                )
            found.append(_plane(chroma, 2 * columns) if _packed(chroma) else None)
    if any(p is None for p in found):
        return None
    return Planes((width, height), tuple(p for p in found if p is not None))


def _whole_buffer(format: Format, array: Array, size: Optional[Size]) -> Planes | None:
    """All planes one behind the other in an array of one axis."""
    if size is None:
        raise ValueError(
            f"{format.name} in an array of one axis needs size=(width, height)"
        )
    needed = bytes_of(format, size)
    if needed == 0 or array.shape != (needed,):
        raise _fail(format, f"of {size[0]}x{size[1]} has {needed} bytes", array)
    if array.strides[0] != 1:
        return None
    record = ffi.new("ZelmFrame *")
    start = ffi.cast("uint8_t *", array.__array_interface__["data"][0])
    lib.zelmFrameInit(record, format.code, *size, start, needed, 1)
    planes = [plane for plane in record.planes if plane.data != ffi.NULL]
    offsets = [plane.data - start for plane in planes]
    return Planes(
        size,
        tuple(
            Plane(array[offset : offset + plane.size], plane.stride, 0, plane.size)
            for plane, offset in zip(planes, offsets)
        ),
    )


def _look(format: Format, frame: Frame, size: Optional[Size]) -> Planes | None:
    if not isinstance(frame, np.ndarray):
        planes = list(frame)
        for plane in planes:
            _require_bytes(format, plane)
        if len(planes) == 1:
            return _look(format, planes[0], size)
        return _of_planes(format, planes, size)
    _require_bytes(format, frame)
    if frame.ndim == 1:
        return _whole_buffer(format, frame, size)
    if format.layout == "tiles":
        raise _fail(format, "is an array of one axis", frame)
    if format.chroma:
        return _split(format, frame, size)
    return _one_plane(format, frame, size)


def _require_bytes(format: Format, array: Any) -> None:
    if not isinstance(array, np.ndarray):
        raise TypeError(
            f"a frame is an array or a tuple of arrays, not {type(array).__name__}"
        )
    words = format.layout == "words" and array.dtype == np.dtype("<u2")
    if array.dtype != np.uint8 and not words:
        raise _fail(format, "has samples of uint8", array)
    if array.size == 0:
        raise _fail(format, "has pixels", array)


def of_source(format: Format, frame: Frame, size: Optional[Size]) -> Planes:
    """The planes of a frame that is read. What lies in no way that the library can read is
    copied."""
    found = _look(format, frame, size)
    if found is None:
        if isinstance(frame, np.ndarray):
            found = _look(format, np.ascontiguousarray(frame), size)
        else:
            found = _look(format, [np.ascontiguousarray(p) for p in frame], size)
    if found is None:
        raise ValueError(f"{format.name}: this frame's strides cannot be read")
    return found


def of_destination(format: Format, frame: Frame, size: Size) -> Planes:
    """The planes of a frame that is written, which must be where the caller has it."""
    try:
        found = _look(format, frame, size)
    except ValueError as error:
        raise ValueError(f"out=: {error}") from None
    if found is None:
        raise ValueError(
            f"out=: {format.name} has samples that lie side by side, not with such strides"
        )
    for plane in found.planes:
        if not plane.array.flags.writeable:
            raise ValueError("out= is read-only")
    return found


def record_of(format: Format, colour: int, found: Planes) -> Any:
    """A ZelmFrame for these planes."""
    record = ffi.new("ZelmFrame *")
    record.format = format.code
    record.width, record.height = found.size
    record.colour = colour
    for target, plane in zip(record.planes, found.planes):
        address = plane.array.__array_interface__["data"][0]
        target.data = ffi.cast("uint8_t *", address)
        target.stride = plane.stride
        target.step = plane.step
        target.size = plane.bytes
    return record


class WholeFrames:
    """Frames of one format and size that fill one array of the usual shape. Most frames do,
    and a look tells whether one does."""

    def __init__(self, format: Format, size: Size, colour: int, place: int) -> None:
        """The model's frame begins at ``place``; nothing is there or touched there."""
        count = bytes_of(format, size)
        if count == 0:
            raise ValueError(
                f"there are no {format.name} frames of {size[0]}x{size[1]}"
            )
        self._shape, self._dtype = shape_of(format, size), dtype_of(format)
        self.end = place + count
        self.model = ffi.new("ZelmFrame *")
        start = ffi.cast("uint8_t *", place)
        lib.zelmFrameInit(self.model, format.code, *size, start, count, 1)
        self.model.colour = colour

    def record(self, frame: Frame, written: bool) -> Any:
        """A ZelmFrame for an array that is such a frame, None for any other frame."""
        if not (
            type(frame) is np.ndarray
            and frame.shape == self._shape
            and frame.dtype == self._dtype
        ):
            return None
        flags = frame.flags
        if not (
            flags.c_contiguous and flags.aligned and (flags.writeable or not written)
        ):
            return None
        record = ffi.new("ZelmFrame *")
        lib.placeFrame(record, self.model, ffi.from_buffer(frame))
        return record
