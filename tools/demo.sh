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
section "A quarter turn about z: matrix, quaternion and the point it moves"
run geom rotate --axis 0,0,1 --angle 90 --point 1,0,0
section "Euler angles to a rotation and back; at 90 degrees the angles lock"
run geom euler --order XYZ 0.1,0.2,0.3
run geom euler --order ZYX --degrees 10,90,20
section "An inverse, and the zero matrix the kernel gives for a singular one"
run geom invert 1,2,3,4
run geom invert 1,2,2,4 || echo "(exit status $?)"

# The measuring-tool example sits beside the tool in the build tree; make demo
# builds both.
measure=${KWCORE_MEASURE_TOOL:-$(dirname "$kwcore")/../../examples/measure-tool/kwcore_example_measure_tool}
section "A host tool fed by a tool-event router: measuring between mouse-down and mouse-up"
if [[ -x $measure ]]; then
    printf '$ kwcore_example_measure_tool\n'
    "$measure"
    printf '$ kwcore_example_measure_tool 0 0 30 40\n'
    "$measure" 0 0 30 40
else
    echo "(the measuring-tool example was not built)"
fi

section "A polygon with three holes, triangulated by the monotone sweep"
picture=$(dirname "$kwcore")/demo-triangulation.svg
run triangulate --svg "$picture" - <<'POLYGON'
# outer boundary, counter-clockwise
0 0
6 1
12 0
13 6
12 12
6 10
0 12
1 6

# three holes, clockwise
2 2
2 4
4 3
5 2

7 4
8 8
10 7
9 3

3 7
3 9
5 9
5 7
POLYGON
section "The outer boundary alone, by ear clipping with exact rational sign tests"
printf '0 0\n6 1\n12 0\n13 6\n12 12\n6 10\n0 12\n1 6\n' | run triangulate --method earclip --query rational -
section "A square with a hole poking out of it: the check names the problem"
printf '0 0\n12 0\n12 12\n0 12\n\n10 5\n10 7\n14 6\n' | run triangulate - || echo "(exit status $?)"

section "Progress tasks on worker threads: paused before running, continued, cancelled midway, stopped"
run progress

# The registry: on Linux the library's own store, here a throwaway one; on
# Windows the system's registry, below a key of the demo's own.
registry_dir=$(mktemp -d "${TMPDIR:-/tmp}/kwcore-registry.XXXXXX")
export KWCORE_REGISTRY=$registry_dir/registry.db
key='HKCU\Software\Quellspar\Demo'
section "Registry values of several types, set with kwcore reg"
run reg set "$key" Title REG_SZ 'Bridge "Nord" at C:\plans'
run reg set "$key" Width REG_DWORD 640
run reg set "$key" Seed REG_QWORD 0x123456789abcdef0
run reg set "$key" Logo REG_BINARY 89,50,4e,47,0d,0a,1a,0a,00,00,00,0d,49,48,44,52,00,00,00,10,00
run reg set "$key" Cache REG_EXPAND_SZ '%TEMP%\quellspar'
run reg set "$key\\Recent" Files REG_MULTI_SZ 'a.dwg\0b.dwg\0c.dwg'
section "The key listed (sub-keys first), and one value read back"
run reg list "$key"
run reg get "$key" Title
section "The key exported as REGEDIT4 text: escaped strings, long byte lists broken after 17 bytes, an expandable string as hex(2) text"
run reg export "$key" "$registry_dir/demo.reg"
tr -d '\r' <"$registry_dir/demo.reg"
section "The file imported into a second, empty store, and listed again: the same keys and values"
export KWCORE_REGISTRY=$registry_dir/second.db
run reg import "$registry_dir/demo.reg"
run reg list "$key"
run reg list "$key\\Recent"
section "A damaged file is refused whole, naming its line"
sed 's/dword:00000280/dword:280/' "$registry_dir/demo.reg" >"$registry_dir/damaged.reg"
run reg import "$registry_dir/damaged.reg" || echo "(exit status $?)"
rm -rf "$registry_dir"
unset KWCORE_REGISTRY

# The xml and graph commands are built where the library has the XML archive.
commands=$("$kwcore" --help)
if ! grep -q '^  xml ' <<<"$commands"; then
    section "XML archives"
    echo "(this kwcore has no xml command: it was built without the XML archive, KWCORE_WITH_XML=OFF)"
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
