#!/usr/bin/env bash
# The main job: installs what is missing, builds everything, then inside a private network
# namespace starts an emulated colour camera on loopback, lists the cameras the SDK
# discovers and grabs 100 frames through the SDK into PNG files, printing the statistics.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
bash scripts/build.sh
exec bash scripts/in-private-net.sh bash scripts/demo-in-namespace.sh "$@"
