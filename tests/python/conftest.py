"""Prints a summary line of the property tests: comparisons made, seed and number of examples.

QUORIN_CASES is the number of examples that a property test of weight 1 runs, QUORIN_SEED the seed
from which hypothesis draws them. With pytest-xdist each worker counts its own comparisons; the
summary line gives their sum.
"""

from __future__ import annotations

import sys
from typing import Any, List, Optional

import pytest

# Failing assertions in helpers show their operands, as in tests.
pytest.register_assert_rewrite("helpers")

# The numbers of comparisons of the workers.
counted: List[int] = []


def comparisons_here() -> Optional[int]:
    """The number of comparisons of this process; None if it has loaded no property test."""
    comparison = sys.modules.get("helpers.comparison")
    loaded = comparison is not None and "helpers.property_tests" in sys.modules
    return comparison.Tally.cases if loaded else None  # type: ignore[union-attr]


def pytest_sessionfinish(session: Any) -> None:
    output = getattr(session.config, "workeroutput", None)
    here = comparisons_here()
    if output is not None and here is not None:
        output["comparisons"] = here


@pytest.hookimpl(optionalhook=True)
def pytest_testnodedown(node: Any) -> None:
    output = getattr(node, "workeroutput", {})
    if "comparisons" in output:
        counted.append(output["comparisons"])


def pytest_terminal_summary(terminalreporter: Any) -> None:
    here = comparisons_here()
    if here is None and not counted:
        return
    from helpers.property_tests import CASES, SEED

    terminalreporter.write_line(
        "property tests: {} comparisons of model and module, QUORIN_SEED={} QUORIN_CASES={}".format(
            sum(counted) + (here or 0), SEED, CASES
        )
    )
