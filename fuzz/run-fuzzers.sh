#!/usr/bin/env bash
# Runs each named fuzzer (all of them by default: xml guid tuple polygon) for
# SECONDS over its corpus in the build folder, seeded from fuzz/corpus/NAME
# (the source tree is only read), with fuzz/NAME.dict where there is one.
# Fails on any crash, failed check, sanitizer report, leak, timeout or memory
# blow-up; the input that caused it is left in BUILD/artifacts/NAME/.
#
#   fuzz/run-fuzzers.sh build/fuzz 30            # every fuzzer, 30 s each
#   fuzz/run-fuzzers.sh build/fuzz 10 guid tuple
set -euo pipefail

build=${1:?build folder}
seconds=${2:?seconds}
shift 2
names=("$@")
[ ${#names[@]} -gt 0 ] || names=(xml guid tuple polygon)
source_dir=$(cd "$(dirname "$0")" && pwd)

run_fuzzer() {
    local name=$1
    local fuzzer=$build/fuzz/kwcore_${name}_fuzzer
    local corpus=$build/corpus/$name
    local artifacts=$build/artifacts/$name
    local log=$build/$name-fuzzer.log
    local options=()
    if [ ! -x "$fuzzer" ]; then
        # The XML loader fuzzer is built only with the XML archive.
        echo "No $fuzzer: skipped"
        return 0
    fi
    mkdir -p "$corpus" "$artifacts"
    [ -d "$source_dir/corpus/$name" ] && cp -r "$source_dir/corpus/$name/." "$corpus/"
    [ -f "$source_dir/$name.dict" ] && options+=(-dict="$source_dir/$name.dict")

    echo "Fuzzing $name for ${seconds}s (log: $log)"
    if ! UBSAN_OPTIONS=print_stacktrace=1 "$fuzzer" -max_total_time="$seconds" -rss_limit_mb=2048 \
        -timeout=20 "${options[@]}" -artifact_prefix="$artifacts/" -print_final_stats=1 \
        "$corpus" >"$log" 2>&1; then
        tail -n 80 "$log" >&2
        echo "The $name fuzzer failed; reproducer in $artifacts/" >&2
        return 1
    fi
    grep -E '^(stat::number_of_executed_units|Done)' "$log" || true
}

for name in "${names[@]}"; do
    run_fuzzer "$name"
done
