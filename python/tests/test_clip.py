"""Clips, converted clips and tensors."""

import shutil
from fractions import Fraction

import numpy as np
import pytest
from reference import ffmpeg, noise, uniform_rgb
from zelm_imageutil import Clip, convert, convert_clip, letterbox, to_tensor


def write_y4m(path, tags, frames):
    lines = [b"FRAME Ixyz\n" if i == 1 else b"FRAME\n" for i in range(len(frames))]
    bodies = [line + frame.tobytes() for line, frame in zip(lines, frames)]
    path.write_bytes(b"YUV4MPEG2 " + tags.encode() + b"\n" + b"".join(bodies))


def test_y4m_frames_are_views_of_the_file(tmp_path):
    frames = [noise((9, 8), i) for i in range(3)]
    tags = "W8 H6 F30000:1001 A10:11 C420mpeg2 XCOLORRANGE=Full XCOLORMATRIX=bt.709"
    write_y4m(tmp_path / "a.y4m", tags, frames)
    clip = Clip(tmp_path / "a.y4m")
    assert (len(clip), clip.format, clip.size) == (3, "i420", (8, 6))
    assert (clip.range, clip.matrix) == ("full", "bt709")
    assert (clip.rate, clip.aspect) == (Fraction(30000, 1001), Fraction(10, 11))
    for made, frame in zip(clip, frames):
        np.testing.assert_array_equal(made, frame)
        assert not made.flags.owndata and not made.flags.writeable
    np.testing.assert_array_equal(clip[-1], frames[2])
    assert [f[0, 0] for f in clip[1:]] == [f[0, 0] for f in frames[1:]]
    with pytest.raises(IndexError):
        clip[3]


@pytest.mark.parametrize(
    "tags, expected",
    [
        ("W8 H6", ("i420", "limited", "bt601")),
        ("W1280 H2 C422", ("i422", "limited", "bt709")),
        ("W2 H720 Cmono XCOLORRANGE=FULL", ("gray", "full", "bt709")),
        ("W8 H6 XCOLORMATRIX=BT.2020", ("i420", "limited", "bt2020")),
        ("W7 H5", ("i420", "limited", "bt601")),
    ],
)
def test_y4m_says_what_frames_are(tmp_path, tags, expected):
    width, height = (int(t[1:]) for t in tags.split()[:2])
    chroma = {"i420": (height + 1) // 2, "i422": height, "gray": 0}[expected[0]]
    frame = noise(width * height + 2 * chroma * ((width + 1) // 2))
    write_y4m(tmp_path / "a.y4m", tags, [frame])
    clip = Clip(tmp_path / "a.y4m")
    assert (clip.format, clip.range, clip.matrix) == expected
    np.testing.assert_array_equal(clip[0].reshape(-1), frame)


def test_raw_frames(tmp_path):
    frames = noise((4, 6, 8, 2))
    frames.tofile(tmp_path / "a.raw")
    for name, shape in (("yuyv", (6, 8, 2)), ("bgr565", (6, 8, 2)), ("nv16", (12, 8))):
        (tmp_path / "a.raw").rename(tmp_path / f"a.{name}")
        clip = Clip(tmp_path / f"a.{name}", size=(8, 6), range="limited")
        (tmp_path / f"a.{name}").rename(tmp_path / "a.raw")
        assert clip.format == name and clip.range == "limited"
        assert len(clip) == 4 and clip[2].shape == shape
        np.testing.assert_array_equal(clip[2].reshape(-1), frames[2].reshape(-1))
        assert convert(clip[2], name, "rgb24").shape == (6, 8, 3)


@pytest.mark.parametrize(
    "content, options, words",
    [
        (b"", {}, "no frame"),
        (bytes(100), {"format": "nv12"}, "need size="),
        (bytes(100), {"size": (8, 6)}, "need format="),
        (bytes(100), {"format": "nv12", "size": (8, 6)}, "28 of the 72 bytes"),
        (bytes(100), {"format": "nv12", "size": (0, 6)}, "no nv12 frames"),
        (b"YUV4MPEG2 W8 H6\nFRAME\n" + bytes(71), {}, "frame 0 is cut short"),
        (b"YUV4MPEG2 W8 H6\nFRAMES\n" + bytes(72), {}, "does not begin with FRAME"),
        (b"YUV4MPEG2 W8 H6 C444\nFRAME\n", {}, "C444"),
        (b"YUV4MPEG2 Wx H6\nFRAME\n", {}, "no width"),
        (b"YUV4MPEG2 W8 H6", {}, "a line has no end"),
        (b"YUV4MPEG2 W8 H6\n", {"format": "nv12"}, "i420, not nv12"),
        (b"YUV4MPEG2 W8 H6\n", {"size": (6, 8)}, "of 8x6"),
    ],
)
def test_damaged_clips_are_refused(tmp_path, content, options, words):
    (tmp_path / "a").write_bytes(content)
    with pytest.raises(ValueError, match=words):
        Clip(tmp_path / "a", **options)


def test_converted_clips(tmp_path):
    frames = [noise((9, 8), i) for i in range(5)]
    write_y4m(tmp_path / "a.y4m", "W8 H6 F24:1 A4:3", frames)
    clip, calls = Clip(tmp_path / "a.y4m"), []
    convert_clip(clip, tmp_path / "b.rgb", "rgb24", progress=lambda *n: calls.append(n))
    assert calls == [(i, 5) for i in range(1, 6)]
    made = np.fromfile(tmp_path / "b.rgb", np.uint8).reshape(5, 6, 8, 3)
    for rgb, frame in zip(made, frames):
        np.testing.assert_array_equal(
            rgb, convert(frame, "i420", "rgb24", src_range="limited")
        )
    options = {
        "resize": (4, 8),
        "rotate": 90,
        "dst_range": "full",
        "dst_matrix": "bt709",
    }
    convert_clip(clip, tmp_path / "c.y4m", "i420", progress=lambda *n: None, **options)
    again = Clip(tmp_path / "c.y4m")
    assert (again.size, again.range, again.matrix) == ((4, 8), "full", "bt709")
    # A picture of 8 x 6 samples of 4:3, turned, on 4 x 8 samples.
    assert (again.rate, again.aspect) == (24, Fraction(6 * 3 * 8, 8 * 4 * 4))
    np.testing.assert_array_equal(
        again[4], convert(frames[4], "i420", "i420", src_range="limited", **options)
    )

    def stop(done, total):
        raise KeyboardInterrupt

    with pytest.raises(KeyboardInterrupt):
        convert_clip(clip, tmp_path / "d.rgb", "rgb24", progress=stop)
    with pytest.raises(ValueError, match="cannot hold nv12"):
        convert_clip(clip, tmp_path / "d.y4m", "nv12")
    with pytest.raises(ValueError, match="its suffix is no format"):
        convert_clip(clip, tmp_path / "d.bin")
    convert_clip(tmp_path / "a.y4m", tmp_path / "e.rgb24")
    assert (tmp_path / "e.rgb24").read_bytes() == (tmp_path / "b.rgb").read_bytes()
    (tmp_path / "e.rgb24").unlink()
    assert sorted(p.name for p in tmp_path.iterdir()) == ["a.y4m", "b.rgb", "c.y4m"]


def test_frames_are_those_of_ffmpeg(tmp_path):
    if shutil.which("ffmpeg") is None:
        pytest.skip("no ffmpeg")
    source = ["-f", "lavfi", "-i", "testsrc2=size=66x34:rate=25:duration=0.2"]
    ffmpeg("a.y4m", tmp_path, *source, "-pix_fmt", "yuv420p")
    ffmpeg("a.nv12", tmp_path, *source, "-pix_fmt", "nv12", "-f", "rawvideo")
    y4m = Clip(tmp_path / "a.y4m")
    raw = Clip(tmp_path / "a.nv12", size=(66, 34))
    assert len(y4m) == len(raw) == 5
    for a, b in zip(y4m, raw):
        np.testing.assert_array_equal(convert(a, "i420", "nv12"), b)


def test_letterboxes():
    assert letterbox((1080, 1920), 640) == (140, 0, 360, 640)
    assert letterbox((100, 100), 33) == (0, 0, 33, 33)
    assert letterbox((1000, 1), 64) == (0, 31, 64, 1)
    assert letterbox((3, 2), 10) == (0, 1, 10, 7)


def test_tensors():
    frame = np.empty((72, 64), np.uint8)
    frame[:48], frame[48:, ::2], frame[48:, 1::2] = 200, 90, 160
    colour = uniform_rgb(200.0, 90.0, 160.0, "bt601", "full")
    tensor = to_tensor(frame, "nv12", side=32, fill=7)
    assert tensor.shape == (3, 32, 32) and tensor.dtype == np.uint8
    assert (tensor[:, :4] == 7).all() and (tensor[:, 28:] == 7).all()
    assert np.abs(tensor[:, 4:28] - colour.reshape(3, 1, 1)).max() <= 1
    upright = to_tensor(frame, "nv12", side=32, fill=7, rotate=90, crop=(0, 0, 64, 32))
    assert (upright[:, :, :8] == 7).all() and (upright[:, :, 8:24] != 7).all()
    mean, scale = [123.675, 116.28, 103.53], [0.017, 0.0175, 0.0174]
    values = to_tensor(frame, "nv12", dtype=np.float32, mean=mean, scale=scale)
    plain = to_tensor(frame, "nv12").astype(np.float32)
    expected = (plain - np.float32(mean).reshape(3, 1, 1)) * np.float32(scale).reshape(
        3, 1, 1
    )
    assert values.dtype == np.float32 and values.shape == (3, 48, 64)
    np.testing.assert_array_equal(values, expected)
    with pytest.raises(ValueError, match="dtype=float32"):
        to_tensor(frame, "nv12", mean=mean)
    with pytest.raises(ValueError, match="uint8 or float32"):
        to_tensor(frame, "nv12", dtype=np.int8)
    with pytest.raises(ValueError, match="three numbers"):
        to_tensor(frame, "nv12", dtype=np.float32, scale=[1, 2])
    with pytest.raises(ValueError, match="fill is a byte"):
        to_tensor(frame, "nv12", side=32, fill=256)
