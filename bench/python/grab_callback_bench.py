#!/usr/bin/python3
"""The Python side of compare.py: the grab of ry-grab-callback-bench through rygige.

Opens the first camera, grabs continuously with a frame callback that touches every 4096th
byte of `frame.array`, and prints the same line of figures as the C++ program:
    fps=F frames=N gaps=G lost=L cpu_s_per_gb=C

    grab_callback_bench.py [SECONDS] [WARM_UP_SECONDS] [BUFFERS]
"""

from __future__ import annotations

import resource
import sys
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "python"))

import rygige  # noqa: E402

TOUCH_STRIDE = 4096


def cpu_seconds() -> float:
    """User and system time of this process, every thread included."""
    usage = resource.getrusage(resource.RUSAGE_SELF)
    return usage.ru_utime + usage.ru_stime


class Tally:
    """What the callback counts; only the measured window's frames count."""

    def __init__(self) -> None:
        self.measuring = False
        self.frames = 0
        self.bytes = 0
        self.gaps = 0
        self.checksum = 0
        self.last_block_id = 0

    def on_frame(self, frame: rygige.Frame) -> None:
        """The frame callback: touches the pixels and counts the frame."""
        pixels = frame.array.reshape(-1)
        self.checksum += int(pixels[::TOUCH_STRIDE].sum())
        block_id = frame.block_id
        if self.measuring and self.last_block_id and block_id != self.last_block_id + 1:
            self.gaps += block_id - self.last_block_id - 1
        self.last_block_id = block_id
        if self.measuring:
            self.frames += 1
            self.bytes += pixels.nbytes


def main() -> int:
    """Runs the measurement; the process's exit status."""
    seconds = float(sys.argv[1]) if len(sys.argv) > 1 else 5.0
    warm_up = float(sys.argv[2]) if len(sys.argv) > 2 else 1.0
    buffers = int(sys.argv[3]) if len(sys.argv) > 3 else 16
    tally = Tally()
    with rygige.System(discovery_timeout=0.3) as system, system.open(0, buffers=buffers) as camera:
        lost_before = camera.statistics()["lost_frames"]
        with camera.start(tally.on_frame):
            time.sleep(warm_up)
            cpu_start, start = cpu_seconds(), time.monotonic()
            tally.measuring = True
            time.sleep(seconds)
            tally.measuring = False
            elapsed, cpu = time.monotonic() - start, cpu_seconds() - cpu_start
        lost = camera.statistics()["lost_frames"] - lost_before
    gigabytes = tally.bytes / 1e9
    print(
        f"fps={tally.frames / elapsed:.2f} frames={tally.frames} gaps={tally.gaps} "
        f"lost={lost} cpu_s_per_gb={cpu / gigabytes if gigabytes else 0:.4f}"
    )
    return 0


if __name__ == "__main__":
    sys.exit(main())
