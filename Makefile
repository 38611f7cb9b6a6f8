# make run         profile the example table
# make core-tests     the tests of the core alone
# make test        the tests of the core, the whole Python suite, the examples in docstrings
# make lint        every formatter, linter and type checker; each must be silent
# make matrix      the suite on every CPython from 3.7 on that this machine has (ROWS="3.7.16 3.13.0")
# make asan        the suites under AddressSanitizer and UndefinedBehaviorSanitizer
# make coverage    the suites under gcov; fails below COVERAGE_MIN per cent of the lines of src/
# make fuzz        the property tests with CASES examples each (and another SEED, if one is given)
# make docs        the reference pages, into build/docs; any warning fails
# make bench       times of the routines as ratios (BENCH_ARGS="--filter whatis --rows 100000")
# make kernel-cost  instructions per element of each kernel against a committed table; needs valgrind
#                  (COST_ARGS=--update writes the table anew)
# make format      rewrite the sources as `make lint` wants them
# make clean       remove everything that was made here
#
# Needed: Python 3.7 or later with venv, a C++20 compiler, PyPI. All else is fetched into .venv.

PYTHON ?= python3
COVERAGE_MIN ?= 97
CASES ?= 10000
SEED ?=
ROWS ?=
PYTEST_ARGS ?=
BENCH_ARGS ?=
COST_ARGS ?=

VENV := .venv
BIN := $(VENV)/bin
export PATH := $(CURDIR)/$(BIN):$(PATH)
export PIP_DISABLE_PIP_VERSION_CHECK := 1

.DELETE_ON_ERROR:
.PHONY: run test core-tests kernel-cost lint lint-ruff lint-format lint-types lint-stub lint-tidy format docs bench matrix asan coverage fuzz clean
$(shell mkdir -p build)

SOURCES := $(shell find src -name "*.cpp" -o -name "*.hpp")
CXX_FILES := $(SOURCES) $(wildcard tests/core/*.[ch]pp)

# ---- the environment, a stamp for each layer --------------------------------------------------

$(VENV)/.tools: pyproject.toml scripts/requirements.py
	test -x $(BIN)/python || $(PYTHON) -m venv $(VENV)
	$(BIN)/python scripts/requirements.py build > $(VENV)/build.txt
	$(BIN)/python -m pip install --quiet --requirement $(VENV)/build.txt
	touch $@

# An editable install: the package's Python files are used where they lie, so only a change of what
# is compiled asks for a new one. It works from any directory, this checkout included. No build
# isolation and a lasting build directory, so that only what changed is compiled.
$(VENV)/.package: $(VENV)/.tools CMakeLists.txt $(SOURCES)
	SKBUILD_BUILD_DIR=build/editable $(BIN)/python -m pip install --quiet --no-build-isolation --editable .
	touch $@

$(VENV)/.test $(VENV)/.dev $(VENV)/.docs $(VENV)/.bench: $(VENV)/.%: $(VENV)/.tools
	$(BIN)/python scripts/requirements.py $* > $(VENV)/$*.txt
	$(BIN)/python -m pip install --quiet --requirement $(VENV)/$*.txt
	touch $@

# ---- using it ---------------------------------------------------------------------------------

run: $(VENV)/.package
	$(BIN)/quorin-profile examples/elements.csv

test: $(VENV)/.package $(VENV)/.test core-tests
	$(BIN)/pytest $(PYTEST_ARGS)
	$(BIN)/pytest --doctest-modules --pyargs quorin_libs

core-tests: $(VENV)/.tools
	cmake --preset core > build/core.log || { cat build/core.log; exit 1; }
	cmake --build --preset core
	build/core/tests/core/core_tests

fuzz: $(VENV)/.package $(VENV)/.test
	QUORIN_CASES=$(CASES) $(if $(SEED),QUORIN_SEED=$(SEED)) \
	  $(BIN)/pytest $(wildcard tests/python/test_reference_*.py tests/python/test_routes*.py) $(PYTEST_ARGS)

docs: $(VENV)/.package $(VENV)/.docs
	$(BIN)/sphinx-build -q -E -W --keep-going -n docs build/docs

matrix:
	scripts/matrix $(ROWS)

# ---- instrumented builds ----------------------------------------------------------------------

asan: $(VENV)/.package $(VENV)/.test
	scripts/staged_suite asan

coverage: $(VENV)/.package $(VENV)/.test $(VENV)/.dev
	scripts/staged_suite coverage
	$(BIN)/gcovr --root . --filter src/ --object-directory build/coverage \
	  --merge-lines --exclude-throw-branches --print-summary --fail-under-line $(COVERAGE_MIN)

# ---- looks ------------------------------------------------------------------------------------

# Apart from each other, so that `make -k lint` shows what each of them has to say.
lint: lint-ruff lint-format lint-types lint-stub lint-tidy

lint-ruff: $(VENV)/.dev
	$(BIN)/ruff check .

lint-format: $(VENV)/.dev
	$(BIN)/ruff format --check .
	$(BIN)/clang-format --dry-run -Werror $(CXX_FILES)

lint-types: $(VENV)/.package $(VENV)/.dev
	$(BIN)/mypy

# The stub against the module: what a caller may write, and what the editor shows of it.
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

bench: $(VENV)/.package $(VENV)/.bench
	$(BIN)/python -m benchmarks $(BENCH_ARGS)

kernel-cost: $(VENV)/.tools
	cmake --preset kernel-cost > build/kernel-cost.log || { cat build/kernel-cost.log; exit 1; }
	cmake --build --preset kernel-cost --target kernel_cost
	scripts/kernel_cost $(COST_ARGS) build/kernel-cost/tests/core/kernel_cost

clean:
	rm -rf $(VENV) build dist .pytest_cache .mypy_cache .ruff_cache .hypothesis
	find quorin_libs tests scripts benchmarks -name __pycache__ -type d -prune -exec rm -rf {} +
