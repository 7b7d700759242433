#!/usr/bin/env bash
# The demo: shows the library at work through the kwcore tool.
# Usage: tools/demo.sh PATH_TO_KWCORE
set -euo pipefail
kwcore=${1:?usage: demo.sh PATH_TO_KWCORE}

section() { printf '\n== %s ==\n' "$*"; }
run() { printf '$ kwcore %s\n' "$*"; "$kwcore" "$@"; }

section "A new random GUID in every written form"
run guid
section "A known GUID read in one form and written in all"
run guid "{EC130930-944F-4394-B58A-D252EB277FFD}"
section "The element form read back"
run guid _MAkT7E-UlEO1itJS6yd__Q
section "Types registered by the library before main"
run types

# The xml command is built where Xerces-C is found.
commands=$("$kwcore" --help)
if ! grep -q '^  xml ' <<<"$commands"; then
    section "XML archives"
    echo "(this kwcore has no xml command: it was built without Xerces-C)"
    exit 0
fi
work=$(mktemp -d "${TMPDIR:-/tmp}/kwcore-demo.XXXXXX")
trap 'rm -rf "$work"' EXIT
model=$work/bicycle.xml

section "A small model saved to an XML archive, released, and loaded back"
run xml demo "$model"
section "The archive as a tree: documents, type manifests, objects and fields"
run xml inspect "$model"
section "Every stored object loaded through the type system"
run xml inspect --check "$model"
section "The same archive without the frame's name: the check says what does not load"
grep -v 'V="frame"' "$model" >"$work/damaged.xml"
run xml inspect --check "$work/damaged.xml" || echo "(exit status $?)"

section "A graph with a cycle and a one-way line, saved from one station and loaded from another"
graph=$work/stations.xml
run graph demo "$graph"
section "Walked from Park, and from Airport, against the one-way line"
run graph demo --from Park "$graph" | grep 'depth first'
run graph demo --from Airport "$graph" | grep 'depth first'
section "Every station and line in the file loads"
run xml inspect --check "$graph"
