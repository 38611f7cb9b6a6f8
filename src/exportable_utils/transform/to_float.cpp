#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>

#include "core/gather/number_facts.hpp"
#include "core/text/number_value.hpp"
#include "exportable_utils/references/list_membership.hpp"
#include "exportable_utils/transform/transform.hpp"
#include "python/indexing.hpp"
#include "python/inputs/column_source.hpp"
#include "python/module_names.hpp"
#include "python/native_route.hpp"
#include "python/operations.hpp"

namespace quorin::transform {

namespace {

using references::References;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

double* floats_in(Object array) noexcept {
    return reinterpret_cast<double*>(PyArray_BYTES(as_array(array)));
}

// float() of a text. Returns nullopt, to give up, if it is not a number: the interpreter route then prints messages.
std::optional<double> float_of(core::TextView text) {
    double value = 0;
    if (core::value_of_number(text, value)) return value;
    if (core::classify_number(text) == core::NumberText::none) return std::nullopt;
    const Ref copy =
        Ref::adopt(PyUnicode_FromKindAndData(text.width, text.characters, static_cast<Py_ssize_t>(text.size)));
    const Ref number = Ref::adopt(copy ? PyFloat_FromString(copy.get()) : nullptr);
    if (number) return PyFloat_AS_DOUBLE(number.get());
    PyErr_Clear();
    return std::nullopt;
}

// A visitor for visit_unlisted().
class FloatWriter {
  public:
    explicit FloatWriter(double* out) noexcept : out_(out) {}
    bool on_listed(std::size_t row) noexcept {
        out_[row] = nan;
        return true;
    }
    bool on_float(std::size_t row, double value) noexcept {
        out_[row] = value;
        return true;
    }
    bool on_integer(std::size_t row, PyObject* value) noexcept {
        // Not PyLong_AsDouble(): allocating its OverflowError may start garbage collection, which is foreign code.
        int overflow = 0;
        out_[row] = static_cast<double>(PyLong_AsLongLongAndOverflow(value, &overflow));
        return overflow == 0;
    }
    bool on_text(std::size_t row, core::TextView text) {
        const std::optional<double> value = float_of(text);
        if (value) out_[row] = *value;
        return value.has_value();
    }

  private:
    double* out_;
};

// Converts listed numbers to NaN. The interpreter route writes NaN into a copy of the same dtype, which raises for
// integers and stores true in booleans.
template <class Number>
bool unlisted_to_floats(const ArrayColumn& part, const References& missing, double* out) {
    // The comparison of a float32 with a Python number depends on the version of numpy.
    if (std::is_same_v<Number, float>) return false;
    for (std::size_t row = 0; row < part.rows; ++row) {
        double value = static_cast<double>(core::load<Number>(part, row));
        if (references::is_listed(value, missing)) {
            if (part.storage == Storage::integer) return false;
            value = part.storage == Storage::boolean ? 1.0 : nan;
        }
        out[row] = value;
    }
    return true;
}

bool numbers_to_floats(const ArrayColumn& part, const References& missing, double* out) {
    return core::with_number_type(part, [&](auto type) {
        using Number = decltype(type);
        if (!missing.numbers.empty()) return unlisted_to_floats<Number>(part, missing, out);
        const core::StridedMemory numbers = part;
        [[maybe_unused]] bool signals = false;  // NOLINT(misc-const-correctness): written for float32
        for (std::size_t row = 0; row < numbers.rows; ++row) {
            const Number number = core::load<Number>(numbers, row);
            if constexpr (std::is_same_v<Number, float>) signals |= core::is_signalling_nan(number);
            out[row] = static_cast<double>(number);
        }
        return !signals;
    });
}

// The interpreter route writes "nan" in place of a missing element; a narrower text array truncates it.
constexpr std::size_t narrowest_nan = 3 * sizeof(std::uint32_t);

bool write_floats(const ArrayColumn& part, const References& missing, double* out) {
    FloatWriter writer(out);
    switch (part.storage) {
        case Storage::objects:
            return references::visit_unlisted(part, missing, writer);
        case Storage::fixed_text:
            return part.width >= narrowest_nan && references::visit_unlisted_texts(part, missing, writer);
        default:
            return numbers_to_floats(part, missing, out);
    }
}

Ref native_floatstr2float(Object X, Object list) {
    return native_route([&]() -> Ref {
        const std::optional<ColumnSource> source = ColumnSource::flat(X);
        if (!source) return {};
        const std::optional<References> missing = references::read_references(list, *source);
        if (!missing) return {};
        Ref Z = new_array(source->rows(), NPY_DOUBLE);
        const auto write = [&](const ArrayColumn& column, std::size_t first, std::size_t last) {
            return write_floats(rows_of(column, first, last), *missing, floats_in(Z) + first);
        };
        if (!source->in_blocks(write)) return {};
        return Z;
    });
}

// Whether false and true are missing values.
struct MissingBooleans {
    bool of_false = false;
    bool of_true = false;

    [[nodiscard]] bool any() const noexcept { return of_false || of_true; }
};

// Returns nullopt if the list cannot be read natively or X is not writeable.
std::optional<MissingBooleans> missing_booleans(const ColumnSource& source, Object list) {
    if (list.is_none()) return MissingBooleans{};
    const std::optional<References> missing = references::read_references(list, source);
    if (!missing || (missing->null_bits != 0 && !references::unchanged_by_asarray(*missing))) return std::nullopt;
    if (PyArray_ISWRITEABLE(as_array(source.array())) == 0) return std::nullopt;
    return MissingBooleans{references::is_listed(0.0, *missing), references::is_listed(1.0, *missing)};
}

// numpy stores NaN in an array of booleans as true, the byte 1, even if the element was another non-zero byte.
void write_nan(const ArrayColumn& column, MissingBooleans missing) noexcept {
    for (std::size_t row = 0; row < column.rows; ++row) {
        char& flag = *const_cast<char*>(column.at(row));
        if (flag == 0 ? missing.of_false : missing.of_true) flag = 1;
    }
}

Ref native_boolean2float(Object X, Object list) {
    return native_route([&]() -> Ref {
        const std::optional<ColumnSource> source = ColumnSource::flat(X);
        if (!source || source->storage() != Storage::boolean) return {};
        const std::optional<MissingBooleans> missing = missing_booleans(*source, list);
        if (!missing) return {};
        Ref Y = new_array(source->rows(), NPY_DOUBLE);
        if (missing->any()) {
            // Not in blocks: a signal handler sees either none or all of the rows written, as in the interpreter route.
            const std::optional<ArrayColumn> column = source->borrow();
            if (!column || PyArray_ISWRITEABLE(column->array) == 0) return {};
            write_nan(*column, *missing);
        }
        const auto convert = [&](const ArrayColumn& column, std::size_t first, std::size_t last) {
            core::write_flags(column.part(first, last), floats_in(Y) + first);
            return true;
        };
        if (!source->in_blocks(convert)) return {};
        return Y;
    });
}

// Y[i] = float(X[i]). If that fails, sets Y[i] to NaN and prints two lines.
void convert_or_report(Object X, Object Y, const Operand& i) {
    try {
        set_item(Y, i, Object(&PyFloat_Type)({item(X, i)}));
    } catch (const PythonError& error) {
        if (!PythonError::matches(PyExc_Exception)) throw;
        const Handling handling(error, "numpy_floatstr2float");
        set_item(Y, i, global("np"_py).attr("nan"_py));
        print(handling.exception());
        print(concat({"Setting value "_py, text_of(item(X, i)), " to NaN"_py}));
    }
}

}  // namespace

constinit const Definition numpy_floatstr2float{
    .name = "numpy_floatstr2float",
    .parameters = {{"X"}, {"missing_values_reference_list", None}},
    .doc = R"(Converts a 1-D numpy array of strings that represent floats to floats
and replaces missing values with np.nan. Also changes type of array from 'object' to 'float'

:param X: 1-d numpy array of strings
:param missing_values_reference_list: list of values that should be considered as missing
:return: 1-D numpy array of floats and np.nan as missing values

A text that is neither missing nor a number becomes NaN too; what was wrong with it is printed.

Parameters
----------
X : numpy.ndarray of shape (n,)
missing_values_reference_list : list, optional

Returns
-------
numpy.ndarray of float64, shape (n,)
    A new array.

Raises
------
TypeError
    For an element that has no conversion to a float, such as None.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import numpy_floatstr2float
>>> numpy_floatstr2float(np.array(["1.5", "?", "1e3"], dtype=object), ["?"])
array([   1.5,    nan, 1000. ])
)",
    .has_native_route = true,
    .lookups = {"isfloat", "np.nan"},
    .body = [](Object X, Object missing_values_reference_list) -> Ref {
        if (Ref Z = native_floatstr2float(X, missing_values_reference_list)) return Z;
        const Ref l_missing_values_reference_list = or_new_list(missing_values_reference_list);
        const Ref Y = X.attr("copy"_py)();
        const Py_ssize_t rows = count(row_count(X));
        for (Py_ssize_t i = 0; i < rows; ++i) {
            if (contains(l_missing_values_reference_list, item(X, i))) {
                set_item(Y, i, global("np"_py).attr("nan"_py));
            } else if (!truth(global("isfloat"_py)({item(X, i)}))) {
                convert_or_report(X, Y, i);
            }
        }
        return Y.attr("astype"_py)({&PyFloat_Type});
    },
};

constinit const Definition numpy_boolean2float{
    .name = "numpy_boolean2float",
    .parameters = {{"X"}, {"missing_values_reference_list", None}},
    .doc = R"(Converts a 1-D numpy array of strings that represent floats to floats
and replaces missing values with np.nan. Also changes type of array from 'object' to 'float'

:param X: 1-d numpy array of booleans
:param missing_values_reference_list: list of values that should be considered as missing
:return: 1-D numpy array of floats and np.nan as missing values

The array stays boolean while the missing values are marked, so NaN is stored as True: they come out as 1.0, and the
caller's array holds True in their place.

Parameters
----------
X : numpy.ndarray of shape (n,)
missing_values_reference_list : list, optional

Returns
-------
numpy.ndarray of float64, shape (n,), or `X` itself
    `X` itself where its dtype is not bool.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import numpy_boolean2float
>>> numpy_boolean2float(np.array([True, False]))
array([1., 0.])
)",
    .has_native_route = true,
    .lookups = {"numpy_isin", "np.nan"},
    .body = [](Object X, Object missing_values_reference_list) -> Ref {
        if (Ref Y = native_boolean2float(X, missing_values_reference_list)) return Y;
        if (!equal(X.attr("dtype"_py), "bool"_py)) return Ref::share(X);
        if (!missing_values_reference_list.is_none()) {
            const Ref missing_values_mask = global("numpy_isin"_py)({X, missing_values_reference_list});
            set_item(X, missing_values_mask, global("np"_py).attr("nan"_py));
        }
        return X.attr("astype"_py)({&PyFloat_Type});
    },
};

}  // namespace quorin::transform
