#!/usr/bin/env bash
# Runs inside the private namespace made by demo.sh: one emulated camera on 127.0.0.1, the
# SDK's listing of what it discovers, then a few seconds of streaming through the
# transport layer with the receiver's figures.
set -euo pipefail
bin=build/bin
seconds=${DEMO_SECONDS:-3}

for program in ry-camera-emulator rycam ry-stream-bench; do
    if [ ! -x "$bin/$program" ]; then
        echo "demo: $bin/$program was not built" >&2
        exit 1
    fi
done

"$bin/ry-camera-emulator" --address 127.0.0.1 --model RY-EMU-1 --serial DEMO0001 \
    --width 1280 --height 1024 --pixel-format Mono8 --fps 0 &
emulator=$!
trap 'kill "$emulator" 2>/dev/null; wait "$emulator" 2>/dev/null || true' EXIT

# The emulator prints a line per camera once it serves; give it a moment to bind.
for _ in $(seq 50); do
    "$bin/rycam" list --timeout 200 >/dev/null 2>&1 && break
    sleep 0.1
done

echo "== cameras the SDK discovers"
"$bin/rycam" list
echo "== streaming for ${seconds} s"
"$bin/ry-stream-bench" --device 127.0.0.1 --seconds "$seconds" --buffers 32
