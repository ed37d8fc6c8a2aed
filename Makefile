# The door to the repository: `make run` shows the program, `make test` proves it, `make help`
# tells the rest. Both install what they lack by themselves (scripts/packages/ says what that is).
# The building itself is CMake's (CMakePresets.json); build folders are build/PRESET.

JOBS ?= $(shell nproc)

# A list of all our sources, for the tools that look at each.
SOURCES = $(shell git ls-files '*.cpp' '*.h')

.DEFAULT_GOAL := help
.PHONY: help setup run test asan fuzz bench footprint pictures format lint windows-check clean

help:
	@echo "make run      build the program and show it: on this display, or without one on a"
	@echo "              virtual desktop, with a picture in run/picture.png"
	@echo "make test     build and run all tests"
	@echo "make asan     the tests under the address and undefined-behaviour sanitizers"
	@echo "make fuzz     feed made-up inputs to the file reader and the SQL parser, MINUTES=10 each"
	@echo "make bench    build and run the benchmarks"
	@echo "make footprint  what the program costs while it waits, beside a bare one (docs/performance.md)"
	@echo "make pictures take the pictures of docs/gallery.md anew"
	@echo "make format   clang-format all sources"
	@echo "make lint     check the format, run clang-tidy, look over the scripts"
	@echo "make windows-check  compile the sources that only Windows builds, without linking them"
	@echo "make setup    install everything that run, test and bench need (the others do it too)"
	@echo "make clean    remove build/ and run/"
	@echo "JOBS=N        build with N processes (default: one per processor, here $(JOBS))"

setup:
	@scripts/setup.sh build run desktop test bench

run:
	@scripts/setup.sh build run $(if $(DISPLAY)$(WAYLAND_DISPLAY),,desktop)
	@cmake --preset release -DVL_BENCH=OFF
	@cmake --build --preset release -j $(JOBS) --target vlreminders remindb
	@scripts/run.sh build/release

test:
	@scripts/setup.sh build run desktop test
	@cmake --preset dev
	@cmake --build --preset dev -j $(JOBS)
	@ctest --preset dev -j $(JOBS)
	@# What ships is optimised, and some warnings come only then: all below the window compiles so.
	@cmake --preset release -DVL_BENCH=OFF
	@cmake --build --preset release -j $(JOBS) --target remindb

asan:
	@scripts/setup.sh build run desktop test
	@cmake --preset asan
	@cmake --build --preset asan -j $(JOBS)
	@ctest --preset asan -j $(JOBS)

fuzz:
	@scripts/setup.sh build test fuzz
	@cmake --preset fuzz
	@cmake --build --preset fuzz -j $(JOBS)
	@scripts/fuzz.sh build/fuzz $(or $(MINUTES),10)

bench:
	@scripts/setup.sh build bench
	@cmake --preset release -DVL_BENCH=ON
	@cmake --build --preset release -j $(JOBS)
	@for program in $$(find build/release/bench -name '*bench*' -type f -executable); do \
	    $$program || exit 1; done

footprint:
	@scripts/setup.sh build run desktop bench
	@cmake --preset release -DVL_BENCH=ON
	@cmake --build --preset release -j $(JOBS) --target vlreminders many_file bare_tray
	@scripts/desktop.sh -- bench/footprint.py build/release

pictures:
	@scripts/setup.sh build run desktop pictures
	@cmake --preset release
	@cmake --build --preset release -j $(JOBS) --target vlreminders remindb
	@scripts/desktop.sh --limit 1500 -- scripts/make_gallery.py build/release docs/pictures

format:
	@scripts/setup.sh lint
	@clang-format -i $(SOURCES)

lint:
	@scripts/setup.sh build test bench lint
	@clang-format --dry-run --Werror $(SOURCES)
	@pyflakes3 $$(git ls-files '*.py')
	@shellcheck -S warning $$(git ls-files '*.sh') .ci/run
	@cmake --preset tidy
	@cmake --build --preset tidy -j $(JOBS)

# Qt for Windows is not among the packages, so these are the sources below it that are Windows' own.
windows-check:
	@scripts/setup.sh windows
	@for file in $$(git ls-files 'app/platform/windows*.cpp' 'db/jet/*Windows.cpp'); do \
	    echo "$$file"; \
	    x86_64-w64-mingw32-g++-posix -std=c++20 -fsyntax-only -I. -Iapp -Wall -Wextra -Wpedantic \
	        -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual \
	        -Werror $$file || exit 1; done

clean:
	@rm -rf build run
