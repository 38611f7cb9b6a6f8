"""The routine object: attributes, docstring, copies, binding."""

from __future__ import annotations

import copy
import functools
import inspect
import pickle
import pydoc
import types
import typing
import weakref

import pytest

import quorin_libs.utils.exportable_utils as eu
from helpers.fresh_interpreter import run_fresh
from helpers.interface_table import MODULE, PRESENT, REQUIRED, routine, row_id, stored

every_routine = pytest.mark.parametrize("row", PRESENT, ids=row_id)
STATIC = [row for row in PRESENT if row.static]


@every_routine
def test_names(row):
    found = routine(eu, row)
    assert found.__name__ == row.name
    assert found.__qualname__ == row.qualname
    assert found.__module__ == MODULE


@every_routine
def test_docstring(row):
    doc = routine(eu, row).__doc__
    assert isinstance(doc, str)
    assert doc.strip()


@every_routine
def test_defaults(row):
    defaults = routine(eu, row).__defaults__
    assert defaults == row.defaults
    assert [type(value) for value in defaults or ()] == [type(d) for d in row.defaults or ()]


@every_routine
def test_annotations(row):
    annotations = routine(eu, row).__annotations__
    assert type(annotations) is dict
    assert list(annotations) == list(row.annotations)
    for name, value in row.annotations.items():
        assert annotations[name] is value or annotations[name] == value == "set"


@every_routine
def test_type_hints(row):
    hints = {name: set if value == "set" else value for name, value in row.annotations.items()}
    assert typing.get_type_hints(routine(eu, row)) == hints


@every_routine
def test_signature_parameters(row):
    parameters = inspect.signature(routine(eu, row)).parameters
    assert list(parameters) == row.names
    for name, default in row.parameters:
        expected = inspect.Parameter.empty if default is REQUIRED else default
        assert parameters[name].default is expected or parameters[name].default == expected
        kinds = inspect.Parameter
        expected = kinds.POSITIONAL_ONLY if row.one else kinds.POSITIONAL_OR_KEYWORD
        assert parameters[name].kind is expected


@every_routine
def test_signature_annotations(row):
    signature = inspect.signature(routine(eu, row))
    empty = inspect.Parameter.empty
    for name in row.names:
        assert signature.parameters[name].annotation == row.annotations.get(name, empty)
    assert signature.return_annotation == row.annotations.get("return", empty)


@every_routine
def test_signature_through_the_class(row):
    owner = eu if row.owner == "module" else getattr(eu, row.owner)
    assert inspect.signature(getattr(owner, row.name)) == inspect.signature(routine(eu, row))


@every_routine
def test_help(row):
    found = routine(eu, row)
    assert inspect.isroutine(found)
    text = pydoc.plain(pydoc.render_doc(found))
    assert row.name + "".join(str(inspect.signature(found)).split()) in "".join(text.split())
    assert inspect.getdoc(found).splitlines()[0] in text


def test_help_of_the_module_lists_every_routine():
    text = pydoc.plain(pydoc.render_doc(eu))
    for row in PRESENT:
        assert row.name + "(" in text


@every_routine
def test_repr_names_the_routine(row):
    assert row.name in repr(routine(eu, row))


@every_routine
def test_pickle(row):
    found = routine(eu, row)
    for protocol in range(pickle.HIGHEST_PROTOCOL + 1):
        data = pickle.dumps(found, protocol)
        assert pickle.loads(data) is found
        assert pickle._loads(data) is found
        assert pickle._loads(pickle._dumps(found, protocol)) is found


def test_unpickling_imports_the_module(tmp_path):
    found = [routine(eu, row) for row in PRESENT]
    code = """
    import pickle
    answer([routine.__qualname__ for routine in pickle.loads({!r})])
    """
    for protocol in (0, pickle.HIGHEST_PROTOCOL):
        names = run_fresh(code.format(pickle.dumps(found, protocol)), tmp_path)
        assert names == [row.qualname for row in PRESENT]


@every_routine
def test_copy(row):
    found = routine(eu, row)
    assert copy.copy(found) is found
    assert copy.deepcopy([found]) == [found]
    assert copy.deepcopy(found) is found


@every_routine
def test_weak_references(row):
    found = routine(eu, row)
    reference = weakref.ref(found)
    assert reference() is found
    assert weakref.ref(found) is reference


@every_routine
def test_hash_and_equality(row):
    found = routine(eu, row)
    assert hash(found) == hash(found)
    assert {found: row.number}[found] == row.number
    assert [other.number for other in PRESENT if routine(eu, other) == found] == [row.number]


@every_routine
def test_callable_and_no_instance_needed(row):
    assert callable(routine(eu, row))
    owner = eu if row.owner == "module" else getattr(eu, row.owner)
    assert getattr(owner, row.name) is routine(eu, row)


@pytest.mark.parametrize("row", STATIC, ids=row_id)
def test_static_method_is_the_same_object_through_class_and_instance(row):
    owner = getattr(eu, row.owner)
    found = stored(eu, row).__func__
    assert getattr(owner, row.name) is found
    if owner is eu.FCplus:
        assert getattr(owner(), row.name) is found
    assert getattr(type("Derived", (owner,), {}), row.name) is found


@every_routine
def test_wrapping(row):
    found = routine(eu, row)
    wrapper = functools.wraps(found)(lambda *args: args)
    assert (wrapper.__name__, wrapper.__qualname__) == (row.name, row.qualname)
    assert wrapper.__doc__ == found.__doc__
    assert wrapper.__annotations__ == row.annotations
    assert wrapper.__wrapped__ is found
    assert inspect.signature(wrapper) == inspect.signature(found)


# Binding.


class Holder:
    setValueOrDefault = eu.setValueOrDefault
    isint = eu.isint
    indicator_mask = eu.indicator_mask

    def __int__(self):
        return 7


def test_bound_where_it_is_stored_bare_in_a_class():
    holder = Holder()
    bound = holder.setValueOrDefault
    assert isinstance(bound, types.MethodType)
    assert bound.__self__ is holder
    assert bound.__func__ is eu.setValueOrDefault
    assert bound() is holder
    assert bound(5) is holder
    assert bound(def_value=5) is holder
    assert holder.isint() is True
    assert Holder.setValueOrDefault is eu.setValueOrDefault
    assert Holder.setValueOrDefault(None, 5) == 5
    assert inspect.ismethod(bound)
    assert list(inspect.signature(bound).parameters) == ["def_value"]


@pytest.mark.parametrize(
    "call, text",
    [
        (
            lambda h: h.setValueOrDefault(1, 2),
            "setValueOrDefault() takes at most 2 positional arguments (3 given)",
        ),
        (
            lambda h: h.setValueOrDefault(variable=1),
            "setValueOrDefault() got multiple values for keyword argument 'variable'",
        ),
        (
            lambda h: h.setValueOrDefault(other=1),
            "setValueOrDefault() got an unexpected keyword argument 'other'",
        ),
        (
            lambda h: h.indicator_mask(),
            "indicator_mask() takes exactly 2 positional arguments (1 given)",
        ),
        (lambda h: h.isint(1), "isint() takes exactly one argument (2 given)"),
        (lambda h: h.isint(value=1), "isint() takes no keyword arguments"),
    ],
)
def test_wrong_calls_of_bound_routines_count_the_instance(call, text):
    with pytest.raises(TypeError) as caught:
        call(Holder())
    assert str(caught.value) == text


def test_descriptor_protocol():
    holder = Holder()
    get = type(eu.isint).__get__
    assert get(eu.isint, holder, Holder).__self__ is holder
    assert get(eu.isint, None, Holder) is eu.isint
