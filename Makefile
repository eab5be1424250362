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
#   make windows    build-windows/vorlaxen.exe, the Windows engine (MinGW-w64)
#   make arm64      build-arm64/vorlaxen, the 64-bit ARM Linux engine
#   make test-windows / test-arm64  run them under Wine / qemu-aarch64 and
#               check them against the native engine
#   make dist   the three engines, statically linked and bench-checked, in dist/
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

.PHONY: all run bases windows wine-prefix arm64 dist test-windows test-arm64 test test-release test-sanitize test-tsan test-fuzz-smoke fuzz fuzz-build test-tables mutate clean

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

# The training run of instrumented engine $(1)/vorlaxen$(3), started through
# runner $(2), into $(1)/profile; repeated only when the instrumented binary
# has changed since the last one. $(4): the command that merges the profiles.
define train
	@if [ ! -f $(1)/profile/trained ] || [ $(1)/vorlaxen$(3) -nt $(1)/profile/trained ]; then \
	  echo "training run: $(1)/vorlaxen$(3) $(PGO_TRAIN), then with VORLAXEN_BUILD=base"; \
	  rm -rf $(1)/profile && mkdir -p $(1)/profile && $(2) $(1)/vorlaxen$(3) $(PGO_TRAIN) >/dev/null && \
	  VORLAXEN_BUILD=base $(2) $(1)/vorlaxen$(3) $(PGO_TRAIN) >/dev/null && \
	  $(4) touch $(1)/profile/trained; \
	fi
endef

# The instrumented engine in build/pgo and its training run.
.PHONY: profile
profile:
	$(call configure,build/pgo,-DVORLAXEN_TESTS=OFF -DVORLAXEN_PGO=GENERATE -DVORLAXEN_PGO_DIR=$(CURDIR)/build/pgo/profile)
	cmake --build build/pgo -j $(JOBS) --target vorlaxen
	$(call train,build/pgo,,,$(if $(CLANG),$(PROFDATA) merge -o build/pgo/profile/merged.profdata build/pgo/profile/*.profraw &&))

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

# The other platforms, cross-compiled here and run under Wine and qemu-user
# (Debian: g++-mingw-w64-x86-64-posix, wine, wine64, g++-aarch64-linux-gnu,
# qemu-user). Both programs are linked statically.
WINE_PREFIX := $(CURDIR)/build-windows/wine
WINE := WINEDEBUG=-all WINEPREFIX=$(WINE_PREFIX) wine
WINE_PREFIX_MADE := { [ -f $(WINE_PREFIX)/system.reg ] && [ -f $(WINE_PREFIX)/drive_c/windows/system32/kernel32.dll ]; }

# Wine's prefix (its C: drive and registry) is made on its own before any
# Windows program runs, so that a failure to make it reads as that, not as a
# failure of the engine. It takes about 700 MB; when making it fails, the free
# space is shown and it is made once more from nothing.
wine-prefix:
	@if ! $(WINE_PREFIX_MADE); then \
	  mkdir -p build-windows; \
	  for attempt in 1 2; do \
	    rm -rf $(WINE_PREFIX); \
	    echo "making Wine's prefix in build-windows/wine (about 700 MB; $$(df -Pm build-windows | awk 'NR==2 {print $$4}') MB free)"; \
	    $(WINE) wineboot --init </dev/null 2>build-windows/wine-prefix.log; \
	    WINEPREFIX=$(WINE_PREFIX) wineserver -w; \
	    if $(WINE_PREFIX_MADE); then exit 0; fi; \
	    echo "Wine could not make its prefix (attempt $$attempt of 2); it said:"; cat build-windows/wine-prefix.log; \
	    echo "free space now:"; df -h build-windows; \
	  done; exit 1; \
	fi
CROSS = -DCMAKE_BUILD_TYPE=Release -DCMAKE_TOOLCHAIN_FILE=$(CURDIR)/cmake/$(1).cmake -DVORLAXEN_TESTS=OFF -DVORLAXEN_STATIC=ON

# The Windows engine: MinGW-w64's GCC, optimised at link time and profile-
# guided, the training run under Wine.
windows: wine-prefix
	cmake -S . -B build-windows/pgo $(call CROSS,mingw-w64-x86_64) -DVORLAXEN_PGO=GENERATE \
	  -DVORLAXEN_PGO_DIR=$(CURDIR)/build-windows/pgo/profile >/dev/null
	cmake --build build-windows/pgo -j $(JOBS) --target vorlaxen
	$(call train,build-windows/pgo,$(WINE),.exe,)
	cmake -S . -B build-windows $(call CROSS,mingw-w64-x86_64) -DVORLAXEN_PGO=USE \
	  -DVORLAXEN_PGO_DIR=$(CURDIR)/build-windows/pgo/profile >/dev/null
	cmake --build build-windows -j $(JOBS) --target vorlaxen

# The ARM64 Linux engine: optimised at link time, no profile (training under
# emulation would take longer than the build).
arm64:
	cmake -S . -B build-arm64 $(call CROSS,aarch64-linux-gnu) >/dev/null
	cmake --build build-arm64 -j $(JOBS) --target vorlaxen

test-windows: windows all
	python3 tests/protocol/test_platforms.py windows build-windows/vorlaxen.exe build/vorlaxen build/vorlaxen-tbgen
	python3 tests/protocol/isa_scan.py build-windows/vorlaxen.exe x86_64-w64-mingw32-objdump

test-arm64: arm64 all
	python3 tests/protocol/test_platforms.py arm64 build-arm64/vorlaxen build/vorlaxen

# Release files: each program is kept only when its bench, run where it runs,
# prints the signature.
SIGNATURE := 31765960
define dist_check
	$(2) $(1) bench 2>/dev/null | tr -d '\r' | grep -qx "Nodes searched  : $(SIGNATURE)" || \
	  { echo "$(1): bench signature is not $(SIGNATURE)"; rm -f $(1); exit 1; }
endef
dist: $(if $(PGO),profile) windows arm64
	$(call configure,build-dist,-DVORLAXEN_TESTS=OFF -DVORLAXEN_STATIC=ON -DVORLAXEN_PGO=$(if $(PGO),USE) \
	  -DVORLAXEN_PGO_DIR=$(CURDIR)/build/pgo/profile)
	cmake --build build-dist -j $(JOBS) --target vorlaxen
	mkdir -p dist && rm -f dist/*
	cp build-dist/vorlaxen dist/vorlaxen-linux-x86-64
	cp build-windows/vorlaxen.exe dist/vorlaxen-windows-x86-64.exe
	cp build-arm64/vorlaxen dist/vorlaxen-linux-arm64
	$(call dist_check,dist/vorlaxen-linux-x86-64,)
	python3 tests/protocol/isa_scan.py dist/vorlaxen-linux-x86-64
	python3 tests/protocol/isa_scan.py dist/vorlaxen-windows-x86-64.exe x86_64-w64-mingw32-objdump
	$(call dist_check,dist/vorlaxen-windows-x86-64.exe,$(WINE))
	$(call dist_check,dist/vorlaxen-linux-arm64,qemu-aarch64)
	cd dist && sha256sum vorlaxen-* > SHA256SUMS && cat SHA256SUMS

clean:
	rm -rf build build-sanitize build-fuzz build-tsan build-mutate build-windows build-arm64 build-dist dist
