# make run         profile the example table
# make test        the tests of the core, the Python suite, the examples in docstrings
# make core-tests  the tests of the core alone
# make fuzz        the property tests with CASES examples each (SEED=7 draws others)
# make lint        formatters, linters, type checkers, the stub; a finding is an error
# make format      format the sources as `make lint` requires
# make docs        the documentation, into build/docs; a warning is an error
# make matrix      the suite on every CPython from 3.7 on of this machine (ROWS="3.7.16 3.13.0")
# make asan        the suites under AddressSanitizer and UndefinedBehaviorSanitizer
# make coverage    the same, with line coverage; fails below COVERAGE_MIN per cent of src/
# make kernel-cost instructions an element of each kernel against a committed table; needs valgrind
#                  (COST_ARGS=--update writes the table)
# make bench       times of the routines as ratios (BENCH_ARGS="--filter whatis --rows 100000")
# make clean       remove all generated files
#
# Needs Python 3.7 or later with venv, a C++20 compiler and PyPI; the rest is installed into .venv.

PYTHON ?= python3
COVERAGE_MIN ?= 97
CASES ?= 10000
SEED ?=
ROWS ?=
PYTEST_ARGS ?=
BENCH_ARGS ?=
COST_ARGS ?=
# Compiler warnings are errors; WERROR=OFF is for compilers with new warnings.
WERROR ?= ON
# Number of processes of pytest and of clang-tidy; `make asan` and `make matrix` run pytest in one.
export JOBS ?= $(shell nproc)

VENV := .venv
BIN := $(VENV)/bin
EDITABLE := build/editable
export PATH := $(CURDIR)/$(BIN):$(PATH)
export PIP_DISABLE_PIP_VERSION_CHECK := 1

.DELETE_ON_ERROR:
.PHONY: run test core-tests fuzz lint lint-ruff lint-format lint-types lint-stub lint-tidy format docs \
  matrix asan coverage kernel-cost bench clean
$(shell mkdir -p build)

SOURCES := $(shell find src -name "*.cpp" -o -name "*.hpp")
CORE_TESTS := $(wildcard tests/core/*)
CXX_FILES := $(SOURCES) $(filter %.cpp %.hpp,$(CORE_TESTS))

# ---- the environment, a stamp for each layer --------------------------------------------------

$(VENV)/.tools: pyproject.toml scripts/requirements.py
	test -x $(BIN)/python || $(PYTHON) -m venv $(VENV)
	$(BIN)/python scripts/requirements.py build > $(VENV)/build.txt
	$(BIN)/python -m pip install --quiet --requirement $(VENV)/build.txt
	touch $@

# An editable install: Python files are used in place. No build isolation and a fixed build directory,
# so that only changed files are compiled. The tests of the core are targets of the same build.
$(VENV)/.package: $(VENV)/.tools CMakeLists.txt tests/core/CMakeLists.txt $(SOURCES)
	SKBUILD_BUILD_DIR=$(EDITABLE) SKBUILD_BUILD_TARGETS=exportable_utils \
	  SKBUILD_CMAKE_DEFINE="QUORIN_WERROR=$(WERROR);QUORIN_CORE_TESTS=ON" \
	  $(BIN)/python -m pip install --quiet --no-build-isolation --editable .
	touch $@

$(VENV)/.test $(VENV)/.dev $(VENV)/.docs $(VENV)/.bench: $(VENV)/.%: $(VENV)/.tools
	$(BIN)/python scripts/requirements.py $* > $(VENV)/$*.txt
	$(BIN)/python -m pip install --quiet --requirement $(VENV)/$*.txt
	touch $@

# ---- run and test -----------------------------------------------------------------------------

run: $(VENV)/.package
	$(BIN)/quorin-profile examples/elements.csv

test: $(VENV)/.package $(VENV)/.test core-tests
	$(BIN)/pytest --numprocesses $(JOBS) --dist worksteal $(PYTEST_ARGS)
	$(BIN)/pytest --doctest-modules --pyargs quorin_libs

core-tests: $(VENV)/.package
	cmake --build $(EDITABLE) --target core_tests
	$(EDITABLE)/tests/core/core_tests

fuzz: $(VENV)/.package $(VENV)/.test
	QUORIN_CASES=$(CASES) $(if $(SEED),QUORIN_SEED=$(SEED)) $(BIN)/pytest --numprocesses $(JOBS) --dist worksteal \
	  $(wildcard tests/python/test_reference_*.py tests/python/test_routes*.py) $(PYTEST_ARGS)

docs: $(VENV)/.package $(VENV)/.docs
	$(BIN)/sphinx-build -q -E -W --keep-going -n docs build/docs

matrix:
	scripts/matrix $(ROWS)

# ---- instrumented builds ----------------------------------------------------------------------

asan: $(VENV)/.package $(VENV)/.test
	scripts/staged_suite asan

# The sanitizers' build is also instrumented for coverage: one build and one run give both results.
coverage: asan $(VENV)/.dev
	$(BIN)/gcovr --root . --filter src/ --object-directory build/asan \
	  --merge-lines --exclude-throw-branches --print-summary --fail-under-line $(COVERAGE_MIN)

# ---- static checks ----------------------------------------------------------------------------

# Separate targets, so that `make -k lint` reports the errors of all.
lint: lint-ruff lint-format lint-types lint-stub lint-tidy

lint-ruff: $(VENV)/.dev
	$(BIN)/ruff check .

lint-format: $(VENV)/.dev
	$(BIN)/ruff format --check .
	$(BIN)/clang-format --dry-run -Werror $(CXX_FILES)

lint-types: $(VENV)/.package $(VENV)/.dev
	$(BIN)/mypy

# Compares the stub with the module: signatures, then the generated docstrings.
lint-stub: $(VENV)/.package $(VENV)/.dev
	$(BIN)/stubtest --mypy-config-file pyproject.toml quorin_libs.utils.exportable_utils
	$(BIN)/python scripts/stub_docstrings.py --check

lint-tidy: $(VENV)/.tools $(VENV)/.dev
	cmake --preset dev > build/dev.log || { cat build/dev.log; exit 1; }
	scripts/tidy build/dev

format: $(VENV)/.dev
	$(BIN)/ruff check --fix .
	$(BIN)/ruff format .
	$(BIN)/clang-format -i $(CXX_FILES)

# ---- measurements -----------------------------------------------------------------------------

bench: $(VENV)/.package $(VENV)/.bench
	$(BIN)/python -m benchmarks $(BENCH_ARGS)

kernel-cost: $(VENV)/.package
	cmake --build $(EDITABLE) --target kernel_cost
	scripts/kernel_cost $(COST_ARGS) $(EDITABLE)/tests/core/kernel_cost

clean:
	rm -rf $(VENV) build dist docs/_static/curve.svg .pytest_cache .mypy_cache .ruff_cache .hypothesis
	find quorin_libs tests scripts benchmarks docs -name __pycache__ -type d -prune -exec rm -rf {} +
