"""Error reporting and tests of single values."""

from __future__ import annotations

import sys
from typing import Any

from .namespace import ns, routine

NON_FLOAT = "__float__ returned non-float (type "


@routine
def QSR_raise_exception(
    error_message=None,
    exception_type="Exception",
    exception_obj=None,
    exception_trace_flag=False,
    logger_error_flag=True,
):
    if error_message is None:
        error_message = "Exception raised!\n"
    if exception_obj is not None and exception_trace_flag:
        trace_error_message = "".join(_format_exception(exception_obj))
        error_message = error_message + trace_error_message + "\nExiting ..."
    if logger_error_flag:
        ns.logger.error(error_message)
    if exception_type == "FileNotFoundError":
        raise FileNotFoundError(error_message)
    if exception_type == "ValueError":
        raise ValueError(error_message)
    if exception_type == "TypeError":
        raise TypeError(error_message)
    raise Exception(error_message)


def _format_exception(exception_obj: Any) -> Any:
    # Python 3.10 dropped the keyword `etype`; the first argument is positional there.
    if sys.version_info < (3, 10):
        return ns.traceback.format_exception(
            etype=type(exception_obj), value=exception_obj, tb=exception_obj.__traceback__
        )
    return ns.traceback.format_exception(
        type(exception_obj), value=exception_obj, tb=exception_obj.__traceback__
    )


@routine
def isint(value):
    try:
        int(value)
    except ValueError:
        return False
    return True


@routine
def isfloat(value):
    try:
        float(value)
    except ValueError:
        return False
    except TypeError as e:
        # The interpreter puts the name of the type before this text; the module does not.
        # The message about an element of an array is unchanged.
        owner, found, rest = str(e).partition(NON_FLOAT)
        if found and owner in ("", type(value).__name__[:50] + "."):
            raise TypeError(NON_FLOAT + rest)
        raise
    return True


@routine
def setValueOrDefault(variable, def_value=None):
    if variable is not None:
        return variable
    return def_value
