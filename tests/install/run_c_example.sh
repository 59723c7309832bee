#!/usr/bin/env bash
# Runs inside a private network namespace: an emulated camera on loopback, and the C
# example grabbing from it through the installed library.
set -euo pipefail
emulator=$1
shift
# shellcheck source=../../scripts/start-emulator.sh
source "$(dirname "$0")/../../scripts/start-emulator.sh"
start_emulator "$emulator" --address 127.0.0.2 --pixel-format BayerRG8 --width 320 --height 240
"$@"
