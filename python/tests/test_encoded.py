"""Encoded clips, beside what ffmpeg decodes."""

import shutil

import numpy as np
import pytest
from reference import ffmpeg
from zelm_imageutil import Clip, cluster, convert, convert_clip

pytest.importorskip("av")
if shutil.which("ffmpeg") is None:
    pytest.skip("no ffmpeg", allow_module_level=True)

SOURCE = ["-f", "lavfi", "-i", "testsrc2=size=98x54:rate=25:duration=2"]
# Frames that refer to later ones, also to those behind the next one that decoding can
# begin at.
CODEC = ["-c:v", "libx264", "-bf", "2", "-g", "12", "-x264-params", "open-gop=1"]
COLOUR = ["-colorspace", "bt709", "-color_range"]


@pytest.fixture(scope="module")
def folder(tmp_path_factory):
    path = tmp_path_factory.mktemp("encoded")
    ffmpeg("a.mp4", path, *SOURCE, *CODEC, "-pix_fmt", "yuv420p", *COLOUR, "tv")
    ffmpeg("a.mkv", path, "-i", "a.mp4", "-c", "copy")
    ffmpeg("a.h264", path, "-i", "a.mp4", "-c", "copy")  # has no time stamps
    ffmpeg("a.i420", path, "-i", "a.mp4", "-f", "rawvideo")
    return path


@pytest.mark.parametrize("name", ["a.mp4", "a.mkv", "a.h264"])
def test_frames_are_those_of_ffmpeg(folder, name):
    clip, raw = Clip(folder / name), Clip(folder / "a.i420", size=(98, 54))
    assert len(clip) == len(raw) == 50
    assert (clip.format, clip.size, clip.rate) == ("i420", (98, 54), 25)
    assert (clip.matrix, clip.range) == ("bt709", "limited")

    def same(frame, index):
        made = convert(frame, "i420", "rgb24")
        np.testing.assert_array_equal(made, convert(raw[index], "i420", "rgb24"))

    for index, frame in enumerate(clip):
        same(frame, index)
    for index in (7, 8, 8, 33, 11, 12, 49, 0):
        same(clip[index], index)
    for index, frame in zip(range(-3, 0), clip[-3:]):
        same(frame, index)
    with pytest.raises(IndexError):
        clip[50]


@pytest.mark.parametrize(
    "name, pixels, options, expected",
    [
        ("a.mkv", "yuvj420p", ["-c:v", "mjpeg"], ("i420", "bt601", "full")),
        (
            "a.mkv",
            "yuv422p",
            ["-c:v", "ffv1", *COLOUR, "pc"],
            ("i422", "bt709", "full"),
        ),
        ("a.mkv", "gray", ["-c:v", "ffv1", *COLOUR, "pc"], ("gray", None, "full")),
        ("a.nut", "yuyv422", ["-c:v", "rawvideo"], ("yuyv", "bt601", "limited")),
        ("a.nut", "nv12", ["-c:v", "rawvideo"], ("nv12", "bt601", "limited")),
        ("a.mkv", "bgra", ["-c:v", "ffv1"], ("bgra", None, None)),
        ("a.mkv", "rgb24", ["-c:v", "png"], ("rgb24", None, None)),
    ],
)
def test_streams_say_what_frames_are(tmp_path, name, pixels, options, expected):
    source = [*SOURCE[:-1], "testsrc=size=97x55:rate=25:duration=0.12"]
    ffmpeg(name, tmp_path, *source, *options, "-pix_fmt", pixels)
    ffmpeg("a.raw", tmp_path, "-i", name, "-f", "rawvideo", "-pix_fmt", pixels)
    clip = Clip(tmp_path / name)
    assert clip.format == expected[0]
    # None: neither RGB nor gray frames need it, and encoders may drop it.
    assert expected[1] in (None, clip.matrix)
    assert expected[2] in (None, clip.range)
    flat = np.fromfile(tmp_path / "a.raw", np.uint8).reshape(len(clip), -1)
    for frame, bytes_of in zip(clip, flat):
        parts = frame if isinstance(frame, tuple) else (frame,)
        together = np.concatenate([part.reshape(-1) for part in parts])
        np.testing.assert_array_equal(together, bytes_of)
        assert convert(frame, clip.format, "rgb24", size=(97, 55)).shape == (55, 97, 3)


def test_what_cannot_be_taken_is_refused(folder, tmp_path):
    ffmpeg("b.mkv", tmp_path, *SOURCE, "-c:v", "ffv1", "-pix_fmt", "yuv444p10le")
    (tmp_path / "c.mp4").write_bytes(b"no clip")
    whole = (folder / "a.mkv").read_bytes()
    (tmp_path / "d.mkv").write_bytes(whole[: len(whole) // 2])
    with pytest.raises(ValueError, match="yuv444p10le.*-pix_fmt yuv420p"):
        Clip(tmp_path / "b.mkv")
    with pytest.raises(ValueError, match="cannot be read as a clip"):
        Clip(tmp_path / "c.mp4")
    cut = Clip(tmp_path / "d.mkv")
    assert 10 < len(cut) < 50


def test_clusters_cut_where_decoding_can_begin(folder, tmp_path):
    distributed = pytest.importorskip("distributed")
    options = {"resize": (50, 30), "progress": lambda *n: None}
    clip = Clip(folder / "a.mp4")
    convert_clip(clip, tmp_path / "a.rgb24", **options)
    with distributed.Client(
        n_workers=2, threads_per_worker=1, dashboard_address=None
    ) as client:
        for name in ("a.mp4", "a.h264"):
            ranges = cluster.convert_clip(
                folder / name,
                tmp_path / "b.rgb24",
                client=client,
                frames_per_task=5,
                src_matrix="bt709",
                **options,
            )
            assert sum(part.frames for part in ranges) == 50
            assert len(ranges) == (1 if name == "a.h264" else len(clip.cuts(5)))
            made = (tmp_path / "b.rgb24").read_bytes()
            assert made == (tmp_path / "a.rgb24").read_bytes()
    assert len(clip.cuts(5)) > 3
