# Thin wrapper over CMake so that the usual entry points are one word each.
BUILD      ?= build
BENCHBUILD ?= build-bench
JOBS       ?= $(shell nproc)
GENERATOR  := Ninja
SRC        := $(CURDIR)

# ccache shares compiles between checkouts at different paths (CI clones afresh).
export CCACHE_BASEDIR   := $(SRC)
export CCACHE_NOHASHDIR := 1

.PHONY: all deps configure build test bench demo clean

all: build

deps:
	@bash scripts/install-deps.sh

$(BUILD)/build.ninja: CMakeLists.txt | deps
	cmake -S . -B $(BUILD) -G $(GENERATOR) -DCMAKE_BUILD_TYPE=RelWithDebInfo

configure: deps $(BUILD)/build.ninja

build: configure
	cmake --build $(BUILD) -j $(JOBS)

test: build
	cd $(BUILD) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j $(JOBS)

bench: deps
	cmake -S . -B $(BENCHBUILD) -G $(GENERATOR) -DCMAKE_BUILD_TYPE=Release -DTALLIX_BENCH=ON
	cmake --build $(BENCHBUILD) -j $(JOBS)
	$(BENCHBUILD)/bin/tallix-bench-table

demo: build
	bash scripts/demo.sh

clean:
	rm -rf $(BUILD) $(BENCHBUILD)
