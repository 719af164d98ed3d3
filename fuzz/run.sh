#!/bin/sh
# Runs every fuzz target of a fuzz build.
#   sh fuzz/run.sh BUILD_DIR time SECONDS   each target for SECONDS, growing its corpus
#   sh fuzz/run.sh BUILD_DIR ci RUNS        each target over its seeds and RUNS mutations from
#                                           seed 1: the same inputs every time, so CI never
#                                           fails by chance
# A crash stops the run with the target's report, which names the input (and prints it when
# it is small); reproduce with: BUILD_DIR/fuzz/<target> <input file>.
set -eu

build=$1
mode=$2
amount=$3
fuzzdir="$build/fuzz"
list="$fuzzdir/targets.txt"
[ -f "$list" ] || { echo "fuzz: $list is missing; build with -DVARK_FUZZ=ON first" >&2; exit 2; }

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

while IFS='|' read -r name dict seeds; do
    [ -n "$name" ] || continue
    set -- -print_final_stats=1 -artifact_prefix="$fuzzdir/"
    [ -n "$dict" ] && set -- "$@" -dict="$dict"
    if [ "$mode" = ci ]; then
        mkdir -p "$scratch/$name"
        set -- "$@" -runs="$amount" -seed=1 "$scratch/$name"
    else
        set -- "$@" -max_total_time="$amount" "$fuzzdir/corpus/$name"
    fi
    [ -n "$seeds" ] && set -- "$@" "$seeds"
    echo "=== $name"
    "$fuzzdir/$name" "$@" > "$scratch/$name.log" 2>&1 || {
        cat "$scratch/$name.log"
        echo "fuzz: $name failed" >&2
        exit 1
    }
    grep -E "^#[0-9]+.*DONE|stat::number_of_executed_units|cov:" "$scratch/$name.log" | tail -2
done < "$list"
