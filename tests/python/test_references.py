"""Reference counts: a call does not change those of its arguments, even if it fails."""

from __future__ import annotations

import functools
import gc
import sys
import types

import numpy as np
import pytest

import quorin_libs.utils.exportable_utils as eu
from helpers.leaks import frozen_heap, leaks_blocks, repeat


def fresh_cases():
    """Pairs of a name and (call, objects whose count must not change)."""
    thing, other = [object()], [object()]
    word = "".join(["12", "34"])
    plain = "".join(["wo", "rd"])
    column = np.array([plain, word, "".join(["?", ""]), 2.5, None, [1]], dtype=object)
    elements = [e for e in column.tolist()[:2]] + [column.tolist()[5]]
    texts = np.array([plain, word, plain], dtype=object)
    markers = ["?", plain, np.nan]
    matrix = np.array([[1.0], [2.0]])
    nested = [np.array([1]), np.array([2])]
    failure = ValueError("v")
    whatis = [texts, plain, word, markers]
    return {
        "value": (lambda: eu.setValueOrDefault(thing, other), [thing, other]),
        "default": (lambda: eu.setValueOrDefault(None, other), [other]),
        "keywords": (lambda: eu.setValueOrDefault(def_value=other, variable=None), [other]),
        "partial": (functools.partial(eu.setValueOrDefault, None, def_value=other), [other]),
        "unknown keyword": (lambda: eu.setValueOrDefault(thing, other=other), [thing, other]),
        "twice": (lambda: eu.setValueOrDefault(thing, variable=other), [thing, other]),
        "too many": (lambda: eu.setValueOrDefault(thing, other, thing), [thing, other]),
        "missing": (lambda: eu.setValueOrDefault(def_value=other), [other]),
        "bad key": (lambda: eu.setValueOrDefault(thing, **{1: other}), [thing, other]),
        "one too many": (lambda: eu.isint(thing, other), [thing, other]),
        "one by keyword": (lambda: eu.isint(value=thing), [thing]),
        "isint true": (lambda: eu.isint(word), [word]),
        "isint false": (lambda: eu.isint(plain), [plain]),
        "isint raises": (lambda: eu.isint(thing), [thing]),
        "isfloat true": (lambda: eu.isfloat(word), [word]),
        "isfloat false": (lambda: eu.isfloat(plain), [plain]),
        "isfloat raises": (lambda: eu.isfloat(thing), [thing]),
        "raise": (lambda: eu.QSR_raise_exception(plain, "x", None, True, False), [plain]),
        "raise with trace": (
            lambda: eu.QSR_raise_exception(plain, word, failure, True, False),
            [plain, word, failure],
        ),
        "second dim": (lambda: eu.numpy_remove_second_dim(matrix), [matrix]),
        "second dim same": (lambda: eu.numpy_remove_second_dim(texts), [texts]),
        "flatten": (lambda: eu.numpy_flatten_column(nested), [nested] + nested),
        "flatten same": (lambda: eu.numpy_flatten_column(column), [column] + elements),
        "flatten raises": (lambda: eu.numpy_flatten_column([]), []),
        "select": (lambda: eu.numpy_select_columns(matrix, [0]), [matrix]),
        "permute": (lambda: eu.numpy_permute_array(matrix, [0]), [matrix]),
        "mask": (lambda: eu.indicator_mask({plain}, texts), [texts, plain, word]),
        "mask raises": (lambda: eu.indicator_mask({plain}, [{}]), [plain]),
        "isin": (lambda: eu.numpy_isin(texts, markers), whatis),
        "isin without null": (lambda: eu.numpy_isin(texts, [plain]), [texts, plain, word]),
        "isin raises": (lambda: eu.numpy_isin(column, [thing]), [column, thing] + elements),
        "indicator": (lambda: eu.numpy_compute_missing_indicator(texts, markers), whatis),
        "unique": (lambda: eu.get_unique_values(texts, markers), whatis),
        "unique raises": (
            lambda: eu.get_unique_values(np.array([thing, {}], dtype=object)),
            [thing],
        ),
        "whatis": (lambda: eu.numpy_whatis(texts, markers), whatis),
        "whatis statistics": (
            lambda: eu.numpy_whatis(texts, markers, return_stats_flag=True),
            whatis,
        ),
        "whatis without list": (lambda: eu.numpy_whatis(texts), [texts, plain, word]),
        "whatis raises": (
            lambda: eu.numpy_whatis(texts, return_stats_flag=True),
            [texts, plain, word],
        ),
        "float text": (lambda: eu.numpy_floatstr2float(texts[1:2], markers), whatis),
        "float32": (lambda: eu.convert_float32(matrix), [matrix]),
        "to text": (lambda: eu.numpy_column_float2str(texts.copy(), False), whatis[:3]),
        "delegation": (lambda: eu.FCplus.is_column_longitude(texts, thing), [texts, thing]),
    }


@pytest.fixture
def quiet(monkeypatch):
    """Replace the logger: handlers keep records, and records keep texts."""
    monkeypatch.setattr(eu, "logger", types.SimpleNamespace(error=len, warning=len))
    return monkeypatch


@pytest.mark.parametrize("case", sorted(fresh_cases()))
def test_references_are_given_back(case, quiet):
    call, objects = fresh_cases()[case]
    rounds = 200
    if case == "delegation":
        quiet.setattr(eu, "FC", types.SimpleNamespace(is_longitude=lambda column, name: name))

    def counts():
        return [sys.getrefcount(thing) for thing in objects]

    shared = [None, True, False, np.nan, eu.isint, TypeError, eu.setValueOrDefault]
    with frozen_heap():
        repeat(call, 20)
        gc.collect()
    before, shared_before = counts(), [sys.getrefcount(thing) for thing in shared]
    assert not leaks_blocks(call, rounds)
    assert counts() == before
    drift = [sys.getrefcount(s) - b for s, b in zip(shared, shared_before)]
    assert max(map(abs, drift)) < rounds // 2, drift
