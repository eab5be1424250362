# Convenience front end to CMake.
#   make        build build/vorlaxen and build/vorlaxen-dev (Release)
#   make run    build and start the engine on this terminal
#   make test   build, run every test, then the unit tests under ASan+UBSan
#   make test-tables  compare the Syzygy tables with the engine's own generator
#               position by position (minutes; the first run also generates)
JOBS ?= $(shell nproc 2>/dev/null || echo 2)

.PHONY: all run test test-release test-sanitize test-tables clean

all:
	cmake -S . -B build -DCMAKE_BUILD_TYPE=Release >/dev/null
	cmake --build build -j $(JOBS)

run: all
	./build/vorlaxen

test: test-release test-sanitize

test-release: all
	cd build && ctest --output-on-failure -j $(JOBS)

test-sanitize:
	cmake -S . -B build-sanitize -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVORLAXEN_SANITIZE=ON >/dev/null
	cmake --build build-sanitize -j $(JOBS) --target unit_tests
	cd build-sanitize && ctest --output-on-failure -j $(JOBS)

test-tables: all
	JOBS=$(JOBS) tests/tables/run

clean:
	rm -rf build build-sanitize
