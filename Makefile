# Convenience front end to CMake.
#   make        build build/vorlaxen, build/vorlaxen-dev and build/vorlaxen-tbgen (Release,
#               profile-guided where the compiler can do it)
#   make EXE=<path> CXX=<compiler>   build only the engine, with that compiler, to <path>
#   make run    build and start the engine on this terminal
#   make bases  generate every 3- and 4-men Vorlaxenbases file into vorlaxenbases/
#   make test   build, run every test, then the unit tests under ASan+UBSan,
#               then a short smoke run of every fuzz target when clang is there
#   make fuzz   run every fuzz target for FUZZ_SECONDS (default 60) seconds
#   make test-tsan  the multi-thread protocol tests against a ThreadSanitizer
#               build of the engine (races on table entries are expected)
#   make test-tables  compare the Syzygy tables with the engine's own generator
#               position by position (minutes; the first run also generates)
#   make mutate plant each bug of tests/mutation/mutants.txt in a copy of the
#               sources and report the test that catches it (long; MUTANTS=word
#               runs only the mutants whose name contains the word)
JOBS ?= $(shell nproc 2>/dev/null || echo 2)
FUZZ_SECONDS ?= 60
FUZZ_CXX := $(shell command -v clang++-14 2>/dev/null || command -v clang++ 2>/dev/null)

# CXX on the command line or in the environment chooses the compiler. Else
# clang++ where llvm-profdata lies beside it (clang's profile-guided build was
# measured about 5 % faster than GCC's), else the system's c++. The choice is
# passed on every time, so that a plain "make" after a "make CXX=..." goes back
# to the default compiler.
CLANG_WITH_PROFDATA := $(firstword $(foreach c,clang++ clang++-14,$(shell p=$$(command -v $(c)) && \
          test -x "$$(dirname "$$(readlink -f "$$p")")/llvm-profdata" && echo $$p)))
BUILD_CXX := $(shell command -v $(if $(filter default,$(origin CXX)),$(or $(CLANG_WITH_PROFDATA),c++),$(CXX)))
# The profile-guided build: GCC needs -fprofile-prefix-path (GCC 11 and
# later), clang the llvm-profdata beside it to merge the training runs'
# profiles. Any other compiler gets the plain build.
CLANG := $(shell $(BUILD_CXX) --version 2>/dev/null | grep -q clang && echo yes)
PROFDATA := $(dir $(realpath $(BUILD_CXX)))llvm-profdata
PGO := $(if $(CLANG),$(shell test -x $(PROFDATA) && echo clang),$(shell echo 'int main() { return 0; }' | \
          $(BUILD_CXX) -x c++ -fprofile-generate=/tmp/vorlaxen-pgo-probe -fprofile-prefix-path=/tmp - -o /dev/null \
          2>/dev/null && echo gcc))
# The training run: the engine's own benchmark, two plies shallower than the
# signature run so the build stays short, once in each build of the engine.
PGO_TRAIN := bench -2
TARGET := $(if $(EXE),--target vorlaxen)

.PHONY: all run bases test test-release test-sanitize test-tsan test-fuzz-smoke fuzz fuzz-build test-tables mutate clean

# Configures build directory $(1) for Release with the chosen compiler and the
# options $(2). CMake forgets the options given together with a new compiler,
# so a cache made with another compiler is removed first.
define configure
	@if [ -f $(1)/CMakeCache.txt ] && ! grep -q '^CMAKE_CXX_COMPILER:[A-Z]*=$(BUILD_CXX)$$' $(1)/CMakeCache.txt; then \
	  rm -rf $(1)/CMakeCache.txt $(1)/CMakeFiles; fi
	cmake -S . -B $(1) -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER=$(BUILD_CXX) $(2) >/dev/null
endef

all: $(if $(PGO),profile)
	$(call configure,build,-DVORLAXEN_PGO=$(if $(PGO),USE) -DVORLAXEN_PGO_DIR=$(CURDIR)/build/pgo/profile)
	cmake --build build -j $(JOBS) $(TARGET)
	$(if $(EXE),cp build/vorlaxen $(EXE))

# The instrumented engine in build/pgo; its training run is repeated only when
# the instrumented binary has changed since the last one.
.PHONY: profile
profile:
	$(call configure,build/pgo,-DVORLAXEN_TESTS=OFF -DVORLAXEN_PGO=GENERATE -DVORLAXEN_PGO_DIR=$(CURDIR)/build/pgo/profile)
	cmake --build build/pgo -j $(JOBS) --target vorlaxen
	@if [ ! -f build/pgo/profile/trained ] || [ build/pgo/vorlaxen -nt build/pgo/profile/trained ]; then \
	  echo "training run: build/pgo/vorlaxen $(PGO_TRAIN), then with VORLAXEN_BUILD=base"; \
	  rm -rf build/pgo/profile && mkdir -p build/pgo/profile && build/pgo/vorlaxen $(PGO_TRAIN) >/dev/null && \
	  VORLAXEN_BUILD=base build/pgo/vorlaxen $(PGO_TRAIN) >/dev/null && \
	  $(if $(CLANG),$(PROFDATA) merge -o build/pgo/profile/merged.profdata build/pgo/profile/*.profraw &&) \
	  touch build/pgo/profile/trained; \
	fi

# Making the 3- and 4-men bases takes about two minutes on two cores, so
# "run" only points at them when they are missing.
run: all
	@test -d vorlaxenbases || echo "info: no vorlaxenbases/ directory; 'make bases' makes the 3- and 4-men endgame databases (about 2 minutes)" >&2
	./build/vorlaxen

bases: all
	./build/vorlaxen-tbgen --out vorlaxenbases --all 4

test: test-release test-sanitize test-fuzz-smoke

test-release: all
	cd build && ctest --output-on-failure -j $(JOBS)

test-sanitize:
	cmake -S . -B build-sanitize -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVORLAXEN_SANITIZE=ON >/dev/null
	cmake --build build-sanitize -j $(JOBS) --target unit_tests
	cd build-sanitize && ctest --output-on-failure -j $(JOBS)

# The search threads share the transposition table without locks; the only
# races ThreadSanitizer may report are on its entries (tests/tsan.supp says
# why they are harmless). Any other report is written under build-tsan/ and
# fails the target.
test-tsan: all
	cmake -S . -B build-tsan -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVORLAXEN_TSAN=ON -DVORLAXEN_TESTS=OFF >/dev/null
	cmake --build build-tsan -j $(JOBS) --target vorlaxen
	rm -f build-tsan/race.*
	TSAN_OPTIONS="suppressions=$(CURDIR)/tests/tsan.supp log_path=$(CURDIR)/build-tsan/race" VORLAXEN_TIME_SCALE=40 VORLAXEN_SANITIZER=thread \
	  python3 tests/protocol/test_threads.py build-tsan/vorlaxen build/vorlaxen-dev
	@if ls build-tsan/race.* >/dev/null 2>&1; then cat build-tsan/race.*; echo "ThreadSanitizer reported races"; exit 1; fi
	@echo "ThreadSanitizer: no race outside the table entries"

# libFuzzer needs clang and its runtime (Debian: clang-14, libclang-rt-14-dev).
fuzz-build:
	@if [ -z "$(FUZZ_CXX)" ]; then echo "fuzzing needs clang++ with libFuzzer (Debian: clang-14 libclang-rt-14-dev)"; exit 1; fi
	cmake -S . -B build-fuzz -DCMAKE_CXX_COMPILER=$(FUZZ_CXX) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVORLAXEN_FUZZ=ON >/dev/null
	cmake --build build-fuzz -j $(JOBS)

fuzz: fuzz-build
	tests/fuzz/run $(FUZZ_SECONDS)

test-fuzz-smoke:
	@if [ -z "$(FUZZ_CXX)" ] || ! echo 'extern "C" int LLVMFuzzerTestOneInput(const char*, unsigned long) { return 0; }' | \
	    $(FUZZ_CXX) -x c++ -fsanitize=fuzzer - -o /tmp/vorlaxen-fuzz-probe 2>/dev/null; then \
	  echo "fuzz smoke SKIPPED: no clang++ with libFuzzer on this machine (Debian: clang-14 libclang-rt-14-dev)"; \
	else $(MAKE) --no-print-directory fuzz FUZZ_SECONDS=20; fi

test-tables: all
	JOBS=$(JOBS) tests/tables/run

mutate:
	JOBS=$(JOBS) tests/mutation/run $(MUTANTS)

clean:
	rm -rf build build-sanitize build-fuzz build-tsan build-mutate
