# make demo   best-fit and prediction of the example, built in release mode
# make check  all tests
# make bench  benchmarks, fast forms against plain forms
# Each first installs what scripts/packages.txt names and the machine lacks.

.PHONY: demo check bench release sanitize format format-check tidy setup clean

demo: release
	@scripts/demo.sh build/release/trelm

check: release
	ctest --preset release -j 2

bench: setup
	cmake --preset bench
	cmake --build --preset bench
	build/bench/bench/trelm_bench

release: setup
	cmake --preset release
	cmake --build --preset release

sanitize: setup
	cmake --preset sanitize
	cmake --build --preset sanitize
	ctest --preset sanitize -j 2

sources = $(shell git ls-files 'src/*.h' 'src/*.cpp' 'tests/*.h' 'tests/*.cpp' 'bench/*.h' 'bench/*.cpp')

format:
	clang-format -i $(sources)

format-check: setup
	clang-format --dry-run -Werror $(sources)

tidy: release
	clang-tidy -p build/release --quiet --extra-arg=-Wno-unknown-warning-option $(filter src/%.cpp,$(sources))

setup:
	@scripts/setup.sh

clean:
	rm -rf build out
