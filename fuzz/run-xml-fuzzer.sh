#!/usr/bin/env bash
# Runs the XML loader fuzzer for SECONDS over its corpus in the build folder,
# seeded from fuzz/corpus (the source tree is only read). Fails on any
# crash, sanitizer report, leak, timeout or memory blow-up; the input that
# caused it is left in BUILD/artifacts/.
#
#   fuzz/run-xml-fuzzer.sh build/fuzz 30
set -euo pipefail

build=${1:?build folder}
seconds=${2:?seconds}
source_dir=$(cd "$(dirname "$0")" && pwd)
fuzzer=$build/fuzz/kwcore_xml_fuzzer
corpus=$build/corpus/xml
artifacts=$build/artifacts
log=$build/xml-fuzzer.log

mkdir -p "$corpus" "$artifacts"
for seeds in "$source_dir"/corpus/xml "$source_dir"/corpus/regressions; do
    [ -d "$seeds" ] && cp -r "$seeds/." "$corpus/"
done

echo "Fuzzing the XML loader for ${seconds}s (log: $log)"
if ! UBSAN_OPTIONS=print_stacktrace=1 "$fuzzer" -max_total_time="$seconds" -rss_limit_mb=2048 \
    -timeout=20 -dict="$source_dir/xml.dict" -artifact_prefix="$artifacts/" \
    -print_final_stats=1 "$corpus" >"$log" 2>&1; then
    tail -n 80 "$log" >&2
    echo "The XML loader fuzzer failed; reproducer in $artifacts/" >&2
    exit 1
fi
grep -E '^(stat::number_of_executed_units|Done)' "$log" || true
