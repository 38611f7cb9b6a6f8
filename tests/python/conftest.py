"""Amount and seed of the property tests.

QUORIN_CASES is the number of examples that a property test of weight 1 runs, QUORIN_SEED the seed
from which hypothesis draws them; both are printed at the end with the comparisons made.
"""

from __future__ import annotations

import sys
from typing import Any


def pytest_terminal_summary(terminalreporter: Any) -> None:
    comparison = sys.modules.get("helpers.comparison")
    properties = sys.modules.get("helpers.property_tests")
    if comparison is None or properties is None:
        return
    terminalreporter.write_line(
        "property tests: {} comparisons of model and module, QUORIN_SEED={} QUORIN_CASES={}".format(
            comparison.Tally.cases, properties.SEED, properties.CASES
        )
    )
