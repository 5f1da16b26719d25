# The commands of this project. `make run` and `make test` do all set-up themselves.
BUILD ?= build
STATE ?= state
JOBS ?= $(shell nproc)
CMAKE_FLAGS ?=

.PHONY: deps deps-extra build run test unit e2e check sanitize fuzz bench soak lint format clean
.DEFAULT_GOAL := build

# Debian packages; only when one is missing is root needed.
deps:
	@tools/install-deps

deps-extra: deps
	@tools/install-deps tools/packages-extra.txt

build: deps
	@cmake -S . -B $(BUILD) -G Ninja $(CMAKE_FLAGS) > $(BUILD).configure.log 2>&1 || { cat $(BUILD).configure.log; exit 1; }
	@ninja -C $(BUILD) -j $(JOBS)

run: build
	@tools/run $(BUILD) $(STATE)

test: unit e2e

unit: build
	ctest --test-dir $(BUILD) --output-on-failure -j $(JOBS)

e2e: build
	BUILD=$(BUILD) /usr/bin/python3 -m pytest -q tests/e2e

# The unit and end-to-end tests once more, under the address and undefined-behaviour sanitizers.
sanitize:
	$(MAKE) test BUILD=build-sanitize CMAKE_FLAGS="-DSANITIZE=address,undefined -DCMAKE_BUILD_TYPE=Debug"

# Every fuzz target for FUZZ_SECONDS.
FUZZ_SECONDS ?= 60
fuzz: deps-extra
	@tools/fuzz $(FUZZ_SECONDS)

# What takes too long for every change: once a night.
check: build
	$(MAKE) sanitize
	$(MAKE) fuzz FUZZ_SECONDS=600
	KILLS=200 BUILD=$(BUILD) /usr/bin/python3 -m pytest -q tests/e2e/test_durability.py
	$(MAKE) soak

bench: build
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
