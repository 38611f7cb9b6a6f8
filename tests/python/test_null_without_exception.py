"""A callee that returns null without setting an exception: SystemError, never a crash."""

from __future__ import annotations

import ctypes

import numpy as np
import pytest

import quorin_libs.utils.exportable_utils as eu
from quorin_libs.utils.exportable_utils import FCplus

Getter = ctypes.PYFUNCTYPE(ctypes.c_void_p, ctypes.py_object, ctypes.c_void_p)


class Definition(ctypes.Structure):
    """PyGetSetDef."""

    _fields_ = [
        ("name", ctypes.c_char_p),
        ("get", Getter),
        ("set", ctypes.c_void_p),
        ("doc", ctypes.c_char_p),
        ("closure", ctypes.c_void_p),
    ]


Function = ctypes.PYFUNCTYPE(ctypes.c_void_p, ctypes.c_void_p, ctypes.c_void_p, ctypes.c_void_p)


class MethodDefinition(ctypes.Structure):
    """PyMethodDef."""

    _fields_ = [
        ("name", ctypes.c_char_p),
        ("call", Function),
        ("flags", ctypes.c_int),
        ("doc", ctypes.c_char_p),
    ]


KEPT = []


def null_attribute(cls, name):
    """Give `cls` an attribute whose getter, a C function, returns null and sets no exception."""
    definition = Definition(name.encode(), Getter(lambda self, closure: None), None, None, None)
    KEPT.append(definition)
    make = ctypes.pythonapi.PyDescr_NewGetSet
    make.argtypes = [ctypes.py_object, ctypes.POINTER(Definition)]
    make.restype = ctypes.py_object
    setattr(cls, name, make(cls, definition))


def null_function(name):
    """A built-in function that takes any arguments, returns null and sets no exception."""
    any_arguments = 0x0001 | 0x0002  # METH_VARARGS | METH_KEYWORDS
    function = Function(lambda self, args, keywords: None)
    definition = MethodDefinition(name.encode(), function, any_arguments, None)
    KEPT.append(definition)
    make = ctypes.pythonapi.PyCFunction_NewEx
    make.argtypes = [ctypes.POINTER(MethodDefinition), ctypes.c_void_p, ctypes.c_void_p]
    make.restype = ctypes.py_object
    return make(definition, None, None)


class NoValues:
    """A frame whose `values` fails."""


class NoDimensions:
    """A data set whose `ndim` fails."""


null_attribute(NoValues, "values")
null_attribute(NoDimensions, "ndim")

CALLS = {
    "check_statistics": lambda: FCplus.check_statistics(NoValues(), 1, 1, 1, 1, 1, [1]),
    "is_column_height": lambda: FCplus.is_column_height(NoValues()),
    "is_column_sex": lambda: FCplus.is_column_sex(NoValues()),
    "is_column_positive": lambda: FCplus.is_column_positive(NoValues()),
    "numpy_remove_second_dim": lambda: eu.numpy_remove_second_dim(NoDimensions()),
    "is_dataset_missing": lambda: FCplus.is_dataset_missing(NoDimensions()),
    "find_numerical_columns": lambda: FCplus.find_numerical_columns(NoDimensions()),
}


@pytest.mark.parametrize("name", sorted(CALLS))
def test_an_attribute(name):
    with pytest.raises(SystemError) as raised:
        CALLS[name]()
    assert str(raised.value) == "error return without exception set"
    assert [entry.name for entry in raised.traceback][-1] == name


# For a call, the interpreter itself raises the SystemError; its message contains the callable.
CALL_WORDS = "<built-in function .*> returned NULL without setting an (exception|error)"
REPLACED = {
    "setValueOrDefault": lambda: FCplus.is_column_string(np.array(["a"])),
    "numpy_whatis": lambda: FCplus.is_column_missing(np.array(["a"])),
    "Counter": lambda: FCplus.getClasses(np.array(["a"])),
    "numpy_is_column_datetime": lambda: FCplus.is_column_datetime(["a"]),
}


@pytest.mark.parametrize("name", sorted(REPLACED))
def test_a_call(monkeypatch, name):
    monkeypatch.setattr(eu, name, null_function(name))
    with pytest.raises(SystemError, match=CALL_WORDS):
        REPLACED[name]()
