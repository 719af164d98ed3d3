# The two commands of a new user, plus benchmarks and the thread-sanitizer build.
#   make demo   build and run the shipped examples
#   make test   build with AddressSanitizer and UndefinedBehaviorSanitizer and run every test
#   make bench  build optimised and run the benchmarks
#   make tsan   build the concurrency tests with ThreadSanitizer and run them
#   make fuzz   build the libFuzzer targets with clang and run each for FUZZ_SECONDS (default 60)
#   make fuzz-ci       the same targets over their seeds and FUZZ_RUNS mutations from a fixed seed
#   make format        format the tree's C++ sources with .clang-format
#   make format-check  fail when a tracked C++ source is not formatted

BUILD_DIR   ?= build
JOBS        ?= $(shell nproc 2>/dev/null || echo 2)
CMAKE_FLAGS ?=

BASE_PACKAGES  := cmake ninja-build g++ make
TEST_PACKAGES  := libgtest-dev libgmock-dev
TOOL_PACKAGES  := nlohmann-json3-dev libcli11-dev
FORMAT_PACKAGES := clang-format
BENCH_PACKAGES := libbenchmark-dev valgrind zlib1g-dev
FUZZ_PACKAGES  := clang libclang-rt-14-dev

FUZZ_SECONDS ?= 60
FUZZ_RUNS    ?= 2000

CONFIGURE = cmake -S . -G Ninja -Wno-dev

.PHONY: all demo test bench tsan fuzz fuzz-ci fuzz-build format format-check clean deps-demo deps-test deps-bench \
	deps-format deps-fuzz

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

demo: deps-demo
	$(CONFIGURE) -B $(BUILD_DIR)/release -DCMAKE_BUILD_TYPE=Release -DVARK_BUILD_TESTS=OFF $(CMAKE_FLAGS)
	cmake --build $(BUILD_DIR)/release -j $(JOBS)
	@BUILD=$(BUILD_DIR)/release sh examples/demo.sh

test: deps-test
	$(CONFIGURE) -B $(BUILD_DIR)/asan -DCMAKE_BUILD_TYPE=Debug -DVARK_WERROR=ON \
		-DVARK_SANITIZE=address,undefined $(CMAKE_FLAGS)
	cmake --build $(BUILD_DIR)/asan -j $(JOBS)
	ctest --test-dir $(BUILD_DIR)/asan --output-on-failure -j $(JOBS)

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
