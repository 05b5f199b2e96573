"""What conversions are to give, in plain numpy: layouts sample by sample, colours by the
formula with real numbers."""

import subprocess

import numpy as np

MATRICES = {
    "bt601": (0.299, 0.114),
    "bt709": (0.2126, 0.0722),
    "bt2020": (0.2627, 0.0593),
}


def noise(shape, seed=1):
    return np.random.default_rng(seed).integers(0, 256, shape, np.uint8)


def uniform_rgb(y, u, v, matrix, value_range):
    """The colour of a picture that is y, u, v everywhere."""
    kr, kb = MATRICES[matrix]
    if value_range == "limited":
        y, u, v = (y - 16) * 255 / 219, (u - 128) * 255 / 224, (v - 128) * 255 / 224
    else:
        u, v = u - 128, v - 128
    r, b = y + 2 * (1 - kr) * v, y + 2 * (1 - kb) * u
    g = (y - kr * r - kb * b) / (1 - kr - kb)
    return np.clip([r, g, b], 0, 255)


def uniform_yuv(rgb, matrix, value_range):
    kr, kb = MATRICES[matrix]
    r, g, b = rgb
    y = kr * r + (1 - kr - kb) * g + kb * b
    u, v = (b - y) / (2 * (1 - kb)), (r - y) / (2 * (1 - kr))
    if value_range == "limited":
        return np.array([16 + y * 219 / 255, 128 + u * 224 / 255, 128 + v * 224 / 255])
    return np.clip([y, 128 + u, 128 + v], 0, 255)


def planes_of(frame, name, width, height):
    """Y, U and V of a frame in one array of a format with planes."""
    flat = frame.reshape(-1)
    rows, columns = height, (width + 1) // 2
    if name in ("i420", "yv12", "nv12", "nv21"):
        rows = (height + 1) // 2
    y = flat[: width * height].reshape(height, width)
    chroma = flat[width * height :]
    if name in ("nv12", "nv21", "nv16", "nv61"):
        pairs = chroma.reshape(rows, columns, 2)
        u, v = pairs[..., 0], pairs[..., 1]
    else:
        u, v = chroma.reshape(2, rows, columns)
    return (y, v, u) if name in ("nv21", "nv61", "yv12") else (y, u, v)


def turned(plane, rotate, mirror):
    made = np.rot90(plane, -rotate // 90)
    return made[:, ::-1] if mirror else made


def ffmpeg(name, folder, *arguments):
    command = ["ffmpeg", "-v", "error", *map(str, arguments), name]
    subprocess.run(command, check=True, cwd=folder)
