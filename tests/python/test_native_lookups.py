"""Each routine declares the names that its native route depends on.

The interpreter route looks up names when it runs. A native route may run only if all of them are
bound to the objects that start-up bound. A replaced name that no routine declares would have no
effect on native routes.
"""

from __future__ import annotations

import functools

import pytest

from helpers.comparison import find_routine, module
from helpers.interface_table import PRESENT
from helpers.look_up_observer import observe, without_owners
from helpers.native_calls import NATIVE_CALLS
from helpers.native_lookups import declared, is_bound, with_owners
from helpers.routes import events_of, pass_through

# check_statistics has a native route and looks up no name. A routine that only calls another one by
# name, such as is_column_height, has no native route and declares nothing.
ROUTINES = sorted(name for name in NATIVE_CALLS if declared(name) or name.endswith("statistics"))

# Both routes read this list at each call: a caller may bind the name to another list, and that
# does not force the interpreter route.
READ_BY_BOTH_ROUTES = {"global_missing_values_reference_list"}


class VisibleNan(float):
    """A NaN whose conversions are Python functions, so that a profiler sees them."""

    def __float__(self):
        return float.__float__(self)

    def __bool__(self):
        return True

    def __hash__(self):
        return float.__hash__(self)

    def __eq__(self, other):
        return False

    def __ne__(self, other):
        return True


def visible(dotted):
    """A pass-through whose use a profiler sees."""
    if dotted == "np.nan":
        return VisibleNan("nan")
    return pass_through(dotted, lambda value: lambda *args, **kwargs: value(*args, **kwargs))


@functools.lru_cache(maxsize=None)
def observed(routine):
    """All names that the interpreter route looks up in the calls that the native route answers."""
    function = find_routine(module, routine)
    found = {}
    for arguments in NATIVE_CALLS[routine]:
        found.update(dict.fromkeys(observe(function, arguments)))
    return tuple(name for name in without_owners(found) if name not in READ_BY_BOTH_ROUTES)


def forgotten(names, looked_up):
    """The names that are looked up and not declared."""
    return sorted(set(looked_up) - set(names))


def test_every_routine_that_declares_names_has_calls():
    assert {row.qualname for row in PRESENT if declared(row.qualname)} <= set(ROUTINES)


@pytest.mark.parametrize("routine", ROUTINES)
def test_declaration_is_complete(routine):
    assert forgotten(declared(routine), observed(routine)) == []


@pytest.mark.parametrize(
    "routine, name", [(routine, name) for routine in ROUTINES for name in observed(routine)]
)
def test_a_forgotten_name_is_found(routine, name):
    """A mutation of the check above: it reports exactly the name removed from the declaration."""
    rest = [other for other in declared(routine) if other != name]
    assert forgotten(rest, observed(routine)) == [name]


NAMES = sorted(
    (routine, name)
    for routine in ROUTINES
    for name in {*declared(routine), *with_owners(set(declared(routine)) - {routine})}
    if is_bound(name)
)


@pytest.mark.parametrize("routine, name", NAMES)
def test_each_declared_name_forces_the_interpreter_route(routine, name):
    """For at least one call a profiler sees other events than on the native route."""

    def forces(arguments):
        plain = events_of(routine, arguments())
        return plain != events_of(routine, arguments(), name, visible(name))

    assert any(forces(arguments) for arguments in NATIVE_CALLS[routine])
