"""Draws the pictures of docs/python-gallery.md, and prints its figures.

Run by docs/python-gallery.sh; the one argument is the folder to write into.
"""

import sys
from pathlib import Path

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
import numpy as np
from reference import MATRICES, uniform_rgb
from zelm_imageutil import Plan, convert

DESCRIPTIONS = [(m, r) for r in ("full", "limited") for m in MATRICES]
FILTERS = {"nearest": "tab:gray", "linear": "tab:blue", "cubic": "tab:red"}
TO = Path(sys.argv[1])

plt.rcParams.update({"font.size": 9, "axes.grid": True, "grid.alpha": 0.3})
plt.rcParams["svg.hashsalt"] = "zelm"


def save(figure, name):
    metadata = {"Date": None} if name.endswith(".svg") else {}
    figure.savefig(TO / name, dpi=110, bbox_inches="tight", metadata=metadata)
    plt.close(figure)


PATCHES = (
    "c0392b e67e22 f1c40f 27ae60 16a085 2980b9 8e44ad d81b60 "
    "ffdbac e0ac69 c68642 8d5524 556b2f 708090 4682b4 b0c4de "
    "bf0000 bfbf00 00bf00 00bfbf 0000bf bf00bf 202020 e0e0e0"
).split()


def patches(side):
    """Colours in squares: prints, skins, and the bars of test pictures."""
    rgb = np.array([list(bytes.fromhex(colour)) for colour in PATCHES], np.uint8)
    return rgb.reshape(3, 8, 3).repeat(side, axis=0).repeat(side, axis=1)


def colours():
    """One frame, limited BT.709, read by each of the six descriptions. In the middle of
    each square is the colour that it has."""
    rgb = patches(32)
    rows, columns = (np.abs(np.arange(n) % 32 - 15.5) < 8 for n in rgb.shape[:2])
    inside = rows[:, None] & columns
    nv12 = convert(rgb, "rgb24", "nv12", dst_matrix="bt709", dst_range="limited")
    figure, axes = plt.subplots(2, 3, figsize=(9, 2.9))
    for axis, (matrix, value_range) in zip(axes.flat, DESCRIPTIONS):
        read = convert(nv12, "nv12", "rgb24", src_matrix=matrix, src_range=value_range)
        off = np.abs(read.astype(int) - rgb)[inside]
        axis.imshow(np.where(inside[..., None], rgb, read))
        axis.set_axis_off()
        right = (matrix, value_range) == ("bt709", "limited")
        axis.set_title(
            f"{matrix}, {value_range}" + (": what it is" if right else ""),
            fontweight="bold" if right else "normal",
        )
        print(f"{matrix} {value_range}: off by {off.mean():.1f}, at most {off.max()}")
    figure.tight_layout()
    save(figure, "colours.png")


def edge(axis):
    """An edge that is enlarged sixteen times."""
    row = np.array([40] * 4 + [200] * 5 + [90] * 3, np.uint8)
    frame = np.repeat(row[None], 4, axis=0)
    wide = (len(row) - 1) * 16 + 1
    for filter, colour in FILTERS.items():
        made = convert(frame, "gray", "gray", resize=(wide, 4), filter=filter)
        axis.plot(np.arange(wide) / 16, made[1], colour, label=filter, lw=1.3)
    axis.plot(row, "ko", ms=4, label="samples")
    axis.set(xlabel="column of the source", ylabel="luma", title="Enlarging 16 times")
    axis.legend(fontsize=8)


def amplitude(frequency, width, filter):
    """How much of a wave is left when a picture is reduced to a third, at any phase."""
    phases = np.linspace(0, 2 * np.pi, 8, endpoint=False)[:, None]
    wave = 128 + 100 * np.sin(2 * np.pi * frequency * np.arange(width) + phases)
    frame = np.rint(wave).astype(np.uint8).repeat(12, axis=0)
    small = convert(frame, "gray", "gray", resize=(width // 3, 32), filter=filter)
    return small[:, 4:-4].std() * np.sqrt(2) / 100


def waves(axis):
    """What is left of waves after reducing to a third. Odd sizes are not averaged."""
    frequencies = np.linspace(0.004, 0.496, 124)
    taken = [(filter, 1536, "-") for filter in FILTERS] + [("linear", 1539, "--")]
    for filter, width, style in taken:
        left = [amplitude(frequency, width, filter) for frequency in frequencies]
        name = f"{filter}, without averages" if width % 2 else filter
        axis.plot(frequencies, left, FILTERS[filter], ls=style, label=name, lw=1.3)
    axis.axvline(1 / 6, color="k", lw=0.8, ls=":")
    axis.set(
        xlabel="waves per column of the source; dotted: the limit of the result",
        ylabel="amplitude that is left",
        ylim=(0, 1.05),
        title="Reducing to a third",
    )
    axis.legend(fontsize=8, loc="lower left")


def filters():
    figure, (left, right) = plt.subplots(1, 2, figsize=(9, 3.4))
    edge(left)
    waves(right)
    figure.tight_layout()
    save(figure, "filters.svg")


BINS = np.linspace(-0.75, 0.75, 151)


def errors(matrix, value_range):
    """How far all 16 777 216 colours of YUV are from the formula: a histogram, the most,
    and the share of bytes that are the nearest to it."""
    plan = Plan(
        "nv12", "rgb24", size=(256, 2), src_matrix=matrix, src_range=value_range
    )
    y = np.arange(256)
    frame, out = np.empty((3, 256), np.uint8), plan.empty()
    frame[:2] = y
    counts, most, nearest = np.zeros(len(BINS) - 1, np.int64), 0.0, 0
    for u in range(256):
        made, real = np.empty((256, 256, 3)), np.empty((256, 3, 256))
        for v in range(256):
            frame[2, 0::2], frame[2, 1::2] = u, v
            made[v] = plan(frame, out)[0]
            real[v] = uniform_rgb(y, u, v, matrix, value_range)
        off = made - real.transpose(0, 2, 1)
        counts += np.histogram(off, BINS)[0]
        most = max(most, np.abs(off).max())
        nearest += np.count_nonzero(np.abs(off) <= 0.5)
    return counts, most, nearest / (3 * 256**3)


def exactness():
    figure, axes = plt.subplots(2, 3, figsize=(9, 4.4), sharex=True, sharey=True)
    middle = (BINS[1:] + BINS[:-1]) / 2
    for axis, (matrix, value_range) in zip(axes.flat, DESCRIPTIONS):
        counts, most, nearest = errors(matrix, value_range)
        axis.fill_between(middle, counts, step="mid", color="tab:blue", lw=0)
        axis.axvline(-0.5, color="k", lw=0.8, ls=":")
        axis.axvline(0.5, color="k", lw=0.8, ls=":")
        axis.set(
            yscale="log",
            ylim=(1e4, 1e8),
            title=f"{matrix}, {value_range}: at most {most:.3f}",
        )
        print(f"{matrix} {value_range}: at most {most:.3f}, nearest {nearest:.5f}")
    for axis in axes[1]:
        axis.set_xlabel("byte less the real number")
    for axis in axes[:, 0]:
        axis.set_ylabel("bytes")
    figure.tight_layout()
    save(figure, "exactness.png")


colours()
filters()
exactness()
