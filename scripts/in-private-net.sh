#!/usr/bin/env bash
# Runs a command inside a fresh network namespace that has only a loopback interface.
# Discovery broadcasts on every interface it can see, so everything that discovers runs
# here and never in the machine's own namespace.
set -euo pipefail
if [ "$#" -eq 0 ]; then
    echo "usage: $0 command [args...]" >&2
    exit 2
fi
exec unshare --net -- bash -c 'ip link set lo up && exec "$@"' private-net "$@"
