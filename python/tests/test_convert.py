"""convert and Plan against plain numpy."""

import multiprocessing
import re
import threading
import tracemalloc
from pathlib import Path

import numpy as np
import pytest
import zelm_imageutil
from hypothesis import given, settings
from hypothesis import strategies as st
from reference import MATRICES, noise, planes_of, turned, uniform_rgb, uniform_yuv
from zelm_imageutil import Plan, convert

PLANAR_420 = ["i420", "yv12", "nv12", "nv21"]
PLANAR_422 = ["i422", "nv16", "nv61"]
RGB = {"rgb24": [0, 1, 2], "bgr24": [2, 1, 0], "rgba": [0, 1, 2], "bgra": [2, 1, 0]}
sides = st.integers(1, 40)
seeds = st.integers(0, 2**16)


def one_array(name, width, height, seed):
    frame = noise(
        width * height + 2 * ((width + 1) // 2) * chroma_rows(name, height), seed
    )
    if width % 2 == 0:
        frame = frame.reshape(-1, width)
    return frame


def chroma_rows(name, height):
    return (height + 1) // 2 if name in PLANAR_420 else height


@settings(deadline=None, max_examples=60)
@given(sides, sides, seeds, st.sampled_from([PLANAR_420, PLANAR_422]), st.data())
def test_layouts_keep_every_sample(width, height, seed, family, data):
    src, dst = (data.draw(st.sampled_from(family)) for _ in range(2))
    rotate = data.draw(
        st.sampled_from([0, 180] if family is PLANAR_422 else [0, 90, 180, 270])
    )
    mirror = data.draw(st.booleans())
    frame = one_array(src, width, height, seed)
    made = convert(frame, src, dst, size=(width, height), rotate=rotate, mirror=mirror)
    size = (height, width) if rotate in (90, 270) else (width, height)
    for before, after in zip(
        planes_of(frame, src, width, height), planes_of(made, dst, *size)
    ):
        np.testing.assert_array_equal(after, turned(before, rotate, mirror))


@settings(deadline=None, max_examples=40)
@given(
    sides,
    sides,
    seeds,
    st.sampled_from(list(RGB)),
    st.sampled_from(list(RGB)),
    st.data(),
)
def test_rgb_crops_and_turns(width, height, seed, src, dst, data):
    frame = noise((height, width, 4 if "a" in src else 3), seed)
    x, y = data.draw(st.integers(0, width - 1)), data.draw(st.integers(0, height - 1))
    w, h = data.draw(st.integers(1, width - x)), data.draw(st.integers(1, height - y))
    rotate, mirror = data.draw(st.sampled_from([0, 90, 180, 270])), data.draw(
        st.booleans()
    )
    made = convert(frame, src, dst, crop=(x, y, w, h), rotate=rotate, mirror=mirror)
    part = frame[y : y + h, x : x + w]
    for channel in range(3):
        expected = turned(part[..., RGB[src][channel]], rotate, mirror)
        np.testing.assert_array_equal(made[..., RGB[dst][channel]], expected)
    if made.shape[2] == 4:
        alpha = turned(part[..., 3], rotate, mirror) if "a" in src else 255
        np.testing.assert_array_equal(
            made[..., 3], np.broadcast_to(alpha, made.shape[:2])
        )


@settings(deadline=None, max_examples=80)
@given(
    st.tuples(*[st.integers(0, 255)] * 3),
    st.sampled_from(sorted(MATRICES)),
    st.sampled_from(["full", "limited"]),
)
def test_colours_are_within_one_of_the_formula(values, matrix, value_range):
    described = {"matrix": matrix, "range": value_range}
    yuv = np.empty((12, 8), np.uint8)
    yuv[:8], yuv[8:] = values[0], np.tile(np.array(values[1:], np.uint8), 4)
    rgb = convert(yuv, "nv12", "rgb24", **{f"src_{k}": v for k, v in described.items()})
    expected = uniform_rgb(*map(float, values), matrix, value_range)
    assert np.abs(rgb.reshape(-1, 3) - expected).max() <= 1
    back = convert(
        np.full((8, 8, 3), values, np.uint8),
        "rgb24",
        "nv12",
        **{f"dst_{k}": v for k, v in described.items()},
    )
    expected = uniform_yuv(np.array(values, float), matrix, value_range)
    made = [p.astype(float) for p in planes_of(back, "nv12", 8, 8)]
    for plane, value in zip(made, expected):
        assert np.abs(plane - value).max() <= 1


def test_frames_are_read_and_written_where_they_lie():
    width, height = 640, 480
    plain = noise((height * 3 // 2, width))
    expected = convert(plain, "nv12", "rgb24")
    wide = np.zeros((height * 3 // 2 + 5, width + 64), np.uint8)
    wide[: height * 3 // 2, :width] = plain
    luma, pairs = wide[:height, :width], wide[height : height * 3 // 2, :width]
    chroma = (
        pairs.reshape(height // 2, width // 2, 2) if pairs.flags.c_contiguous else pairs
    )
    camera = noise((height // 2, width // 2, 2), 3)
    camera[...] = plain[height:].reshape(camera.shape)
    below = np.empty((height, width + 3, 3), np.uint8)
    upside_down = np.ascontiguousarray(plain[:height][::-1])[::-1]
    plan = Plan("nv12", "rgb24", size=(width, height))
    planar = Plan("i420", "rgb24", size=(width, height))
    tracemalloc.start()
    np.testing.assert_array_equal(plan((luma, chroma), below[:, :width]), expected)
    target = np.empty_like(expected)
    tracemalloc.reset_peak()
    before = tracemalloc.get_traced_memory()[0]
    plan((luma, chroma), target)
    plan((upside_down, plain[height:]), target)
    planar((plain[:height], camera[..., 0], camera[..., 1]), target)
    assert tracemalloc.get_traced_memory()[1] - before < 20000
    tracemalloc.stop()
    np.testing.assert_array_equal(target, expected)
    flipped = target[::-1]
    assert np.shares_memory(plan(plain, flipped), target)
    np.testing.assert_array_equal(target, expected[::-1])
    # Samples that lie in no way that the library reads are copied.
    np.testing.assert_array_equal(plan(np.asfortranarray(plain)), expected)


def test_threads_make_the_same_bytes():
    frame = noise((1080 * 3 // 2, 1920))
    options = {
        "size": (1920, 1080),
        "resize": (640, 640),
        "rotate": 90,
        "filter": "cubic",
    }
    expected = Plan("nv12", "rgba", **options)(frame)
    shared = Plan("nv12", "rgba", threads=3, **options)
    results = [None] * 4

    def work(i):
        results[i] = shared(frame)

    workers = [threading.Thread(target=work, args=(i,)) for i in range(4)]
    for worker in workers:
        worker.start()
    for worker in workers:
        worker.join()
    for result in results:
        np.testing.assert_array_equal(result, expected)


def test_every_format_to_every_other():
    for width, height in ((16, 8), (7, 5)):
        for src in zelm_imageutil.format_names():
            frame = convert(noise((height, width)), "gray", src)
            for dst in zelm_imageutil.format_names():
                again = convert(frame, src, dst, size=(width, height))
                gray = convert(again, dst, "gray", size=(width, height))
                assert gray.shape == (height, width), (src, dst)


WRONG_OPTIONS = [
    ({"src_matrix": "bt470"}, "known are bt601, bt709"),
    ({"filter": "lanczos"}, "known are linear"),
    ({"rotate": 45}, "rotate is 0, 90, 180 or 270, not 45"),
    ({"rotate": -90}, "0, 90, 180 or 270"),
    ({"rotate": "90"}, "0, 90, 180 or 270"),
    ({"mirror": 2}, "mirror is True or False, not 2"),
    ({"crop": (1, 0, 4, 4)}, "shares chroma"),
    ({"crop": (-2, 0, 4, 4)}, "crop is (x, y, width, height) in pixels"),
    ({"crop": (0, 0, 4)}, "crop is (x, y, width, height) in pixels"),
    ({"crop": (0, 0, 40, 4)}, "are not all in the frame"),
    ({"crop": (0, 0, 2**31, 4)}, "crop is (x"),
    ({"resize": (0, 4)}, "no rgb24 frames of 0x4"),
    ({"resize": 4}, "resize is (width, height) in pixels, not 4"),
    ({"resize": (4.5, 4)}, "resize is (width, height)"),
    ({"resize": (70000, 4)}, "no rgb24 frames of 70000x4"),
    ({"size": (8, 6)}, "has 8x8 pixels, not 8x6"),
    ({"size": "8x8"}, "size is (width, height)"),
    ({"threads": 0}, "threads is a number of 1 or more, not 0"),
    ({"threads": 1.5}, "threads is a number of 1 or more"),
    ({"out": np.zeros((8, 9, 3), np.uint8)}, "out=: this rgb24 frame has 9x8 pixels"),
    ({"out": np.zeros((8, 16, 3), np.uint8)[:, ::2]}, "lie side by side"),
    ({"out": np.zeros((8, 8, 4), np.uint8)}, "3 bytes per pixel"),
]
WRONG_FRAMES = [
    (lambda f: convert(f, "nv99", "rgb24"), "unknown format 'nv99'; known are i420"),
    (lambda f: convert(f, 3, "rgb24"), "unknown format 3"),
    (lambda f: convert(f[:10], "nv12", "rgb24"), "rows of luma above"),
    (lambda f: convert(f.astype(float), "nv12", "rgb24"), "samples of uint8"),
    (lambda f: convert(f.reshape(-1), "nv12", "rgb24"), "needs size="),
    (lambda f: convert(f[:, :7], "nv12", "rgb24"), "odd width is a tuple of planes"),
    (lambda f: convert(f, "rgb24", "nv12"), "3 bytes per pixel"),
    (lambda f: convert((f, f, f, f), "nv12", "gray"), "2 planes, not 4"),
    (lambda f: convert((f, f), "gray", "nv12"), "one array, not 2 planes"),
    (lambda f: convert((f[:8], f[8:10]), "nv12", "gray"), "chroma pairs"),
    (lambda f: convert(f.reshape(16, 3, 2), "yuyv", "gray"), "even number of columns"),
    (lambda f: convert(f, "nv12", "nv12", out=f), "share bytes"),
]


@pytest.mark.parametrize("options, words", WRONG_OPTIONS)
def test_wrong_options_are_refused_in_one_sentence(options, words):
    with pytest.raises(ValueError, match=re.escape(words)) as caught:
        convert(noise((12, 8)), "nv12", "rgb24", **options)
    assert "\n" not in str(caught.value)


@pytest.mark.parametrize("call, words", WRONG_FRAMES)
def test_wrong_frames_are_refused_in_one_sentence(call, words):
    with pytest.raises(ValueError, match=re.escape(words)) as caught:
        call(noise((12, 8)))
    assert "\n" not in str(caught.value)


def test_numbers_may_be_of_any_kind():
    frame = noise((12, 8))
    made = convert(
        frame,
        "NV12",
        "rgb24",
        size=[8, np.int64(8)],
        resize=np.array([6, 4]),
        crop=[np.uint8(0), 2, 6, 6],
        rotate=np.int32(90),
        mirror=np.True_,
    )
    expected = convert(
        frame, "nv12", "rgb24", resize=(6, 4), crop=(0, 2, 6, 6), rotate=90, mirror=True
    )
    np.testing.assert_array_equal(made, expected)


def test_a_forked_child_has_threads_of_its_own():
    frame = noise((1080 * 3 // 2, 1920))
    expected = convert(frame, "nv12", "gray", threads=2)
    context = multiprocessing.get_context("fork")
    answers = context.SimpleQueue()

    def child():
        made = convert(frame, "nv12", "gray", threads=2)
        answers.put(bool((made == expected).all()))

    process = context.Process(target=child)
    process.start()
    process.join(60)
    if process.is_alive():
        process.kill()
        pytest.fail("the child waits for threads that it has not")
    assert answers.get()


def test_read_only_frames_are_read_and_not_written():
    frame = noise((12, 8))
    frame.flags.writeable = False
    assert convert(frame, "nv12", "rgb24").shape == (8, 8, 3)
    with pytest.raises(ValueError, match="read-only"):
        convert(noise((12, 8), 2), "nv12", "nv21", out=frame)


def test_declarations_are_those_of_the_header():
    folder = Path(__file__).resolve().parents[2]
    header = (folder / "include/zelm_frames.h").read_text()
    declared = (folder / "python/build_native.py").read_text().split('"""')[3]

    def functions(text):
        text = re.sub(r"/\*.*?\*/", " ", text, flags=re.S).replace(
            "ZELM_FRAMES_API", ""
        )
        found = re.findall(r"[\w ]+[\s*]+zelm\w+\([^;]*\);", text)
        return {re.sub(r"\s+", " ", f).strip() for f in found}

    mine = functions(declared)
    assert len(mine) == 6 and mine <= functions(header)
