"""The stub has the names, parameters, defaults and docstrings of the module, in the same order."""

from __future__ import annotations

import ast
import inspect
from pathlib import Path

import pytest

import quorin_libs
import quorin_libs.utils.exportable_utils as eu
from helpers.interface_table import ROWS

STUB = Path(quorin_libs.__file__).parent / "utils" / "exportable_utils.pyi"
TREE = ast.parse(STUB.read_text(encoding="utf-8"))
OWNERS = {"FCplus": eu.FCplus, "DatasetS": eu.DatasetS}
ABSENT = object()


def is_routine(held):
    found = held.__func__ if isinstance(held, staticmethod) else held
    return type(found).__name__ == "routine"


def functions(body):
    """Return the definitions of each function of a body, overloads together, in their order."""
    found = {}
    for node in body:
        if isinstance(node, ast.FunctionDef):
            found.setdefault(node.name, []).append(node)
    return found


def classes():
    return {node.name: node for node in TREE.body if isinstance(node, ast.ClassDef)}


DEFINITIONS = functions(TREE.body)
for _owner in OWNERS:
    for _name, _nodes in functions(classes()[_owner].body).items():
        DEFINITIONS[_owner + "." + _name] = _nodes

ROUTINES = {name: held for name, held in vars(eu).items() if is_routine(held)}
for _owner, _class in OWNERS.items():
    for _name, _held in vars(_class).items():
        if is_routine(_held):
            ROUTINES[_owner + "." + _name] = _held

every_routine = pytest.mark.parametrize("name", list(ROUTINES))


def routine(name):
    held = ROUTINES[name]
    return held.__func__ if isinstance(held, staticmethod) else held


def decorators(node):
    return [decorator.id for decorator in node.decorator_list]


def parameters(node):
    """Return the names and defaults of a definition, in order.

    Two leading underscores, which mark what is positional only, are left out.
    """
    arguments = node.args
    assert arguments.vararg is None
    assert arguments.kwarg is None
    assert not getattr(arguments, "posonlyargs", [])
    defaults = [ABSENT] * (len(arguments.args) - len(arguments.defaults)) + arguments.defaults
    pairs = list(zip(arguments.args, defaults))
    pairs += [
        (a, ABSENT if d is None else d) for a, d in zip(arguments.kwonlyargs, arguments.kw_defaults)
    ]
    return [
        (a.arg[2:] if a.arg.startswith("__") else a.arg, d if d is ABSENT else ast.literal_eval(d))
        for a, d in pairs
    ]


def same(one, other):
    return type(one) is type(other) and one == other


def test_names_and_their_order():
    assert list(DEFINITIONS) == list(ROUTINES)


def test_order_of_classes_and_routines():
    stub = []
    for node in TREE.body:
        if isinstance(node, (ast.FunctionDef, ast.ClassDef)) and node.name not in stub:
            stub.append(node.name)
    # Not from the module's dictionary: a test that deletes and restores a name moves it.
    own = []
    for row in ROWS:
        name = row.name if row.owner == "module" else row.owner
        if name not in own:
            own.append(name)
    assert [name for name in stub if not name.startswith("_")] == own


def test_other_names():
    declared = {node.target.id for node in TREE.body if isinstance(node, ast.AnnAssign)}
    public = {name for name in declared if not name.startswith("_")}
    assert public == {"global_missing_values_reference_list", "logger"}
    assert public < set(vars(eu))


def test_reexported_names():
    again = {
        alias.name
        for node in TREE.body
        if isinstance(node, ast.ImportFrom)
        for alias in node.names
        if alias.asname == alias.name
    }
    assert again == {"FC"}
    assert again < set(vars(eu))


def test_attributes_of_classes():
    declared = {
        name: [member.target.id for member in node.body if isinstance(member, ast.AnnAssign)]
        for name, node in classes().items()
        if name in OWNERS
    }
    assert declared == {"FCplus": [], "DatasetS": ["df"]}
    assert list(vars(eu.DatasetS(1))) == ["df"]


@every_routine
def test_parameters(name):
    expected = [
        (parameter.name, ABSENT if parameter.default is parameter.empty else parameter.default)
        for parameter in inspect.signature(routine(name)).parameters.values()
    ]
    stated = set()
    for node in DEFINITIONS[name]:
        found = parameters(node)
        assert [parameter for parameter, _ in found] == [parameter for parameter, _ in expected]
        for (parameter, default), (_, real) in zip(found, expected):
            # An overload may omit a default, but not state another one.
            if default is not ABSENT:
                assert same(default, real), parameter
                stated.add(parameter)
    assert stated == {parameter for parameter, real in expected if real is not ABSENT}


@every_routine
def test_positional_only_exactly_for_one_parameter(name):
    only = len(inspect.signature(routine(name)).parameters) == 1
    for node in DEFINITIONS[name]:
        assert [a.arg.startswith("__") for a in node.args.args].count(True) == int(only)


@every_routine
def test_static_methods(name):
    for node in DEFINITIONS[name]:
        assert ("staticmethod" in decorators(node)) is isinstance(ROUTINES[name], staticmethod)


@every_routine
def test_overloads_come_in_numbers(name):
    nodes = DEFINITIONS[name]
    assert [("overload" in decorators(node)) for node in nodes] == [len(nodes) > 1] * len(nodes)


@every_routine
def test_docstrings(name):
    first, *others = DEFINITIONS[name]
    assert ast.get_docstring(first) == inspect.cleandoc(routine(name).__doc__)
    assert [ast.get_docstring(node) for node in others] == [None] * len(others)


@pytest.mark.parametrize("name", sorted(OWNERS))
def test_docstrings_of_classes(name):
    assert ast.get_docstring(classes()[name]) == inspect.cleandoc(OWNERS[name].__doc__)


@every_routine
def test_run_time_annotations_are_kept(name):
    """The annotations of the routine are those of the stub, which may be more precise."""
    spelled = {bool: "bool", "set": "set", eu.np.ndarray: "npt.NDArray"}
    for node in DEFINITIONS[name]:
        arguments = node.args.args + node.args.kwonlyargs
        stated = {argument.arg: argument.annotation for argument in arguments}
        stated["return"] = node.returns
        for parameter, annotation in routine(name).__annotations__.items():
            assert heads(stated[parameter])[0] == spelled[annotation]


def heads(node):
    """Return the alternatives of an annotation without what stands in brackets."""
    if isinstance(node, ast.BinOp):
        return heads(node.left) + heads(node.right)
    if isinstance(node, ast.Subscript):
        return heads(node.value)
    if isinstance(node, ast.Attribute):
        return [heads(node.value)[0] + "." + node.attr]
    return [node.id] if isinstance(node, ast.Name) else [repr(None)]


RETURNED = {"bool": "bool", "list of int": "list[int]"}


def documented_result(name):
    """Return the first line of the docstring's section on results, None without such a section."""
    lines = inspect.cleandoc(routine(name).__doc__).split("\n")
    return lines[lines.index("Returns") + 2] if "Returns" in lines else None


@every_routine
def test_results_are_those_of_the_docstring(name):
    """Where the docstring states a plain type, the stub states the same, and only there."""
    for node in DEFINITIONS[name]:
        stated = ast.dump(node.returns)
        for documented, annotation in RETURNED.items():
            same_type = stated == ast.dump(ast.parse(annotation, mode="eval").body)
            assert same_type is (documented_result(name) == documented)


def test_most_predicates_take_part():
    results = [documented_result(name) for name in ROUTINES]
    assert results.count("bool") > 30
    assert results.count("list of int") == 4
