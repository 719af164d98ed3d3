#!/bin/sh
# Runs the benchmark programs of a build configured with -DVARK_BUILD_BENCH=ON, then counts the
# instructions of the phase-detection frame path under callgrind when valgrind is there.
#   BUILD=build/bench sh bench/run.sh
# Callgrind's files go to $BUILD/bench/callgrind, never into the source tree.
set -eu

if [ -z "${BUILD:-}" ]; then
    echo "bench/run.sh: set BUILD to the build directory, e.g. BUILD=build/bench" >&2
    exit 2
fi
if [ ! -d "$BUILD/bench" ]; then
    echo "bench/run.sh: no benchmarks in $BUILD: configure with -DVARK_BUILD_BENCH=ON and build first" >&2
    exit 1
fi

# Every area's Google Benchmark program, whatever areas there are.
found=0
for program in "$BUILD"/bench/*/*_bench; do
    [ -x "$program" ] || continue
    found=1
    echo "== ${program#"$BUILD"/}"
    "$program" --benchmark_counters_tabular=true
done
if [ "$found" -eq 0 ]; then
    echo "bench/run.sh: no *_bench program under $BUILD/bench" >&2
    exit 1
fi

# Instructions of one run of a program under callgrind: the first event of its summary line.
# Usage: count_instructions OUTFILE PROGRAM ARGS...; the program's output lands in OUTFILE.stdout.
count_instructions() {
    outfile=$1
    shift
    if ! valgrind --tool=callgrind --callgrind-out-file="$outfile" "$@" >"$outfile.stdout" 2>"$outfile.log"; then
        echo "bench/run.sh: callgrind failed on $*; see $outfile.log" >&2
        return 1
    fi
    sed -n 's/^summary: *\([0-9][0-9]*\).*/\1/p' "$outfile"
}

# Two runs of the frame driver, 1 and 101 frames after one initialisation: start-up and
# initialisation cancel out, leaving 100 frames' worth.
pdlib_instructions_per_window() {
    driver="$BUILD/bench/pdlib/pdlib_callgrind_frame"
    outdir="$BUILD/bench/callgrind"
    if [ ! -x "$driver" ]; then
        echo "bench/run.sh: $driver is missing" >&2
        return 1
    fi
    mkdir -p "$outdir"
    short=$(count_instructions "$outdir/pdlib.frames1.out" "$driver" 1)
    long=$(count_instructions "$outdir/pdlib.frames101.out" "$driver" 101)
    windows=$(sed -n 's/^windows per frame: *//p' "$outdir/pdlib.frames101.out.stdout")
    if [ -z "$short" ] || [ -z "$long" ] || [ -z "$windows" ] || [ "$windows" -eq 0 ]; then
        echo "bench/run.sh: no instruction count or window count in $outdir" >&2
        return 1
    fi
    echo "== pdlib under callgrind"
    awk -v short="$short" -v long="$long" -v windows="$windows" 'BEGIN {
        printf "PDLibProcess: %.1f instructions per window (%d windows a frame, %.0f per frame; goal: at most 1500 per window)\n",
            (long - short) / (100 * windows), windows, (long - short) / 100
    }'
}

if command -v valgrind >/dev/null 2>&1; then
    pdlib_instructions_per_window
else
    echo "valgrind is not installed: instruction counts skipped"
fi
