#!/usr/bin/env bash
# Line coverage of the library by the test suite, from the profiles that the
# coverage preset's test run leaves in BUILD/profiles: merges them, then
# prints a table of covered lines per subsystem (the library's sources and
# public headers, not the tests) and the total, and writes the per-file
# report to BUILD/coverage-files.txt and an HTML report to BUILD/html/.
#
#   tools/coverage.sh build/coverage
set -euo pipefail

build=${1:?build folder}
source_dir=$(cd "$(dirname "$0")/.." && pwd)
profiles=$build/profiles
merged=$build/coverage.profdata

shopt -s nullglob
raw=("$profiles"/*.profraw)
if [ ${#raw[@]} -eq 0 ]; then
    echo "No profiles in $profiles: run the coverage preset's tests first" >&2
    exit 1
fi
llvm-profdata merge -sparse -o "$merged" "${raw[@]}"

# The library, and every program that ran: header code is compiled into them.
objects=("$build/src/libkwcore.so")
while IFS= read -r program; do
    objects+=(-object "$program")
done < <(find "$build/tests" "$build/tools" -type f -perm -u+x -name 'kwcore*' | sort)

# Only the library's own files count.
ignored='(/tests/|/tools/|/fuzz/|/bench/|/examples/|/build/|^/usr/)'
llvm-cov report "${objects[@]}" -instr-profile="$merged" -ignore-filename-regex="$ignored" \
    >"$build/coverage-files.txt"
llvm-cov show "${objects[@]}" -instr-profile="$merged" -ignore-filename-regex="$ignored" \
    -format=html -output-dir="$build/html" -show-line-counts-or-regions

# Per-file lines: the name, then the 13 counts of the report's columns; the
# lines and missed lines are the 8th and 9th fields.
awk -v root="$source_dir/" '
    function subsystem(path) {
        sub("^" root, "", path)
        if (path !~ /^(src|include\/kwcore)\//) return "other"
        sub(/^(src|include\/kwcore)\//, "", path)
        if (path ~ /^serial\/xml\//) return "serial/xml"
        if (path ~ /^geometry\/[a-z]+\//) { split(path, part, "/"); return "geometry/" part[2] }
        split(path, part, "/")
        return part[1] ~ /\./ ? "other" : part[1]
    }
    NF == 13 && $1 != "Filename" && $1 != "TOTAL" {
        name = subsystem($1); lines[name] += $8; missed[name] += $9
        total += $8; totalMissed += $9
    }
    END {
        split("platform object serial serial/xml framework geometry/linear geometry/exact " \
              "geometry/triangulation system other", order, " ")
        printf "| %-22s | %6s | %6s | %7s |\n", "Subsystem", "Lines", "Missed", "Covered"
        printf "|%s|%s|%s|%s|\n", "---", "---:", "---:", "---:"
        for (i = 1; i <= 10; i++) {
            name = order[i]
            if (lines[name] > 0)
                printf "| %-22s | %6d | %6d | %6.1f%% |\n", name, lines[name], missed[name],
                       100 * (lines[name] - missed[name]) / lines[name]
            else if (name != "other")
                printf "| %-22s | %6s | %6s | %7s |\n", name, "-", "-", "-"
        }
        printf "| %-22s | %6d | %6d | %6.1f%% |\n", "**total**", total, totalMissed,
               100 * (total - totalMissed) / total
    }' "$build/coverage-files.txt"
echo
echo "Per file: $build/coverage-files.txt; annotated sources: $build/html/index.html"
