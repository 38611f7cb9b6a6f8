#include "exportable_utils/services/services.hpp"
#include "python/errors.hpp"
#include "python/module_names.hpp"
#include "python/operations.hpp"

namespace quorin::services {

namespace {

// traceback.format_exception() lost the keyword `etype` in CPython 3.10; since then its first parameter is positional.
Ref formatted_traceback(Object exception) {
    const Ref format_exception = global("traceback"_py).attr("format_exception"_py);
    const Ref type = Ref::share(Py_TYPE(exception.get()));
    const Ref entries = exception.attr("__traceback__"_py);
#if PY_VERSION_HEX >= 0x030A0000
    const Ref lines = format_exception({type}, {{"value"_py, exception}, {"tb"_py, entries}});
#else
    const Ref lines = format_exception({}, {{"etype"_py, type}, {"value"_py, exception}, {"tb"_py, entries}});
#endif
    return Object(""_py.text).attr("join"_py)({lines});
}

}  // namespace

constinit const Definition QSR_raise_exception{
    .name = "QSR_raise_exception",
    .parameters = {{"error_message", None},
                   {"exception_type", "Exception"},
                   {"exception_obj", None},
                   {"exception_trace_flag", false},
                   {"logger_error_flag", true}},
    .doc = R"(Logs an error and raises an exception chosen by name.

Every call ends in an exception.

Parameters
----------
error_message : str or None
    Text of the error. None stands for ``"Exception raised!\n"``.
exception_type : str
    "FileNotFoundError", "ValueError" or "TypeError", compared exactly; any other value means Exception.
exception_obj : BaseException or None
    A caught exception whose formatted traceback is to be appended to the text.
exception_trace_flag : bool
    Append the traceback of `exception_obj`, followed by ``"\nExiting ..."``.
logger_error_flag : bool
    Log the text at level error before raising.

Raises
------
FileNotFoundError, ValueError, TypeError, Exception
    With the text as the only argument.

Examples
--------
>>> from quorin_libs.utils.exportable_utils import QSR_raise_exception
>>> QSR_raise_exception("bad column", exception_type="ValueError", logger_error_flag=False)
Traceback (most recent call last):
    ...
ValueError: bad column
)",
    .body = [](Object error_message, Object exception_type, Object exception_obj, Object exception_trace_flag,
               Object logger_error_flag) -> Ref {
        Ref message = Ref::share(error_message.is_none() ? Object("Exception raised!\n"_py.text) : error_message);
        if (!exception_obj.is_none() && truth(exception_trace_flag)) {
            const Ref trace_error_message = formatted_traceback(exception_obj);
            message = add(add(message, trace_error_message), "\nExiting ..."_py);
        }
        if (truth(logger_error_flag)) global("logger"_py).attr("error"_py)({message});
        Object type = PyExc_Exception;
        if (equal(exception_type, "FileNotFoundError"_py)) {
            type = PyExc_FileNotFoundError;
        } else if (equal(exception_type, "ValueError"_py)) {
            type = PyExc_ValueError;
        } else if (equal(exception_type, "TypeError"_py)) {
            type = PyExc_TypeError;
        }
        raise(type({message}));
    },
};

}  // namespace quorin::services
