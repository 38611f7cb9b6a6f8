"""The cases: routines, the columns that they are timed on, and peers."""

from __future__ import annotations

from typing import Any, Callable, Iterator, NamedTuple, Optional

import numpy as np

from benchmarks.columns import KINDS, ColumnSpec
from benchmarks.peers import PEERS, Peer, as_frame
from benchmarks.routines import ROUTINES, Routine

# The column of which the grid "axes" varies one property at a time.
BASE = ColumnSpec(kind="words")

MISSING = (0.0, 0.5)
DISTINCT = (3, 1000)
ORDERS = ("shuffled", "shared")

# Kinds whose cells are objects: only these have a memory order.
SCATTERED = frozenset(name for name, kind in KINDS.items() if kind.dtype is object)


class Case(NamedTuple):
    """A routine on a column of any length."""

    routine: Routine
    spec: ColumnSpec

    @property
    def name(self) -> str:
        """The name that --filter matches."""
        return "{}/{}".format(self.routine.name, self.spec.label)

    @property
    def peers(self) -> tuple[Peer, ...]:
        """The peers for such a column, if any."""
        return PEERS.get((self.routine.job, self.spec.kind), ())

    @property
    def subject(self) -> Callable[[Any], Any]:
        """The function that makes the routine's argument from the column."""
        return as_frame if self.routine.takes_frame else _itself


def _spec_for(routine: Routine, spec: ColumnSpec) -> ColumnSpec:
    return spec._replace(missing=0.0) if routine.stops_at_missing else spec


def _itself(column: Any) -> Any:
    return column


def _one_axis(kind: str) -> Iterator[ColumnSpec]:
    base = BASE._replace(kind=kind)
    yield base
    described = KINDS.get(kind)
    if described is None:
        return
    if described.holes:
        yield from (base._replace(missing=share) for share in MISSING)
    if described.counted:
        yield from (base._replace(distinct=number) for number in DISTINCT)
    if kind in SCATTERED:
        yield base._replace(order="shuffled")
        yield from (base._replace(distinct=3, order=order) for order in ORDERS)


def _every(kind: str) -> Iterator[ColumnSpec]:
    described = KINDS.get(kind)
    if described is None:
        yield BASE._replace(kind=kind)
        return
    numbers: tuple[Optional[int], ...] = (None, *DISTINCT) if described.counted else (None,)
    orders = ("fresh", *ORDERS) if kind in SCATTERED else ("fresh",)
    for share in (BASE.missing, *MISSING) if described.holes else (BASE.missing,):
        for number in numbers:
            for order in orders:
                if order != "shared" or number is not None:
                    yield ColumnSpec(kind, share, number, order)


def _only_base(kind: str) -> Iterator[ColumnSpec]:
    yield BASE._replace(kind=kind)


GRIDS = {"base": _only_base, "axes": _one_axis, "full": _every}


def cases(grid: str = "base") -> list[Case]:
    """Return every routine on each of its kinds of column.

    "base" has one column of each kind, "axes" varies one property of it at a time, "full" all of
    them together.
    """
    found = (
        Case(routine, _spec_for(routine, spec))
        for routine in ROUTINES
        for kind in routine.kinds
        for spec in GRIDS[grid](kind)
    )
    # Without missing values, columns that differ in their share are equal.
    return list(dict.fromkeys(found))


def elements(subject: Any) -> int:
    """Return the number of cells."""
    return int(np.prod(np.shape(subject)))
