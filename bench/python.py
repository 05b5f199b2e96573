"""Times the Python package beside other packages, and clusters of one and two workers.

Run by scripts/bench-python.sh, which says what the options are.
"""

import argparse
import os
import random
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import av
import cv2
import distributed
import numpy as np
import zelm_imageutil
from zelm_imageutil import Clip, Plan, cluster

SIZES = {"1080p": (1920, 1080), "2160p": (3840, 2160)}


def timed(contenders, rounds, before=lambda: None):
    """The least time of each contender in seconds. They take turns, in random order;
    what is done before each is not timed."""
    least = {name: float("inf") for name in contenders}
    for call in contenders.values():
        call()
    names = list(contenders)
    for _ in range(rounds):
        random.shuffle(names)
        for name in names:
            before()
            start = time.perf_counter()
            contenders[name]()
            least[name] = min(least[name], time.perf_counter() - start)
    return least


def row(name, least):
    ours = least["zelm_imageutil"]
    for peer, seconds in least.items():
        print(f"{name},{peer},{seconds * 1e6:.1f},{seconds / ours:.2f}", flush=True)


def nv12(size):
    width, height = size
    rng = np.random.default_rng(1)
    return rng.integers(0, 256, (height * 3 // 2, width), np.uint8)


def frames(rounds):
    """NV12 to RGB into an array that is there, and into a new one."""
    for label, size in SIZES.items():
        width, height = size
        frame, out = nv12(size), np.empty((height, width, 3), np.uint8)
        decoded = av.VideoFrame.from_ndarray(frame, format="nv12")
        for threads in (1, 2):
            cv2.setNumThreads(threads)
            plan = Plan("nv12", "rgb24", size=size, threads=threads)
            code = cv2.COLOR_YUV2RGB_NV12
            contenders = {
                "zelm_imageutil": lambda: plan(frame, out),
                "cv2.cvtColor": lambda: cv2.cvtColor(frame, code, dst=out),
            }
            if threads == 1:  # it has no threads
                contenders["av reformat"] = lambda: decoded.reformat(format="rgb24")
            row(
                f"nv12 to rgb24 {label} with {threads} threads",
                timed(contenders, rounds),
            )
            contenders = {
                "zelm_imageutil": lambda: zelm_imageutil.convert(
                    frame, "nv12", "rgb24", threads=threads
                ),
                "cv2.cvtColor": lambda: cv2.cvtColor(frame, code),
            }
            if threads == 1:
                contenders["av to_ndarray"] = lambda: decoded.to_ndarray(format="rgb24")
            row(
                f"the same into a new array {label} {threads}",
                timed(contenders, rounds),
            )


def calls(rounds):
    """What a call costs: 64 x 48 pixels, a thousand times."""
    frame, out = nv12((64, 48)), np.empty((48, 64, 3), np.uint8)
    plan = Plan("nv12", "rgb24", size=(64, 48))

    def repeated(call):
        def loop():
            for _ in range(1000):
                call()

        return loop

    contenders = {
        "zelm_imageutil": repeated(lambda: plan(frame, out)),
        "convert": repeated(
            lambda: zelm_imageutil.convert(frame, "nv12", "rgb24", out=out)
        ),
        "cv2.cvtColor": repeated(
            lambda: cv2.cvtColor(frame, cv2.COLOR_YUV2RGB_NV12, dst=out)
        ),
    }
    least = timed(contenders, max(5, rounds // 10))
    row("nv12 to rgb24 64x48", {name: t / 1000 for name, t in least.items()})


def raw_clip(folder, label, count):
    path = folder / "clip.nv12"
    frame = nv12(SIZES[label])
    with open(path, "wb") as file:
        for _ in range(count):
            file.write(frame.data)
    return Clip(path, size=SIZES[label])


def encoded_clip(folder, label, count):
    """With a beginning for decoders every ten frames."""
    path = folder / "clip.mp4"
    width, height = SIZES[label]
    source = f"testsrc2=size={width}x{height}:rate=30"
    lavfi = ["-f", "lavfi", "-i", source, "-frames:v", str(count)]
    codec = ["-c:v", "libx264", "-preset", "ultrafast", "-g", "10"]
    command = ["ffmpeg", "-v", "error", *lavfi, *codec, "-pix_fmt", "yuv420p", path]
    subprocess.run(command, check=True)
    return Clip(path)


CLIPS = {
    "1080p nv12 to rgb24": (raw_clip, "1080p", "rgb24", {}),
    "2160p nv12 to rgb24 720p": (raw_clip, "2160p", "rgb24", {"resize": (1280, 720)}),
    "1080p h264 to i420 720p": (encoded_clip, "1080p", "i420", {"resize": (1280, 720)}),
}


def clusters(rounds):
    """Clips of 240 frames on one worker and on two of this machine."""
    machines = {
        workers: distributed.Client(
            n_workers=workers, threads_per_worker=1, dashboard_address=None
        )
        for workers in (1, 2)
    }
    for name, (made_clip, label, format, options) in CLIPS.items():
        with tempfile.TemporaryDirectory(dir=os.environ.get("ZELM_BENCH_FOLDER")) as at:
            clip, made = made_clip(Path(at), label, 240), Path(at) / "made"

            def work(workers):
                cluster.convert_clip(
                    clip,
                    made,
                    format,
                    client=machines[workers],
                    frames_per_task=20,
                    **options,
                )

            contenders = {w: lambda w=w: work(w) for w in machines}
            least = timed(contenders, rounds, before=made.unlink)
        for workers, seconds in least.items():
            share = least[1] / seconds / workers
            print(
                f"{name},{workers} workers,{seconds * 1e6:.0f},{share:.2f}", flush=True
            )
    for client in machines.values():
        client.close()


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--rounds", type=int, default=60)
    parser.add_argument("parts", nargs="*", default=["frames", "calls", "clusters"])
    given = parser.parse_args()
    print(f"# Python {sys.version.split()[0]}, numpy {np.__version__}, ", end="")
    print(f"OpenCV {cv2.__version__}, PyAV {av.__version__}, ", end="")
    print(f"distributed {distributed.__version__}")
    print("row,contender,us,ratio")
    for part in given.parts:
        rounds = max(3, given.rounds // 8) if part == "clusters" else given.rounds
        {"frames": frames, "calls": calls, "clusters": clusters}[part](rounds)


if __name__ == "__main__":
    main()
