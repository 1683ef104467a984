# What people type. The build itself is CMake's; see CMakePresets.json for other builds.
.DEFAULT_GOAL := build
.PHONY: help setup configure build demo screenshot docs lint test check fuzz fuzzer test-asan test-tsan torture \
	exhaustive bench performance test-hosts windows test-windows page test-page page-picture package package-linux dist \
	test-packages install uninstall clean

PRESET := release
LIBRARY := dist/linux/Quendal Larkspire.so
JOBS := $(shell nproc)
JUCE_OPTION := $(if $(LARKSPIRE_JUCE),-DLARKSPIRE_JUCE="$(LARKSPIRE_JUCE)")

# How long `make fuzz` looks for harmful state blocks, and how long `make test-asan` does.
FUZZ_SECONDS ?= 3600
SHORT_FUZZ_SECONDS := 30

# How much `make torture` does; ten million operations take about five minutes.
TORTURE_OPERATIONS ?= 10000000
TORTURE_SEED ?=
TORTURE_FORMATS ?= vst2 vst3

# Configures the build folder of a preset, without a word unless it fails.
define configure-preset
	@cmake --preset $(1) $(JUCE_OPTION) >build-configure.log 2>&1 \
		&& rm -f build-configure.log \
		|| { cat build-configure.log; rm -f build-configure.log; exit 1; }
endef

help: ## says what there is to make
	@sed -nE 's/^([a-z-]+):[^#]*## (.*)/make \1\t\2/p' Makefile | expand -t 24

setup: ## installs what the build needs from Debian's archive
	@scripts/setup

configure: setup
	$(call configure-preset,$(PRESET))

build: configure ## the libraries and the renderer, in dist/linux
	@cmake --build --preset $(PRESET) --target Larkspire_VST Larkspire_VST3 larkspire-lv2 larkspire-render \
		larkspire-documents

demo: build ## renders a real voice in all four modes into demo/
	@scripts/demo

# The pictures of the documents, of the library as built; in the letters that every machine has which was set up.
screenshot: configure ## the pictures of the window in docs/
	@cmake --build --preset $(PRESET) --target Larkspire_VST larkspire-screenshot
	@JUCE_FONT_PATH=/usr/share/fonts/truetype/liberation2 build/$(PRESET)/tools/larkspire-screenshot "$(LIBRARY)" docs

# The measurements and pictures of docs/sound.md, of the library as built, and the pictures of the window. What the
# plug-in costs depends on the machine, and is measured by make performance.
docs: screenshot ## the measurements and pictures of docs/sound.md
	@scripts/setup scripts/docs/packages.txt
	@cmake --build --preset $(PRESET) --target larkspire-measure
	@scripts/voices build/$(PRESET)/voices
	@build/$(PRESET)/tools/larkspire-measure "$(LIBRARY)" build/$(PRESET)/voices docs/sound/data docs/sound.md
	@scripts/docs/draw docs/sound/data docs/sound

lint: configure ## clang-format and clang-tidy over all our own files
	@cmake --build --preset $(PRESET) --target lint

test: configure ## sets up, builds, runs all tests; the same every time
	@cmake --build --preset $(PRESET)
	@ctest --preset $(PRESET) --parallel $(JOBS)

check: test lint test-asan test-tsan ## the tests, the style, the sanitizers and a fresh half minute of the fuzzer

# Damaged state blocks without end, on a build with AddressSanitizer and UndefinedBehaviorSanitizer.
fuzzer: setup
	$(call configure-preset,asan)
	@cmake --build --preset asan --target larkspire-fuzz-state

fuzz: fuzzer ## damaged projects for an hour; FUZZ_SECONDS=60 for a minute
	@scripts/fuzz build/asan $(FUZZ_SECONDS)

# The tests of the classes, of the library, its window and the tools on that same build, some torture, and the fuzzer
# for a moment. The system's font library stays in the process, as scripts/sanitize has it.
test-asan: fuzzer ## the tests under AddressSanitizer and UndefinedBehaviorSanitizer
	@cmake --build --preset asan --target larkspire-unit-tests larkspire-library-tests larkspire-window-tests \
		larkspire-tools-tests larkspire-torture
	@scripts/sanitize asan larkspire-unit-tests larkspire-library-tests larkspire-window-tests larkspire-tools-tests
	@for format in $(TORTURE_FORMATS); do LD_PRELOAD=libfontconfig.so.1 build/asan/tests/torture/larkspire-torture \
		--format $$format --seconds $(SHORT_FUZZ_SECONDS) || exit 1; done
	@scripts/fuzz build/asan $(SHORT_FUZZ_SECONDS)

# The tests with threads, on a build with ThreadSanitizer. Of the windows those by VST 2: JUCE's VST 3 wrapper takes its
# message lock in a way that is reported at each opening, a mutex that is destroyed while it is locked.
test-tsan: setup ## the tests with threads under ThreadSanitizer
	$(call configure-preset,tsan)
	@cmake --build --preset tsan --target larkspire-unit-tests larkspire-library-tests larkspire-window-tests
	@LARKSPIRE_TEST_FILTER='*Thread*:LatencyNotice.*:*EditorLife.*Audio*/Vst2' \
		scripts/sanitize tsan larkspire-unit-tests larkspire-library-tests larkspire-window-tests

# Whatever a host can do, in any order, beside a model of what must come of it; TORTURE_SEED repeats a sequence, and
# TORTURE_FORMATS=vst2 or vst3 leaves the other interface out.
torture: configure ## ten million calls in any order by each interface; TORTURE_SEED=n repeats a sequence
	@cmake --build --preset $(PRESET) --target larkspire-torture
	@for format in $(TORTURE_FORMATS); do build/$(PRESET)/tests/torture/larkspire-torture --format $$format \
		--operations $(TORTURE_OPERATIONS) $(TORTURE_SEED:%=--seed %) || exit 1; done

# Sine and arc tangent at every float there is: minutes, where the tests above take a sample near zero and far out.
exhaustive: configure ## sine and arc tangent at every float there is
	@cmake --build --preset $(PRESET) --target larkspire-unit-tests
	@LARKSPIRE_EVERY_FLOAT=1 build/$(PRESET)/tests/larkspire-unit-tests --gtest_filter='*Polynomial*'

# What it costs, as a table and as build/$(PRESET)/performance.json; fails when a ratio is above its bound.
bench: configure ## what a frame costs, and whether what is promised holds
	@cmake --build --preset $(PRESET) --target larkspire-bench
	@build/$(PRESET)/benchmarks/larkspire-bench --benchmark_out=build/$(PRESET)/performance.json

# The same, and docs/performance.md written anew.
performance: configure ## the same, and docs/performance.md anew
	@cmake --build --preset $(PRESET) --target larkspire-bench
	@mkdir -p docs
	@build/$(PRESET)/benchmarks/larkspire-bench --benchmark_out=build/$(PRESET)/performance.json --markdown=docs/performance.md

test-hosts: ## installs real DAWs and the VST 3 validator, and runs the libraries in them, without a window
	@scripts/setup scripts/hosts/packages.txt
	@scripts/hosts/build-vst3-validator linux
	$(call configure-preset,$(PRESET))
	@cmake --build --preset $(PRESET) --target larkspire-daw-tests
	@build/$(PRESET)/tests/daws/larkspire-daw-tests

# The Windows bundle is described by the Linux one, which says the same and can be asked here.
windows: configure ## the Windows libraries, cross-built, in dist/windows
	@cmake --build --preset $(PRESET) --target Larkspire_VST3
	@scripts/windows/setup
	$(call configure-preset,windows)
	@cmake --build --preset windows --target Larkspire_VST Larkspire_VST3 larkspire-windows-host

test-windows: windows configure ## reads the Windows libraries' files and runs them under Wine
	@scripts/hosts/build-vst3-validator windows
	@cmake --build --preset $(PRESET) --target larkspire-windows-tests
	@build/$(PRESET)/tests/windows/larkspire-windows-tests

# Everything inside one file, for every system; packages hold it too.
page: setup ## the page that runs the chain in a browser, dist/web/larkspire.html
	@scripts/setup scripts/web/packages.txt
	$(call configure-preset,$(PRESET))
	@cmake --build --preset $(PRESET) --target larkspire-page

test-page: page ## installs browsers, and tests the page in them beside the library and the renderer
	@scripts/web/setup-tests
	@cmake --build --preset $(PRESET) --target Larkspire_VST larkspire-render
	@scripts/web/test

page-picture: page ## the picture of the page in docs/
	@scripts/web/setup-tests
	@node tests/web/picture.mjs docs/page.png

package: build windows page dist ## packages for Debian, other Linux systems and Windows, and the sources, in dist/packages
	@scripts/setup scripts/packaging/packages.txt
	@scripts/packaging/package

package-linux: build page ## those for Debian and other Linux systems alone
	@scripts/setup scripts/packaging/packages.txt
	@scripts/packaging/package --linux

dist: ## the sources as one archive, in dist/packages
	@scripts/packaging/dist

test-packages: package ## checks the packages; as root also installs and removes the one for Debian
	@scripts/setup scripts/packaging/packages.txt scripts/packaging/test-packages.txt scripts/hosts/packages.txt
	@cmake --build --preset $(PRESET) --target larkspire-packages-tests
	@scripts/packaging/test

# For everybody where PREFIX or DESTDIR is given behind make; an environment with a variable of such a name asks for nothing.
ifneq ($(filter command,$(origin PREFIX) $(origin DESTDIR)),)
install:
	@umask 022 && cmake --install build/$(PRESET) $(if $(PREFIX),--prefix "$(abspath $(PREFIX))") \
		|| { echo "install: is there all of it? run make first" >&2; exit 1; }
else
install: ## copies the plug-in to ~/.vst, ~/.vst3 and ~/.lv2; PREFIX=/usr/local installs everything, for everybody
	@scripts/install
endif

uninstall: ## removes it again
	@scripts/install --remove

clean: ## removes all that was built
	@rm -rf build dist demo
