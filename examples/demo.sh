#!/bin/sh
# The demo of `make demo`: pdlib-run on the shipped calibration and statistic buffers, then a
# tuning file packed, served on the live tuning link, read and changed with tonemetry live.
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

pictures="$build/demo"
mkdir -p "$pictures"
"$run" --calib "$calib" --stats "$examples/stats_fmt2_mode0.bin" --format 2 \
    --svg "$pictures/frame.svg" --calib-svg "$pictures/calibration.svg" > /dev/null
echo
echo "The same frame as pictures: $pictures/frame.svg (defocus, confidence, phase) and"
echo "$pictures/calibration.svg (slope and offset grids); open them in a browser."

heading "Format 1 (8-bit confidence, 10-bit phase), 8 x 6 windows"
"$run" --calib "$calib" --stats "$examples/stats_fmt1_mode1.bin" --format 1

heading "Format 3 (11-bit confidence, 10-bit phase), 8 flexible windows, defocus shifted by 4"
"$run" --calib "$calib" --stats "$examples/stats_fmt3_mode2.bin" --format 3 --shift 4

heading "The same frame as JSON"
"$run" --calib "$calib" --stats "$examples/stats_fmt3_mode2.bin" --format 3 --shift 4 --json

# ---- The tuning half: pack a tuning source, serve it on the live tuning link, read and change
# a value as the desktop tool does, and stop the server.
tonemetry="$build/tools/tonemetry/tonemetry"
if [ ! -x "$tonemetry" ]; then
    echo "demo: $tonemetry is missing; build first (make demo)" >&2
    exit 1
fi

work=$(mktemp -d)
server=""
stop_server() {
    if [ -n "$server" ]; then
        kill -INT "$server" 2>/dev/null || true
        wait "$server" 2>/dev/null || true
        server=""
    fi
}
trap 'stop_server; rm -rf "$work"' EXIT
trap 'exit 1' INT TERM

heading "Packing examples/tuning_sample.json (tonemetryPDLib under Default and Usecase.Video)"
"$tonemetry" pack "$examples/tuning_sample.json" -o "$work/tuning.bin"

heading "Serving it on the live tuning link"
"$tonemetry" serve "$work/tuning.bin" > "$work/serve.out" 2> "$work/serve.err" &
server=$!
port=""
tries=0
while [ -z "$port" ] && [ "$tries" -lt 100 ]; do
    port=$(sed -n 's/^listening on port \([0-9][0-9]*\)$/\1/p' "$work/serve.out")
    if [ -z "$port" ]; then
        if ! kill -0 "$server" 2>/dev/null; then
            cat "$work/serve.err" >&2
            echo "demo: the server stopped before it listened" >&2
            exit 1
        fi
        sleep 0.1
        tries=$((tries + 1))
    fi
done
if [ -z "$port" ]; then
    echo "demo: the server did not listen within 10 seconds" >&2
    exit 1
fi
echo "listening on port $port"

live() {
    "$tonemetry" live "live:127.0.0.1:$port" "$@"
}

heading "tonemetry live info"
live info
heading "tonemetry live get \"Default|Usecase.Video\" tonemetryPDLib.correlation"
live get "Default|Usecase.Video" tonemetryPDLib.correlation
heading "tonemetry live set \"Default|Usecase.Video\" tonemetryPDLib.correlation defocusConfidenceThreshold=175"
live set "Default|Usecase.Video" tonemetryPDLib.correlation defocusConfidenceThreshold=175
heading "Read back; the Default mode keeps its own value"
live get "Default|Usecase.Video" tonemetryPDLib.correlation defocusConfidenceThreshold
live get Default tonemetryPDLib.correlation defocusConfidenceThreshold

heading "Stopping the server"
stop_server
echo "stopped"
