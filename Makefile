# The two commands of a new user, plus benchmarks and the thread-sanitizer build.
#   make demo   build and run the shipped examples
#   make test   build with AddressSanitizer and UndefinedBehaviorSanitizer and run every test
#   make bench  build optimised and run the benchmarks
#   make tsan   build the concurrency tests with ThreadSanitizer and run them
#   make test-aarch64  cross-build for AArch64 (Release) and run every test under qemu-aarch64
#   make install-check install the Release build into a scratch prefix and build the example
#                      hosts against it through CMake and through pkg-config
#   make package       Debian packages for amd64 and arm64 in build/packages, checked by building
#                      the example hosts against the unpacked amd64 ones
#   make fuzz   build the libFuzzer targets with clang and run each for FUZZ_SECONDS (default 60)
#   make fuzz-ci       the same targets over their seeds and FUZZ_RUNS mutations from a fixed seed
#   make format        format the tree's C++ sources with .clang-format
#   make format-check  fail when a tracked C++ source is not formatted

BUILD_DIR   ?= build
JOBS        ?= $(shell nproc 2>/dev/null || echo 2)
CMAKE_FLAGS ?=

BASE_PACKAGES  := cmake ninja-build g++ make
TEST_PACKAGES  := libgtest-dev libgmock-dev python3 chromium chromium-driver python3-selenium
TOOL_PACKAGES  := nlohmann-json3-dev libcli11-dev libcpp-httplib-dev libjs-chart.js pkgconf
FORMAT_PACKAGES := clang-format
BENCH_PACKAGES := libbenchmark-dev valgrind zlib1g-dev
FUZZ_PACKAGES  := clang libclang-rt-14-dev
CROSS_PACKAGES := g++-aarch64-linux-gnu qemu-user googletest
PACKAGE_PACKAGES := pkgconf dpkg-dev file

FUZZ_SECONDS ?= 60
FUZZ_RUNS    ?= 2000

CONFIGURE = cmake -S . -G Ninja -Wno-dev

.PHONY: all demo test test-aarch64 install-check package release aarch64 bench tsan fuzz fuzz-ci fuzz-build format format-check clean deps-demo deps-test deps-bench \
	deps-format deps-fuzz deps-aarch64 deps-package

all: demo

# Installs the Debian packages that are missing, when run as root; otherwise names them.
define install_packages
	@missing=""; \
	for package in $(1); do \
		dpkg-query -W -f='$${Status}' $$package 2>/dev/null | grep -q "install ok installed" || missing="$$missing $$package"; \
	done; \
	if [ -n "$$missing" ]; then \
		if [ "$$(id -u)" = "0" ]; then \
			echo "installing:$$missing"; \
			apt-get update -qq && DEBIAN_FRONTEND=noninteractive apt-get install -y -qq $$missing; \
		else \
			echo "missing Debian packages:$$missing (run as root, or install them)"; exit 1; \
		fi; \
	fi
endef

deps-demo:
	$(call install_packages,$(BASE_PACKAGES) $(TOOL_PACKAGES))

deps-test:
	$(call install_packages,$(BASE_PACKAGES) $(TOOL_PACKAGES) $(TEST_PACKAGES))

deps-bench:
	$(call install_packages,$(BASE_PACKAGES) $(TOOL_PACKAGES) $(BENCH_PACKAGES))

# The Release build that the demo, the install check and the amd64 packages share.
release: deps-demo
	$(CONFIGURE) -B $(BUILD_DIR)/release -DCMAKE_BUILD_TYPE=Release -DVARK_BUILD_TESTS=OFF $(CMAKE_FLAGS)
	cmake --build $(BUILD_DIR)/release -j $(JOBS)

demo: release
	@BUILD=$(BUILD_DIR)/release sh examples/demo.sh

test: deps-test
	$(CONFIGURE) -B $(BUILD_DIR)/asan -DCMAKE_BUILD_TYPE=Debug -DVARK_WERROR=ON \
		-DVARK_SANITIZE=address,undefined $(CMAKE_FLAGS)
	cmake --build $(BUILD_DIR)/asan -j $(JOBS)
	ctest --test-dir $(BUILD_DIR)/asan --output-on-failure -j $(JOBS)

deps-aarch64:
	$(call install_packages,$(BASE_PACKAGES) $(TOOL_PACKAGES) $(CROSS_PACKAGES))

aarch64: deps-aarch64
	$(CONFIGURE) -B $(BUILD_DIR)/aarch64 --toolchain cmake/toolchains/aarch64-linux-gnu.cmake \
		-DCMAKE_BUILD_TYPE=Release $(CMAKE_FLAGS)
	cmake --build $(BUILD_DIR)/aarch64 -j $(JOBS)

# The same suite as `make test`, built for the device and run under user-mode emulation.
test-aarch64: aarch64
	ctest --test-dir $(BUILD_DIR)/aarch64 --output-on-failure -j $(JOBS)

deps-package:
	$(call install_packages,$(PACKAGE_PACKAGES))

install-check: release deps-package
	rm -rf $(BUILD_DIR)/install-check
	cmake --install $(BUILD_DIR)/release --prefix $(BUILD_DIR)/install-check/prefix
	sh examples/consumer/check.sh $(BUILD_DIR)/install-check/prefix $(BUILD_DIR)/release/tools/tonemetry/tonemetry \
		$(BUILD_DIR)/install-check/scratch

package: release aarch64 deps-package
	rm -rf $(BUILD_DIR)/packages $(BUILD_DIR)/package-check
	cd $(BUILD_DIR)/release && cpack -B $(CURDIR)/$(BUILD_DIR)/packages
	cd $(BUILD_DIR)/aarch64 && cpack -B $(CURDIR)/$(BUILD_DIR)/packages
	@for deb in $(BUILD_DIR)/packages/*.deb; do echo "--- $$deb"; dpkg-deb -c $$deb; done
	mkdir -p $(BUILD_DIR)/package-check/root
	for deb in $(BUILD_DIR)/packages/*_amd64.deb; do dpkg-deb -x $$deb $(BUILD_DIR)/package-check/root; done
	sh examples/consumer/check.sh $(BUILD_DIR)/package-check/root/usr \
		$(BUILD_DIR)/package-check/root/usr/bin/tonemetry $(BUILD_DIR)/package-check/scratch

bench: deps-bench
	$(CONFIGURE) -B $(BUILD_DIR)/bench -DCMAKE_BUILD_TYPE=Release -DVARK_BUILD_TESTS=OFF \
		-DVARK_BUILD_BENCH=ON $(CMAKE_FLAGS)
	cmake --build $(BUILD_DIR)/bench -j $(JOBS)
	@BUILD=$(BUILD_DIR)/bench sh bench/run.sh

tsan: deps-test
	$(CONFIGURE) -B $(BUILD_DIR)/tsan -DCMAKE_BUILD_TYPE=Debug -DVARK_SANITIZE=thread $(CMAKE_FLAGS)
	cmake --build $(BUILD_DIR)/tsan -j $(JOBS) --target tsan_tests
	ctest --test-dir $(BUILD_DIR)/tsan --output-on-failure -L tsan

deps-fuzz:
	$(call install_packages,$(BASE_PACKAGES) $(TOOL_PACKAGES) $(FUZZ_PACKAGES))

# AddressSanitizer and UndefinedBehaviorSanitizer as in `make test`; the tools are built too, as
# tonemetry packs the seed files.
fuzz-build: deps-fuzz
	CC=clang CXX=clang++ $(CONFIGURE) -B $(BUILD_DIR)/fuzz -DCMAKE_BUILD_TYPE=Debug -DVARK_FUZZ=ON \
		-DVARK_SANITIZE=address,undefined -DVARK_BUILD_TESTS=OFF $(CMAKE_FLAGS)
	cmake --build $(BUILD_DIR)/fuzz -j $(JOBS)

fuzz: fuzz-build
	sh fuzz/run.sh $(BUILD_DIR)/fuzz time $(FUZZ_SECONDS)

fuzz-ci: fuzz-build
	sh fuzz/run.sh $(BUILD_DIR)/fuzz ci $(FUZZ_RUNS)

deps-format:
	$(call install_packages,$(FORMAT_PACKAGES))

FORMAT_SOURCES = git ls-files -z '*.cpp' '*.h'

format: deps-format
	$(FORMAT_SOURCES) | xargs -0 clang-format -i

format-check: deps-format
	$(FORMAT_SOURCES) | xargs -0 clang-format --dry-run --Werror

clean:
	rm -rf $(BUILD_DIR)
