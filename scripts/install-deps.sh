#!/usr/bin/env bash
# Installs, from Debian 12's archive, everything the build, the tests, the peers the
# tests compare against and the benchmarks need. Safe to run again: apt skips what is there.
set -euo pipefail

packages=(
    build-essential cmake ninja-build pkg-config git
    zlib1g-dev libminizip-dev libsimde-dev libpng-dev
    libgtest-dev libgmock-dev libbenchmark-dev
    iproute2 util-linux nftables
    clang-format clang libclang-rt-14-dev
    doxygen
    # the Python package (python/) and its tests, with Debian's own interpreter
    python3 python3-numpy python3-pytest mypy
    # peers and references the tests and benchmarks compare against
    libopencv-dev libaravis-dev libusb-1.0-0-dev aravis-tools-cli aravis-tools tshark
)

missing=()
for package in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed" ||
        missing+=("$package")
done

if [ "${#missing[@]}" -gt 0 ]; then
    export DEBIAN_FRONTEND=noninteractive
    apt-get update -qq
    apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
