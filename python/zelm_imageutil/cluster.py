"""Clips that outgrow one machine, on a Dask cluster.

Tasks carry paths and ranges of frames, never pixels: every worker maps the source, and
writes its frames where they belong in the destination, so both lie in a folder that all
machines see. What a worker wrote that died is written again by another one, the same bytes.

``python -m zelm_imageutil.cluster IN OUT --to FORMAT`` does it from the command line.
"""

from __future__ import annotations

import argparse
import hashlib
import importlib
import sys
from functools import lru_cache
from pathlib import Path
from typing import Any, Callable, NamedTuple, Optional, Sequence, Tuple

from .clip import Clip
from .converted import Destination, Layout, appearing, prepare, write_frames
from .plan import Plan

Options = Tuple[Tuple[str, Any], ...]


class Range(NamedTuple):
    """Frames ``first`` to ``first + frames - 1`` of a converted clip, with the SHA-256 of
    their bytes in the file."""

    first: int
    frames: int
    sha256: str


class _Job(NamedTuple):
    """What a worker must know of a conversion."""

    source: str
    source_format: str
    source_size: Tuple[int, int]
    destination: str
    format: str
    options: Options


@lru_cache(maxsize=4)
def _opened(job: _Job) -> Tuple[Clip, Plan, Layout]:
    clip = Clip(job.source, format=job.source_format, size=job.source_size)
    return (clip, *prepare(clip, job.destination, job.format, dict(job.options)))


def _convert_range(job: _Job, temporary: str, first: int, count: int) -> str:
    """Runs on a worker: writes the frames of a range, and returns their digest."""
    clip, plan, layout = _opened(job)
    digest = hashlib.sha256()
    with open(temporary, "r+b") as file:
        file.seek(layout.start(first))
        for made in write_frames(file, plan, layout, clip[first : first + count]):
            digest.update(layout.before)
            digest.update(made.data)
    return digest.hexdigest()


def convert_clip(
    src: Clip,
    dst: Destination,
    format: str,
    client: Any,
    *,
    frames_per_task: int = 32,
    progress: Optional[Callable[[int, int], None]] = None,
    **options: Any,
) -> list[Range]:
    """Converts a clip like :func:`zelm_imageutil.convert_clip`, on a cluster.

    :param client: a ``distributed.Client``
    :param frames_per_task: how many frames a task makes
    :param progress: called with the number of frames done and of all
    :returns: the ranges that were made, in order, each with its digest
    """
    if frames_per_task < 1:
        raise ValueError(f"frames_per_task is 1 or more, not {frames_per_task}")
    layout = prepare(src, dst, format, options)[1]
    job = _Job(
        str(Path(src.path).resolve()),
        src.format,
        src.size,
        str(Path(dst).resolve()),
        format,
        tuple(sorted(options.items())),
    )
    starts = range(0, len(src), frames_per_task)
    counts = [min(frames_per_task, len(src) - first) for first in starts]
    completed = importlib.import_module("distributed").as_completed
    with appearing(Path(dst).resolve()) as temporary:
        with open(temporary, "wb") as file:
            file.write(layout.header)
            file.truncate(layout.start(len(src)))
        tasks = {
            client.submit(
                _convert_range, job, str(temporary), first, count, pure=False, retries=3
            ): (first, count)
            for first, count in zip(starts, counts)
        }
        done = 0
        for task in completed(list(tasks)):
            task.result()
            done += tasks[task][1]
            if progress is not None:
                progress(done, len(src))
        return [Range(*tasks[task], task.result()) for task in tasks]


def differing(
    path: Destination, src: Clip, format: str, ranges: Sequence[Range], **options: Any
) -> list[Range]:
    """Those ranges of a converted clip whose bytes are not what they were when it was made.

    Takes the parameters that the clip was converted with. Any machine can do it, for any
    of the ranges.
    """
    layout = prepare(src, path, format, options)[1]
    changed = []
    with open(path, "rb") as file:
        for part in ranges:
            file.seek(layout.start(part.first))
            length = layout.start(part.first + part.frames) - layout.start(part.first)
            if hashlib.sha256(file.read(length)).hexdigest() != part.sha256:
                changed.append(part)
    return changed


def _arguments(arguments: Optional[Sequence[str]]) -> argparse.Namespace:
    parser = argparse.ArgumentParser(
        prog="python -m zelm_imageutil.cluster",
        description="Converts a raw or Y4M file on a Dask cluster.",
    )
    parser.add_argument("source", metavar="IN")
    parser.add_argument("destination", metavar="OUT")
    parser.add_argument(
        "--scheduler", help="address; without it all cores of this machine"
    )
    parser.add_argument("--to", help="format to write (default: i420 for .y4m)")
    parser.add_argument(
        "--from", dest="format", help="format of raw frames (default: the suffix)"
    )
    parser.add_argument("--size", type=_size, metavar="WxH", help="size of raw frames")
    parser.add_argument("--resize", type=_size, metavar="WxH")
    parser.add_argument("--rotate", type=int, default=0, choices=(0, 90, 180, 270))
    parser.add_argument("--mirror", action="store_true")
    parser.add_argument("--filter", default="linear")
    parser.add_argument("--frames-per-task", type=int, default=32, metavar="N")
    parser.add_argument(
        "--digests", action="store_true", help="print each range's digest"
    )
    return parser.parse_args(arguments)


def _size(text: str) -> Tuple[int, int]:
    width, _, height = text.lower().partition("x")
    return int(width), int(height)


def _format_of(path: str) -> Optional[str]:
    suffix = Path(path).suffix[1:]
    return suffix if suffix.lower() not in ("", "y4m") else None


def main(arguments: Optional[Sequence[str]] = None) -> int:
    """The command line; returns the exit status."""
    given = _arguments(arguments)
    distributed = importlib.import_module("distributed")
    format = given.to or _format_of(given.destination) or "i420"
    source_format = given.format or _format_of(given.source)
    options = {"rotate": given.rotate, "mirror": given.mirror, "filter": given.filter}
    if given.resize is not None:
        options["resize"] = given.resize
    try:
        clip = Clip(given.source, format=source_format, size=given.size)
        prepare(clip, given.destination, format, options)
    except (OSError, ValueError) as error:
        print(f"zelm_imageutil.cluster: {error}", file=sys.stderr)
        return 2
    where = (
        given.scheduler
        if given.scheduler is not None
        else distributed.LocalCluster(threads_per_worker=1, dashboard_address=None)
    )
    with distributed.Client(where) as client:
        made = convert_clip(
            clip,
            given.destination,
            format,
            client,
            frames_per_task=given.frames_per_task,
            **options,
        )
    if given.digests:
        for part in made:
            print(f"{part.sha256}  {part.first}:{part.frames}")
    return 0


if __name__ == "__main__":
    # Workers know what they run by the module's own name.
    sys.exit(importlib.import_module("zelm_imageutil.cluster").main())
