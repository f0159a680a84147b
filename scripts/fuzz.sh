#!/bin/sh
# Runs every fuzzer of a build for some seconds each, two at a time, starting from the corpus. An input that
# shows a fault is kept in the build's folder "faults" and named; the status is then 1.
# Use: scripts/fuzz.sh BUILD [SECONDS [READER...]]
set -eu
build=$1
seconds=${2:-20}
shift
[ $# -eq 0 ] || shift
corpus=$(dirname "$0")/../tests/fuzz/corpus
readers=${*:-$(ls "$corpus")}

work=$(mktemp -d "${TMPDIR:-/tmp}/trelm_fuzz_run.XXXXXX")
trap 'rm -rf "$work"' EXIT
trap 'exit 1' INT TERM
mkdir -p "$build/faults"

# What a fuzzer finds goes to a folder of this run; the corpus of the repository is only read. A run has to
# stay below the memory and the seconds given here, too: more is a fault.
fuzz_one() {
    mkdir "$work/$1" "$work/$1.tmp"
    if TMPDIR=$work/$1.tmp "$build/tests/fuzz/fuzz_$1" "$work/$1" "$corpus/$1" -max_total_time="$seconds" \
        -max_len=4096 -timeout=20 -rss_limit_mb=2048 -print_final_stats=1 \
        -artifact_prefix="$build/faults/$1-" > "$work/$1.log" 2>&1; then
        runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$work/$1.log")
        echo "$1: $runs executions, no fault"
    else
        tail -n 60 "$work/$1.log"
        echo "$1: FAULT, the input is in $build/faults"
        touch "$work/fault"
    fi
}

running=0
for reader in $readers; do
    fuzz_one "$reader" &
    running=$((running + 1))
    if [ "$running" -eq 2 ]; then
        wait
        running=0
    fi
done
wait
[ ! -e "$work/fault" ]
