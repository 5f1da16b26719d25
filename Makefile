# The commands of this project. `make run` and `make test` do all set-up themselves.
BUILD ?= build
STATE ?= state
JOBS ?= $(shell nproc)
CMAKE_FLAGS ?=

.PHONY: deps deps-extra build run test unit e2e check sanitize threads fuzz bench soak lint format clean
.DEFAULT_GOAL := build

# Debian packages; only when one is missing is root needed.
deps:
	@tools/install-deps

deps-extra: deps
	@tools/install-deps tools/packages-extra.txt

build: deps
	@tools/build $(BUILD) "$(JOBS)" programs $(CMAKE_FLAGS)

run: build
	@tools/run $(BUILD) $(STATE)

test: unit e2e

# Unit tests and fuzz targets, built with the address and undefined-behaviour sanitizers.
UNIT_BUILD ?= build-unit
unit: deps
	@tools/build $(UNIT_BUILD) "$(JOBS)" all -DSANITIZE=address,undefined -DCMAKE_BUILD_TYPE=Debug $(CMAKE_FLAGS)
	ctest --test-dir $(UNIT_BUILD) --output-on-failure -j $(JOBS)

e2e: build
	BUILD=$(BUILD) /usr/bin/python3 -m pytest -q tests/e2e

# The end-to-end tests once more, on the sanitized programs of the unit tests.
sanitize: unit
	BUILD=$(UNIT_BUILD) /usr/bin/python3 -m pytest -q tests/e2e

# The front ends under the thread sanitizer.
threads: deps
	@tools/build build-threads "$(JOBS)" "server_test netconf_test" -DSANITIZE=thread -DCMAKE_BUILD_TYPE=Debug
	build-threads/bin/server_test --gtest_brief=1
	build-threads/bin/netconf_test --gtest_brief=1

# Every fuzz target for FUZZ_SECONDS, with libFuzzer.
FUZZ_SECONDS ?= 60
fuzz: deps-extra
	@tools/fuzz $(FUZZ_SECONDS)

# What takes too long for every change: once a night.
check: build
	$(MAKE) sanitize
	$(MAKE) threads
	$(MAKE) fuzz FUZZ_SECONDS=600
	KILLS=200 BUILD=$(BUILD) /usr/bin/python3 -m pytest -q tests/e2e/test_durability.py
	$(MAKE) soak

bench: deps
	@tools/build $(BUILD) "$(JOBS)" all $(CMAKE_FLAGS)
	@tools/bench $(BUILD)

soak: build
	@tools/soak $(BUILD)

lint: deps-extra build
	@git ls-files '*.cc' '*.h' | xargs clang-format --dry-run -Werror
	@git ls-files 'toolkit/*.cc' 'restconf/*.cc' 'backend/*.cc' 'switchsim/*.cc' 'server/*.cc' 'tools/*.cc' \
	    | xargs -P $(JOBS) -n 4 clang-tidy --quiet -p $(BUILD)
	@yang/check.sh

format:
	git ls-files '*.cc' '*.h' | xargs clang-format -i

clean:
	rm -rf build build-* state
