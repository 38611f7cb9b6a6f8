"""The namespace in which the routines of the model look names up.

At call time, every routine of the model reads from this namespace the names that the module looks
up: `np`, `pd`, `FC`, other routines. A test that replaces `ns.numpy_isin` therefore changes every
routine that calls it, as in the module.
"""

from __future__ import annotations

import hashlib
import logging
import numbers
import random
import time
import traceback
from collections import Counter
from typing import Any, Callable, TypeVar

import numpy as np
import pandas as pd
import six

from quorin_libs.utils.fc_methods import FC

Function = TypeVar("Function", bound=Callable[..., Any])


class FCplus:
    """Static column tests; `feature` adds them."""


class Namespace:
    """Attributes are the module's globals; a missing one is a NameError, as for any global."""

    def __getattr__(self, name: str) -> Any:
        if name.startswith("__"):
            raise AttributeError(name)
        raise NameError("name '{}' is not defined".format(name))


ns: Any = Namespace()
ns.FC = FC
ns.numbers = numbers
ns.random = random
ns.time = time
ns.traceback = traceback
ns.Counter = Counter
ns.np = np
ns.pd = pd
ns.six = six
ns.logging = logging
ns.hashlib = hashlib
ns.global_missing_values_reference_list = ["?", "", "-", np.nan]
ns.logger = logging.getLogger()
ns.FCplus = FCplus


def routine(function: Function) -> Function:
    """Bind a routine under its own name in the namespace."""
    setattr(ns, function.__name__, function)
    return function


def feature(function: Function) -> Function:
    """Bind a routine as a static method of `FCplus`."""
    setattr(FCplus, function.__name__, staticmethod(function))
    return function
