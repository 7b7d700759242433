#!/usr/bin/env bash
# Installs a kwcore build tree into a scratch prefix, then builds and runs
# programs that see kwcore through that prefix only: the example host through
# its CMake package, and a one-file program through pkg-config.
#
# Usage: check-installed-package.sh CMAKE BUILD_DIR HOST_SOURCE_DIR CXX PKG_CONFIG WORK_DIR
set -euo pipefail
cmake=$1 build=$2 host=$3 cxx=$4 pkg_config=$5 work=$6

fail() {
    echo "FAILED: $*" >&2
    exit 1
}

[ -f "$host/CMakeLists.txt" ] || fail "no example host in $host"
mkdir -p "$work"
scratch=$(mktemp -d "$work/installed.XXXXXX")
trap 'rm -rf "$scratch"' EXIT
scratch=$(cd "$scratch" && pwd -P)
prefix=$scratch/prefix

echo "== install into $prefix"
"$cmake" --install "$build" --prefix "$prefix"

# Fails unless the existing path $2 lies inside the prefix; $1 names it.
expect_in_prefix() {
    local dir
    dir=$(cd "$(dirname "$2")" 2>/dev/null && pwd -P) || fail "$1 is '$2', which does not exist"
    case "$dir/$(basename "$2")" in
    "$prefix"/*) ;;
    *) fail "$1 is '$2', outside $prefix" ;;
    esac
}

# Fails unless program $1 loads the installed libkwcore.
expect_installed_library() {
    expect_in_prefix "the libkwcore $1 loads" "$(ldd "$1" | awk '/libkwcore/ { print $3 }')"
}

echo "== example host through find_package"
# The package registries could offer the build tree instead of the prefix.
"$cmake" -S "$host" -B "$scratch/host" -G Ninja -DCMAKE_CXX_COMPILER="$cxx" \
    -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF \
    -DCMAKE_FIND_USE_SYSTEM_PACKAGE_REGISTRY=OFF
expect_in_prefix "the kwcore package found" \
    "$(sed -n 's/^kwcore_DIR:PATH=//p' "$scratch/host/CMakeCache.txt")"
"$cmake" --build "$scratch/host"
expect_installed_library "$scratch/host/kwcore_example_host"
"$scratch/host/kwcore_example_host"

echo "== one-file program through pkg-config"
pc=$(find "$prefix" -name kwcore.pc -print -quit)
[ -n "$pc" ] || fail "kwcore.pc is not installed"
export PKG_CONFIG_PATH=${pc%/*}
flags=$("$pkg_config" --cflags --libs kwcore)
echo "pkg-config --cflags --libs kwcore: $flags"
libdir=$("$pkg_config" --variable=libdir kwcore)
expect_in_prefix "kwcore.pc's libdir" "$libdir"
expect_in_prefix "kwcore.pc's includedir" "$("$pkg_config" --variable=includedir kwcore)"
cat >"$scratch/main.cpp" <<'CPP'
#include <kwcore/kwcore.h>

#include <cstdio>

int main() {
    CString text("kw");
    text += "core";
    std::printf("%s\n", static_cast<const char*>(text));
    return text == "kwcore" ? 0 : 1;
}
CPP
# shellcheck disable=SC2086 # the flags are a list of words
"$cxx" -Wall -Wextra -Werror -o "$scratch/pkgconfig-host" "$scratch/main.cpp" $flags \
    -Wl,-rpath,"$libdir"
expect_installed_library "$scratch/pkgconfig-host"
"$scratch/pkgconfig-host"
echo "installed package: ok"
