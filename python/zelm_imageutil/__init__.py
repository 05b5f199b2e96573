"""Converts, crops, scales, turns and mirrors camera and video frames in numpy arrays.

>>> import numpy as np
>>> import zelm_imageutil
>>> nv12 = np.zeros((720 * 3 // 2, 1280), np.uint8)
>>> rgb = zelm_imageutil.convert(nv12, "nv12", "rgb24", src_matrix="bt709")
>>> rgb.shape
(720, 1280, 3)
"""

from .clip import Clip
from .converted import convert_clip
from .formats import names as format_names
from .plan import Plan, convert
from .tensor import letterbox, to_tensor

__all__ = [
    "Clip",
    "Plan",
    "convert",
    "convert_clip",
    "format_names",
    "letterbox",
    "to_tensor",
]
