#!/usr/bin/env bash
# Configures and builds the release tree into ./build (programs in build/bin, libraries in
# build/lib). Extra arguments go to the configure step.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset release "$@" >/dev/null
cmake --build --preset release
