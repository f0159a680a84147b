# make demo   best-fit and prediction of the example, built in release mode
# make check  all tests
# make check-docs     the commands of the pages, and what the pages show of their output
# make bench  benchmarks, fast forms against plain forms
# make fuzz   each fuzzer of the readers for SECONDS=20
# make install        program, man page, completions and documentation to PREFIX=/usr/local, under DESTDIR
# make package        a Debian package in build/release/package
# make check-package  the package, installed and tried in a new Debian system
# make reference      docs/reference.md from the tables of options
# make sanitize       all tests under the address and undefined-behaviour sanitizers
# make format, format-check, tidy   clang-format and clang-tidy on the sources
# What builds first installs the packages of scripts/packages.txt that the machine lacks; what checks or measures, those
# of scripts/packages-checks.txt, too.

.PHONY: demo check check-docs bench program release sanitize fuzz install package check-package reference \
	format format-check tidy setup setup-checks clean

JOBS = $(shell nproc)

demo: program
	@scripts/demo.sh build/release/trelm

# The same folder as release, so that what one has built the other need not build again.
program: setup
	cmake --preset release -DTRELM_TESTS=OFF
	cmake --build --preset release --target trelm

release: setup-checks
	cmake --preset release
	cmake --build --preset release

check: release
	ctest --preset release -j $(JOBS)

check-docs: setup-checks program
	scripts/check_docs.sh build/release/trelm

bench: setup-checks
	cmake --preset bench
	cmake --build --preset bench
	build/bench/bench/trelm_bench

PREFIX = /usr/local
install: program
	cmake --build --preset release --target trelm_guides
	DESTDIR='$(DESTDIR)' cmake --install build/release --prefix '$(PREFIX)'

package: setup-checks program
	rm -f build/release/package/*.deb
	cmake --build --preset release --target package

check-package: package
	scripts/check_package.sh build/release/package/*.deb

reference: program
	cmake --build --preset release --target reference

sanitize: setup-checks
	cmake --preset sanitize
	cmake --build --preset sanitize
	ctest --preset sanitize -j $(JOBS)

SECONDS = 20
fuzz: setup-checks
	cmake --preset sanitize
	cmake --build --preset sanitize --target fuzzers
	scripts/fuzz.sh build/sanitize $(SECONDS)

sources = $(shell git ls-files 'src/*.h' 'src/*.cpp' 'tests/*.h' 'tests/*.cpp' 'bench/*.h' 'bench/*.cpp' \
	'tools/*.h' 'tools/*.cpp')

format: setup-checks
	clang-format -i $(sources)

format-check: setup-checks
	clang-format --dry-run -Werror $(sources)

tidy: setup-checks
	scripts/tidy.sh $(JOBS)

setup:
	@scripts/setup.sh scripts/packages.txt

setup-checks: setup
	@scripts/setup.sh scripts/packages-checks.txt

clean:
	rm -rf build out
