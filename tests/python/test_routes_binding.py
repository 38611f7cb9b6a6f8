"""Every way of binding a name takes effect, and restoring it restores the native route."""

from __future__ import annotations

import numpy as np
import pytest

from helpers.arrays import objects
from helpers.comparison import module
from helpers.replacements import Foreign, always, refuse
from helpers.routes import events_of

FC_TEST = "FC.is_string_in_datetime_format"
FCPLUS_TEST = "FCplus.is_column_string_in_datetime_format"


# Ways of binding a name.
WAYS = {
    "setattr": lambda value: setattr(module, "isint", value),
    "item": lambda value: vars(module).__setitem__("isint", value),
    "update": lambda value: vars(module).update(isint=value),
    "gone and back": lambda value: (vars(module).pop("isint"), setattr(module, "isint", value)),
    "exec": lambda value: exec("global isint; isint = value", vars(module), {"value": value}),
    "__dict__": lambda value: object.__setattr__(module, "isint", value),
}


@pytest.mark.parametrize("way", sorted(WAYS))
def test_however_it_is_bound(way):
    column = objects("1", "2")
    original = module.isint
    order = list(vars(module))
    assert module.numpy_whatis(column) == ([], "int_str")
    try:
        WAYS[way](always(False))
        assert module.numpy_whatis(column) == ([], "char_str")
        WAYS[way](original)
        assert module.numpy_whatis(column) == ([], "int_str")
        assert events_of("numpy_whatis", (column,)) == []
    finally:
        module.isint = original
        for name in order:
            vars(module)[name] = vars(module).pop(name)


def test_members_of_classes_however_they_are_bound():
    column = objects("a", "b")
    for owner in (module.FC, module.FCplus):
        name = (FC_TEST if owner is module.FC else FCPLUS_TEST).partition(".")[2]
        original = vars(owner)[name]
        for bind in (setattr, type.__setattr__):
            bind(owner, name, staticmethod(refuse))
            try:
                with pytest.raises(Foreign):
                    module.numpy_whatis(column)
            finally:
                bind(owner, name, original)
            assert module.numpy_whatis(column) == ([], "char_str")
            assert events_of("numpy_whatis", (column,)) == []


def test_binding_the_same_object_changes_nothing():
    column = objects("1", "2")
    module.isint = module.isint
    np.unique = np.unique
    assert events_of("numpy_whatis", (column,)) == []


def test_many_changes_one_after_another():
    column = objects("1", "2")
    original = module.isint
    for _ in range(300):
        module.isint = always(False)
        assert module.numpy_whatis(column) == ([], "char_str")
        module.isint = original
        assert module.numpy_whatis(column) == ([], "int_str")


def test_a_new_name_does_not_end_the_native_route():
    column = objects("1", "2")
    module.not_a_name_of_ours = 1
    try:
        assert events_of("numpy_whatis", (column,)) == []
    finally:
        del module.not_a_name_of_ours
    assert events_of("numpy_whatis", (column,)) == []


@pytest.mark.parametrize("routine", ["getClasses", "is_column_categorical"])
def test_list_of_markers_may_be_changed_in_place(routine):
    column = objects(*["a", "b", "zz", "a"])
    numbers = np.array([100.0] * 50 + [200.0] * 50 + list(range(10)))
    ask = getattr(module.FCplus, routine)
    markers = module.global_missing_values_reference_list
    before = list(markers)
    first = ask(column), ask(numbers)
    try:
        markers.append("zz")
        markers.extend(float(i) for i in range(10))
        changed = ask(column), ask(numbers)
        own = [list(markers)] if routine == "is_column_categorical" else [True, list(markers)]
        assert changed == (ask(column, *own), ask(numbers, *own))
        assert changed != first
    finally:
        markers[:] = before
    assert (ask(column), ask(numbers)) == first
