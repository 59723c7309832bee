#!/usr/bin/env bash
# Records real GigE Vision traffic on loopback and cuts it into the seed files of the wire
# fuzz targets (gev/fuzz/seeds, sdk/fuzz/seeds). The devices are the emulator and Aravis's
# fake camera; the hosts are Aravis's arv-tool, our SDK (rycam, the event and serial tests)
# and the emulator's probe. Runs in a private network namespace of its own (needs root).
# usage: scripts/record-fuzz-seeds.sh [BIN_DIR]   (default: build/bin of the release preset)
set -euo pipefail
cd "$(dirname "$0")/.."
if [ -z "${RY_RECORDING_IN_PRIVATE_NET:-}" ]; then
    export RY_RECORDING_IN_PRIVATE_NET=1
    exec bash scripts/in-private-net.sh bash "$0" "$@"
fi
bin=$(realpath "${1:-build/bin}")
work=$(mktemp -d)
pids=()
cleanup() {
    for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; wait "$pid" 2>/dev/null || true; done
    rm -rf "$work"
}
trap cleanup EXIT
stop_last() {
    kill "${pids[-1]}" 2>/dev/null || true
    wait "${pids[-1]}" 2>/dev/null || true
    unset 'pids[-1]'
}
quietly() { "$@" > /dev/null 2>&1 || echo "note: '$*' failed" >&2; }

tshark -q -i lo -f udp -F pcap -w "$work/traffic.pcap" 2> "$work/tshark.err" &
pids+=($!)
for _ in $(seq 50); do grep -qs Capturing "$work/tshark.err" && break; sleep 0.1; done

# The emulator, under Aravis's tools, our SDK and the probe.
"$bin/ry-camera-emulator" --address 127.0.0.2 --model RY-SEED > "$work/emulator.out" 2>&1 &
pids+=($!)
for _ in $(seq 50); do [ -s "$work/emulator.out" ] && break; sleep 0.1; done
quietly arv-tool-0.8
quietly arv-tool-0.8 -a 127.0.0.2 control Width Height PixelFormat Gain
quietly arv-tool-0.8 -a 127.0.0.2 genicam
quietly "$bin/rycam" list
quietly "$bin/ry-emulator-probe" 127.0.0.2 1
stop_last

# Aravis's fake camera under our SDK and Aravis's tools.
arv-fake-gv-camera-0.8 -i 127.0.0.1 > /dev/null 2>&1 &
pids+=($!)
sleep 1
quietly "$bin/rycam" list
quietly arv-tool-0.8 -a 127.0.0.1 control Width Height PayloadSize
quietly arv-tool-0.8 -a 127.0.0.1 genicam
stop_last

# Events on the message channel and the serial channel's exchanges, SDK against emulator.
quietly "$bin/camera_emulator_tests" --gtest_filter='FilesAndEvents.CameraEvents*'
quietly "$bin/camera_failure_tests" --gtest_filter='SerialChannel.TheCommandSet*'
sleep 0.5
stop_last

python3 scripts/fuzz_seeds_from_capture.py "$work/traffic.pcap" gev/fuzz/seeds sdk/fuzz/seeds
