"""Columns that look like a height, a weight, an age or a sex."""

from __future__ import annotations

from types import SimpleNamespace

import numpy as np
import pandas as pd
import pytest

from helpers.arrays import frame, holding, object_frame
from helpers.replacements import Recorder, record
from helpers.values import message_of, names_in_traceback, typed
from quorin_libs.utils import exportable_utils
from quorin_libs.utils.exportable_utils import FCplus

DEFAULT = exportable_utils.global_missing_values_reference_list
NAN = np.nan


# --- height, weight, age: the statistic -------------------------------------------------------

HEIGHT = (66.4, 3.9250000000000003, 21.49, 107.08, 3, [1, 2.54])
WEIGHT = (177.9, 40.9, 102, 300, 3, [1, 0.453592])
AGE = (40, 20, 0, 100, 2, [1])
DETECTORS = [
    (FCplus.is_column_height, HEIGHT),
    (FCplus.is_column_weight, WEIGHT),
    (FCplus.is_column_age, AGE),
]
every_detector = pytest.mark.parametrize("detect, statistic", DETECTORS)
SEX_TOO = [*(detect for detect, _ in DETECTORS), FCplus.is_column_sex]


def checked(monkeypatch, answer):
    return record(monkeypatch, "check_statistics", lambda *args: answer, owner=FCplus)


@every_detector
@pytest.mark.parametrize("answer", [True, False, None, object()])
def test_the_statistic_is_handed_on(monkeypatch, detect, statistic, answer):
    check = checked(monkeypatch, answer)
    dfc = frame(30, 31)
    assert detect(dfc) is answer
    args, kwargs = check.only_call()
    assert args[0] is dfc
    assert typed(args[1:]) == typed(statistic)
    assert kwargs == {}


@every_detector
def test_the_factors_are_a_list_of_each_call(monkeypatch, detect, statistic):
    check = record(monkeypatch, "check_statistics", lambda *args: args[-1].clear(), owner=FCplus)
    detect(frame(30))
    detect(frame(30))
    assert check.calls[0][0][-1] is not check.calls[1][0][-1]
    check = checked(monkeypatch, True)
    detect(frame(30))
    assert typed(check.only_call()[0][1:]) == typed(statistic)


class Text(str):
    pass


@pytest.mark.parametrize("detect", [detect for detect, _ in DETECTORS])
@pytest.mark.parametrize("cell", ["a", "", "60", Text("60"), np.str_("60")])
def test_text_is_no_measure(monkeypatch, detect, cell):
    check = checked(monkeypatch, True)
    record(monkeypatch, "numpy_whatis", lambda *args: ([], "int_num"))
    for cells in (cell,), (cell, 60):
        assert detect(object_frame(*cells)) is False
    assert check.calls == []


@pytest.mark.parametrize("detect", [detect for detect, _ in DETECTORS])
@pytest.mark.parametrize("cell", [60, 60.5, None, b"60", NAN])
def test_only_the_first_cell_is_looked_at(monkeypatch, detect, cell):
    check = checked(monkeypatch, True)
    record(monkeypatch, "numpy_whatis", lambda *args: ([], "int_num"))
    assert detect(object_frame(cell, "a")) is True
    assert len(check.calls) == 1


@pytest.mark.parametrize("detect", SEX_TOO)
def test_the_first_cell_is_read_with_two_indices(monkeypatch, detect):
    class Cells:
        def __init__(self):
            self.asked = []

        def __getitem__(self, index):
            self.asked.append(index)
            return 60

    checked(monkeypatch, True)
    record(monkeypatch, "numpy_whatis", lambda *args: ([], "int_num"))
    cells = Cells()
    detect(holding(cells))
    assert cells.asked == [0, (0, 0)][detect is not FCplus.is_column_age :]


@pytest.mark.parametrize("detect", SEX_TOO)
@pytest.mark.parametrize(
    "dfc",
    [pd.DataFrame({"a": []}), pd.DataFrame(), pd.Series([60, 61]), pd.Series([], dtype=float)],
)
def test_a_frame_with_a_cell_is_needed(detect, dfc):
    with pytest.raises(IndexError) as excinfo:
        detect(dfc)
    assert detect.__name__ in names_in_traceback(excinfo)


@pytest.mark.parametrize(
    "detect, cells, expected",
    [
        (FCplus.is_column_height, range(60, 76), True),
        (FCplus.is_column_height, [60, 75, 110], False),
        (FCplus.is_column_height, [66.4 + 11.7, 66.4 - 11.7], True),
        (FCplus.is_column_height, [66.4 + 11.8], False),
        (FCplus.is_column_height, [66.4 - 11.8], False),
        # The factor multiplies: small numbers become heights.
        (FCplus.is_column_height, [25, 26.5, 30], True),
        (FCplus.is_column_height, [25, 66], False),
        (FCplus.is_column_height, [170, 180], False),
        (FCplus.is_column_height, [NAN, 70.0], True),
        (FCplus.is_column_weight, [120, 180, 250], True),
        (FCplus.is_column_weight, [102, 300], True),
        (FCplus.is_column_weight, [101.9], False),
        (FCplus.is_column_weight, [300.1, 200], False),
        (FCplus.is_column_weight, [300.1, 230], True),
        (FCplus.is_column_weight, [50, 80, 120], False),
        (FCplus.is_column_weight, [230, 660], True),
        (FCplus.is_column_weight, [230, 662], False),
        (FCplus.is_column_weight, [NAN], True),
        (FCplus.is_column_age, [10, 45, 80], True),
        (FCplus.is_column_age, [0, 80], True),
        (FCplus.is_column_age, [10, 81], False),
        (FCplus.is_column_age, [10, 101], False),
        (FCplus.is_column_age, [10, -1], False),
        (FCplus.is_column_age, [10.5, 20.5], False),
        (FCplus.is_column_age, [10.0, 20.0], False),
        (FCplus.is_column_age, [True, False], False),
    ],
)
def test_measures(detect, cells, expected, capsys):
    assert detect(frame(*cells)) is expected
    assert capsys.readouterr().out == ""


@pytest.mark.parametrize("detect", [FCplus.is_column_height, FCplus.is_column_weight])
def test_every_column_of_a_frame_is_measured(detect):
    good = 70 if detect is FCplus.is_column_height else 150
    assert detect(pd.DataFrame({"a": [good, good], "b": [good, good]})) is True
    assert detect(pd.DataFrame({"a": [good, good], "b": [good, 5000]})) is False


def test_a_cell_that_cannot_be_multiplied():
    with pytest.raises(TypeError) as excinfo:
        FCplus.is_column_height(object_frame(60, None))
    assert str(excinfo.value) == message_of(TypeError, lambda: 1 * None)
    names = names_in_traceback(excinfo)
    assert names.index("is_column_height") < names.index("check_statistics")


# --- age: the classifier gets the first row ---------------------------------------------------


@pytest.mark.parametrize(
    "given, passed", [((), DEFAULT), ((None,), DEFAULT), ((["z"],), 0), (([],), 0)]
)
def test_the_classifier_gets_the_first_row_and_the_markers(monkeypatch, given, passed):
    whatis = record(monkeypatch, "numpy_whatis", lambda *args: ([], "float_num"))
    assert FCplus.is_column_age(pd.DataFrame({"a": [30, 1], "b": [31, 2]}), *given) is False
    (row, markers), kwargs = whatis.only_call()
    assert typed(row) == typed(np.array([30, 31]))
    assert markers is (DEFAULT if passed is DEFAULT else given[0])
    assert kwargs == {}


@pytest.mark.parametrize(
    "cells, markers, expected",
    [
        ([30, 45.5, 60.5], None, True),
        ([45.5, 30], None, False),
        ([30, NAN], None, True),
        ([True, 30], None, False),
        # A first row that is a marker is not an integer.
        ([30, 40], [30], False),
        ([30, 40], [40], True),
    ],
)
def test_only_the_first_row_decides_the_kind(cells, markers, expected):
    assert FCplus.is_column_age(object_frame(*cells), markers) is expected
    assert (
        FCplus.is_column_age(missing_values_reference_list=markers, dfc=object_frame(*cells))
        is expected
    )


@pytest.mark.parametrize(
    "kind",
    ["missing", "char_str", "int_str", "float_num", "float_int_num", "boolean", "INT_NUM", None],
)
def test_only_integers_are_ages(monkeypatch, kind):
    record(monkeypatch, "numpy_whatis", lambda *args: ([], kind))
    check = checked(monkeypatch, True)
    assert FCplus.is_column_age(frame(30)) is False
    assert check.calls == []


def test_the_classifier_is_called_before_the_cell_is_read(monkeypatch):
    failure = RuntimeError("asked")

    def whatis(*args):
        raise failure

    record(monkeypatch, "numpy_whatis", whatis)
    with pytest.raises(RuntimeError) as excinfo:
        FCplus.is_column_age(object_frame("text"))
    assert excinfo.value is failure


@pytest.mark.parametrize(
    "answer, words",
    [
        ((), "not enough values to unpack (expected 2, got 0)"),
        (([],), "not enough values to unpack (expected 2, got 1)"),
        (([], "int_num", {}), "too many values to unpack (expected 2)"),
    ],
)
def test_the_classifier_must_give_a_pair(monkeypatch, answer, words):
    record(monkeypatch, "numpy_whatis", lambda *args: answer)
    with pytest.raises(ValueError) as excinfo:
        FCplus.is_column_age(frame(30))
    assert str(excinfo.value) == words


# --- sex --------------------------------------------------------------------------------------


@pytest.mark.parametrize(
    "cells, expected",
    [
        (["male", "female"], True),
        (["female", "male", "male"], True),
        (["m", "f"], True),
        (["f", "m", "f"], True),
        (["m", "female"], False),
        (["male", "f"], False),
        (["male", "m"], False),
        (["Male", "Female"], False),
        (["M", "F"], False),
        (["male", "female "], False),
        (["male"], False),
        (["f", "f"], False),
        (["male", "female", "unknown"], False),
        (["m", "f", "?"], False),
        (["male", "female", None], False),
        (["a", "b"], False),
        ([1, 2], False),
        ([1, "male", "female"], False),
        ([None, "m", "f"], False),
        ([b"m", b"f"], False),
        (["m", 1], False),
    ],
)
def test_two_words_are_the_sexes(cells, expected, capsys):
    assert FCplus.is_column_sex(object_frame(*cells)) is expected
    assert FCplus.is_column_sex(frame(*cells)) is expected
    assert capsys.readouterr().out == ""


def test_the_column_has_the_label_0():
    with pytest.raises(KeyError):
        FCplus.is_column_sex(pd.DataFrame({"a": ["m", "f"]}))
    assert FCplus.is_column_sex(pd.DataFrame({"a": ["x", "y"], 0: ["m", "f"]})) is True
    assert FCplus.is_column_sex(pd.DataFrame({"a": [1, 2]})) is False


class Value:
    """A distinct value that equals one text; records what it is compared with."""

    def __init__(self, log, name, text):
        self.log, self.name, self.text = log, name, text

    def __eq__(self, other):
        self.log.append(self.name + other)
        return ["equal"] if self.text == other else ""

    __hash__ = None  # type: ignore[assignment]


@pytest.mark.parametrize(
    "first, second, compared, expected",
    [
        ("male", "female", "0male 1female", True),
        ("female", "male", "0male 1male 0female", True),
        ("m", "f", "0male 1male 0m 1f", True),
        ("f", "m", "0male 1male 0m 1m 0f", True),
        ("male", "x", "0male 1female 1male 0m 1m", False),
        ("x", "male", "0male 1male 0female 0m 1m", False),
        ("m", "x", "0male 1male 0m 1f 1m", False),
        ("x", "m", "0male 1male 0m 1m 0f", False),
        ("male", "male", "0male 1female 1male 0female 0m 1m", False),
    ],
)
def test_the_pairs_are_tried_in_order(first, second, compared, expected):
    log = []

    class Frame:
        values = np.array([["text"]], dtype=object)
        unique = Recorder(lambda: [Value(log, "0", first), Value(log, "1", second)])

        def __getitem__(self, key):
            assert type(key) is int and key == 0
            return SimpleNamespace(unique=self.unique)

    assert FCplus.is_column_sex(Frame()) is expected
    assert log == compared.split()
    assert Frame.unique.calls == [((), {})]


@pytest.mark.parametrize("detect", SEX_TOO)
def test_exactly_the_first_argument_is_needed(detect):
    with pytest.raises(TypeError):
        detect()


@pytest.mark.parametrize(
    "routine, text",
    [
        (FCplus.is_column_height, "Infers whether column represents height based on US statistics"),
        (FCplus.is_column_height, "Men: 69.1 inches mean and 2.9 inches std"),
        (FCplus.is_column_height, "Women: 63.7 inches and 2.7 inches std"),
        (FCplus.is_column_weight, "Infers whether column represents weight based on US statistics"),
        (FCplus.is_column_age, "Infers whether column represents weight based on US statistics"),
    ],
)
def test_the_documentation(routine, text):
    assert text in " ".join(routine.__doc__.split())
