#!/usr/bin/env bash
# Installs what is missing, builds the release tree and runs the whole test suite inside a
# private network namespace, then gives the fuzz targets (clang's libFuzzer: the node map's
# parsers and those of what networks and devices send) a short run of their own. Extra
# arguments go to the main suite's ctest.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
bash scripts/build.sh
bash scripts/in-private-net.sh ctest --test-dir build --output-on-failure -j2 "$@"

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz
ctest --preset fuzz -j2
