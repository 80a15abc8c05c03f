# SPDX-License-Identifier: Apache-2.0
# The commands that a newcomer types. Everything here is a script or a CMake preset that can be called by itself.

PRESET ?= dev

.DEFAULT_GOAL := help
.PHONY: help setup build programs run test check format bench clean

help: ## show this list
	@awk -F ':.*## ' '/^[a-z-]+:.*## / { printf "make %-9s %s\n", $$1, $$2 }' $(MAKEFILE_LIST)
	@echo "PRESET=dev|release|clang|asan|tsan chooses how to build (now: $(PRESET))"

setup: ## install the Debian packages that are missing (as root or through sudo)
	@scripts/setup build test

build: setup ## build everything
	@cmake --preset $(PRESET)
	@cmake --build --preset $(PRESET)

programs: setup ## build the libraries and the programs
	@cmake --preset $(PRESET)
	@cmake --build --preset $(PRESET) --target quillet-program-zwaved quillet-program-zwavesim quillet-program-quillet

run: programs ## build, then show the daemon and the client at work
	@scripts/demo build/$(PRESET)

test: build ## build, then run the tests
	@ctest --preset $(PRESET)

check: ## check layout, scripts and sources without running them
	@scripts/setup
	@scripts/check

format: ## lay out the C++ files
	@scripts/setup check
	@scripts/format

bench: ## measure, and write docs/performance.md
	@scripts/bench

clean: ## remove what was built
	@rm -rf build
