#!/usr/bin/env bash
# Installs the built tree into a scratch prefix and builds a small application against it
# twice: once through find_package(RyGigE), once through pkg-config. Both must run. Then the
# C example (as strict C99) and the C++ example are built the same two ways and grab from an
# emulated camera in a private network namespace.
set -euo pipefail
build_dir=$1
consumer_dir=$2
example_dir=$3
emulator=$4
cpp_example_dir=$5
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

cmake --install "$build_dir" --prefix "$scratch/prefix" >/dev/null
libdir=$(find "$scratch/prefix" -name 'libRyGigE.so.7' -printf '%h\n' | head -n 1)
test -n "$libdir" || { echo "libRyGigE.so.7 was not installed"; exit 1; }
test -f "$scratch/prefix/include/rysdk/RyResult.h" || { echo "headers were not installed"; exit 1; }

cmake -S "$consumer_dir" -B "$scratch/cmake-build" -G Ninja \
      -DCMAKE_PREFIX_PATH="$scratch/prefix" >/dev/null
cmake --build "$scratch/cmake-build"
LD_LIBRARY_PATH="$libdir" "$scratch/cmake-build/consumer"

pc_dir=$(find "$scratch/prefix" -name 'RyGigE.pc' -printf '%h\n' | head -n 1)
flags=$(PKG_CONFIG_PATH="$pc_dir" pkg-config --cflags --libs RyGigE)
# shellcheck disable=SC2086
g++ -std=c++20 "$consumer_dir/consumer.cpp" -o "$scratch/pc-consumer" $flags
LD_LIBRARY_PATH="$libdir" "$scratch/pc-consumer"

cmake -S "$example_dir" -B "$scratch/c-build" -G Ninja -DCMAKE_PREFIX_PATH="$scratch/prefix" >/dev/null
cmake --build "$scratch/c-build"
# shellcheck disable=SC2086
cc -std=c99 -Wall -Wextra -pedantic -Werror "$example_dir/grab.c" -o "$scratch/pc-grab" $flags -lpthread
cmake -S "$cpp_example_dir" -B "$scratch/cpp-build" -G Ninja \
      -DCMAKE_PREFIX_PATH="$scratch/prefix" >/dev/null
cmake --build "$scratch/cpp-build"
# shellcheck disable=SC2086
c++ -std=c++20 -Wall -Wextra -pedantic -Werror "$cpp_example_dir/grab.cpp" \
    -o "$scratch/pc-grab-cpp" $flags
for program in "$scratch/c-build/grab" "$scratch/pc-grab" "$scratch/cpp-build/grab" \
               "$scratch/pc-grab-cpp"; do
    LD_LIBRARY_PATH="$libdir" bash "$here/../../scripts/in-private-net.sh" \
        bash "$here/run_c_example.sh" "$emulator" "$program" 20
done
