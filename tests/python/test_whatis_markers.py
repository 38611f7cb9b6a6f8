"""The markers that the classifier finds among number texts."""

from __future__ import annotations

import numpy as np
import pandas as pd
import pytest

from helpers.arrays import mask, objects
from helpers.replacements import Recorder, record, replace_in
from helpers.values import typed
from quorin_libs.utils import exportable_utils
from quorin_libs.utils.exportable_utils import numpy_whatis

DEFAULT = exportable_utils.global_missing_values_reference_list

# Texts are scanned in their order: "" < " " < "!" < "-" < "." < "0" < "9" < "?" < "A" < "a" < "~".
# For each column: markers and kind by the counting rules, then by the running class.
COLUMNS = [
    # Only texts: lone texts are not markers.
    (["?", "a", "b"], [], "char_str", [], "char_str"),
    (["", "?"], [], "char_str", [], "char_str"),
    # Texts before the numbers: all are candidates, one of them is a marker.
    (["-", "1", "2"], ["-"], "int_str", ["-"], "int_str"),
    (["", "1"], [""], "int_str", [""], "int_str"),
    ([" ", "1.5"], [" "], "float_str", [" "], "float_str"),
    (["!!", "1"], ["!!"], "int_str", ["!!"], "int_str"),
    (["!", "1", "1.5"], ["!"], "float_str", ["!"], "float_str"),
    (["!", "1.5", "2"], ["!"], "float_str", ["!"], "float_str"),
    (["!", "#", "1"], [], "char_str", ["!", "#"], "int_str"),
    (["", "-", "1.5", "2"], [], "char_str", ["", "-"], "float_str"),
    # After the numbers: a lone text ends the scan.
    (["1", "2", "?"], ["?"], "int_str", ["?"], "int_str"),
    (["1.5", "?"], ["?"], "float_str", ["?"], "float_str"),
    (["1", "2.5", "?"], ["?"], "float_str", ["?"], "float_str"),
    (["1", "?", "a", "b", "c"], ["?"], "int_str", ["?"], "int_str"),
    (["1", "?", "~"], ["?"], "int_str", ["?"], "int_str"),
    (["1", "2.5", "~", "é"], ["~"], "float_str", ["~"], "float_str"),
    (["1", "€"], ["€"], "int_str", ["€"], "int_str"),
    (["1", "\u00a0"], ["\u00a0"], "int_str", ["\u00a0"], "int_str"),
    # After the numbers: any other text is a candidate, one of them is a marker.
    (["1", "2", "a"], ["a"], "int_str", ["a"], "char_str"),
    (["1", "NA"], ["NA"], "int_str", ["NA"], "char_str"),
    (["1", "??"], ["??"], "int_str", ["??"], "char_str"),
    (["1", "½"], ["½"], "int_str", ["½"], "char_str"),
    (["1", "2", "a", "b"], [], "char_str", ["a", "b"], "char_str"),
    (["1.5", "x"], ["x"], "float_str", ["x"], "char_str"),
    (["1.5", "x", "y"], [], "char_str", ["x", "y"], "char_str"),
    # With integers and floats the running class is float, in any order.
    (["1", "2.5", "x", "y"], [], "char_str", ["x", "y"], "float_str"),
    # Before and after.
    (["!", "1", "a"], [], "char_str", ["!", "a"], "char_str"),
    (["!", "1", "?"], ["!", "?"], "int_str", ["!", "?"], "int_str"),
    (["!", "#", "1", "?"], ["!", "#", "?"], "int_str", ["!", "#", "?"], "int_str"),
    (["!", "#", "1.5", "2", "?"], ["!", "#", "?"], "float_str", ["!", "#", "?"], "float_str"),
    (["1", "A", "B", "C", "~"], ["A", "B", "C", "~"], "int_str", ["A", "B", "C", "~"], "char_str"),
    # A lone text can sort between numbers; the numbers after it are not scanned.
    (["-1", ".5", "/", "0"], ["/"], "float_str", ["/"], "float_str"),
    (["-1", "/", "0.5", "a"], ["/"], "int_str", ["/"], "int_str"),
    (["-1", "/"], ["/"], "int_str", ["/"], "int_str"),
]


@pytest.mark.parametrize("markers", [None, [], ["absent"]])
@pytest.mark.parametrize("texts, found, kind, running_found, running_kind", COLUMNS)
def test_markers_are_discovered(texts, markers, found, kind, running_found, running_kind):
    X = objects(*reversed(texts))
    assert typed(numpy_whatis(X, markers)) == typed((found, kind))
    running = numpy_whatis(X, markers, use_dtype_str1_flag=False)
    assert typed(running) == typed((running_found, running_kind))


@pytest.mark.parametrize("texts, found, kind, running_found, running_kind", COLUMNS)
@pytest.mark.parametrize("build", [np.array, pd.Series, lambda t: pd.Series(t, dtype="string")])
def test_the_holder_of_the_texts_does_not_matter(
    build, texts, found, kind, running_found, running_kind
):
    X = build(texts)
    assert numpy_whatis(X) == (found, kind)
    assert numpy_whatis(X, use_dtype_str1_flag=0) == (running_found, running_kind)


@pytest.mark.parametrize(
    "texts, found",
    [
        # A text read from the array is a np.str_, one from tolist() is a str.
        (["1", "?"], [np.str_("?")]),
        (["1", "a"], [np.str_("a")]),
        (["-", "1"], ["-"]),
        (["-", "!", "1", "?"], ["!", "-", np.str_("?")]),
    ],
)
def test_the_types_of_markers_from_a_column_of_text(texts, found):
    assert typed(numpy_whatis(np.array(texts))) == typed((found, "int_str"))


@pytest.mark.parametrize(
    "texts, found, kind, running_found, running_kind",
    [
        (["?", "1", "-"], ["?", "-"], "int_str", ["?", "-"], "int_str"),
        (["?", "1", "~"], ["?", "~"], "int_str", ["?", "~"], "int_str"),
        (["-", "!", "1", "~"], ["-", "!", "~"], "int_str", ["-", "!", "~"], "int_str"),
        (["?", "1", "a"], ["?", "a"], "int_str", ["?", "a"], "char_str"),
        (["?", "1", "a", "b"], ["?"], "char_str", ["?", "a", "b"], "char_str"),
        (["?", "!", "#", "1"], ["?"], "char_str", ["?", "!", "#"], "int_str"),
        (["-", "a", "b"], ["-"], "char_str", ["-"], "char_str"),
        (["a", None, "?"], ["?", np.nan], "char_str", ["?", np.nan], "char_str"),
        # A candidate cannot equal a known marker: the rows of known markers are removed.
        (["", "1", "?", "-"], ["?", "", "-"], "int_str", ["?", "", "-"], "int_str"),
    ],
)
def test_known_markers_come_first(texts, found, kind, running_found, running_kind):
    X = objects(*texts)
    assert typed(numpy_whatis(X, DEFAULT)) == typed((found, kind))
    running = numpy_whatis(X, DEFAULT, use_dtype_str1_flag=False)
    assert typed(running) == typed((running_found, running_kind))


def test_the_list_of_the_caller_is_copied_and_stays():
    markers = ["?"]
    found, _ = numpy_whatis(objects("?", "1", "~"), markers)
    assert found == ["?", "~"]
    assert markers == ["?"]


def test_the_copy_is_made_by_the_list_itself():
    class Markers(list):
        def copy(self):
            return ["NA"]

    assert numpy_whatis(objects("?", "NA", "1"), Markers("?")) == (["NA", "?"], "int_str")


def test_the_default_list_is_not_used_unless_given():
    assert numpy_whatis(objects("", "-", "a")) == ([], "char_str")
    assert len(DEFAULT) == 4


def test_the_reported_list_is_a_new_one(monkeypatch):
    exist = ["NA"]
    record(
        monkeypatch,
        "numpy_compute_missing_indicator",
        lambda *args, **kwargs: (mask(1, 0), [], exist),
    )
    found, kind, statistics = numpy_whatis(objects("NA", "1"), ["NA"], return_stats_flag=True)
    assert (found, kind) == (["NA"], "int_str")
    assert found is not exist
    assert statistics["missing_values"] is found
    assert statistics["weird_new_missing_values_list"] is not found


def test_known_markers_are_reported_themselves():
    markers = ["".join(["N", "A"])]
    assert numpy_whatis(objects("NA", "1"), markers)[0][0] is markers[0]


# --- what it calls ----------------------------------------------------------------------------


@pytest.mark.parametrize("stop, debug", [(False, False), (True, False), (0, ""), ("stop", 0)])
def test_the_indicator_is_called_with_two_keywords(monkeypatch, stop, debug):
    X, markers = objects("?", "1"), ["?"]
    masks = record(monkeypatch, "numpy_compute_missing_indicator")
    numpy_whatis(X, markers, stop, debug)
    (column, reference), kwargs = masks.only_call()
    assert column is X
    assert reference == ["?"] and reference is not markers
    assert list(kwargs) == ["stop_at_one_missing_value_flag", "debug"]
    assert kwargs["stop_at_one_missing_value_flag"] is stop
    assert kwargs["debug"] is debug


def test_the_distinct_values_of_the_rows_that_are_there(monkeypatch):
    unique = record(monkeypatch, "get_unique_values")
    numpy_whatis(objects("?", "1", "1"), ["?"])
    args, kwargs = unique.only_call()
    assert typed(args) == typed((objects("1", "1"),))
    assert kwargs == {"return_counts": True}
    assert kwargs["return_counts"] is True


@pytest.mark.parametrize("markers", [None, []])
def test_the_distinct_values_without_nan(monkeypatch, markers):
    X = objects("?", "1", None)
    unique = record(monkeypatch, "get_unique_values")
    numpy_whatis(X, markers)
    args, kwargs = unique.only_call()
    assert len(args) == 2 and args[0] is X
    assert type(args[1]) is list and len(args[1]) == 1 and args[1][0] is np.nan
    assert kwargs == {"return_counts": True}


def test_the_nan_is_that_of_np(monkeypatch):
    replace_in(monkeypatch, "np", nan="?")
    assert numpy_whatis(objects("?", "?")) == ([], "Unknown")


def test_the_column_alone_is_given_to_the_flattening(monkeypatch):
    X = objects("a")
    flatten = record(monkeypatch, "numpy_flatten_column", lambda X: objects("1"))
    assert numpy_whatis(X) == ([], "int_str")
    # numpy_isin also calls numpy_flatten_column.
    assert all(len(args) == 1 and kwargs == {} for args, kwargs in flatten.calls)
    assert flatten.calls[0][0][0] is X


@pytest.mark.parametrize("markers", [None, ["?"]])
def test_a_column_of_32_bits_is_widened_first(monkeypatch, markers):
    X = np.array([0.1, np.nan], dtype=np.float32)
    isin = record(monkeypatch, "numpy_isin")
    numpy_whatis(X, markers)
    assert isin.calls[0][0][0].dtype == np.float64
    assert X.dtype == np.float32


@pytest.mark.parametrize("dtype", ["f8", "f2", "i4", "?"])
def test_no_other_column_is_converted(monkeypatch, dtype):
    X = np.array([1, 0], dtype=dtype)
    masks = Recorder(lambda *args, **kwargs: (mask(1, 1), [], ["all"]))
    monkeypatch.setattr(exportable_utils, "numpy_compute_missing_indicator", masks)
    assert numpy_whatis(X, ["?"]) == (["all"], "missing")
    assert masks.calls[0][0][0] is X


def test_all_arguments_may_be_keywords():
    X = objects("?", "!", "1", "a")
    assert numpy_whatis(
        return_stats_flag=False,
        use_dtype_str1_flag=False,
        debug=False,
        stop_at_one_missing_value_flag=True,
        missing_values_reference_list=["?", "!"],
        X=X,
    ) == (["?", "!", "a"], "char_str")
    assert len(numpy_whatis(X, ["?"], False, False, True, True)) == 3
