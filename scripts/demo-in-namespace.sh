#!/usr/bin/env bash
# Runs inside the private namespace made by demo.sh: an emulated colour camera on
# 127.0.0.1, the cameras the SDK discovers, then 100 frames grabbed through the SDK, their
# Bayer mosaic converted by the SDK and written as PNG files, with the stream's statistics.
set -euo pipefail
bin=build/bin
frames=${DEMO_FRAMES:-100}
output=${DEMO_OUTPUT:-build/demo-frames}

if [ ! -x "$bin/rycam" ]; then
    echo "demo: $bin/rycam was not built" >&2
    exit 1
fi

# shellcheck source=start-emulator.sh
source scripts/start-emulator.sh
start_emulator "$bin/rycam" emulate --address 127.0.0.1 --model RY-EMU-C --serial DEMO0001 \
    --width 1280 --height 1024 --pixel-format BayerRG8 --fps 60

echo "== an emulated colour camera: $EMULATOR_LINE"
echo "== rycam list"
"$bin/rycam" list
echo "== rycam grab 0 --count $frames --output $output"
rm -rf "$output"
"$bin/rycam" grab 0 --count "$frames" --output "$output"
echo "== one of the frames: $(realpath "$output/frame_00042.png" 2>/dev/null || echo "$output")"
