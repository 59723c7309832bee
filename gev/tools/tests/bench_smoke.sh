#!/usr/bin/env bash
# Runs ry-stream-bench against a camera inside a private network namespace and checks the
# shape of its result lines. Usage: bench_smoke.sh BENCH emulator|aravis [EMULATOR]
set -euo pipefail
bench=$1 peer=$2 emulator=${3:-}
if [ "$(id -u)" -ne 0 ]; then echo "SKIPPED: needs root for a private network namespace"; exit 0; fi
if [ -z "${RY_PRIVATE_NET:-}" ]; then
    exec env RY_PRIVATE_NET=1 unshare --net -- bash -c 'ip link set lo up && exec "$@"' smoke "$0" "$@"
fi
case $peer in
    emulator) "$emulator" --address 127.0.0.2 --width 1024 --height 1024 --fps 100 >/dev/null 2>&1 &
              address=127.0.0.2 ;;
    aravis)   if ! command -v arv-fake-gv-camera-0.8 >/dev/null; then
                  echo "SKIPPED: arv-fake-gv-camera-0.8 is not installed (Debian package aravis-tools)"
                  exit 0
              fi
              arv-fake-gv-camera-0.8 -i 127.0.0.1 >/dev/null 2>&1 &
              address=127.0.0.1 ;;
    *) echo "unknown peer $peer"; exit 2 ;;
esac
peer_pid=$!
trap 'kill $peer_pid 2>/dev/null; wait $peer_pid 2>/dev/null || true' EXIT
sleep 1
latency=$("$bench" --device $address --latency 200 | tail -1)
echo "$latency"
[[ $latency =~ ^reads=200\ median_us=[0-9.]+\ p99_us=[0-9.]+$ ]]
stream=$("$bench" --device $address --seconds 2 --buffers 4 | tail -1)
echo "$stream"
[[ $stream =~ ^frames=([0-9]+)\ incomplete=[0-9]+\ lost=[0-9]+\ MBps=[0-9.]+\ cpu_s_per_GB=[0-9.]+$ ]]
[ "${BASH_REMATCH[1]}" -gt 10 ]
echo "PASSED"
