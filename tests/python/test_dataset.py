"""The holder of one table: its constructor, derived columns, the kind of a target."""

from __future__ import annotations

from types import SimpleNamespace

import numpy as np
import pandas as pd
import pytest

from helpers.arrays import objects
from helpers.replacements import Recorder, replace_in
from helpers.values import message_of, names_in_traceback
from quorin_libs.utils import exportable_utils
from quorin_libs.utils.exportable_utils import DatasetS

# --- the constructor --------------------------------------------------------------------------


@pytest.mark.parametrize("table", [pd.DataFrame({"a": [1]}), "file.csv", None, [], object()])
def test_the_very_table_is_held(table):
    for held in DatasetS(table), DatasetS(dataframe=table):
        assert held.df is table
        assert list(vars(held)) == ["df"]


def test_no_file_is_read(monkeypatch):
    read_csv = Recorder(lambda name: None)
    replace_in(monkeypatch, "pd", read_csv=read_csv)
    assert DatasetS("file.csv").df == "file.csv"
    with pytest.raises(TypeError):
        DatasetS(csvfname="file.csv")
    assert read_csv.calls == []


@pytest.mark.parametrize("args", [(), (1, 2)])
def test_one_table_is_held(args):
    with pytest.raises(TypeError):
        DatasetS(*args)


def test_a_plain_class():
    assert DatasetS.__bases__ == (object,)
    assert type(DatasetS) is type

    class Mine(DatasetS):
        pass

    mine = Mine(dataframe=5)
    assert mine.df == 5
    mine.df = 6
    mine.other = 7
    assert vars(mine) == {"df": 6, "other": 7}
    assert mine.__init__(8) is None
    assert mine.df == 8


# --- AddNewColumns ----------------------------------------------------------------------------


class Table:
    """An immutable table: `withColumn` returns another. All of them share one log."""

    def __init__(self, log, columns):
        self.log = log
        self.cells = columns

    @property
    def columns(self):
        self.log.append("columns")
        return iter(self.cells)

    def __getitem__(self, name):
        self.log.append(("column", name, len(self.cells)))
        return self.cells[name]

    def withColumn(self, *args, **kwargs):
        name, values = args
        assert kwargs == {}
        self.log.append(("with", name, values, len(self.cells)))
        return Table(self.log, dict(self.cells, **{name: values}))


def test_every_column_at_the_start_is_derived_once():
    log = []

    def double(column):
        log.append(("fun", column))
        return column * 2

    table = Table(log, {"a": "x", "b": "y"})
    held = DatasetS(table)
    assert held.AddNewColumns(double) is None
    assert held.df is not table
    assert held.df.cells == {"a": "x", "b": "y", "loga": "xx", "logb": "yy"}
    assert table.cells == {"a": "x", "b": "y"}
    # Each column is read from the table that contains the columns derived before.
    assert log == [
        "columns",
        ("column", "a", 2), ("fun", "x"), ("with", "loga", "xx", 2),
        ("column", "b", 3), ("fun", "y"), ("with", "logb", "yy", 3),
    ]  # fmt: skip


def test_the_new_name_is_log_and_the_old_one():
    held = DatasetS(Table([], {"age": 1, "": 2, "log": 3}))
    held.AddNewColumns(fun=str)
    assert list(held.df.cells) == ["age", "", "log", "logage", "loglog"]
    assert held.df.cells["log"] == "2"
    # The column "log" was replaced by the derived column of the empty name before it is read.
    assert held.df.cells["loglog"] == "2"


def test_without_columns_nothing_changes():
    table = Table([], {})
    held = DatasetS(table)
    assert held.AddNewColumns(None) is None
    assert held.df is table
    assert table.log == ["columns"]


class Plain(dict):
    """A table of the given columns; `withColumn` records its arguments and returns the table."""

    def __init__(self, columns, **cells):
        super().__init__(**cells)
        self.columns = columns
        self.added = []

    def withColumn(self, name, values):
        self.added.append((name, values))
        return self


@pytest.mark.parametrize("columns", [["a", "a"], ("a", "a"), "aa", pd.Index(["a", "a"])])
def test_columns_may_be_anything_that_can_be_listed(columns):
    table = Plain(columns, a="x")
    DatasetS(table).AddNewColumns(str.upper)
    assert table.added == [("loga", "X")] * 2


def test_any_object_that_holds_a_table_will_do():
    holder = SimpleNamespace(df=Table([], {"a": 3}))
    assert DatasetS.AddNewColumns(holder, lambda column: -column) is None
    assert holder.df.cells == {"a": 3, "loga": -3}
    holder.df = Table([], {"b": 1})
    assert DatasetS.AddNewColumns(self=holder, fun=str) is None
    assert holder.df.cells == {"b": 1, "logb": "1"}


def test_a_frame_of_pandas_cannot_add_columns():
    frame = pd.DataFrame({"a": [1, 2], "b": [3, 4]})
    held = DatasetS(frame)
    fun = Recorder(lambda column: column)
    with pytest.raises(AttributeError) as excinfo:
        held.AddNewColumns(fun)
    assert str(excinfo.value) == "'DataFrame' object has no attribute 'withColumn'"
    assert "AddNewColumns" in names_in_traceback(excinfo)
    assert held.df is frame
    assert list(frame.columns) == ["a", "b"]
    # The column is computed before `withColumn` is looked up.
    assert fun.only_call()[0][0].tolist() == [1, 2]


def test_a_frame_of_pandas_cannot_add_columns_of_any_name():
    with pytest.raises(AttributeError):
        DatasetS(pd.DataFrame({0: [1]})).AddNewColumns(lambda column: column)


def test_columns_added_before_a_failure_of_the_function_stay():
    failure = RuntimeError("b")

    def fun(column):
        if column == "y":
            raise failure
        return column

    held = DatasetS(Table([], {"a": "x", "b": "y", "c": "z"}))
    with pytest.raises(RuntimeError) as excinfo:
        held.AddNewColumns(fun)
    assert excinfo.value is failure
    assert held.df.cells == {"a": "x", "b": "y", "c": "z", "loga": "x"}


def test_columns_added_before_a_failure_of_the_table_stay():
    class Full(Table):
        def withColumn(self, name, values):
            raise RuntimeError("full")

    class Last(Table):
        def withColumn(self, name, values):
            return Full(self.log, dict(self.cells, **{name: values}))

    held = DatasetS(Last([], {"a": 1, "b": 2}))
    with pytest.raises(RuntimeError, match="^full$"):
        held.AddNewColumns(str)
    assert held.df.cells == {"a": 1, "b": 2, "loga": "1"}


def test_a_name_that_is_missing_from_the_table():
    class Forgetful(Table):
        columns = ["a", "z"]

    held = DatasetS(Forgetful([], {"a": 1}))
    with pytest.raises(KeyError, match="z"):
        held.AddNewColumns(str)
    assert held.df.cells == {"a": 1, "loga": "1"}


class Reversed:
    """A name with `__radd__`."""

    def __radd__(self, text):
        return text + "!"


def test_the_name_is_added_by_its_own_operator():
    name = Reversed()
    table = Plain([name])
    table[name] = 1
    DatasetS(table).AddNewColumns(str)
    assert table.added == [("log!", "1")]


@pytest.mark.parametrize("name", [5, None, ("a",)])
def test_a_name_that_is_no_text(name):
    table = Plain([name])
    table[name] = 1
    fun = Recorder(str)
    with pytest.raises(TypeError) as excinfo:
        DatasetS(table).AddNewColumns(fun)
    assert str(excinfo.value) == message_of(TypeError, lambda: "log" + name)
    assert fun.calls == [((1,), {})]
    assert table.added == []


# --- GetTargetType ----------------------------------------------------------------------------


@pytest.mark.parametrize("answer", [True, 1, "yes", [0], np.bool_(True), object()])
def test_a_target_that_is_not_categorical_is_for_regression(monkeypatch, answer):
    monkeypatch.setattr(
        exportable_utils, "FC", SimpleNamespace(is_not_categorical=lambda y: answer)
    )
    assert DatasetS.GetTargetType([]) == "regression"


@pytest.mark.parametrize("answer", [False, 0, "", [], None, np.bool_(False)])
def test_any_other_target_is_for_classification(monkeypatch, answer):
    monkeypatch.setattr(
        exportable_utils, "FC", SimpleNamespace(is_not_categorical=lambda y: answer)
    )
    assert DatasetS.GetTargetType([]) == "classification"


@pytest.mark.parametrize(
    "y, kind",
    [
        (np.array([0.5, 1.5, 2.25]), "regression"),
        (objects("a", "b"), "classification"),
        (np.array([0, 1, 1, 0]), "classification"),
    ],
)
def test_targets(y, kind):
    assert DatasetS.GetTargetType(y) == kind
    assert DatasetS(None).GetTargetType(y) == kind


def test_the_very_target_is_judged(monkeypatch):
    judge = Recorder(lambda y: True)
    monkeypatch.setattr(exportable_utils.FC, "is_not_categorical", staticmethod(judge))
    y = object()
    DatasetS.GetTargetType(y)
    assert judge.calls == [((y,), {})]


def test_the_truth_of_the_answer_is_taken_once(monkeypatch):
    class Truth:
        asked = 0

        def __bool__(self):
            self.asked += 1
            return self.asked == 1

    truth = Truth()
    monkeypatch.setattr(exportable_utils, "FC", SimpleNamespace(is_not_categorical=lambda y: truth))
    assert DatasetS.GetTargetType(None) == "regression"
    assert truth.asked == 1


def test_an_answer_without_a_truth(monkeypatch):
    answer = np.array([True, False])
    monkeypatch.setattr(
        exportable_utils, "FC", SimpleNamespace(is_not_categorical=lambda y: answer)
    )
    with pytest.raises(ValueError) as excinfo:
        DatasetS.GetTargetType(None)
    assert str(excinfo.value) == message_of(ValueError, bool, answer)
    assert "GetTargetType" in names_in_traceback(excinfo)


def test_a_failure_of_the_judge_propagates(monkeypatch):
    failure = KeyboardInterrupt()

    def judge(y):
        raise failure

    monkeypatch.setattr(exportable_utils, "FC", SimpleNamespace(is_not_categorical=judge))
    with pytest.raises(KeyboardInterrupt) as excinfo:
        DatasetS.GetTargetType(None)
    assert excinfo.value is failure


def test_exactly_one_argument():
    with pytest.raises(TypeError) as excinfo:
        DatasetS.GetTargetType()
    assert str(excinfo.value) == "GetTargetType() takes exactly one argument (0 given)"
    with pytest.raises(TypeError) as excinfo:
        DatasetS.GetTargetType(y=[])
    assert str(excinfo.value) == "GetTargetType() takes no keyword arguments"
