#include "exportable_utils/transform/conversion_native.hpp"

#include <limits>
#include <optional>

#include "core/column.hpp"
#include "core/gather/number_facts.hpp"
#include "core/text/number_value.hpp"
#include "exportable_utils/references/list_membership.hpp"
#include "python/errors.hpp"
#include "python/lookup_guard.hpp"

namespace quorin::transform {

namespace {

using references::References;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

Ref new_floats(const ArrayColumn& column) {
    return new_array(column.rows, NPY_DOUBLE);
}

double* floats_of(Object array) noexcept {
    return reinterpret_cast<double*>(PyArray_BYTES(as_array(array)));
}

// float() of a text; nothing where it is no number, for then there are messages to print.
std::optional<double> float_of(core::TextView text) {
    double value = 0;
    if (core::value_of_number(text, value)) return value;
    if (core::classify_number(text) == core::NumberText::none) return std::nullopt;
    const Ref copy =
        Ref::adopt(PyUnicode_FromKindAndData(text.width, text.characters, static_cast<Py_ssize_t>(text.length)));
    const Ref number = Ref::adopt(copy ? PyFloat_FromString(copy.get()) : nullptr);
    if (number) return PyFloat_AS_DOUBLE(number.get());
    PyErr_Clear();
    return std::nullopt;
}

class ToFloats {
  public:
    explicit ToFloats(double* out) noexcept : out_(out) {}
    bool on_listed(std::size_t row) noexcept {
        out_[row] = nan;
        return true;
    }
    bool on_float(std::size_t row, double value) noexcept {
        out_[row] = value;
        return true;
    }
    bool on_integer(std::size_t row, PyObject* value) noexcept {
        out_[row] = PyLong_AsDouble(value);
        if (out_[row] != -1.0 || PyErr_Occurred() == nullptr) return true;
        PyErr_Clear();
        return false;
    }
    bool on_text(std::size_t row, core::TextView text) {
        const std::optional<double> value = float_of(text);
        if (value) out_[row] = *value;
        return value.has_value();
    }

  private:
    double* out_;
};

// A missing element is first marked in an array of the column's own dtype: integers cannot be marked, and a boolean
// turns true.
bool numbers_to_floats(const ArrayColumn& column, const References& missing, double* out) {
    return core::with_number_type(column, [&](auto type) {
        using Number = decltype(type);
        const bool compared = !missing.numbers.empty();
        // How markers compare with short floats depends on the version of numpy.
        if (compared && std::is_same_v<Number, float>) return false;
        // numpy may warn when it converts a signalling NaN.
        if (std::is_same_v<Number, float> && core::any_signalling_nan(column)) return false;
        for (std::size_t row = 0; row < column.rows; ++row) {
            const Number number = core::load<Number>(column, row);
            double value = static_cast<double>(number);
            if (compared && references::is_listed(value, missing)) {
                if (column.storage == Storage::integer) return false;
                value = column.storage == Storage::boolean ? 1.0 : nan;
            }
            out[row] = value;
        }
        return true;
    });
}

// Where "nan" does not fit, a missing element cannot be marked.
constexpr std::size_t narrowest_nan = 3 * sizeof(std::uint32_t);

bool to_floats(const ArrayColumn& column, const References& missing, double* out) {
    ToFloats visitor(out);
    switch (column.storage) {
        case Storage::objects:
            return references::visit_unlisted(column, missing, visitor);
        case Storage::fixed_text:
            return column.width >= narrowest_nan && references::visit_unlisted_texts(column, missing, visitor);
        default:
            return numbers_to_floats(column, missing, out);
    }
}

}  // namespace

Ref native_floatstr2float(Object X, Object missing_values_reference_list) {
    if (!originals_in_place()) return {};
    const std::optional<ArrayColumn> column = flat_column(X);
    if (!column) return {};
    const std::optional<References> missing = references::read_references(missing_values_reference_list, *column);
    if (!missing) return {};
    Ref Z = new_floats(*column);
    if (!to_floats(*column, *missing, floats_of(Z))) return {};
    return Z;
}

Ref native_boolean2float(Object X, Object missing_values_reference_list) {
    if (!originals_in_place()) return {};
    const std::optional<ArrayColumn> column = flat_column(X, Storage::boolean);
    if (!column) return {};
    bool false_is_missing = false;
    bool true_is_missing = false;
    if (!missing_values_reference_list.is_none()) {
        const std::optional<References> missing = references::read_references(missing_values_reference_list, *column);
        if (!missing || (missing->null_bits != 0 && !references::unchanged_by_asarray(*missing))) return {};
        if (PyArray_ISWRITEABLE(column->array) == 0) return {};
        false_is_missing = references::is_listed(0.0, *missing);
        true_is_missing = references::is_listed(1.0, *missing);
    }
    Ref Y = new_floats(*column);
    // NaN written into an array of booleans is true, whatever byte stood for it before.
    for (std::size_t row = 0; (false_is_missing || true_is_missing) && row < column->rows; ++row) {
        char& flag = PyArray_BYTES(column->array)[static_cast<std::ptrdiff_t>(row) * column->stride];
        if (flag == 0 ? false_is_missing : true_is_missing) flag = 1;
    }
    core::write_flags(*column, floats_of(Y));
    return Y;
}

}  // namespace quorin::transform
