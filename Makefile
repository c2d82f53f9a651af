# A thin front door to CMake: installs what a command needs, then configures,
# builds and runs. `make help` lists the commands.

PREFIX ?= /usr/local
FILTER ?=

library_packages := g++ g++-multilib cmake ninja-build
fortran_packages := $(library_packages) gfortran gfortran-multilib
test_packages    := $(fortran_packages) googletest binutils pkg-config

.DEFAULT_GOAL := library
.PHONY: library demo test bench install check sanitize exhaustive format tidy coverage clean help

library: ## build build/libquillfn.so (the default)
	@scripts/install-packages $(library_packages)
	cmake --preset release
	cmake --build --preset release --target quillfn

demo: ## build and run the Fortran example
	@scripts/install-packages $(fortran_packages)
	cmake --preset release -DQUILLFN_EXAMPLES=ON
	cmake --build --preset release --target longley
	build/examples/longley examples/data/longley.txt

test: ## build and run all tests
	@scripts/install-packages $(test_packages)
	cmake --preset release -DQUILLFN_TESTS=ON
	cmake --build --preset release
	ctest --preset release

sanitize: ## the tests under address and undefined-behaviour sanitizers
	@scripts/install-packages $(test_packages)
	cmake --preset sanitize
	cmake --build --preset sanitize
	ctest --preset sanitize

exhaustive: ## every real of kind 4 through the functions of one real; takes half an hour
	@scripts/install-packages $(test_packages)
	cmake --preset release -DQUILLFN_TESTS=ON
	cmake --build --preset release --target numeric_test
	QUILLFN_STEP=1 build/tests/numeric_test --gtest_filter='*EveryReal4'

format: ## whether clang-format would change a file
	@scripts/install-packages clang-format
	git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run -Werror

# clang finds no declarations of glibc's kind 16 functions, hence not the quad unit.
tidy: library ## clang-tidy over the library
	@scripts/install-packages clang-tidy
	git ls-files 'src/*.cpp' ':!src/host/quad.cpp' | xargs -n 1 -P 2 clang-tidy --quiet -p build

check: test format tidy demo sanitize ## everything that CI runs

bench: ## time the library beside its peers; FILTER=sum narrows it
	@scripts/install-packages $(fortran_packages)
	cmake --preset release -DQUILLFN_BENCH=ON
	cmake --build --preset release --target quillfn_bench
	build/bench/quillfn_bench $(FILTER)

coverage: ## line coverage of the tests
	@scripts/install-packages $(test_packages) gcovr
	cmake --preset coverage
	cmake --build --preset coverage
	ctest --preset coverage
	gcovr --root . --filter src/ build/coverage

install: library ## install to PREFIX (default /usr/local)
	cmake --install build --prefix $(PREFIX)

clean: ## remove everything built
	rm -rf build

help: ## list the commands
	@sed -n 's/^\([a-z]*\):.*## \(.*\)/make \1\t\2/p' Makefile | expand -t 18
