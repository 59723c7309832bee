#!/usr/bin/env bash
# Runs inside the private namespace made by demo.sh: one emulated camera on 127.0.0.1.
set -euo pipefail
bin=build/bin
seconds=${DEMO_SECONDS:-3}

"$bin/ry-camera-emulator" --address 127.0.0.1 --model RY-EMU-1 --serial DEMO0001 \
    --width 1280 --height 1024 --pixel-format Mono8 --fps 0 &
emulator=$!
trap 'kill "$emulator" 2>/dev/null; wait "$emulator" 2>/dev/null || true' EXIT
sleep 1

if [ -x "$bin/rycam" ]; then
    "$bin/rycam" list
fi
"$bin/ry-stream-bench" --device 127.0.0.1 --seconds "$seconds"
