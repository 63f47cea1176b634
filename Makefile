# make demo   - install what is missing, build, run the tour, show its output files
# make test   - install what is missing, build and run every test, plain and sanitized
# make bench  - run the benchmarks against the peer libraries and print one table

CMAKE ?= cmake
CTEST ?= ctest
OUT   ?= $(CURDIR)/out

.PHONY: all deps build demo test test-default test-asan bench clean

all: build

deps:
	@sh tools/install-deps.sh

build: deps
	$(CMAKE) --preset default >/dev/null
	$(CMAKE) --build --preset default

demo: build
	@mkdir -p $(OUT)
	./build/default/examples/tour $(OUT)
	@echo; echo "The tour's files are in $(OUT):"; ls -1 $(OUT) | sed 's/^/  /'

test: test-default test-asan

test-default: deps
	$(CMAKE) --preset default >/dev/null
	$(CMAKE) --build --preset default
	$(CTEST) --preset default

test-asan: deps
	$(CMAKE) --preset asan >/dev/null
	$(CMAKE) --build --preset asan
	$(CTEST) --preset asan

bench: deps
	$(CMAKE) --preset bench >/dev/null
	$(CMAKE) --build --preset bench
	./build/bench/bench/kw_bench

clean:
	rm -rf build out
