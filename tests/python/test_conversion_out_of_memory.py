"""Conversions if memory runs out: each allocation of a call fails in turn."""

from __future__ import annotations

import subprocess
import sys

import pytest

pytest.importorskip("_testcapi")

# Makes each call 400 times: with its first allocation failing, with its second one, and so on.
SCRIPT = """
import _testcapi
import numpy as np
from quorin_libs.utils import exportable_utils as module

ROWS = 40
call = {call}
expected = call().tolist()
failures = 0
for allocation in range(400):
    error = None
    _testcapi.set_nomemory(allocation, allocation + 1)
    try:
        result = call()
    except Exception as raised:
        error = raised
    finally:
        _testcapi.remove_mem_hooks()
    if error is None:
        assert result.tolist() == expected, allocation
    else:
        failures += 1
assert failures > 0
print("done")
"""
CALLS = [
    "lambda: module.numpy_column_float2str(np.arange(ROWS) + 0.25)",
    "lambda: module.numpy_column_float2str((np.arange(ROWS) + 0.25).astype(object))",
    "lambda: module.numpy_column_float2str((np.arange(ROWS) + 0.25).astype(object), False)",
    "lambda: module.numpy_boolean2float(np.arange(ROWS) % 2 == 0)",
    "lambda: module.numpy_putmask(np.arange(ROWS), np.arange(ROWS) % 2 == 0, 'x')",
    "lambda: module.numpy_replace_values(np.arange(ROWS), 'x', [3, 4])",
    "lambda: module.compress_str_column(np.array(['a b', 'c  d'] * 20, dtype=object), ['?'])",
]


@pytest.mark.parametrize("call", CALLS)
def test_the_interpreter_survives(call):
    script = SCRIPT.format(call=call)
    ended = subprocess.run(
        [sys.executable, "-c", script], stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=300
    )
    assert ended.returncode == 0, ended.stderr.decode()[-2000:]
    assert ended.stdout.decode().strip().endswith("done")
