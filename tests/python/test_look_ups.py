"""Names are looked up when a routine runs: the tests that the table of look-ups generates."""

from __future__ import annotations

import pytest

import quorin_libs.utils.exportable_utils as eu
from helpers.comparison import DELETED, find_routine, replaced
from helpers.interface_table import PRESENT
from helpers.look_up_observer import missing_name, one_by_one, only
from helpers.look_up_table import ROWS, row_id
from helpers.replacements import Looked, Overlay, Recorder
from helpers.values import as_lists

# numpy's warning about `np.float`, which the oldest numpy still has.
pytestmark = pytest.mark.filterwarnings("ignore:`np.float` is a deprecated alias")

LIST = "global_missing_values_reference_list"
LOOK_UPS = [pytest.param(row, name, id=row_id(row) + ": " + name)
            for row in ROWS for name in row.look_ups]  # fmt: skip
GLOBALS = [pytest.param(row, name, id=row_id(row) + ": " + name)
           for row in ROWS for name in row.globals]  # fmt: skip


def is_function(name):
    """Whether a dotted name is a function that may be replaced in its own module or class."""
    owner, _, attribute = name.partition(".")
    if not attribute or name == "np.float":  # a type where there is one; old numpy warns
        return False
    value = getattr(getattr(eu, owner), attribute)
    return callable(value) and not isinstance(value, type)


FUNCTIONS = [param for param in LOOK_UPS if is_function(param.values[1])]
MEMBERS = [param for param in LOOK_UPS if param.values[1].startswith(("FC.", "FCplus."))]
IN_ORDER = [row for row in ROWS if row.guard != "false"]


def result_of(row, routine=None):
    """The result of the call, or the class and the first line of the exception, as a text."""
    routine = routine or find_routine(eu, row.routine)
    try:
        return repr(as_lists(routine(*row.arguments())))
    except Exception as error:
        return repr((type(error), str(error).splitlines()[:1]))


def replace(monkeypatch, name, **how):
    """Put a replacement under the name: a recorder, an overlay of a library, an equal list."""
    owner, _, attribute = name.partition(".")
    original = getattr(eu, owner)
    if attribute:
        replacement = Overlay(original, **{attribute: how["by"]} if how else {})
    elif name == LIST:
        replacement = list(original)
    else:
        replacement = how.get("by") or Recorder(original)
    monkeypatch.setattr(eu, owner, replacement)
    return replacement


def look(*args, **kwargs):
    raise Looked


def test_every_routine_has_a_row():
    assert {row.routine for row in ROWS} == {row.qualname for row in PRESENT}


# The calls of the table that raise.
RAISING = {
    "QSR_raise_exception",
    "QSR_raise_exception, with the traceback",
    "get_unique_values, unsortable",
    "numpy_whatis, bytes",
}


@pytest.mark.parametrize("row", ROWS, ids=row_id)
def test_the_calls_return(row):
    routine = find_routine(eu, row.routine)
    if row_id(row) in RAISING:
        with pytest.raises(Exception):
            routine(*row.arguments())
    else:
        routine(*row.arguments())


@pytest.mark.parametrize("row, name", LOOK_UPS)
def test_replaced_name_is_used(monkeypatch, row, name):
    routine, expected = find_routine(eu, row.routine), result_of(row)
    with monkeypatch.context() as patch:
        replacement = replace(patch, name)
        assert result_of(row, routine) == expected
        if isinstance(replacement, Overlay):
            assert name.partition(".")[2] in replacement._read
        elif isinstance(replacement, Recorder):
            assert replacement.calls
    assert result_of(row) == expected


@pytest.mark.parametrize("row, name", [param for param in LOOK_UPS if param.values[1] != LIST])
def test_failure_of_a_replaced_name_propagates(monkeypatch, row, name):
    routine, expected = find_routine(eu, row.routine), result_of(row)
    with monkeypatch.context() as patch:
        replace(patch, name, by=Looked if "." in name else look)
        with pytest.raises(Looked):
            routine(*row.arguments())
    assert result_of(row) == expected


@pytest.mark.parametrize("row, name", FUNCTIONS)
def test_function_replaced_in_its_own_module_or_class_is_used(monkeypatch, row, name):
    routine, expected = find_routine(eu, row.routine), result_of(row)
    owner, _, attribute = name.partition(".")
    owner = getattr(eu, owner)
    recorder = Recorder(getattr(owner, attribute))
    with monkeypatch.context() as patch:
        patch.setattr(owner, attribute, recorder)
        result = result_of(row, routine)
    assert result == expected
    assert recorder.calls


@pytest.mark.parametrize("row, name", GLOBALS)
def test_deleted_name(monkeypatch, capsys, row, name):
    routine, expected = find_routine(eu, row.routine), result_of(row)
    text = "name '{}' is not defined".format(name)
    guard = row.guard if name == row.hidden else ""
    capsys.readouterr()
    with replaced(eu, {name: DELETED}):
        if guard == "false":
            assert routine(*row.arguments()) is False
        else:
            with pytest.raises(Exception) as caught:
                routine(*row.arguments())
            check_missing_name(guard, caught.value, text, capsys)
    assert result_of(row) == expected


def check_missing_name(guard, error, text, capsys):
    if guard == "reported":
        assert type(error) is Exception
        assert "\nNameError: {}\n\nExiting ...".format(text) in str(error)
    elif guard == "printed":
        # The report reads an attribute that only columns of pandas have.
        assert type(error) is AttributeError
        assert type(error.__context__) is NameError
        assert str(error.__context__) == text
        assert capsys.readouterr().out.startswith("exception " + text + "\n")
    else:
        assert type(error) is NameError
        assert str(error) == text


@pytest.mark.parametrize("row, name", MEMBERS)
def test_deleted_member(row, name):
    routine, expected = find_routine(eu, row.routine), result_of(row)
    with replaced(eu, {name: DELETED}):
        with pytest.raises(AttributeError) as caught:
            routine(*row.arguments())
        owner, _, attribute = name.partition(".")
        text = "type object '{}' has no attribute '{}'".format(owner, attribute)
        assert str(caught.value) == text
    assert result_of(row) == expected


@pytest.mark.parametrize("row", IN_ORDER, ids=row_id)
def test_order(row):
    """If all names from a position on are removed, the name at that position is the missing one."""
    routine = find_routine(eu, row.routine)
    steps = one_by_one(row.look_ups)
    for i, name in enumerate(steps):
        with replaced(eu, only(steps[:i])):
            assert missing_name(routine, row.arguments) == name


@pytest.mark.parametrize("row", ROWS, ids=row_id)
def test_nothing_else_is_looked_up(row):
    routine, expected = find_routine(eu, row.routine), result_of(row)
    with replaced(eu, only(one_by_one(row.look_ups))):
        found = result_of(row, routine)
    assert found == expected


def test_nothing_else_would_be_noticed():
    """The test above fails if a name is left out of its row."""
    row = next(row for row in ROWS if row.routine == "numpy_permute_array")
    assert row.look_ups == ("np.argsort",)
    routine = find_routine(eu, row.routine)
    with replaced(eu, only([])), pytest.raises(NameError, match="'np'"):
        routine(*row.arguments())
    with replaced(eu, only(["np"])), pytest.raises(Looked, match="argsort"):
        routine(*row.arguments())
