# The two commands of the README: `make run` and `make test`.
# Both install what is missing from Debian's packages first.
# `make package` builds the Debian package into build/default/package/.

JOBS ?= $(shell nproc)
FUZZ_SECONDS ?= 20

.PHONY: run test deps build package test-unit fuzz asan tsan sanitizers bench translations clean

run: build
	./scripts/run.sh

test: build
	ctest --preset default -j $(JOBS)
	$(MAKE) fuzz
	@./scripts/test-size.sh

deps:
	@./scripts/install-deps.sh

build: deps
	@cmake --preset default >/dev/null
	cmake --build --preset default -j $(JOBS)

package: build
	cd build/default && cpack -G DEB

# Every fuzz target for a bounded time, under address and undefined sanitizers.
fuzz: deps
	@cmake --preset fuzz >/dev/null
	cmake --build --preset fuzz -j $(JOBS) --target orvane_fuzzers
	FUZZ_SECONDS=$(FUZZ_SECONDS) ctest --preset fuzz

asan: deps
	@cmake --preset asan >/dev/null
	cmake --build --preset asan -j $(JOBS)
	ctest --preset asan -j $(JOBS)

tsan: deps
	@cmake --preset tsan >/dev/null
	cmake --build --preset tsan -j $(JOBS)
	ctest --preset tsan -j $(JOBS)

sanitizers: asan tsan

# Performance figures into docs/PERFORMANCE.md (not part of `make test`).
bench: build
	./scripts/bench.sh

# Brings lang/translations/*.ts up to date with the texts in the code.
translations: deps
	@cmake --preset default >/dev/null
	cmake --build --preset default --target translations

clean:
	rm -rf build
