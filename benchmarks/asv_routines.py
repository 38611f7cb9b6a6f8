"""The cases for asv, with a class for each route and one for the peers."""

from __future__ import annotations

import logging
from typing import Any, ClassVar

from benchmarks.cases import cases
from benchmarks.columns import build
from benchmarks.timing import interpreter_route

CASES = {case.name: case for case in cases("axes")}
ROWS = [10, 100, 1_000, 10_000, 100_000, 1_000_000]


class _Routine:
    params: ClassVar[list[Any]] = [list(CASES), ROWS]
    param_names: ClassVar[list[str]] = ["case", "rows"]
    timeout = 600

    def setup(self, name: str, rows: int) -> None:
        """Make the argument of the call."""
        logging.getLogger().addHandler(logging.NullHandler())
        case = CASES[name]
        self.call = case.routine.call
        self.subject = case.subject(build(case.spec, rows))
        if case.routine.copied:
            # The call writes into its argument: one call for each set-up.
            self.number = 1

    def time_call(self, *_params: Any) -> None:
        """Time the call."""
        self.call(self.subject)


class NativeRoute(_Routine):
    """The routines."""

    def peakmem_call(self, *_params: Any) -> None:
        """Measure the process, including the column."""
        self.call(self.subject)


class InterpreterRoute(_Routine):
    """The routines, forced to their interpreter route."""

    def setup(self, name: str, rows: int) -> None:
        """Make the argument of the call and force the route."""
        super().setup(name, rows)
        self.replaced = interpreter_route()
        self.replaced.__enter__()

    def teardown(self, *_params: Any) -> None:
        """Release the route."""
        self.replaced.__exit__(None, None, None)


class Peer(_Routine):
    """The first peer."""

    def setup(self, name: str, rows: int) -> None:
        """Make the argument of the peer's call."""
        case = CASES[name]
        if not case.peers:
            raise NotImplementedError  # asv skips the case
        peer = case.peers[0]
        self.call = peer.call
        self.subject = peer.subject(build(case.spec, rows))
