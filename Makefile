# Convenience front end to CMake.
#   make        build build/vorlaxen, build/vorlaxen-dev and build/vorlaxen-tbgen (Release)
#   make run    build and start the engine on this terminal
#   make bases  generate every 3- and 4-men Vorlaxenbases file into vorlaxenbases/
#   make test   build, run every test, then the unit tests under ASan+UBSan
JOBS ?= $(shell nproc 2>/dev/null || echo 2)

.PHONY: all run bases test test-release test-sanitize clean

all:
	cmake -S . -B build -DCMAKE_BUILD_TYPE=Release >/dev/null
	cmake --build build -j $(JOBS)

# Making the 3- and 4-men bases takes about four minutes on two cores, so
# "run" only points at them when they are missing.
run: all
	@test -d vorlaxenbases || echo "info: no vorlaxenbases/ directory; 'make bases' makes the 3- and 4-men endgame databases (about 4 minutes)" >&2
	./build/vorlaxen

bases: all
	./build/vorlaxen-tbgen --out vorlaxenbases --all 4

test: test-release test-sanitize

test-release: all
	cd build && ctest --output-on-failure -j $(JOBS)

test-sanitize:
	cmake -S . -B build-sanitize -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVORLAXEN_SANITIZE=ON >/dev/null
	cmake --build build-sanitize -j $(JOBS) --target unit_tests
	cd build-sanitize && ctest --output-on-failure -j $(JOBS)

clean:
	rm -rf build build-sanitize
