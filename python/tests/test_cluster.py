"""Clips converted on clusters of this machine."""

import os
import signal
import subprocess
import sys

import numpy as np
import pytest
from reference import noise
from zelm_imageutil import Clip, cluster, convert_clip

distributed = pytest.importorskip("distributed")


def local(workers):
    return distributed.LocalCluster(
        n_workers=workers, threads_per_worker=1, dashboard_address=None
    )


def kill_once(*given, flag, original):
    """A worker that dies in the middle of the first range it gets."""
    if not os.path.exists(flag):
        open(flag, "w").close()
        original(*given)
        os.kill(os.getpid(), signal.SIGKILL)
    return original(*given)


@pytest.fixture(scope="module")
def clip(tmp_path_factory):
    path = tmp_path_factory.mktemp("clip") / "a.nv12"
    noise((23, 48 * 3 // 2, 64)).tofile(path)
    return Clip(path, format="nv12", size=(64, 48))


def test_two_clusters_and_a_dead_worker_give_equal_files(clip, tmp_path):
    options = {"resize": (40, 30), "filter": "cubic", "dst_range": "limited"}
    convert_clip(
        clip, tmp_path / "one.y4m", "i420", progress=lambda *n: None, **options
    )
    expected = (tmp_path / "one.y4m").read_bytes()
    made = []
    for workers, frames_per_task in ((1, 23), (2, 4)):
        path, calls = tmp_path / f"{workers}.y4m", []
        with local(workers) as machines, distributed.Client(machines) as client:
            made = cluster.convert_clip(
                clip,
                path,
                client=client,
                frames_per_task=frames_per_task,
                progress=lambda *n: calls.append(n),
                **options,
            )
            if workers == 2:
                original, flag = cluster._convert_range, str(tmp_path / "died")
                patch = pytest.MonkeyPatch()
                patch.setattr(
                    cluster,
                    "_convert_range",
                    lambda *given: kill_once(*given, flag=flag, original=original),
                )
                cluster.convert_clip(
                    clip,
                    tmp_path / "3.y4m",
                    client=client,
                    frames_per_task=4,
                    **options,
                )
                patch.undo()
        assert path.read_bytes() == expected
        assert calls[-1] == (23, 23)
    assert os.path.exists(tmp_path / "died")
    assert (tmp_path / "3.y4m").read_bytes() == expected
    assert [(r.first, r.frames) for r in made] == [
        (i, min(4, 23 - i)) for i in range(0, 23, 4)
    ]
    assert cluster.differing(tmp_path / "2.y4m", clip, made, **options) == []
    damaged = bytearray(expected)
    damaged[-1] ^= 1
    (tmp_path / "2.y4m").write_bytes(damaged)
    changed = cluster.differing(tmp_path / "2.y4m", clip, made, **options)
    assert changed == made[-1:]


def test_the_command(clip, tmp_path, capsys):
    arguments = [str(clip.path), str(tmp_path / "a.rgb24"), "--from", "nv12"]
    sized = [*arguments, "--size", "64x48", "--frames-per-task", "10", "--digests"]
    with local(1) as machines:
        assert cluster.main([*sized, "--scheduler", machines.scheduler_address]) == 0
    lines = capsys.readouterr().out
    assert len(lines.splitlines()) == 3
    command = [sys.executable, "-m", "zelm_imageutil.cluster", *sized]
    again = subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True)
    assert again.stdout == lines
    made = np.fromfile(tmp_path / "a.rgb24", np.uint8)
    convert_clip(clip, tmp_path / "b.rgb24", "rgb24", progress=lambda *n: None)
    np.testing.assert_array_equal(made, np.fromfile(tmp_path / "b.rgb24", np.uint8))
    assert cluster.main(arguments) == 2
    assert "nv12 frames need size=" in capsys.readouterr().err
