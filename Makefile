# Two things to do with a fresh checkout: `make demo` and `make check`. Both install what is missing.

PRESET ?= release

.PHONY: demo check build setup install format bench reading clean

demo: setup
	@cmake --preset $(PRESET) > build/configure.log 2>&1 || { cat build/configure.log; exit 1; }
	@cmake --build --preset $(PRESET) --target vemoprepro
	@mkdir -p out
	@build/$(PRESET)/vemoprepro clean --overwrite -o out examples/pages/*.jpg examples/pages/*.png examples/pages/*.tif
	@echo "The cleaned pages are in out/; the pages as they were scanned are in examples/pages/."

check: build
	@ctest --preset $(PRESET) -j 2

build: setup
	@cmake --preset $(PRESET) > build/configure.log 2>&1 || { cat build/configure.log; exit 1; }
	@cmake --build --preset $(PRESET)

setup:
	@mkdir -p build
	@.ci/install_packages

install: build
	cmake --install build/$(PRESET)

format:
	@git ls-files '*.h' '*.cpp' '*.c' | xargs clang-format -i

bench:
	@mkdir -p build
	@.ci/install_packages bench
	@cmake --preset bench > build/configure.log 2>&1 || { cat build/configure.log; exit 1; }
	@cmake --build --preset bench
	@build/bench/vemoprepro_bench

reading:
	@mkdir -p build
	@.ci/install_packages reading
	@cmake --preset $(PRESET) > build/configure.log 2>&1 || { cat build/configure.log; exit 1; }
	@cmake --build --preset $(PRESET) --target vemoprepro
	@bench/reading/reading_test.py --program build/$(PRESET)/vemoprepro
	@bench/reading/sure_words.py --program build/$(PRESET)/vemoprepro $(PAGES)

clean:
	rm -rf build out
