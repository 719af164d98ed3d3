#!/bin/sh
# Builds the two hosts against an installed pdlibvark twice, through its CMake package and
# through pkg-config, and runs each build on the shipped examples.
#   sh examples/consumer/check.sh PREFIX TONEMETRY SCRATCH
# PREFIX is an install prefix or an unpacked package root (its usr/); TONEMETRY packs the
# tuning file that the reader loads; SCRATCH is a folder the check may fill.
set -eu

prefix=$(cd "$1" && pwd)
tonemetry=$2
scratch=$3
here=$(cd "$(dirname "$0")" && pwd)
examples=$(dirname "$here")
libdir=$(dirname "$(find "$prefix" -name pdlibvark.pc | head -n 1)")/..

mkdir -p "$scratch"
"$tonemetry" pack "$examples/tuning_sample.json" -o "$scratch/tuning.bin" > /dev/null

run_hosts() {
    LD_LIBRARY_PATH="$libdir" "$1/pd_host" "$examples/stats_fmt2_mode0.bin" 2
    LD_LIBRARY_PATH="$libdir" "$1/tuning_reader" "$scratch/tuning.bin"
}

echo "--- through find_package(pdlibvark)"
cmake -S "$here" -B "$scratch/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" -Wno-dev > /dev/null
cmake --build "$scratch/cmake" > /dev/null
run_hosts "$scratch/cmake"

echo "--- through pkg-config pdlibvark"
mkdir -p "$scratch/pkgconfig"
export PKG_CONFIG_PATH="$libdir/pkgconfig"
for host in pd_host tuning_reader; do
    # shellcheck disable=SC2046 # the flags are words
    c++ -std=c++17 "$here/$host.cpp" -o "$scratch/pkgconfig/$host" $(pkg-config --cflags --libs pdlibvark)
done
run_hosts "$scratch/pkgconfig"
