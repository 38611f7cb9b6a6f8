"""A replaced name takes effect on columns that the native route answers."""

from __future__ import annotations

import unittest.mock

import numpy as np
import pytest
from hypothesis import assume
from hypothesis import strategies as st

from helpers.arrays import objects
from helpers.comparison import DELETED, Tally, find_owner, find_routine, module
from helpers.native_lookups import names_for
from helpers.property_tests import property_test
from helpers.recipes import Recipe
from helpers.replacements import always, refuse
from helpers.route_columns import SHORT, Twins, cases
from helpers.routes import compare_routes, events_of, pass_through, shown, without_places

FC_TEST = "FC.is_string_in_datetime_format"
FCPLUS_TEST = "FCplus.is_column_string_in_datetime_format"


def two(values, counts):
    return always((objects(*values), np.array(counts)))


def all_true(function, otypes=None):
    return lambda column: np.ones(np.shape(column), dtype=bool)


NUMBER_TEXTS = Recipe("objects('1', '2', '?')", lambda inner: objects("1", "2", "?"))
REAL_TEXTS = Recipe("objects('1.5', '2', '?')", lambda inner: objects("1.5", "2", "?"))
NUMBER_AND_WORD = Recipe("objects('1', 'a')", lambda inner: objects("1", "a"))
LONE_AND_WORDS = Recipe("objects('b', '?', 'a')", lambda inner: objects("b", "?", "a"))
WORDS = Recipe("objects('b', '?', None)", lambda inner: objects("b", "?", None))
ONE_COLUMN = Recipe("one column", lambda inner: np.array([["b"], ["?"], ["a"]], dtype=object))
FIXED = Recipe("np.array(['b', 'a'])", lambda inner: np.array(["b", "a"]))
WHOLE = Recipe("np.array([2, 1, 2])", lambda inner: np.array([2, 1, 2]))
WHOLE_OBJECTS = Recipe("objects(3, 1, 3)", lambda inner: objects(3, 1, 3))
LABELS = Recipe("objects('a b', 'c', '?')", lambda inner: objects("a b", "c", "?"))
REAL = Recipe("np.array([1.5, 2.0])", lambda inner: np.array([1.5, 2.0]))
TABLE = Recipe("a table", lambda inner: np.array([[1.5, 2.0], [0.5, np.nan]]))
NULLS = Recipe("objects(1.5, nan, 2.0)", lambda inner: objects(1.5, np.nan, 2.0))
FIXED_NUMBERS = Recipe("np.array(['100', '20'])", lambda inner: np.array(["100", "20"]))
TRUTH = Recipe("np.array([True, False])", lambda inner: np.array([True, False]))

MASK = [
    ("np.vectorize", all_true),
    ("np.vectorize", refuse),
]
FLATTEN = [
    ("numpy_flatten_column", always(objects("zz", "1"))),
    ("np.ndarray", object),
]
# A routine, its arguments, and pairs of a name and a replacement that changes the outcome.
GUARDS = [
    ("indicator_mask", ({"?"}, WORDS), MASK),
    (
        "numpy_isin",
        (WORDS, ["?", np.nan]),
        MASK
        + FLATTEN
        + [
            ("indicator_mask", always(np.ones(3, dtype=bool))),
            ("pd.isnull", lambda value: np.zeros(len(value), dtype=bool)),
            ("np.any", always(False)),
            ("np.asarray", always(objects("b", "b"))),
        ],
    ),
    (
        "numpy_isin",
        (ONE_COLUMN, ["?"]),
        [
            ("np.concatenate", always(objects("?", "?", "?"))),
            ("numpy_remove_second_dim", always(objects("?", "?", "?"))),
        ],
    ),
    (
        "numpy_compute_missing_indicator",
        (WORDS, ["?", np.nan]),
        MASK
        + FLATTEN
        + [
            ("indicator_mask", always(np.ones(3, dtype=bool))),
            ("numpy_isin", always(np.zeros(3, dtype=bool))),
            ("np.any", always(False)),
            ("pd.isnull", refuse),
        ],
    ),
    (
        "numpy_compute_missing_indicator",
        (WORDS, ["none of them"]),
        [("np.zeros", always(np.ones(3, dtype=bool)))],
    ),
    (
        "get_unique_values",
        (FIXED, ["a"]),
        MASK
        + FLATTEN
        + [
            ("numpy_isin", always(np.array([True, True]))),
            ("indicator_mask", always(np.array([True, True]))),
            ("np.unique", always(np.array(["zz"]))),
            ("np.unique", refuse),
        ],
    ),
    ("get_unique_values", (NUMBER_TEXTS,), [("np.unique", always(np.array(["zz"])))]),
    (
        "numpy_whatis",
        (NUMBER_TEXTS, ["?", np.nan]),
        [
            ("numpy_flatten_column", always(objects("zz"))),
            ("np.ndarray", object),
            ("numpy_compute_missing_indicator", lambda X, *a, **k: (np.ones(3, bool), [], ["zz"])),
            ("np.vectorize", all_true),
            ("get_unique_values", two(["zz"], [1])),
            ("np.unique", two(["zz"], [1])),
            ("isint", always(False)),
            ("isfloat", refuse),
            ("six.string_types", ()),
            (FCPLUS_TEST, refuse),
            (FC_TEST, refuse),
        ],
    ),
    (
        "numpy_whatis",
        (LONE_AND_WORDS, ["?", np.nan]),
        [
            ("numpy_isin", always(np.zeros(3, dtype=bool))),
            ("indicator_mask", always(np.zeros(3, dtype=bool))),
            ("np.any", always(False)),
            ("pd.isnull", refuse),
            ("isint", always(True)),
        ],
    ),
    ("numpy_whatis", (NUMBER_TEXTS, ["*"]), [("np.zeros", always(np.ones(3, dtype=bool)))]),
    ("numpy_whatis", (REAL_TEXTS,), [("isfloat", always(False))]),
    ("numpy_whatis", (NUMBER_AND_WORD,), [("np.nan", "a"), ("np.nan", "1")]),
    ("numpy_whatis", (ONE_COLUMN,), [("np.concatenate", always(objects("1")))]),
    (
        "numpy_whatis",
        (REAL,),
        [("np.integer", np.floating), ("np.bool_", np.floating), ("numbers.Integral", float)],
    ),
    ("numpy_whatis", (TRUTH,), [("np.float", np.bool_), ("get_unique_values", refuse)]),
    ("numpy_whatis", (WHOLE,), [("get_unique_values", two(["zz"], [1])), (FC_TEST, refuse)]),
    ("numpy_isintstr", (NUMBER_TEXTS, ["?"]), [("isint", always(False)), ("isint", refuse)]),
    ("numpy_isintstr", (WHOLE,), [("isint", always(0))]),
    (
        "numpy_floatstr2float",
        (REAL_TEXTS, ["?"]),
        [("isfloat", refuse), ("np.nan", 7.0)],
    ),
    ("numpy_floatstr2float", (NUMBER_AND_WORD,), [("isfloat", always(True)), ("np.nan", 7.0)]),
    ("numpy_isintstr", (NULLS, [np.nan]), [("isint", always(False))]),
    ("numpy_floatstr2float", (NULLS, [np.nan]), [("np.nan", 7.0), ("isfloat", refuse)]),
    ("numpy_isintstr", (FIXED_NUMBERS,), [("isint", always(False))]),
    ("numpy_floatstr2float", (FIXED_NUMBERS, ["100"]), [("np.nan", 7.0), ("isfloat", refuse)]),
    (
        "numpy_boolean2float",
        (TRUTH, [False]),
        [
            ("np.vectorize", refuse),
            ("numpy_isin", always(np.array([False, False]))),
            ("np.nan", 0),
        ],
    ),
    (
        "numpy_column_float2str",
        (NULLS, False),
        [("pd.isnull", always(True)), ("np.float", str)],
    ),
    (
        "numpy_putmask",
        (WORDS, np.array([True, False, False]), "x"),
        [("np.putmask", refuse), ("np.putmask", always(None))],
    ),
    (
        "numpy_replace_values",
        (WORDS, "x", ["?", np.nan]),
        MASK
        + [
            ("numpy_isin", always(np.ones(3, dtype=bool))),
            ("indicator_mask", always(np.ones(3, dtype=bool))),
            ("numpy_putmask", always("other")),
            ("np.putmask", refuse),
            ("np.any", always(False)),
            ("np.empty", refuse),
            ("pd.isnull", refuse),
        ],
    ),
    (
        "compress_str_column",
        (LABELS, ["?"]),
        [("compress_string", always("other")), ("pd.isnull", always(True))],
    ),
    (
        "compress_str_column",
        (LABELS, ["?"], "hash"),
        [
            ("compress_string", always("other")),
            ("hashlib.md5", refuse),
            ("pd.isnull", always(True)),
            ("np.nan", "other"),
        ],
    ),
    (
        "get_unique_values",
        (REAL, None, False, False, True),
        [("np.unique", two(["zz"], [1])), ("np.unique", refuse)],
    ),
    (
        "get_unique_values",
        (WHOLE, [1], False, False, True),
        [
            ("np.unique", two(["zz"], [1])),
            ("numpy_isin", always(np.array([True, False, False]))),
            ("np.vectorize", all_true),
        ],
    ),
    (
        "numpy_whatis",
        (REAL, [1.5, np.nan], True, False, False),
        [
            ("numpy_flatten_column", always(objects("zz"))),
            ("numpy_compute_missing_indicator", lambda X, *a, **k: (np.ones(2, bool), [], ["zz"])),
            ("numpy_isin", always(np.zeros(2, dtype=bool))),
            ("np.any", always(False)),
            ("get_unique_values", two(["zz"], [1])),
            ("np.unique", two(["zz"], [1])),
            (FCPLUS_TEST, refuse),
            (FC_TEST, refuse),
        ],
    ),
    (
        "numpy_compute_missing_indicator",
        (WORDS, ["?", np.nan], True),
        [("numpy_isin", always(np.zeros(3, dtype=bool))), ("np.any", always(False))],
    ),
    (
        "FCplus.is_dataset_missing",
        (TABLE, [np.nan]),
        [
            ("numpy_whatis", always(([], "float_num"))),
            ("setValueOrDefault", always([])),
            ("numpy_flatten_column", always(objects("zz"))),
            ("np.unique", refuse),
            ("numpy_isin", always(np.zeros(2, dtype=bool))),
            (FC_TEST, refuse),
        ],
    ),
    (
        "FCplus.get_dataset_missing_columns",
        (TABLE, [np.nan]),
        [("numpy_whatis", always((["zz"], "float_num"))), (FCPLUS_TEST, refuse)],
    ),
    (
        "FCplus.get_dataset_non_numeric_columns",
        (TABLE, [np.nan]),
        [("numpy_whatis", always(([], "int_str"))), ("get_unique_values", two(["zz"], [1]))],
    ),
    (
        "FCplus.is_num_column_categorical",
        (WHOLE,),
        [("np.unique", always(range(50))), ("np.unique", refuse)],
    ),
    (
        "FCplus.getClasses",
        (NUMBER_TEXTS,),
        [
            ("numpy_whatis", always((["1"], "char_str"))),
            ("setValueOrDefault", always(["2"])),
            ("global_missing_values_reference_list", ["2"]),
            ("Counter", always({"zz": 1})),
            ("isint", refuse),
            (FC_TEST, refuse),
        ],
    ),
    ("FCplus.getClasses", (WHOLE_OBJECTS, True, [3]), [("Counter", always({"zz": 1}))]),
    ("get_unique_values", (WHOLE_OBJECTS,), [("np.unique", always(np.array(["zz"])))]),
    (
        "numpy_get_categories",
        (LABELS, [0], ["?"]),
        [
            ("compress_string", always("zz")),
            ("pd.isnull", lambda value: np.ones(np.shape(value), dtype=bool)),
            ("get_unique_values", two(["z z"], [1])),
        ],
    ),
    (
        "FCplus.is_column_categorical_mult_cats",
        (FIXED,),
        [("np.unique", always(range(3))), ("FCplus.is_column_categorical", always(0))],
    ),
]
ROWS = [
    pytest.param(name, args, by, other, id="{} {} {}".format(name, by, i))
    for i, (name, args, pairs) in enumerate(GUARDS)
    for by, other in pairs
]
FRAME_OF_NUMBERS = Recipe("frame", lambda inner: module.pd.DataFrame({0: [62.0, 66.5, 71.0]}))
ABOVE = [
    ("FCplus.is_column_height", (FRAME_OF_NUMBERS,)),
    ("FCplus.is_column_weight", (FRAME_OF_NUMBERS,)),
]


def as_member(by, other):
    return staticmethod(other) if by.startswith(("FC.", "FCplus.")) else other


def skip_unless_there(by):
    owner, name = find_owner(module, by)
    if name not in vars(owner):
        pytest.skip("{} is not there".format(by))


@pytest.fixture
def alias():
    """Binds np.float, which recent versions of numpy lack, to `float`."""
    with unittest.mock.patch.dict(vars(np), {"float": float}):
        yield


@pytest.mark.usefixtures("alias")
@pytest.mark.parametrize("name, args, by, other", ROWS)
def test_other_answer_counts(name, args, by, other):
    before = shown(name, args, {}, {})
    changed = shown(name, args, {}, {by: as_member(by, other)})
    assert changed != before
    assert shown(name, args, {}, {}) == before


# numpy_get_categories calls the classifier with statistics, which call the date test of FC.
SILENT = [row for row in ROWS if row.values[0] != "numpy_get_categories"]


@pytest.mark.parametrize("name, args, by, other", SILENT)
def test_native_answer_comes_back(name, args, by, other):
    skip_unless_there(by)

    def built():  # new arguments for each call: some routines write into their column
        return tuple(arg.make(None) if isinstance(arg, Recipe) else arg for arg in args)

    at_first = events_of(name, built())
    shown(name, args, {}, {by: as_member(by, other)})
    shown(name, args, {}, {by: DELETED})
    assert events_of(name, built()) == at_first == []


@pytest.mark.parametrize("name, args, by, other", ROWS)
def test_deleted_name_is_missed(name, args, by, other):
    skip_unless_there(by)
    before = shown(name, args, {}, {})
    gone = shown(name, args, {}, {by: DELETED})
    assert "error" in gone
    assert "'{}'".format(by.rpartition(".")[2]) in gone["error"][1] + gone["printed"]
    assert shown(name, args, {}, {}) == before


@pytest.mark.parametrize("name, args", ABOVE)
def test_measures_call_the_statistics_check(name, args):
    before = shown(name, args, {}, {})
    for other in (refuse, always(before["result"] == (bool, "False"))):
        names = {"FCplus.check_statistics": staticmethod(other)}
        assert shown(name, args, {}, names) != before
    gone = shown(name, args, {}, {"FCplus.check_statistics": DELETED})
    assert gone["error"][0] is AttributeError
    assert shown(name, args, {}, {}) == before


def test_another_search_for_distinct_values_of_a_series():
    frame = Recipe("sexes", lambda inner: module.pd.DataFrame({0: ["m", "f", "m"]}, dtype=object))
    before = shown("FCplus.is_column_sex", (frame,), {}, {})
    for other in (refuse, always(["m"]), always(["m", "x"])):
        assert shown("FCplus.is_column_sex", (frame,), {}, {"pd.Series.unique": other}) != before
    assert shown("FCplus.is_column_sex", (frame,), {}, {}) == before


ODD = st.sampled_from(
    [refuse, always(None), always(True), always([]), always(([], "zz")), all_true]
)
CALLS = st.sampled_from(
    [
        ("numpy_whatis", {}),
        ("numpy_isin", {}),
        ("numpy_compute_missing_indicator", {}),
        ("get_unique_values", {"return_counts": True}),
        ("numpy_isintstr", {}),
        ("numpy_floatstr2float", {}),
        ("FCplus.getClasses", {}),
        ("FCplus.is_column_categorical", {}),
    ]
)


@property_test(
    weight=5,
    case=cases(lengths=SHORT),
    call=CALLS,
    by=names_for("FCplus.getClasses"),
    also=st.sampled_from(["isint", "isfloat", "numpy_isin", "numpy_flatten_column"]),
    odd=ODD,
)
def test_odd_answers_are_the_same_on_both_routes(case, call, by, also, odd):
    name, kwargs = call
    assume(by not in (also, name, "FCplus") and callable(find_routine(module, by)))
    args = (case[0], True, case[1]) if name == "FCplus.getClasses" else case
    names = {by: as_member(by, odd)}
    Tally.cases += 1
    alone = shown(name, args, kwargs, names)
    names[also] = pass_through(also)
    both = shown(name, args, kwargs, names)
    if isinstance(case[0], Twins):
        for seen in (alone, both):
            seen["result"] = without_places(seen.get("result"))
    assert both == alone


FRACTIONS = Recipe("fractions", lambda inner: np.array([0.1 + 0.2, 1.5, 1e-7 / 3]))


@pytest.mark.parametrize("fast", [True, False])
def test_the_way_numpy_prints(fast):
    plain = compare_routes("numpy_column_float2str", "pd", (FRACTIONS, fast))
    with np.printoptions(legacy="1.13"):
        short = compare_routes("numpy_column_float2str", "pd", (FRACTIONS, fast))
    assert short != plain
    with np.printoptions(precision=2, suppress=True, floatmode="fixed"):
        assert compare_routes("numpy_column_float2str", "pd", (FRACTIONS, fast)) == plain
