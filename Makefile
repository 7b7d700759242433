# Front door to the CMake workflow presets (CMakePresets.json). Each target
# first makes sure the Debian packages it uses are installed: as root it
# installs the missing ones, otherwise it prints the apt-get command to run
# and stops.

SHELL := bash
.SHELLFLAGS := -euo pipefail -c
JOBS ?= $(shell nproc 2>/dev/null || echo 2)
# cmake --workflow takes no -j: the build and test steps read these.
export CMAKE_BUILD_PARALLEL_LEVEL := $(JOBS)
export CTEST_PARALLEL_LEVEL := $(JOBS)

# What each target installs, and what for. Every build needs CMake and Ninja;
# the native builds have the XML archive, so they need Xerces-C.
BUILD_PACKAGES := cmake ninja-build
XML_PACKAGES := libxerces-c-dev
# clang with its runtimes (ASan, UBSan, LeakSanitizer, libFuzzer, profiles):
# apt-get leaves libclang-rt out, since clang only recommends it.
CLANG_PACKAGES := clang libclang-rt-14-dev
# Every Linux build of the library: SQLite holds the registry store.
LIBRARY_PACKAGES := libsqlite3-dev

# The demo: the kwcore tool and the measuring-tool example, built with g++.
DEMO_PACKAGES := $(BUILD_PACKAGES) g++ $(LIBRARY_PACKAGES) $(XML_PACKAGES)
# The tests: g++ (dev, tsan) and clang (sanitize, fuzz); GoogleTest and
# GoogleMock; pkg-config for the installed-package test; Eigen as the oracle of
# the matrix decomposition tests.
TEST_PACKAGES := $(BUILD_PACKAGES) g++ $(CLANG_PACKAGES) $(LIBRARY_PACKAGES) $(XML_PACKAGES) \
	libgtest-dev libgmock-dev pkg-config libeigen3-dev
FUZZ_PACKAGES := $(BUILD_PACKAGES) $(CLANG_PACKAGES) $(LIBRARY_PACKAGES) $(XML_PACKAGES)
# The coverage run: the tests built with clang and its profile runtime, and
# llvm-profdata and llvm-cov to read what they counted.
COVERAGE_PACKAGES := $(BUILD_PACKAGES) $(CLANG_PACKAGES) llvm $(LIBRARY_PACKAGES) $(XML_PACKAGES) \
	libgtest-dev libgmock-dev libeigen3-dev
# The benchmarks and the peers they measure against: libuuid (GUIDs),
# Boost.Serialization (XML archive), Boost.Signals2 (observers), Boost.Graph
# (graph walks), CGAL (triangulations), Eigen (matrices and quaternions) and
# Qt's QSettings (registry settings).
BENCH_PACKAGES := $(BUILD_PACKAGES) g++ $(LIBRARY_PACKAGES) $(XML_PACKAGES) libbenchmark-dev \
	uuid-dev libboost-serialization-dev libboost-dev libboost-graph-dev libcgal-dev libeigen3-dev \
	qtbase5-dev
# The Windows build: MinGW-w64, GoogleTest built from Debian's sources, and
# the 64-bit Wine that runs the tests.
WINDOWS_PACKAGES := $(BUILD_PACKAGES) g++-mingw-w64-x86-64-posix googletest wine64

FUZZ_DIR := build/fuzz
# Seconds for each fuzzer in make fuzz.
FUZZ_SECONDS ?= 300
# The short run that closes make test: about a minute in all.
FUZZ_TEST_XML_SECONDS := 30
FUZZ_TEST_TEXT_SECONDS := 10

BENCH_DIR := build/release/bench
BENCH_RESULTS := build/release/bench-results

# $(call require-packages,PACKAGES)
define require-packages
if ! command -v dpkg-query >/dev/null; then \
	echo "dpkg-query not found: cannot check for $(strip $(1))" >&2; exit 0; \
fi; \
missing=$$(for p in $(1); do \
	[ "$$(dpkg-query -W -f='$${db:Status-Status}' "$$p" 2>/dev/null)" = installed ] || echo "$$p"; \
done | xargs); \
[ -z "$$missing" ] && exit 0; \
if [ "$$(id -u)" -ne 0 ]; then \
	echo "Missing Debian packages. As root, run:" >&2; \
	echo "  apt-get update && apt-get install -y --no-install-recommends $$missing" >&2; \
	exit 1; \
fi; \
echo "Installing $$missing"; \
apt-get -q update; \
DEBIAN_FRONTEND=noninteractive apt-get -q install -y --no-install-recommends $$missing
endef

.PHONY: demo test fuzz coverage bench test-windows clean

demo:
	@$(call require-packages,$(DEMO_PACKAGES))
	cmake --workflow --preset demo
	tools/demo.sh build/demo/tools/kwcore/kwcore

test:
	@$(call require-packages,$(TEST_PACKAGES))
	cmake --workflow --preset dev
	cmake --workflow --preset sanitize
	cmake --workflow --preset tsan
	cmake --workflow --preset fuzz
	fuzz/run-fuzzers.sh $(FUZZ_DIR) $(FUZZ_TEST_XML_SECONDS) xml
	fuzz/run-fuzzers.sh $(FUZZ_DIR) $(FUZZ_TEST_TEXT_SECONDS) guid tuple polygon

# A longer run of every fuzzer, one after the other; their corpora grow in
# $(FUZZ_DIR)/corpus.
fuzz:
	@$(call require-packages,$(FUZZ_PACKAGES))
	cmake --workflow --preset fuzz
	fuzz/run-fuzzers.sh $(FUZZ_DIR) $(FUZZ_SECONDS)

# Line coverage of the library by the tests, per subsystem; the profiles of
# an earlier run are dropped first.
coverage:
	@$(call require-packages,$(COVERAGE_PACKAGES))
	rm -rf build/coverage/profiles
	cmake --workflow --preset coverage
	tools/coverage.sh build/coverage

# Runs one benchmark program at a time, so they do not compete for cores.
bench:
	@$(call require-packages,$(BENCH_PACKAGES))
	cmake --workflow --preset release
	@mkdir -p $(BENCH_RESULTS); \
	programs=$$(find $(BENCH_DIR) -maxdepth 1 -type f -name 'kwcore_*bench*' -perm -u+x | sort); \
	[ -n "$$programs" ] || { echo "No benchmark programs in $(BENCH_DIR)" >&2; exit 1; }; \
	for program in $$programs; do \
		name=$${program##*/}; \
		echo "== $$name"; \
		"$$program" --benchmark_repetitions=5 --benchmark_report_aggregates_only=true \
			--benchmark_out=$(BENCH_RESULTS)/$$name.json --benchmark_out_format=json; \
	done; \
	echo "Results in $(BENCH_RESULTS)"

# The Windows build runs its tests under Wine; see cmake/KWCoreWine.cmake.
test-windows:
	@$(call require-packages,$(WINDOWS_PACKAGES))
	cmake --workflow --preset windows

clean:
	rm -rf build
