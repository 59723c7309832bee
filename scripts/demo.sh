#!/usr/bin/env bash
# The main job: installs what is missing, builds everything, then inside a private network
# namespace starts an emulated camera on loopback, lists the cameras the SDK discovers and
# streams from the camera for a few seconds, printing the receiver's figures.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
bash scripts/build.sh
exec bash scripts/in-private-net.sh bash scripts/demo-in-namespace.sh "$@"
