#!/usr/bin/env bash
# Installs what is missing, builds the release tree and runs the whole test suite inside a
# private network namespace, runs the acquisition tests again under the thread sanitizer,
# then gives the fuzz targets (clang's libFuzzer: the node map's parsers, those of what
# networks and devices send, and the stream's reassembly) a short run of their own. Extra
# arguments go to the main suite's ctest.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
bash scripts/build.sh
bash scripts/in-private-net.sh ctest --test-dir build --output-on-failure -j2 "$@"

# The acquisition threads once more under the thread sanitizer, one test at a time: the
# sanitizer slows the receiver enough that two loaded cases side by side lose frames, and a
# case whose timing it stretched past its bounds gets a second run.
cmake --preset tsan >/dev/null
cmake --build --preset tsan --target acquisition_emulator_tests
bash scripts/in-private-net.sh ctest --test-dir build-tsan -L acquisition --output-on-failure \
    --repeat until-pass:2

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz
ctest --preset fuzz -j2
