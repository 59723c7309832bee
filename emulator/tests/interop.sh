#!/usr/bin/env bash
# Independent peers judge the emulator: Aravis's arv-tool must list it, load its description
# in every form and read and write its features; tshark must decode its GVCP and GVSP
# traffic without a malformed-packet mark. Runs inside a private network namespace.
# usage: interop.sh BIN_DIR
set -uo pipefail
bin=$1
emulator=$bin/ry-camera-emulator
probe=$bin/ry-emulator-probe
work=$(mktemp -d)
pids=()
cleanup() {
    for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null; wait "$pid" 2>/dev/null; done
    rm -rf "$work"
}
trap cleanup EXIT
failures=0
check() {  # check NAME COMMAND...: runs the command, reports and counts a failure
    local name=$1; shift
    if "$@" > "$work/out" 2>&1; then
        echo "PASS $name"
    else
        echo "FAIL $name"; sed 's/^/    /' "$work/out"; failures=$((failures + 1))
    fi
}
start_emulator() {  # start_emulator ARGS...: waits until the cameras are announced
    "$emulator" "$@" > "$work/emulator.out" 2>&1 &
    pids+=($!)
    for _ in $(seq 50); do
        [ -s "$work/emulator.out" ] && return 0
        sleep 0.1
    done
    echo "emulator did not start: $(cat "$work/emulator.out")"; return 1
}
stop_emulators() {
    for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null; wait "$pid" 2>/dev/null; done
    pids=()
}
contains() { grep -q -- "$1" "$work/out"; }

# The program itself: announces each camera, ends cleanly on SIGTERM, refuses bad options.
start_emulator --address 127.0.0.7 --count 2 --serial P --model GigE_Connect || exit 1
check "one line per camera" bash -c \
    "grep -qx '127.0.0.7 GigE_Connect P' $work/emulator.out && grep -qx '127.0.0.8 GigE_Connect P-2' $work/emulator.out"
kill -TERM "${pids[0]}"
check "SIGTERM ends it cleanly" wait "${pids[0]}"
pids=()
check "unknown pixel format refused" bash -c \
    "$emulator --pixel-format Mono9 2>&1 | grep -q 'unknown pixel format'"
check "bad number refused with usage" bash -c "$emulator --fps fast 2>&1 | grep -q 'usage:';
    $emulator --fps fast >/dev/null 2>&1; [ \$? -eq 2 ]"

if ! command -v arv-tool-0.8 > /dev/null; then
    echo "SKIP arv-tool-0.8 is not installed (aravis-tools-cli): Aravis checks not run"
else
    for form in zip plain utf8-bom utf16-bom; do
        start_emulator --address 127.0.0.2 --serial "X$form" --xml "$form" || exit 1
        check "aravis lists the camera ($form)" bash -c \
            "arv-tool-0.8 | tee /dev/stderr | grep -q 'RyVision-RyEmulator-X$form (127.0.0.2)'"
        check "aravis reads every feature ($form)" bash -c \
            "arv-tool-0.8 -a 127.0.0.2 values 2>&1 | tee /dev/stderr | grep -q \"'GevSCSP'\" &&
             ! arv-tool-0.8 -a 127.0.0.2 values 2>&1 | grep -qi 'error'"
        check "aravis writes features ($form)" bash -c \
            "arv-tool-0.8 -a 127.0.0.2 control Width=320 PixelFormat=Mono12Packed Gain=6.5 \
               ExposureTime=2000 TriggerSource=External 2>&1 | tee /dev/stderr >/dev/null &&
             arv-tool-0.8 -a 127.0.0.2 control Width PixelFormat Gain TriggerSource 2>&1 |
             tee /dev/stderr | tr '\n' ' ' |
             grep -q 'Width = 320.*PixelFormat = Mono12Packed.*Gain = 6.5.*TriggerSource = External'"
        stop_emulators
    done
    start_emulator --address 127.0.0.2 --count 3 --trigger-ext || exit 1
    # Aravis waits a fixed time for discovery answers: on a loaded machine ask again.
    check "aravis lists three cameras" bash -c \
        "for try in 1 2 3; do [ \$(arv-tool-0.8 | grep -c RyEmulator) -eq 3 ] && exit 0; done; exit 1"
    check "external trigger entry named Ext" bash -c \
        "arv-tool-0.8 -a 127.0.0.3 control TriggerSource=Ext TriggerSource | grep -q 'TriggerSource = Ext'"
    stop_emulators
fi

if ! command -v tshark > /dev/null; then
    echo "SKIP tshark is not installed: dissector checks not run"
else
    start_emulator --address 127.0.0.2 --width 320 --height 240 || exit 1
    tshark -q -i lo -f udp -w "$work/capture.pcapng" > "$work/tshark.out" 2>&1 &
    capture=$!
    for _ in $(seq 50); do grep -q Capturing "$work/tshark.out" && break; sleep 0.1; done
    sleep 0.3
    check "probe session" "$probe" 127.0.0.2 3
    port=$(sed -n 's/^stream port //p' "$work/out")
    sleep 0.5
    kill -INT $capture; wait $capture
    check "tshark sees GVCP" bash -c "[ \$(tshark -r $work/capture.pcapng -Y gvcp | wc -l) -gt 10 ]"
    # On lo a segmentation-offload send is captured as one datagram, so count kinds, not packets.
    check "tshark sees GVSP leaders, payloads and trailers" bash -c \
        "tshark -r $work/capture.pcapng -d udp.port==$port,gvsp -Y gvsp > $work/gvsp.txt &&
         grep -q LEADER $work/gvsp.txt && grep -q PAYLOAD $work/gvsp.txt &&
         [ \$(grep -c TRAILER $work/gvsp.txt) -eq 3 ]"
    check "no malformed packets" bash -c \
        "[ \$(tshark -r $work/capture.pcapng -d udp.port==$port,gvsp -Y '_ws.malformed || _ws.expert.severity >= error' | wc -l) -eq 0 ]"
    stop_emulators

    # A whole session of the SDK (discovery, open, features, a refused write, a stream,
    # close): every GVCP and GVSP packet decodes, and the camera's packets are camera-sized.
    sdk_probe=$bin/ry-camera-open-probe
    if [ -x "$sdk_probe" ]; then
        start_emulator --address 127.0.0.3 --width 320 --height 240 --fps 20 || exit 1
        tshark -q -i lo -f udp -w "$work/session.pcapng" > "$work/tshark.out" 2>&1 &
        capture=$!
        for _ in $(seq 50); do grep -q Capturing "$work/tshark.out" && break; sleep 0.1; done
        sleep 0.3
        check "SDK session" bash -c "$sdk_probe control session | grep -qx 'open=0 close=0'"
        sleep 0.5
        kill -INT $capture; wait $capture
        port=$(tshark -r "$work/session.pcapng" -Y 'udp.srcport != 3956 && udp.dstport != 3956' \
               -T fields -e udp.dstport | sort | uniq -c | sort -rn | awk 'NR == 1 {print $2}')
        tshark -r "$work/session.pcapng" -d udp.port==$port,gvsp > "$work/session.txt"
        check "session: discovery, reads, writes and a refused write decode" bash -c \
            "grep -q DISCOVERY_ACK $work/session.txt && grep -q READMEM_ACK $work/session.txt &&
             grep -q WRITEREG_ACK $work/session.txt &&
             [ \$(tshark -r $work/session.pcapng -Y 'gvcp.cmd.status != 0' | wc -l) -ge 1 ]"
        check "session: every stream packet is one camera-sized datagram" bash -c \
            "grep -q LEADER $work/session.txt && grep -q TRAILER $work/session.txt &&
             [ \$(tshark -r $work/session.pcapng -d udp.port==$port,gvsp -Y 'gvsp && udp.length > 9000' | wc -l) -eq 0 ]"
        check "session: no malformed packets" bash -c \
            "[ \$(tshark -r $work/session.pcapng -d udp.port==$port,gvsp -Y '_ws.malformed || _ws.expert.severity >= error' | wc -l) -eq 0 ]"
        stop_emulators
    else
        echo "SKIP $sdk_probe is not built: the SDK session capture is not run"
    fi
fi
[ $failures -eq 0 ]
