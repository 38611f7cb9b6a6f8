"""Start-up: what is bound and in which order, and what is refused.

Tests of start-up run in a new interpreter: a process starts the module only once, and other tests
replace names.
"""

from __future__ import annotations

import collections
import hashlib
import importlib
import logging
import numbers
import os
import pathlib
import random
import re
import shutil
import sys
import textwrap
import time
import traceback
import types

import numpy as np
import pandas as pd
import pytest
import six

import quorin_libs.utils.exportable_utils as eu
from helpers.fresh_interpreter import run_fresh
from helpers.interface_table import MODULE, PRESENT, ROWS, routine, row_id, stored
from quorin_libs.utils.fc_methods import FC

IMPORTED = [
    "FC", "numbers", "random", "time", "traceback", "Counter", "np", "pd", "six", "logging",
    "hashlib", "global_missing_values_reference_list", "logger",
]  # fmt: skip
REFUSED_AGAIN = (
    "Module 'exportable_utils' has already been imported. Re-initialisation is not supported."
)
REFUSED_INTERPRETER = (
    "Interpreter change detected - this module can only be loaded into one interpreter per process."
)


def defined(owner):
    """The names that definitions bind in the namespace of ``owner``, each once."""
    names = [row.name for row in ROWS if row.owner == owner]
    if owner == "module":
        names.insert(names.index("numpy_is_column_datetime"), "FCplus")
        names.append("DatasetS")
    return list(dict.fromkeys(names))


def check_order(names, owner, first):
    plain = [name for name in names if not (name.startswith("__") and name != "__init__")]
    order = first + defined(owner)
    assert plain == order


def test_order_of_the_modules_dictionary(tmp_path):
    names = run_fresh("import {} as m\nanswer(list(vars(m)))".format(MODULE), tmp_path)
    check_order(names, "module", IMPORTED)
    assert set(IMPORTED) <= set(names)
    assert names[-1] == "__test__"
    assert names.index("__builtins__") < names.index("FC")


@pytest.mark.parametrize("owner", ["FCplus", "DatasetS"])
def test_order_of_class_members(tmp_path, owner):
    code = "import {} as m\nanswer(list(vars(m.{})))".format(MODULE, owner)
    check_order(run_fresh(code, tmp_path), owner, [])


@pytest.mark.parametrize(
    "name, value",
    [
        ("FC", FC),
        ("numbers", numbers),
        ("random", random),
        ("time", time),
        ("traceback", traceback),
        ("Counter", collections.Counter),
        ("np", np),
        ("pd", pd),
        ("six", six),
        ("logging", logging),
        ("hashlib", hashlib),
        ("logger", logging.getLogger()),
    ],
)
def test_imported_names(name, value):
    assert getattr(eu, name) is value


def test_default_markers():
    markers = eu.global_missing_values_reference_list
    assert type(markers) is list
    assert markers[:3] == ["?", "", "-"]
    assert len(markers) == 4
    assert markers[3] is np.nan


def test_module_itself():
    assert eu.__name__ == MODULE
    assert sys.modules[MODULE] is eu
    assert isinstance(eu, types.ModuleType)
    assert eu.__test__ == {} and type(eu.__test__) is dict
    assert "__builtins__" in vars(eu)


@pytest.mark.parametrize("name", ["FCplus", "DatasetS"])
def test_classes(name):
    cls = getattr(eu, name)
    assert type(cls) is type
    assert cls.__bases__ == (object,)
    assert (cls.__name__, cls.__qualname__, cls.__module__) == (name, name, MODULE)


@pytest.mark.parametrize("row", PRESENT, ids=row_id)
def test_static_members_are_wrapped(row):
    assert isinstance(stored(eu, row), staticmethod) == row.static


def test_later_definition_of_numpy_get_categories_stays():
    row = next(row for row in ROWS if row.number == 13)
    assert routine(eu, row).__defaults__ == (None,)
    assert eu.numpy_get_categories(np.array(["a"], dtype=object), [], None) == []


def test_later_constructor_of_datasets_stays():
    frame = pd.DataFrame({"a": [1]})
    assert eu.DatasetS(frame).df is frame
    assert eu.DatasetS(dataframe=frame).df is frame
    with pytest.raises(TypeError) as caught:
        eu.DatasetS(csvfname="a.csv")
    assert str(caught.value) == "__init__() takes exactly 2 positional arguments (1 given)"


AGAIN = {
    "reload": "importlib.reload(m)",
    "the same module": "m.__spec__.loader.exec_module(m)",
    "a new module": """
        spec = importlib.util.spec_from_file_location(m.__name__, m.__file__)
        new = importlib.util.module_from_spec(spec)
        spec.loader.exec_module(new)
        """,
    "a new module of the same spec": """
        new = importlib.util.module_from_spec(m.__spec__)
        m.__spec__.loader.exec_module(new)
        """,
    "import after removal": """
        del sys.modules[m.__name__]
        importlib.import_module(m.__name__)
        """,
}
AGAIN_HEAD = """
import importlib, importlib.util
import {} as m

# importlib writes these anew, equal to the old ones, before it asks the module.
RENEWED = ("__spec__", "__loader__", "__file__", "__package__", "__cached__")

def whole():
    bound = [(name, None if name in RENEWED else id(value)) for name, value in vars(m).items()]
    return bound + [(name, id(value)) for name, value in vars(m.FCplus).items()]

def again():
""".format(MODULE)
AGAIN_TAIL = """
before = whole()
refusals = []
for _ in range(2):
    sys.modules[m.__name__] = m
    try:
        again()
    except Exception as error:
        refusals.append([type(error).__name__, str(error)])
answer([refusals, whole() == before, m.isint("12"), m.setValueOrDefault(None, 5)])
"""


@pytest.mark.parametrize("how", sorted(AGAIN))
def test_second_initialisation_is_refused(tmp_path, how):
    body = textwrap.indent(textwrap.dedent(AGAIN[how]), "    ")
    refusals, unchanged, is_int, default = run_fresh(AGAIN_HEAD + body + AGAIN_TAIL, tmp_path)
    assert refusals == [["RuntimeError", REFUSED_AGAIN]] * 2
    assert unchanged
    assert (is_int, default) == (True, 5)


IN_SECOND_INTERPRETER = """
import json, sys
try:
    import {module}
    outcome = ["imported", ""]
except BaseException as error:
    outcome = [type(error).__name__, str(error)]
outcome += ["numpy" in sys.modules, "{module}" in sys.modules]
open("second", "w").write(json.dumps(outcome))
"""
RUN_SECOND_INTERPRETER = """
import {module} as m

def run(script):
    try:
        import _interpreters as interpreters
        make = lambda: interpreters.create("legacy")
    except ImportError:
        try:
            import _xxsubinterpreters as interpreters
        except ImportError:
            import _testcapi
            assert _testcapi.run_in_subinterp(script) == 0
            return
        make = interpreters.create
        if sys.version_info >= (3, 10):
            make = lambda: interpreters.create(isolated=False)
    second = make()
    interpreters.run_string(second, script)
    interpreters.destroy(second)

run({script!r})
column = m.np.array(["a", "?"], dtype=object)
answer([json.load(open("second")), m.isint("12"), m.numpy_isin(column, ["?"]).tolist()])
"""


def test_second_interpreter_is_refused(tmp_path):
    script = IN_SECOND_INTERPRETER.format(module=MODULE)
    code = RUN_SECOND_INTERPRETER.format(module=MODULE, script=script)
    second, is_int, matched = run_fresh(code, tmp_path)
    assert second == ["ImportError", REFUSED_INTERPRETER, False, False]
    assert (is_int, matched) == (True, [False, True])


def test_second_interpreter_is_refused_before_start_up(tmp_path):
    """The first interpreter has created the module, but not executed it."""
    script = IN_SECOND_INTERPRETER.format(module=MODULE)
    code = RUN_SECOND_INTERPRETER.format(module=MODULE, script=script).replace(
        "import {} as m\n".format(MODULE),
        """
import importlib.util
spec = importlib.util.find_spec("{}")
m = importlib.util.module_from_spec(spec)
""".format(MODULE),
    )
    code = code.replace("column = m.", "spec.loader.exec_module(m)\ncolumn = m.")
    second, is_int, matched = run_fresh(code, tmp_path)
    assert second == ["ImportError", REFUSED_INTERPRETER, False, False]
    assert (is_int, matched) == (True, [False, True])


def test_refused_interpreter_does_not_see_the_first_ones_names(tmp_path):
    script = """
import json, sys
try:
    import {}
except ImportError as error:
    entry = error.__traceback__
    while entry.tb_next is not None:
        entry = entry.tb_next
    frame = entry.tb_frame
    open("second", "w").write(json.dumps([frame.f_code.co_name, "np" in frame.f_globals]))
""".format(MODULE)
    code = RUN_SECOND_INTERPRETER.format(module=MODULE, script=script)
    second, _, _ = run_fresh(code, tmp_path)
    assert second == ["init " + MODULE, False]


def test_start_up_by_hand_that_fails_leaves_nothing_listed(tmp_path):
    code = """
import importlib, importlib.util
import pandas  # which needs six as well and does not stand a second try
spec = importlib.util.find_spec("{module}")
sys.modules["six"] = None
failed = ""
try:
    spec.loader.exec_module(importlib.util.module_from_spec(spec))
except ImportError as error:
    failed = type(error).__name__
listed = "{module}" in sys.modules
del sys.modules["six"]
answer([failed, listed, importlib.import_module("{module}").isint("12")])
""".format(module=MODULE)
    assert run_fresh(code, tmp_path)[1:] == [False, True]


def test_builtins_are_those_of_the_module(capsys):
    names = {"__builtins__": {"print": None}, "eu": eu, "X": np.array(["abc"], dtype=object)}
    exec("eu.numpy_floatstr2float(X)", names)  # noqa: S102 - tests the caller's built-ins
    assert capsys.readouterr().out.endswith("Setting value abc to NaN\n")


BLOCKED_IMPORT = """
import importlib, traceback, types
module, blocked, in_place = {module!r}, {blocked!r}, {in_place!r}

if in_place:  # so that the module's own import is the one that fails
    import numpy, pandas, quorin_libs.utils
    stub = types.ModuleType("quorin_libs.utils.fc_methods")
    stub.FC = type("FC", (), {{}})
    sys.modules[stub.__name__] = stub

class Blocked({base}): pass
raised = Blocked("no " + blocked)

class Finder:
    seen = []
    def find_spec(self, name, path=None, target=None):
        if name == blocked:
            self.seen.append([n for n in vars(sys.modules[module]) if not n.startswith("__")])
            raise raised

finder = Finder()
sys.meta_path.insert(0, finder)
removed = sys.modules.pop(blocked, None)
first = None
try:
    importlib.import_module(module)
except BaseException as error:
    first = [error is raised, [entry[2] for entry in traceback.extract_tb(error.__traceback__)]]
left = module in sys.modules
sys.meta_path.remove(finder)
if removed is not None:
    sys.modules[blocked] = removed
m = importlib.import_module(module)
answer([first, finder.seen, left, m.isint("12")])
"""
BEFORE_IMPORT = {
    "quorin_libs.utils.fc_methods": 0,
    "numpy": IMPORTED.index("np"),
    "pandas": IMPORTED.index("pd"),
    "six": IMPORTED.index("six"),
}


@pytest.mark.parametrize("base", ["ImportError", "ModuleNotFoundError", "ValueError"])
@pytest.mark.parametrize("blocked", sorted(BEFORE_IMPORT))
def test_failing_import_propagates_as_raised_and_may_be_mended(tmp_path, blocked, base):
    code = BLOCKED_IMPORT.format(
        module=MODULE, blocked=blocked, base=base, in_place=not blocked.startswith("quorin_libs")
    )
    (same, entries), seen, left, is_int = run_fresh(code, tmp_path)
    assert same
    assert "init " + MODULE in entries
    assert seen == [IMPORTED[: BEFORE_IMPORT[blocked]]]
    assert not left
    assert is_int


def test_traceback_entry_of_a_failing_import(tmp_path):
    code = """
    import traceback
    sys.modules["quorin_libs.utils.fc_methods"] = None
    try:
        import {}
    except ImportError as error:
        entries = traceback.extract_tb(error.__traceback__)
        answer([list(entry)[:3] for entry in entries if entry[2].startswith("init")])
    """
    ((file, line, name),) = run_fresh(code.format(MODULE), tmp_path)
    assert name == "init " + MODULE
    assert file == "src/exportable_utils/module.cpp"
    assert line > 0


def test_fc_missing_from_its_module(tmp_path):
    code = """
    import types
    name = "quorin_libs.utils.fc_methods"
    sys.modules[name] = types.ModuleType(name)
    try:
        import {module}
    except ImportError as error:
        told = [error.name, error.path]
        answer([type(error).__name__, str(error), told, "{module}" in sys.modules])
    """
    kind, text, told, left = run_fresh(code.format(module=MODULE), tmp_path)
    assert kind == "ImportError"
    assert text.startswith("cannot import name 'FC'")
    assert told == ["quorin_libs.utils.fc_methods", None]
    assert not left


def test_fc_not_bound_in_its_module_yet(tmp_path):
    code = """
    import types
    name = "quorin_libs.utils.fc_methods"
    sys.modules[name] = types.ModuleType(name)
    sys.modules[name + ".FC"] = types.ModuleType("half made")
    import {module} as m
    answer(m.FC.__name__)
    """
    assert run_fresh(code.format(module=MODULE), tmp_path) == "half made"


def test_imports_use_the_built_ins_of_the_importing_code(tmp_path):
    code = """
    import builtins
    asked = []
    original = builtins.__import__
    def noting(name, globals=None, locals=None, fromlist=(), level=0):
        if globals is not None and globals.get("__name__") == "{module}":
            asked.append([name, list(fromlist or ())])
        return original(name, globals, locals, fromlist, level)
    builtins.__import__ = noting
    import {module}
    answer(asked)
    """
    asked = run_fresh(code.format(module=MODULE), tmp_path)
    assert ["quorin_libs.utils.fc_methods", ["FC"]] in asked
    assert ["collections", ["Counter"]] in asked


VERSION_WARNING = """
import warnings
with warnings.catch_warnings(record=True) as caught:
    warnings.simplefilter("always")
    import {} as m
answer([m.__file__, m.isint("12"), [[w.category.__name__, str(w.message)] for w in caught
                                    if "compiletime" in str(w.message)]])
""".format(MODULE)


def test_version_warning(tmp_path):
    running = "{}.{}".format(*sys.version_info)
    other = running[:-1] + ("8" if running[-1] != "8" else "9")
    packages = tmp_path / "packages"
    package = os.path.dirname(importlib.import_module("quorin_libs").__file__)
    shutil.copytree(package, str(packages / "quorin_libs"))
    library = packages / "quorin_libs" / "utils" / os.path.basename(eu.__file__)
    content = pathlib.Path(eu.__file__).read_bytes()
    pattern = ("built for CPython " + running).encode() + b"(?![0-9])"
    content, count = re.subn(pattern, ("built for CPython " + other).encode(), content)
    assert count == 1
    if library.exists():
        library.unlink()
    library.write_bytes(content)
    # The import hook of an editable install is called before sys.path is searched.
    plain = "import sys\nsys.meta_path[:] = [f for f in sys.meta_path if isinstance(f, type)]\n"
    file, is_int, warned = run_fresh(plain + VERSION_WARNING, tmp_path, PYTHONPATH=str(packages))
    assert file == str(library)
    assert is_int
    text = "compiletime version {} of module '{}' does not match runtime version {}"
    assert warned == [["RuntimeWarning", text.format(other, MODULE, running)]]


def test_no_version_warning_for_the_right_version(tmp_path):
    assert run_fresh(VERSION_WARNING, tmp_path)[1:] == [True, []]
