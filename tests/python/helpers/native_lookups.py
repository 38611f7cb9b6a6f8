"""The names that the native route of each routine depends on."""

from __future__ import annotations

from typing import Any, List

from hypothesis import strategies as st

from .comparison import find_owner, find_routine, module

# The checks of a whole data set, all of which have the same two routes.
DATASET_CHECKS = [
    "is_dataset_preprocessed",
    "is_dataset_missing",
    "get_dataset_missing_columns",
    "is_dataset_numeric",
    "get_dataset_non_numeric_columns",
]


def declared(routine: str) -> List[str]:
    """The names that the native route of a routine depends on, those of its callees included."""
    return list(find_routine(module, routine)._native_lookups)


def is_bound(dotted: str) -> bool:
    """Whether the name is bound in its namespace; recent versions of numpy have no `np.float`."""
    owner, name = find_owner(module, dotted)
    return name in vars(owner)


def with_owners(names: List[str]) -> List[str]:
    """The names, and for each dotted one its global."""
    return sorted({*names, *(name.partition(".")[0] for name in names)})


# numpy and pandas use it internally to compare dtypes: another object changes their results.
NOT_NEUTRAL = ["np.bool_"]


def names_for(routine: str) -> Any:
    """Strategy: a name that forces the interpreter route of the routine, and changes no result."""
    names = [name for name in with_owners(declared(routine)) if is_bound(name)]
    return st.sampled_from([name for name in names if name not in NOT_NEUTRAL] or [routine])
