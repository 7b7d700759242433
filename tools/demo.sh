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
