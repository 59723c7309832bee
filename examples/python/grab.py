#!/usr/bin/python3
"""Grabs frames from the first camera the SDK discovers, with the rygige package, and prints
what arrived: first a loop over camera.grab(), then the same count handed to a callback on
the package's own thread, then the stream's counters.

    grab.py [FRAMES]        (default 30)

Run it from the source tree after a build (the package finds build/lib/libRyGigE.so), or
with the SDK installed and python/ on PYTHONPATH; cameras on loopback need a private
network namespace: bash scripts/in-private-net.sh /usr/bin/python3 examples/python/grab.py
"""

from __future__ import annotations

import sys
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "python"))

import rygige  # noqa: E402


def main() -> int:
    """Runs the example; the process's exit status."""
    wanted = int(sys.argv[1]) if len(sys.argv) > 1 else 30
    with rygige.System(discovery_timeout=0.5) as system:
        cameras = system.cameras()
        if not cameras:
            print("grab: no camera found", file=sys.stderr)
            return 3
        with system.open(cameras[0], buffers=16) as camera:
            start = time.monotonic()
            for frame in camera.grab(wanted, timeout=5):
                # frame.array is the SDK's buffer itself, valid until the next frame.
                brightness = float(frame.array.mean())
            seconds = time.monotonic() - start
            print(f"frames received      {wanted} in {seconds:.2f} s ({wanted / seconds:.1f}/s)")
            print(f"image                {frame.width} x {frame.height}, "
                  f"pixel format 0x{frame.pixel_format:08X}")
            print(f"last block id        {frame.block_id} (mean {brightness:.1f})")

            means: list[float] = []
            with camera.start(lambda f: means.append(float(f.array.mean())), wanted) as run:
                run.wait(timeout=10)
            print(f"callback frames      {len(means)}")
            for name, value in camera.statistics().items():
                print(f"{name.replace('_', ' '):<20} {value}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
