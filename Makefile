# Front door to the CMake presets. Each target first makes sure the Debian
# packages it needs are installed: as root it installs the missing ones,
# otherwise it prints the apt-get command to run and stops.

SHELL := bash
.SHELLFLAGS := -euo pipefail -c
JOBS ?= $(shell nproc 2>/dev/null || echo 2)

COMMON_PACKAGES := cmake ninja-build g++ clang pkg-config libgtest-dev libgmock-dev googletest \
	uuid-dev libxerces-c-dev libsqlite3-dev libclang-rt-14-dev
BENCH_PACKAGES := $(COMMON_PACKAGES) libbenchmark-dev libboost-serialization-dev libcgal-dev
WINDOWS_PACKAGES := $(COMMON_PACKAGES) g++-mingw-w64-x86-64-posix wine64 wine

FUZZ_DIR := build/fuzz
FUZZ_SECONDS ?= 300
# The short run that closes make test.
FUZZ_TEST_SECONDS := 30

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

.PHONY: demo test fuzz bench test-windows clean

demo:
	@$(call require-packages,$(COMMON_PACKAGES))
	cmake --preset dev
	cmake --build --preset dev -j $(JOBS) --target kwcore_tool
	tools/demo.sh build/dev/tools/kwcore/kwcore

test:
	@$(call require-packages,$(COMMON_PACKAGES))
	cmake --preset dev
	cmake --build --preset dev -j $(JOBS)
	ctest --preset dev -j $(JOBS)
	cmake --preset sanitize
	cmake --build --preset sanitize -j $(JOBS)
	ctest --preset sanitize -j $(JOBS)
	cmake --preset tsan
	cmake --build --preset tsan -j $(JOBS)
	ctest --preset tsan -j $(JOBS)
	cmake --preset fuzz
	cmake --build --preset fuzz -j $(JOBS)
	fuzz/run-xml-fuzzer.sh $(FUZZ_DIR) $(FUZZ_TEST_SECONDS)

# A longer run of the XML loader fuzzer; its corpus grows in $(FUZZ_DIR).
fuzz:
	@$(call require-packages,$(COMMON_PACKAGES))
	cmake --preset fuzz
	cmake --build --preset fuzz -j $(JOBS)
	fuzz/run-xml-fuzzer.sh $(FUZZ_DIR) $(FUZZ_SECONDS)

# Runs one benchmark program at a time, so they do not compete for cores.
bench:
	@$(call require-packages,$(BENCH_PACKAGES))
	cmake --preset release
	cmake --build --preset release -j $(JOBS)
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
	cmake --preset windows
	cmake --build --preset windows -j $(JOBS)
	ctest --preset windows -j $(JOBS)

clean:
	rm -rf build
