"""Clips that outgrow one machine, on a Dask cluster.

Tasks carry paths and ranges of frames, never pixels: every worker reads the source by
itself, and writes its frames where they belong in the destination, so both lie in a folder
that all machines see. What a worker wrote that died is written again by another one, the
same bytes. Encoded clips are cut where decoding can begin.

``python -m zelm_imageutil.cluster IN OUT`` does it from the command line.
"""

from __future__ import annotations

import argparse
import errno
import hashlib
import importlib
import os
import sys
from functools import lru_cache
from pathlib import Path
from typing import Any, Iterator, NamedTuple, Optional, Sequence, Tuple, Union

from . import encoded
from .clip import Clip, FilePath
from .converted import Layout, Progress, appearing, prepare
from .frames import Frame
from .plan import Plan
from .values import Size, count_of


class Range(NamedTuple):
    """Frames ``first`` to ``first + frames - 1`` of a converted clip, with the SHA-256 of
    their bytes in the file."""

    first: int
    frames: int
    sha256: str


class _Job(NamedTuple):
    """What a worker must know of a conversion."""

    source: str
    source_bytes: int
    source_time: int
    source_format: str
    source_size: Size
    format: str
    options: Tuple[Tuple[str, Any], ...]
    layout: Layout


@lru_cache(maxsize=4)
def _clip(job: _Job) -> Clip:
    if os.stat(job.source).st_size != job.source_bytes:
        raise ValueError(f"{job.source} is another file here than where the job began")
    return Clip(job.source, format=job.source_format, size=job.source_size)


@lru_cache(maxsize=4)
def _plan(job: _Job) -> Plan:
    return Plan(job.source_format, job.format, **dict(job.options))


def _convert_range(
    job: _Job, temporary: str, first: int, count: int, part: Optional[encoded.Part]
) -> str:
    """Runs on a worker: makes the frames of a range, and returns their digest."""
    steps: Iterator[Frame]
    if part is not None:
        steps = encoded.decoded(part)
    else:
        steps = _clip(job).run(first, count)
    plan, before, digest = _plan(job), job.layout.before, hashlib.sha256()
    out = plan.empty()
    with open(temporary, "r+b") as file:
        for index, frame in enumerate(steps, first):
            plan(frame, out)
            file.seek(job.layout.start(index))
            for piece in (before, out.data):
                file.write(piece)
                digest.update(piece)
    return digest.hexdigest()


def _ranges(clip: Clip, count: int) -> list[Tuple[int, int, Optional[encoded.Part]]]:
    """Ranges of about so many frames: the first, how many, what they are decoded from."""
    starts = clip.cuts(count)
    ends = [*starts[1:], len(clip)]
    return [
        (start, end - start, clip.part(start, end - start))
        for start, end in zip(starts, ends)
    ]


def _room_for(count: int, path: Path) -> int:
    """So many bytes, if the disk of a file has them. Taking them at once would write all of
    the file on some systems, on one machine."""
    disk = os.statvfs(path)
    if disk.f_bavail * disk.f_frsize < count:
        raise OSError(errno.ENOSPC, os.strerror(errno.ENOSPC), str(path.parent))
    return count


def convert_clip(
    src: Union[Clip, FilePath],
    dst: FilePath,
    format: Optional[str] = None,
    *,
    client: Any,
    frames_per_task: int = 32,
    progress: Optional[Progress] = None,
    **options: Any,
) -> list[Range]:
    """Converts a clip like :func:`zelm_imageutil.convert_clip`, on a cluster.

    :param client: a ``distributed.Client``
    :param frames_per_task: how many frames a task makes, at least where clips are encoded
    :param progress: called with the number of frames done and of all
    :returns: the ranges that were made, in order, each with its digest
    :raises ValueError: with one sentence that says what is wrong; what a worker raised, after
        three more tries, is raised here

    >>> import os, tempfile
    >>> from distributed import Client
    >>> folder = tempfile.mkdtemp()
    >>> path, made = os.path.join(folder, "clip.y4m"), os.path.join(folder, "clip.rgb24")
    >>> with open(path, "wb") as file:
    ...     _ = file.write(b"YUV4MPEG2 W4 H2 F25:1\\n" + 3 * (b"FRAME\\n" + bytes(12)))
    >>> with Client(processes=False, n_workers=1, dashboard_address=None) as client:
    ...     ranges = convert_clip(path, made, client=client)
    >>> [(part.first, part.frames) for part in ranges], differing(made, path, ranges)
    ([(0, 3)], [])
    """
    parts_of = count_of("frames_per_task", frames_per_task)
    clip, name, plan, layout = prepare(src, dst, format, options)
    found = os.stat(clip.path)
    job = _Job(
        str(Path(clip.path).resolve()),
        found.st_size,
        found.st_mtime_ns,
        clip.format,
        clip.size,
        name,
        tuple(plan.options.items()),
        layout,
    )
    as_completed = importlib.import_module("distributed").as_completed
    with appearing(Path(dst).resolve()) as temporary:
        with open(temporary, "wb") as file:
            file.write(layout.header)
            file.truncate(_room_for(layout.start(len(clip)), temporary))
        ranges = _ranges(clip, parts_of)
        same = ([job] * len(ranges), [str(temporary)] * len(ranges))
        tasks = client.map(_convert_range, *same, *zip(*ranges), pure=False, retries=3)
        frames_of, done = {task: r[1] for task, r in zip(tasks, ranges)}, 0
        for task in as_completed(tasks):
            if task.status != "finished":
                task.result()  # raises what the worker raised
            done += frames_of[task]
            if progress is not None:
                progress(done, len(clip))
        # All at once: many small messages at the same time have stopped a client for good.
        digests = client.gather(tasks)
        return [Range(r[0], r[1], digest) for r, digest in zip(ranges, digests)]


def differing(
    path: FilePath,
    src: Union[Clip, FilePath],
    ranges: Sequence[Range],
    format: Optional[str] = None,
    **options: Any,
) -> list[Range]:
    """Those ranges of a converted clip whose bytes are not what they were when it was made.

    Takes the parameters that the clip was converted with. Any machine can do it, for any
    of the ranges.
    """
    layout = prepare(src, path, format, options).layout
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
        description="Converts a raw, Y4M or encoded clip on a Dask cluster.",
    )
    add = parser.add_argument
    add("source", metavar="IN")
    add("destination", metavar="OUT")
    add("--scheduler", help="address; without it all cores of this machine")
    add("--to", metavar="FORMAT", help="format to write (default: OUT's suffix)")
    add(
        "--from",
        dest="format",
        metavar="FORMAT",
        help="of raw frames (default: suffix)",
    )
    add("--size", type=_numbers("x", 2), metavar="WxH", help="size of raw frames")
    add("--crop", type=_numbers(",x", 4), metavar="X,Y,WxH")
    add("--resize", type=_numbers("x", 2), metavar="WxH")
    add("--rotate", type=int, default=0, choices=(0, 90, 180, 270))
    add("--mirror", action="store_true")
    add("--filter", default="linear", help="linear, nearest or cubic")
    add("--matrix", dest="src_matrix", help="bt601, bt709 or bt2020 of IN")
    add("--range", dest="src_range", help="full or limited of IN")
    add("--to-matrix", dest="dst_matrix", help="of OUT")
    add("--to-range", dest="dst_range", help="of OUT")
    add("--frames-per-task", type=int, default=32, metavar="N")
    add("--digests", action="store_true", help="print each range's digest")
    return parser.parse_args(arguments)


def _numbers(separators: str, count: int) -> Any:
    def parse(text: str) -> Tuple[int, ...]:
        for separator in separators:
            text = text.lower().replace(separator, " ")
        numbers = tuple(int(word) for word in text.split())
        if len(numbers) != count:
            raise ValueError
        return numbers

    return parse


_OPTIONS = (
    "crop",
    "resize",
    "rotate",
    "mirror",
    "filter",
    "src_matrix",
    "src_range",
    "dst_matrix",
    "dst_range",
)


def main(arguments: Optional[Sequence[str]] = None) -> int:
    """The command line; returns the exit status."""
    given = _arguments(arguments)
    options = {name: getattr(given, name) for name in _OPTIONS}
    options = {name: value for name, value in options.items() if value is not None}
    try:
        clip = Clip(given.source, format=given.format, size=given.size)
        prepare(clip, given.destination, given.to, options)
        count_of("--frames-per-task", given.frames_per_task)
        with _machines(given.scheduler) as client:
            made = convert_clip(
                clip,
                given.destination,
                given.to,
                client=client,
                frames_per_task=given.frames_per_task,
                **options,
            )
    except (OSError, ValueError) as error:
        print(f"zelm_imageutil.cluster: {error}", file=sys.stderr)
        return 2
    if given.digests:
        for part in made:
            print(f"{part.sha256}  {part.first}:{part.frames}")
    return 0


def _machines(scheduler: Optional[str]) -> Any:
    distributed = importlib.import_module("distributed")
    if scheduler is not None:
        return distributed.Client(scheduler)
    return distributed.Client(threads_per_worker=1, dashboard_address=None)


if __name__ == "__main__":
    # Workers know what they run by the module's own name.
    sys.exit(importlib.import_module("zelm_imageutil.cluster").main())
