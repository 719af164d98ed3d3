#!/bin/sh
# The demo of `make demo`: pdlib-run on the shipped calibration and statistic buffers.
# Called as `BUILD=<build dir> sh examples/demo.sh`; BUILD defaults to build/release.
set -eu

examples=$(dirname "$0")
build=${BUILD:-build/release}
run="$build/tools/pdlib-run/pdlib-run"
calib="$examples/calib_16x12.json"

if [ ! -x "$run" ]; then
    echo "demo: $run is missing; build first (make demo)" >&2
    exit 1
fi

heading() {
    printf '\n=== %s ===\n\n' "$1"
}

heading "Format 2 (11-bit confidence, 11-bit phase), 16 x 12 windows, 16 x 12 calibration"
"$run" --calib "$calib" --stats "$examples/stats_fmt2_mode0.bin" --format 2

heading "Format 1 (8-bit confidence, 10-bit phase), 8 x 6 windows"
"$run" --calib "$calib" --stats "$examples/stats_fmt1_mode1.bin" --format 1

heading "Format 3 (11-bit confidence, 10-bit phase), 8 flexible windows, defocus shifted by 4"
"$run" --calib "$calib" --stats "$examples/stats_fmt3_mode2.bin" --format 3 --shift 4

heading "The same frame as JSON"
"$run" --calib "$calib" --stats "$examples/stats_fmt3_mode2.bin" --format 3 --shift 4 --json
