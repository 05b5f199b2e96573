"""Clips that are converted into files."""

from __future__ import annotations

import importlib
import importlib.util
import os
import tempfile
from contextlib import contextmanager
from pathlib import Path
from typing import (
    Any,
    BinaryIO,
    Callable,
    Iterable,
    Iterator,
    NamedTuple,
    Optional,
    Tuple,
    Union,
)

from . import formats, frames
from .clip import Clip, usual_matrix
from .frames import Frame
from .plan import Plan

_Y4M_CHROMA = {"i420": "420jpeg", "i422": "422", "gray": "mono"}
Destination = Union[str, "os.PathLike[str]"]


class Layout(NamedTuple):
    """How converted frames lie in a file: a header, and something before every frame."""

    header: bytes
    before: bytes
    frame_bytes: int

    def start(self, index: int) -> int:
        """Where a frame begins, with what stands before it."""
        return len(self.header) + index * (len(self.before) + self.frame_bytes)


def prepare(
    src: Clip, dst: Destination, format: str, options: dict[str, Any]
) -> Tuple[Plan, Layout]:
    """The plan for a clip's frames, and how they lie in a raw file or, by its name, in a
    Y4M file. The colours are the clip's unless the options say otherwise."""
    colours: dict[str, Any] = {"src_matrix": src.matrix, "src_range": src.range}
    plan = Plan(src.format, format, size=src.size, **{**colours, **options})
    count = frames.bytes_of(formats.named(format), plan.out_size)
    if Path(dst).suffix.lower() != ".y4m":
        return plan, Layout(b"", b"", count)
    return plan, Layout(_header(src, format, plan), b"FRAME\n", count)


def _header(src: Clip, format: str, plan: Plan) -> bytes:
    name = formats.named(format).name
    if name not in _Y4M_CHROMA:
        raise ValueError(f"Y4M holds {', '.join(_Y4M_CHROMA)} and cannot hold {name}")
    width, height = plan.out_size
    tags = [f"W{width} H{height} F{src.rate or '25:1'} Ip A1:1 C{_Y4M_CHROMA[name]}"]
    tags.append(f"XCOLORRANGE={plan.out_range.upper()}")
    if plan.out_matrix != usual_matrix(plan.out_size):
        tags.append(f"XCOLORMATRIX={plan.out_matrix.upper().replace('BT', 'BT.')}")
    return f"YUV4MPEG2 {' '.join(tags)}\n".encode()


@contextmanager
def appearing(dst: Destination) -> Iterator[Path]:
    """A file beside ``dst`` that takes its name when all is well, and goes away if not."""
    target = Path(dst)
    handle, name = tempfile.mkstemp(prefix=".zelm-", dir=target.parent)
    os.close(handle)
    try:
        yield Path(name)
        mask = os.umask(0)
        os.umask(mask)
        os.chmod(name, 0o666 & ~mask)
        os.replace(name, target)
    except BaseException:
        os.unlink(name)
        raise


def write_frames(
    file: BinaryIO, plan: Plan, layout: Layout, steps: Iterable[Frame]
) -> Iterator[frames.Array]:
    """Writes converted frames one behind the other; each is valid until the next one."""
    out = plan.empty()
    for frame in steps:
        plan(frame, out)
        file.write(layout.before)
        file.write(out.data)
        yield out


def convert_clip(
    src: Clip,
    dst: Destination,
    format: str,
    *,
    progress: Optional[Callable[[int, int], None]] = None,
    **options: Any,
) -> None:
    """Converts all frames of a clip into a raw file, or a Y4M file by its name.

    ``options`` are those of :class:`Plan`; the source's colours are the clip's unless they
    say otherwise. ``progress`` is called with the number of frames done and of all;
    without it a bar is shown where tqdm is installed. The file appears under its name
    when it is complete.
    """
    plan, layout = prepare(src, dst, format, options)
    steps: Iterator[Frame] = iter(src)
    if progress is None:
        steps = _with_bar(steps, len(src))
    with appearing(dst) as temporary, open(temporary, "wb") as file:
        file.write(layout.header)
        for done, _ in enumerate(write_frames(file, plan, layout, steps), 1):
            if progress is not None:
                progress(done, len(src))


def _with_bar(steps: Iterator[Frame], total: int) -> Iterator[Frame]:
    if importlib.util.find_spec("tqdm") is None:
        return steps
    bar = importlib.import_module("tqdm").tqdm
    return iter(bar(steps, total=total, unit=" frames"))
