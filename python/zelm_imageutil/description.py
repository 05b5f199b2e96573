"""What the frames of a clip are."""

from __future__ import annotations

from dataclasses import dataclass
from fractions import Fraction
from typing import Optional

from . import formats, frames
from .values import Size


def usual_matrix(size: Size) -> str:
    """The matrix of video that says nothing about it, as players take it."""
    return "bt709" if size[0] >= 1280 or size[1] >= 720 else "bt601"


@dataclass(frozen=True)
class Description:
    """Format, size and colour of frames; frames per second and the aspect of a sample where
    they are known."""

    format: formats.Format
    size: Size
    matrix: str
    range: str
    rate: Optional[Fraction] = None
    aspect: Optional[Fraction] = None

    @property
    def bytes(self) -> int:
        """The bytes of a frame without padding."""
        return frames.bytes_of(self.format, self.size)


def ratio(text: str) -> Optional[Fraction]:
    """``"30000:1001"`` as a fraction; None for what says nothing, such as ``"0:0"``."""
    over, _, under = text.partition(":")
    if not (over.isdecimal() and under.isdecimal()) or int(over) * int(under) == 0:
        return None
    return Fraction(int(over), int(under))
