"""The threads that make bands of frames."""

from __future__ import annotations

import os
from concurrent.futures import Future, ThreadPoolExecutor
from typing import Callable

_MOST = 256


def _new() -> ThreadPoolExecutor:
    """Its threads start when they are needed."""
    return ThreadPoolExecutor(_MOST, "zelm_imageutil")


class _Pool:
    executor = _new()


def _after_fork() -> None:
    # The threads of the parent are not there in a child.
    _Pool.executor = _new()


if hasattr(os, "register_at_fork"):
    os.register_at_fork(after_in_child=_after_fork)


def run(threads: int, work: Callable[[], int]) -> int:
    """Calls ``work`` on the calling thread and ``threads - 1`` others at the same time, and
    returns the lowest of its values."""
    others: list[Future[int]] = [
        _Pool.executor.submit(work) for _ in range(threads - 1)
    ]
    try:
        mine = work()
    finally:
        values = [other.result() for other in others]
    return min([mine, *values])
