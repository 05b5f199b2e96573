"""Frames as the input of models."""

from __future__ import annotations

from typing import Any, Optional, Sequence

import numpy as np
import numpy.typing as npt

from . import formats, frames
from ._native import ffi, lib
from .frames import Array, Frame
from .plan import convert, size_after
from .values import Size, count_of, region_of, size_of


def letterbox(size: Size, side: int) -> tuple[int, int, int, int]:
    """Where a picture of this size stands in a square: x, y, width and height.

    The longer side fills the square, the shorter one is rounded to the nearest pixel and
    stands in the middle, one pixel higher or further left where it cannot.

    >>> letterbox((1920, 1080), 640)
    (0, 140, 640, 360)
    """
    longer = max(size)
    width, height = (max(1, (2 * s * side + longer) // (2 * longer)) for s in size)
    return (side - width) // 2, (side - height) // 2, width, height


def to_tensor(
    frame: Frame,
    src: str,
    *,
    side: Optional[int] = None,
    size: Optional[Size] = None,
    mean: Optional[Sequence[float]] = None,
    scale: Optional[Sequence[float]] = None,
    fill: int = 114,
    dtype: npt.DTypeLike = np.uint8,
    **options: Any,
) -> Array:
    """A frame as RGB with channels first, of the shape (3, height, width).

    :param side: scales it into a square of that many pixels, with ``fill`` around it
    :param mean: of each channel, subtracted from its values of 0 to 255
    :param scale: of each channel, multiplied afterwards
    :param dtype: ``uint8`` without mean and scale, or ``float32``
    :raises ValueError: with one sentence that says what is wrong

    Float values are computed as ``(value - mean) * scale`` in float32, in this order, so they
    are the same on every machine. The other options are those of :func:`convert`.

    >>> import numpy as np
    >>> to_tensor(np.zeros((72, 64), np.uint8), "nv12", side=32).shape
    (3, 32, 32)
    """
    wanted = np.dtype(dtype)
    if wanted not in (np.dtype(np.uint8), np.dtype(np.float32)):
        raise ValueError(f"dtype is uint8 or float32, not {wanted}")
    if wanted == np.uint8 and (mean is not None or scale is not None):
        raise ValueError("mean and scale need dtype=float32")
    subtracted, multiplied = _of_channels("mean", mean, 0), _of_channels(
        "scale", scale, 1
    )
    if side is None:
        rgb: Array = convert(frame, src, "rgb24", size=size, **options)
    else:
        rgb = _in_square(frame, src, count_of("side", side), size, fill, options)
    pixels = rgb.shape[0] * rgb.shape[1]
    made = np.empty((3, *rgb.shape[:2]), wanted)
    source = ffi.from_buffer("uint8_t[]", rgb)
    if wanted == np.uint8:
        lib.channelsFirst(source, pixels, ffi.from_buffer("uint8_t[]", made))
    else:
        target = ffi.from_buffer("float[]", made)
        lib.channelsFirstFloat(source, pixels, subtracted, multiplied, target)
    return made


def _of_channels(name: str, values: Optional[Sequence[float]], default: float) -> Any:
    found = np.asarray([default] * 3 if values is None else values, np.float32)
    if found.shape != (3,):
        raise ValueError(f"{name} is three numbers, not {values!r}")
    return ffi.new("float[3]", found.tolist())


def _in_square(
    frame: Frame,
    src: str,
    side: int,
    size: Optional[Size],
    fill: int,
    options: dict[str, Any],
) -> Array:
    if "resize" in options or "out" in options:
        raise ValueError("side= scales by itself, without resize= and out=")
    if not 0 <= fill <= 255:
        raise ValueError(f"fill is a byte, not {fill!r}")
    crop = options.get("crop")
    given = None if size is None else size_of("size", size)
    whole = frames.of_source(formats.named(src), frame, given).size
    part = whole if crop is None else region_of("crop", crop)[2:]
    x, y, width, height = letterbox(size_after(part, options.get("rotate", 0)), side)
    square = np.full((side, side, 3), fill, np.uint8)
    place = square[y : y + height, x : x + width]
    resize = (width, height)
    convert(frame, src, "rgb24", size=size, resize=resize, out=place, **options)
    return square
