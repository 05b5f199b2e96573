"""Clips that are converted into files."""

from __future__ import annotations

import importlib
import importlib.util
import os
import tempfile
from contextlib import contextmanager
from fractions import Fraction
from pathlib import Path
from typing import Any, Callable, Iterable, Iterator, NamedTuple, Optional, Union

from . import formats, y4m
from .clip import Clip, FilePath
from .description import Description
from .plan import Plan, size_after

Progress = Callable[[int, int], None]


class Layout(NamedTuple):
    """How converted frames lie in a file: a header, and something before every frame."""

    header: bytes
    before: bytes
    frame_bytes: int

    def start(self, index: int) -> int:
        """Where a frame begins, with what stands before it."""
        return len(self.header) + index * (len(self.before) + self.frame_bytes)


class Conversion(NamedTuple):
    """A clip, the plan for its frames, and how they lie in the file that is made."""

    clip: Clip
    format: str
    plan: Plan
    layout: Layout


def prepare(
    src: Union[Clip, FilePath],
    dst: FilePath,
    format: Optional[str],
    options: dict[str, Any],
) -> Conversion:
    """What it takes to convert a clip into a raw file or, by its name, a Y4M file. The
    colours are the clip's unless the options say otherwise."""
    clip = src if isinstance(src, Clip) else Clip(src)
    is_y4m = Path(dst).suffix.lower() == ".y4m"
    name = formats.named(
        format or (_in_y4m(clip.format) if is_y4m else _of_destination(dst))
    ).name
    colours: dict[str, Any] = {"src_matrix": clip.matrix, "src_range": clip.range}
    plan = Plan(clip.format, name, size=clip.size, **{**colours, **options})
    made = Description(
        formats.named(name),
        plan.out_size,
        plan.out_matrix,
        plan.out_range,
        clip.rate,
        _aspect_after(clip.aspect, plan),
    )
    header, before = (y4m.header(made), y4m.FRAME) if is_y4m else (b"", b"")
    return Conversion(clip, name, plan, Layout(header, before, made.bytes))


def _in_y4m(format: str) -> str:
    """The format of Y4M frames that keeps most of another one."""
    if format in ("i422", "nv16", "nv61", "yuyv", "uyvy"):
        return "i422"
    return "gray" if format == "gray" else "i420"


def _of_destination(dst: FilePath) -> str:
    name = formats.of_suffix(dst)
    if name is None:
        raise ValueError(
            f"{dst}: its suffix is no format, such as .y4m or .rgb24; format= says one"
        )
    return name


def _aspect_after(aspect: Optional[Fraction], plan: Plan) -> Optional[Fraction]:
    """A sample's aspect after turning and scaling, which keep that of the picture."""
    if aspect is None:
        return None
    crop, turn = plan.options["crop"], plan.options["rotate"]
    before = size_after(plan.size if crop is None else crop[2:], turn)
    if turn in (90, 270):
        aspect = 1 / aspect
    after = plan.out_size
    return aspect * Fraction(before[0] * after[1], before[1] * after[0])


@contextmanager
def appearing(dst: FilePath) -> Iterator[Path]:
    """A file beside ``dst`` that takes its name when all is well, and goes away if not."""
    target = Path(dst)
    handle, name = tempfile.mkstemp(prefix=".zelm-", dir=target.parent)
    try:
        mask = os.umask(0)
        os.umask(mask)
        os.fchmod(handle, 0o666 & ~mask)
        os.close(handle)
        yield Path(name)
        os.replace(name, target)
    except BaseException:
        os.unlink(name)
        raise


def convert_clip(
    src: Union[Clip, FilePath],
    dst: FilePath,
    format: Optional[str] = None,
    *,
    progress: Optional[Progress] = None,
    **options: Any,
) -> None:
    """Converts all frames of a clip into a raw file, or a Y4M file by its name.

    :param src: a :class:`Clip`, or the path of one that says by itself what it holds
    :param dst: path; its suffix says the format where ``format`` does not, as in
        ``"a.rgb24"``. A Y4M file keeps the subsampling of its source.
    :param progress: called with the number of frames done and of all; without it a bar is
        shown where tqdm is installed and standard error is a terminal
    :raises ValueError: with one sentence that says what is wrong

    The other options are those of :class:`Plan`; the source's colours are the clip's unless
    they say otherwise. The file appears under its name when it is complete.

    >>> import os, tempfile
    >>> folder = tempfile.mkdtemp()
    >>> with open(os.path.join(folder, "clip.y4m"), "wb") as file:
    ...     _ = file.write(b"YUV4MPEG2 W4 H2 F25:1\\n" + 3 * (b"FRAME\\n" + bytes(12)))
    >>> made = os.path.join(folder, "clip.rgb24")
    >>> convert_clip(os.path.join(folder, "clip.y4m"), made, resize=(8, 4))
    >>> os.path.getsize(made)
    288
    """
    clip, _, plan, layout = prepare(src, dst, format, options)
    frames: Iterable[Any] = clip if progress is not None else _with_bar(clip)
    with appearing(dst) as temporary, open(temporary, "wb") as file:
        file.write(layout.header)
        out = plan.empty()
        for done, frame in enumerate(frames, 1):
            plan(frame, out)
            file.write(layout.before)
            file.write(out.data)
            if progress is not None:
                progress(done, len(clip))


def _with_bar(clip: Clip) -> Iterable[Any]:
    if importlib.util.find_spec("tqdm") is None:
        return clip
    bar = importlib.import_module("tqdm").tqdm
    shown: Iterable[Any] = bar(clip, total=len(clip), unit=" frames", disable=None)
    return shown
