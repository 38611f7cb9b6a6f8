"""How a property test is declared: examples by weight, one seed for all."""

from __future__ import annotations

import os
from typing import Any, Callable

import hypothesis
from hypothesis import HealthCheck, given, settings

CASES = int(os.environ.get("QUORIN_CASES", "25"))
SEED = int(os.environ.get("QUORIN_SEED", "20240601"))


def property_test(weight: float = 1.0, **strategies: Any) -> Callable[[Any], Any]:
    """Run the test on `weight * CASES` drawn examples."""

    def decorate(test: Any) -> Any:
        test = given(**strategies)(test)
        test = settings(
            max_examples=max(5, round(weight * CASES)),
            deadline=None,
            database=None,
            suppress_health_check=list(HealthCheck),
        )(test)
        return hypothesis.seed(SEED)(test)

    return decorate
