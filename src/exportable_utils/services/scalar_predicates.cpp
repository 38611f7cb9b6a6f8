#include "core/text/number_text.hpp"
#include "exportable_utils/services/services.hpp"
#include "python/errors.hpp"
#include "python/numpy.hpp"

#include <cmath>

namespace quorin::services {

namespace {

using core::NumberText;

// Classifies a text by its grammar, so that plain text costs no exception.
NumberText number_text(Object text) {
    const Characters characters = characters_of(text.get());
    if (characters.data == nullptr) throw PythonError(Where::current());
    return core::classify_number({characters.data, static_cast<std::size_t>(characters.length), characters.width});
}

// Whether a conversion succeeded. Clears a ValueError and returns false; any other exception propagates.
bool accepted(PyObject* converted, Where where = Where::current()) {
    if (Ref::adopt(converted)) return true;
    if (!PythonError::matches(PyExc_ValueError)) throw PythonError(where);
    PyErr_Clear();
    return false;
}

bool int_accepts(Object value) {
    if (is_plain_text(value)) {
        const NumberText kind = number_text(value);
        if (kind != NumberText::ask) return kind == NumberText::integer;
    }
    if (PyLong_CheckExact(value.get())) return true;
    if (PyFloat_CheckExact(value.get()) && std::isfinite(PyFloat_AS_DOUBLE(value.get()))) return true;
    const RecursionGuard guard;
    return accepted(PyNumber_Long(value.get()));
}

// Whether value is an int or bool of at most 64 bits, whose conversion to a float cannot overflow.
bool is_moderate_integer(Object value) {
    if (!PyLong_CheckExact(value.get()) && !PyBool_Check(value.get())) return false;
    int overflow = 0;
    PyLong_AsLongLongAndOverflow(value.get(), &overflow);
    return overflow == 0;
}

bool float_accepts(Object value) {
    if (PyFloat_CheckExact(value.get()) || is_moderate_integer(value)) return true;
    if (is_plain_text(value)) {
        const NumberText kind = number_text(value);
        if (kind != NumberText::ask) return kind != NumberText::none;
    }
    const RecursionGuard guard;
    if (PyUnicode_Check(value.get()) || PyBytes_Check(value.get())) return accepted(PyNumber_Float(value.get()));
    const PyNumberMethods* numeric = Py_TYPE(value.get())->tp_as_number;
    if (numeric == nullptr || numeric->nb_float == nullptr) return accepted(PyNumber_Float(value.get()));
    const Ref converted = Ref::adopt(numeric->nb_float(value.get()));
    if (!converted) return accepted(nullptr);
    if (!PyFloat_Check(converted.get())) {
        fail(PyExc_TypeError, "__float__ returned non-float (type %.200s)", Py_TYPE(converted.get())->tp_name);
    }
    return true;
}

}  // namespace

constinit const Definition isint{
    .name = "isint",
    .parameters = {{"value"}},
    .doc = R"(Says whether the built-in int() accepts a value.

Parameters
----------
value : object
    Positional only.

Returns
-------
bool
    False where int() raises ValueError.

Raises
------
TypeError, OverflowError
    Whatever else int() raises: for None or a list, for an infinite float.

Examples
--------
>>> from quorin_libs.utils.exportable_utils import isint
>>> isint(" 12 "), isint("12.0"), isint(12.9), isint("?")
(True, False, True, False)
)",
    .counts_nesting = false,
    .body = [](Object value) -> Ref { return Ref::truth(int_accepts(value)); },
};

constinit const Definition isfloat{
    .name = "isfloat",
    .parameters = {{"value"}},
    .doc = R"(Says whether the built-in float() accepts a value.

Parameters
----------
value : object
    Positional only.

Returns
-------
bool
    False where float() raises ValueError.

Raises
------
TypeError
    For a value that has no conversion to a float, such as None or a list.

Examples
--------
>>> from quorin_libs.utils.exportable_utils import isfloat
>>> isfloat("1e-3"), isfloat("nan"), isfloat("1,5"), isfloat(True)
(True, True, False, True)
)",
    .counts_nesting = false,
    .body = [](Object value) -> Ref { return Ref::truth(float_accepts(value)); },
};

constinit const Definition setValueOrDefault{
    .name = "setValueOrDefault",
    .parameters = {{"variable"}, {"def_value", None}},
    .doc = R"(Gives a variable, or a default where the variable is None.

Parameters
----------
variable : object
    Only None itself counts as unset; 0, False and empty texts or lists do not.
def_value : object
    What stands in for None.

Returns
-------
object
    One of the two objects, never a copy.

Examples
--------
>>> from quorin_libs.utils.exportable_utils import setValueOrDefault
>>> setValueOrDefault(None, 5), setValueOrDefault(0, 5)
(5, 0)
)",
    .counts_nesting = false,
    .body = [](Object variable, Object def_value) -> Ref {
        return Ref::share(variable.is_none() ? def_value : variable);
    },
};

}  // namespace quorin::services
