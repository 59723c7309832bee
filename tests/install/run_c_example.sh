#!/usr/bin/env bash
# Runs inside a private network namespace: an emulated camera on loopback, and the C
# example grabbing from it through the installed library.
set -euo pipefail
emulator=$1
shift
ready=$(mktemp)
"$emulator" --address 127.0.0.2 --pixel-format BayerRG8 --width 320 --height 240 >"$ready" &
emulator_pid=$!
trap 'kill "$emulator_pid" 2>/dev/null; wait "$emulator_pid" 2>/dev/null || true; rm -f "$ready"' EXIT
# The emulator prints a line once it serves.
for _ in $(seq 50); do
    [ -s "$ready" ] && break
    sleep 0.1
done
"$@"
