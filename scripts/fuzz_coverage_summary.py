#!/usr/bin/env python3
"""Summarises `llvm-cov export` JSON (stdin) for the files whose path matches a pattern:
functions reached, and line coverage inside the functions reached (the encoders a target
never calls do not dilute it).

usage: llvm-cov export ... | fuzz_coverage_summary.py PATTERN
"""
import json
import re
import sys


def main():
    pattern = re.compile(sys.argv[1])
    data = json.load(sys.stdin)["data"][0]
    reached = total = 0
    innermost = {}  # (file, line) -> (region extent, count) of the smallest region on it
    for function in data["functions"]:
        files = function["filenames"]
        if not files or not pattern.search(files[0]):
            continue
        total += 1
        if function["count"] == 0:
            continue
        reached += 1
        for start, start_col, end, end_col, count, file_id, _, kind in function["regions"]:
            if kind != 0 or file_id != 0:
                continue
            extent = (end - start, end_col - start_col)
            for line in range(start, end + 1):
                key = (files[0], line)
                if key not in innermost or extent < innermost[key][0]:
                    innermost[key] = (extent, count)
    lines = set(innermost)
    covered = {key for key, (_, count) in innermost.items() if count > 0}
    share = 100.0 * len(covered) / len(lines) if lines else 0.0
    print(f"functions reached {reached} of {total}; lines covered inside them "
          f"{len(covered)} of {len(lines)} ({share:.1f}%)")


if __name__ == "__main__":
    main()
