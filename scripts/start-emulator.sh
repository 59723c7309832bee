# Sourced by scripts that need an emulated camera: `start_emulator PROGRAM ARGS...` starts it
# in the background, stops it when the calling script exits, and returns once it serves,
# with the line it printed (address, model, serial) in EMULATOR_LINE.
start_emulator() {
    local ready
    ready=$(mktemp)
    "$@" >"$ready" &
    EMULATOR_PID=$!
    # shellcheck disable=SC2064  # the values are meant to be fixed now
    trap "kill $EMULATOR_PID 2>/dev/null; wait $EMULATOR_PID 2>/dev/null || true; rm -f '$ready'" EXIT
    for _ in $(seq 50); do
        [ -s "$ready" ] && break
        sleep 0.1
    done
    EMULATOR_LINE=$(head -n 1 "$ready")
}
