"""What callers give, checked."""

from __future__ import annotations

import operator
from typing import Any, Sequence, Tuple

import numpy as np

Size = Tuple[int, int]
Region = Tuple[int, int, int, int]
_MOST = 2**31


def _numbers(name: str, value: Any, count: int, what: str) -> Tuple[int, ...]:
    """``value`` as so many whole numbers of 0 or more."""
    try:
        found = tuple(operator.index(number) for number in value)
    except TypeError:
        found = ()
    if len(found) != count or not all(0 <= number < _MOST for number in found):
        raise ValueError(f"{name} is {what}, not {value!r}")
    return found


def size_of(name: str, value: Any) -> Size:
    """``value`` as width and height."""
    width, height = _numbers(name, value, 2, "(width, height) in pixels")
    return width, height


def region_of(name: str, value: Any) -> Region:
    """``value`` as x, y, width and height."""
    x, y, width, height = _numbers(name, value, 4, "(x, y, width, height) in pixels")
    return x, y, width, height


def _one_of(name: str, value: Any, known: Sequence[int], words: str) -> int:
    if isinstance(value, (int, np.integer, np.bool_)) and value in known:
        return int(value)
    raise ValueError(f"{name} is {words}, not {value!r}")


def turn_of(value: Any) -> int:
    """``value`` as a turn in degrees."""
    return _one_of("rotate", value, (0, 90, 180, 270), "0, 90, 180 or 270")


def switch_of(name: str, value: Any) -> bool:
    """``value`` as something that is done or not."""
    return bool(_one_of(name, value, (0, 1), "True or False"))


def count_of(name: str, value: Any) -> int:
    """``value`` as a number of things, of which there is at least one."""
    if not isinstance(value, (int, np.integer)) or value < 1:
        raise ValueError(f"{name} is a number of 1 or more, not {value!r}")
    return int(value)
