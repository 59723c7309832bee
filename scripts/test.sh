#!/usr/bin/env bash
# Installs what is missing, builds the release tree and runs the whole test suite inside a
# private network namespace. Extra arguments go to ctest.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
bash scripts/build.sh
bash scripts/in-private-net.sh ctest --test-dir build --output-on-failure -j2 "$@"
