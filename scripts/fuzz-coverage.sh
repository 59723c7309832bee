#!/usr/bin/env bash
# Line coverage that the wire fuzz targets' seeds and grown corpus reach in the parsers they
# exercise: builds the targets once more with clang's source coverage (build-fuzz-cov), runs
# each over its inputs without fuzzing, and prints how much of the parser functions the
# inputs reach they cover.
# usage: scripts/fuzz-coverage.sh
set -euo pipefail
cd "$(dirname "$0")/.."
build=build-fuzz-cov
cmake --preset fuzz -B "$build" \
    -DCMAKE_CXX_FLAGS="-fprofile-instr-generate -fcoverage-mapping" \
    -DCMAKE_C_FLAGS="-fprofile-instr-generate -fcoverage-mapping" > /dev/null
targets=(ry_fuzz_gvcp_acks ry_fuzz_discovery_acks ry_fuzz_event_messages
         ry_fuzz_serial_answers ry_fuzz_description_url)
cmake --build "$build" --target "${targets[@]}" > /dev/null
parsers='protocol/src/gvcp(_payloads)?\.cpp|client/src/device_answers\.cpp|serial/(ry_serial|serial_commands)\.cpp|camera/device_description\.cpp'
for target in "${targets[@]}"; do
    case $target in
        ry_fuzz_serial_answers | ry_fuzz_description_url) home=sdk/fuzz ;;
        *) home=gev/fuzz ;;
    esac
    name=${target#ry_fuzz_}
    inputs=("$home/seeds/$name")
    [ -d "$home/corpus/$target" ] && inputs+=("$home/corpus/$target")
    LLVM_PROFILE_FILE="$build/$target.profraw" "$build/bin/$target" -runs=0 "${inputs[@]}" \
        > /dev/null 2>&1
    llvm-profdata merge -sparse "$build/$target.profraw" -o "$build/$target.profdata"
    echo "== $target ($(find "${inputs[@]}" -type f | wc -l) inputs)"
    llvm-cov export "$build/bin/$target" -instr-profile="$build/$target.profdata" 2> /dev/null |
        python3 scripts/fuzz_coverage_summary.py "$parsers"
done
