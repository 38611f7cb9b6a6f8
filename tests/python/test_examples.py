"""The examples in the routines' docstrings and on the pages of docs/, run unchanged.

They are compared without any option: no example may depend on what differs between the oldest and
the newest numpy or pandas, such as how a numpy scalar is shown.
"""

from __future__ import annotations

import doctest
import re
from pathlib import Path

import pytest

import quorin_libs
import quorin_libs.utils.exportable_utils as eu
from quorin_libs.utils.fc_methods import FC

DOCS = Path(__file__).resolve().parents[2] / "docs"
PAGES = sorted(DOCS.glob("**/*.rst"))
OWNERS = {"FCplus": eu.FCplus, "DatasetS": eu.DatasetS}
FC_TESTS = ["FC." + name for name, held in vars(FC).items() if isinstance(held, staticmethod)]


def routines_of(namespace, prefix):
    found = {}
    for name, held in vars(namespace).items():
        held = held.__func__ if isinstance(held, staticmethod) else held
        if type(held).__name__ == "routine":
            found[prefix + name] = held
    return found


ROUTINES = routines_of(eu, "")
for _name, _class in OWNERS.items():
    ROUTINES.update(routines_of(_class, _name + "."))

every_routine = pytest.mark.parametrize("name", list(ROUTINES))
every_page = pytest.mark.parametrize("page", PAGES, ids=lambda page: str(page.relative_to(DOCS)))


def run(text, name):
    """Run the examples of a text and return how many there are and what went wrong."""
    test = doctest.DocTestParser().get_doctest(text, {}, name, None, 0)
    report = []
    doctest.DocTestRunner(verbose=False).run(test, out=report.append)
    return len(test.examples), "".join(report)


def called(text, name):
    """Whether the code of an example calls the routine."""
    examples = doctest.DocTestParser().get_examples(text)
    last = name.rpartition(".")[2]
    if last == "__init__":
        last = name.partition(".")[0]
    return any(re.search(r"\b{}\(".format(last), example.source) for example in examples)


def test_there_is_something_to_run():
    assert len(ROUTINES) == 62
    assert len(FC_TESTS) == 11
    assert [page.name for page in PAGES if ">>>" in page.read_text(encoding="utf-8")]


@every_routine
def test_docstring(name):
    doc = ROUTINES[name].__doc__
    count, report = run(doc, name)
    assert count > 0
    assert called(doc, name)
    assert report == ""


@every_page
def test_page(page):
    _, report = run(page.read_text(encoding="utf-8"), page.name)
    assert report == ""


def test_a_wrong_example_is_found():
    count, report = run(">>> 1 + 1\n3\n", "wrong")
    assert count == 1
    assert "Expected:\n    3\nGot:\n    2" in report


DIRECTIVE = re.compile(r"^\.\. auto(?:function|method|class|exception):: (\S+)$", re.MULTILINE)


def listed(pages):
    return [name for page in pages for name in DIRECTIVE.findall(page.read_text(encoding="utf-8"))]


def test_every_routine_has_its_place_in_the_reference():
    pages = [page for page in PAGES if page.name != "tables.rst"]
    routines = [
        name for name in listed(pages) if name not in ("FCplus", "DatasetS", "FC", "Verdict")
    ]
    assert sorted(routines) == sorted(list(ROUTINES) + FC_TESTS)


def test_every_name_of_the_package_has_its_place_in_the_reference():
    names = [name for name in listed([page for page in PAGES if page.name == "tables.rst"])
             if "." not in name]  # fmt: skip
    assert sorted([*names, "__version__"]) == sorted(quorin_libs.__all__)
