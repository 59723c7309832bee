#!/usr/bin/python3
"""Frames per second and CPU per GB delivered to a Python callback that touches
frame.array, beside the same grab in C++, on one emulated 2448x2048 Mono8 camera.

The two receivers take turns on the same camera, `--repeats` times each, at each rate; each
runs in a process of its own and measures that process's CPU time. It discovers, so it runs
in a private network namespace:

    bash scripts/in-private-net.sh /usr/bin/python3 bench/python/compare.py [--seconds S]
"""

from __future__ import annotations

import argparse
import statistics
import subprocess
import sys
from pathlib import Path

TREE = Path(__file__).resolve().parents[2]
RATES = (("23 fps (1 GbE)", "23"), ("60 fps", "60"), ("flat out", "0"))


def figures(command: list[str]) -> dict[str, float]:
    """Runs one receiver and parses its line of figures."""
    done = subprocess.run(command, capture_output=True, text=True, timeout=120, check=True)
    line = done.stdout.strip().splitlines()[-1]
    return {key: float(value) for key, value in (pair.split("=") for pair in line.split())}


def main() -> int:
    """Measures every rate and prints one row per receiver and rate."""
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--seconds", type=float, default=5.0)
    parser.add_argument("--repeats", type=int, default=3)
    parser.add_argument("--buffers", type=int, default=16)
    parser.add_argument("--build", default=str(TREE / "build"))
    options = parser.parse_args()
    build = Path(options.build)
    timing = [str(options.seconds), "1", str(options.buffers)]
    receivers = {
        "C++": [str(build / "bin" / "ry-grab-callback-bench"), *timing],
        "Python": ["/usr/bin/python3", str(Path(__file__).with_name("grab_callback_bench.py")),
                   *timing],
    }
    print(f"{'rate':<16} {'receiver':<8} {'fps':>8} {'frames':>7} {'gaps':>5} {'lost':>5} "
          f"{'CPU s/GB':>9}  (median of {options.repeats}; CPU s/GB runs)")
    for label, fps in RATES:
        emulator = subprocess.Popen(
            [str(build / "bin" / "ry-camera-emulator"), "--address", "127.0.0.2", "--width",
             "2448", "--height", "2048", "--fps", fps], stdout=subprocess.PIPE, text=True)
        assert emulator.stdout is not None
        emulator.stdout.readline()
        runs: dict[str, list[dict[str, float]]] = {name: [] for name in receivers}
        try:
            for _ in range(options.repeats):
                for name, command in receivers.items():
                    runs[name].append(figures(command))
        finally:
            emulator.terminate()
            emulator.wait()
        for name, measured in runs.items():
            median = {key: statistics.median(run[key] for run in measured) for key in measured[0]}
            cpu = " ".join(f"{run['cpu_s_per_gb']:.3f}" for run in measured)
            print(f"{label:<16} {name:<8} {median['fps']:8.2f} {median['frames']:7.0f} "
                  f"{sum(r['gaps'] for r in measured):5.0f} {sum(r['lost'] for r in measured):5.0f} "
                  f"{median['cpu_s_per_gb']:9.3f}  ({cpu})")
    return 0


if __name__ == "__main__":
    sys.exit(main())
