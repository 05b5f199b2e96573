"""Frames as the input of models."""

from __future__ import annotations

from typing import Any, Optional, Sequence

import numpy as np
import numpy.typing as npt

from . import formats, frames
from .frames import Array, Frame, Size
from .plan import convert, size_after


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
    if side is None:
        rgb = convert(frame, src, "rgb24", size=size, **options)
    else:
        crop = options.get("crop")
        whole = frames.of_source(formats.named(src), frame, size).size
        part = whole if crop is None else (crop[2], crop[3])
        upright = size_after(part, options.get("rotate", 0))
        x, y, width, height = letterbox(upright, side)
        rgb = np.full((side, side, 3), fill, np.uint8)
        place = rgb[y : y + height, x : x + width]
        convert(
            frame, src, "rgb24", size=size, resize=(width, height), out=place, **options
        )
    made = np.ascontiguousarray(rgb.transpose(2, 0, 1))
    if wanted == np.uint8:
        return made
    values = made.astype(np.float32)
    if mean is not None:
        values -= np.asarray(mean, np.float32).reshape(3, 1, 1)
    if scale is not None:
        values *= np.asarray(scale, np.float32).reshape(3, 1, 1)
    return values
