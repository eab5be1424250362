# Convenience front end to CMake.
#   make        build build/vorlaxen and build/vorlaxen-dev (Release)
#   make run    build and start the engine on this terminal
#   make test   build, run every test, then the unit tests under ASan+UBSan
JOBS ?= $(shell nproc 2>/dev/null || echo 2)

.PHONY: all run test test-release test-sanitize clean

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

clean:
	rm -rf build build-sanitize
