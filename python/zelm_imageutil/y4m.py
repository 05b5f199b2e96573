"""The headers of Y4M files."""

from __future__ import annotations

from fractions import Fraction
from typing import Optional

from . import formats
from .description import Description, ratio, usual_matrix

MAGIC = b"YUV4MPEG2 "
FRAME = b"FRAME\n"
# The first of a format is the one that is written.
_CHROMA = {
    "420jpeg": "i420",
    "420": "i420",
    "420mpeg2": "i420",
    "420paldv": "i420",
    "422": "i422",
    "mono": "gray",
}
_MATRIX_TAGS = {"bt.601": "bt601", "bt.709": "bt709", "bt.2020": "bt2020"}


def parsed(line: bytes) -> Description:
    """What a header's first line says."""
    sides = {"W": 0, "H": 0}
    chroma, value_range, matrix = "420", "limited", ""
    rate: Optional[Fraction] = None
    aspect: Optional[Fraction] = None
    for tag in line[len(MAGIC) :].decode("ascii", "replace").split():
        kind, rest = tag[0], tag[1:]
        name, _, value = tag.lower().partition("=")
        if kind in sides:
            if not rest.isdecimal():
                raise ValueError(f"the Y4M header's {tag} is no width or height")
            sides[kind] = int(rest)
        elif kind == "C":
            chroma = rest
        elif kind == "F":
            rate = ratio(rest)
        elif kind == "A":
            aspect = ratio(rest)
        elif name == "xcolorrange" and value in ("full", "limited"):
            value_range = value
        elif name == "xcolormatrix":
            matrix = _MATRIX_TAGS.get(value, "")
    if chroma not in _CHROMA:
        raise ValueError(
            f"Y4M with chroma C{chroma} cannot be read; ffmpeg -pix_fmt yuv420p makes it so"
        )
    size = sides["W"], sides["H"]
    return Description(
        formats.named(_CHROMA[chroma]),
        size,
        matrix or usual_matrix(size),
        value_range,
        rate,
        aspect,
    )


def holds(format: formats.Format) -> bool:
    """Whether a Y4M file can have frames of this format."""
    return format.name in _CHROMA.values()


def header(frames: Description) -> bytes:
    """The first line of a file of such frames, with its end."""
    if not holds(frames.format):
        known = ", ".join(dict.fromkeys(_CHROMA.values()))
        raise ValueError(f"Y4M holds {known} and cannot hold {frames.format.name}")
    chroma = [c for c, name in _CHROMA.items() if name == frames.format.name][0]
    rate, aspect = frames.rate or Fraction(25), frames.aspect or Fraction(1)
    tags = [
        f"W{frames.size[0]} H{frames.size[1]} F{rate.numerator}:{rate.denominator} Ip",
        f"A{aspect.numerator}:{aspect.denominator} C{chroma}",
        f"XCOLORRANGE={frames.range.upper()}",
    ]
    if frames.format.chroma and frames.matrix != usual_matrix(frames.size):
        tags.append(f"XCOLORMATRIX={frames.matrix.upper().replace('BT', 'BT.')}")
    return MAGIC + " ".join(tags).encode() + b"\n"
