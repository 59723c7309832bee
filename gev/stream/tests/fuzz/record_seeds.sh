#!/usr/bin/env bash
# Records the emulator's GVSP traffic and writes the GVSP fuzz seeds from it (seeds/). Runs
# in a private network namespace of its own; needs a release build and dumpcap:
#   bash gev/stream/tests/fuzz/record_seeds.sh [build]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../../../.." && pwd)
build=$(cd "${1:-$root/build}" && pwd)
if [ -z "${RY_IN_PRIVATE_NET:-}" ]; then
    exec env RY_IN_PRIVATE_NET=1 bash "$root/scripts/in-private-net.sh" bash "$0" "$build"
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$build/bin/ry-camera-emulator" --address 127.0.0.2 --width 64 --height 48 --fps 100 \
    >"$work/emulator.log" &
emulator=$!
dumpcap -q -P -i lo -f "udp and src host 127.0.0.2 and not src port 3956" \
    -w "$work/stream.pcap" 2>/dev/null &
capture=$!
sleep 1
"$build/bin/ry-stream-bench" --device 127.0.0.2 --seconds 0.3 --packet-size 576 >/dev/null
sleep 0.2
kill "$capture" "$emulator"
wait "$capture" "$emulator" 2>/dev/null || true

python3 - "$work/stream.pcap" "$here/seeds" <<'PY'
import os, struct, sys

pcap, out = sys.argv[1], sys.argv[2]
data = open(pcap, 'rb').read()
packets, at = [], 24
while at + 16 <= len(data):
    length = struct.unpack_from('<I', data, at + 8)[0]
    frame = data[at + 16:at + 16 + length]
    at += 16 + length
    ip = frame[14:]
    if len(ip) < 28 or ip[9] != 17:
        continue
    udp = ip[(ip[0] & 15) * 4:]
    packets.append(udp[8:])

# A block's packets by block id, in the order they came.
blocks = {}
for p in packets:
    blocks.setdefault(struct.unpack_from('>H', p, 2)[0], []).append(p)
ids = sorted(blocks)[:4]

def extended(p):
    # The same packet with the 20-byte header of 64-bit block ids.
    status, block = struct.unpack_from('>HH', p, 0)
    fmt, pid = p[4] & 0x0F, struct.unpack_from('>I', p, 4)[0] & 0xFFFFFF
    return struct.pack('>HHBBHQI', status, 0, 0x80 | fmt, 0, 0, block, pid) + p[8:]

def seed(name, flags, records):
    body = bytes([flags])
    for advance, p in records:
        body += struct.pack('>BH', advance, len(p)) + p
    os.makedirs(out, exist_ok=True)
    open(os.path.join(out, name), 'wb').write(body)

def frames(convert=lambda p: p, skip=()):
    records = []
    for block in ids:
        for n, p in enumerate(blocks[block]):
            if (block, n) not in skip:
                last = n == len(blocks[block]) - 1
                records.append((1 if last else 0, convert(p)))
    return records

hint576, buf4k, resend = 1 << 5, 1 << 3, 2
seed('standard', resend | buf4k | hint576, frames())
seed('extended', 1 | resend | buf4k | hint576, frames(extended))
seed('learn_reversed', buf4k, [(0, p) for p in reversed(blocks[ids[0]])] + frames())
lost = {(ids[1], 2), (ids[1], 3), (ids[2], len(blocks[ids[2]]) - 1)}
seed('lossy_frequent', resend | 4 | buf4k, frames(skip=lost) + [(20, blocks[ids[1]][2])])
seed('small_buffer', resend | hint576, frames())
print(len(packets), 'packets,', len(blocks), 'blocks')
PY
