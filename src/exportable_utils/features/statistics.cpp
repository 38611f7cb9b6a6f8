// Tests for columns of persons' heights, weights and ages.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "core/gather/within_limits.hpp"
#include "exportable_utils/features/classifier_calls.hpp"
#include "exportable_utils/features/features.hpp"
#include "python/indexing.hpp"
#include "python/inputs/column_source.hpp"
#include "python/module_names.hpp"
#include "python/native_route.hpp"
#include "python/operations.hpp"

namespace quorin::features {

namespace {

struct Bounds {
    Object mean_value;
    Object std_value;
    Object min_value;
    Object max_value;
    Object num_stds;
};

// NaN never fails: every ordered comparison with it is false.
bool fails(Object elt, const Bounds& bounds) {
    const Ref deviation = absolute(subtract(elt, bounds.mean_value));
    const Ref allowed = multiply(bounds.num_stds, bounds.std_value);
    return greater(deviation, allowed) || greater(elt, bounds.max_value) || less(elt, bounds.min_value);
}

bool vector_passes(Object X, Object k, const Bounds& bounds) {
    const Py_ssize_t rows = count(row_count(X));
    for (Py_ssize_t i = 0; i < rows; ++i) {
        if (fails(multiply(k, item(X, i)), bounds)) return false;
    }
    return true;
}

// A failing value ends its row only; the following rows are tested as well.
bool matrix_passes(Object X, Object k, const Bounds& bounds) {
    bool flag = true;
    const Py_ssize_t rows = count(row_count(X));
    for (Py_ssize_t i = 0; i < rows; ++i) {
        const Py_ssize_t columns = count(column_count(X));
        for (Py_ssize_t j = 0; j < columns; ++j) {
            if (fails(multiply(k, item(X, tuple({i, j}))), bounds)) {
                flag = false;
                break;
            }
        }
    }
    return flag;
}

constexpr double modest_limit = 1e15;

// The value of an exact float or int with |value| <= 1e15; nullopt otherwise. float64 arithmetic with it has the
// interpreter's result, because every integer of that size is exact as a float64.
std::optional<double> modest_number(Object value) noexcept {
    double number = 0.0;
    if (PyFloat_CheckExact(value.get())) {
        number = PyFloat_AS_DOUBLE(value.get());
    } else if (PyLong_CheckExact(value.get())) {
        int overflow = 0;
        number = static_cast<double>(PyLong_AsLongLongAndOverflow(value.get(), &overflow));
        if (overflow != 0) return std::nullopt;
    } else {
        return std::nullopt;
    }
    if (!(std::fabs(number) <= modest_limit)) return std::nullopt;
    return number;
}

// The arithmetic of a column, and the magnitudes for which the kernels compute the interpreter's results and numpy does
// not warn.
struct Arithmetic {
    enum class As { float64, float32, whole, boolean } as;
    double most;          // |element| <= most
    double most_factor;   // |factor| <= most_factor
    double least_normal;  // a smaller product can underflow
};

std::optional<Arithmetic> arithmetic_of(const core::Column& values) noexcept {
    // Products of integers are exact as a float64: 1e9 * 1e6 < 2^53.
    constexpr double most_whole = 1e9;
    constexpr double most_whole_factor = 1e6;
    constexpr double least_float64 = std::numeric_limits<double>::min();
    constexpr double least_float32 = std::numeric_limits<float>::min();
    switch (values.storage) {
        case Storage::float64:
            return Arithmetic{Arithmetic::As::float64, modest_limit, modest_limit, least_float64};
        case Storage::float32:
            return Arithmetic{Arithmetic::As::float32, modest_limit, modest_limit, least_float32};
        case Storage::boolean:
            return Arithmetic{Arithmetic::As::boolean, 1.0, most_whole_factor, least_float64};
        case Storage::integer:
            // The overflow rules of numpy differ for narrow and unsigned integers.
            if (values.width != sizeof(std::int64_t) || !values.is_signed) break;
            return Arithmetic{Arithmetic::As::whole, most_whole, most_whole_factor, least_float64};
        case Storage::objects:
        case Storage::fixed_text:
            break;
    }
    return std::nullopt;
}

// Returns nullopt unless all factors are exact numbers within the limits of the arithmetic.
std::optional<std::vector<double>> read_factors(Object unit_factors_list, const Arithmetic& arithmetic) {
    std::vector<double> factors;
    for (Py_ssize_t i = 0; i < PyList_GET_SIZE(unit_factors_list.get()); ++i) {
        const auto factor = modest_number(PyList_GET_ITEM(unit_factors_list.get(), i));
        if (!factor || std::fabs(*factor) > arithmetic.most_factor) return std::nullopt;
        factors.push_back(*factor);
    }
    return factors;
}

// Returns nullopt unless all bounds are exact numbers with a magnitude of at most 1e15.
std::optional<core::Limits> read_limits(const Bounds& bounds) noexcept {
    const auto mean = modest_number(bounds.mean_value);
    const auto deviation = modest_number(bounds.std_value);
    const auto min = modest_number(bounds.min_value);
    const auto max = modest_number(bounds.max_value);
    const auto stds = modest_number(bounds.num_stds);
    if (!mean || !deviation || !min || !max || !stds) return std::nullopt;
    const core::Limits limits{*mean, *stds * *deviation, *min, *max};
    if (std::fabs(limits.allowed) > modest_limit) return std::nullopt;
    return limits;
}

// No product of an ordinary number underflows: |factor * x| >= 2 * least_normal for |x| >= least. A difference never
// underflows: if it is smaller than the least normal number, it is exact.
core::Ordinary ordinary_numbers(double factor, const Arithmetic& arithmetic) noexcept {
    const double least = factor == 0 ? 0.0 : 2 * arithmetic.least_normal / std::fabs(factor);
    // 2 * modest_limit is in the range of float32 and above every number that the kernels accept.
    return {std::min(least, 2 * modest_limit), arithmetic.most};
}

// Whether the product and the difference of a float32 and a Python number are float32. This holds from numpy 2 on;
// before, they may be float64. Evaluates operators, which is foreign code: call it before the column is borrowed.
bool products_stay_float32() {
    float number = 1;
    const Ref dtype = Ref::take(reinterpret_cast<PyObject*>(PyArray_DescrFromType(NPY_FLOAT)));
    const Ref one = Ref::take(PyArray_Scalar(&number, reinterpret_cast<PyArray_Descr*>(dtype.get()), nullptr));
    const auto is_float32 = [](const Ref& result) { return Py_TYPE(result.get()) == &PyFloatArrType_Type; };
    return is_float32(multiply(1, one)) && is_float32(multiply(1.0, one)) && is_float32(subtract(one, 1)) &&
           is_float32(subtract(one, 1.0));
}

// Whether there is a factor with which all elements fit. Gives up if an element that the interpreter route may reach
// overflows, underflows or is a signalling NaN, because numpy may then warn or raise.
template <class Number>
Ref passes(const ColumnSource& column, const Arithmetic& arithmetic, const std::vector<double>& factors,
           const core::Limits& limits) {
    for (const double factor : factors) {
        const core::Ordinary ordinary = ordinary_numbers(factor, arithmetic);
        core::Fit fit = core::Fit::unknown;
        const bool done = column.in_blocks([&](const ArrayColumn& values, std::size_t first, std::size_t last) {
            fit = core::fit<Number>(values.part(first, last), factor, limits, ordinary);
            return fit == core::Fit::all;
        });
        if (done) return Ref::truth(true);
        if (fit != core::Fit::not_all) return {};  // an element needs the interpreter route, or the column has changed
    }
    return Ref::truth(false);
}

Ref native_check(Object X, const Bounds& bounds, Object unit_factors_list) {
    if (!PyList_CheckExact(unit_factors_list.get())) return {};
    return native_route([&]() -> Ref {
        const std::optional<ColumnSource> column = ColumnSource::single(X);
        if (!column) return {};
        const std::optional<Arithmetic> arithmetic = arithmetic_of(column->layout());
        const std::optional<core::Limits> limits = read_limits(bounds);
        if (!arithmetic || !limits) return {};
        const std::optional<std::vector<double>> factors = read_factors(unit_factors_list, *arithmetic);
        if (!factors) return {};
        switch (arithmetic->as) {
            case Arithmetic::As::float64:
                return passes<double>(*column, *arithmetic, *factors, *limits);
            case Arithmetic::As::float32:
                if (!products_stay_float32()) return {};
                return passes<float>(*column, *arithmetic, *factors, *limits);
            case Arithmetic::As::whole:
                return passes<std::int64_t>(*column, *arithmetic, *factors, *limits);
            case Arithmetic::As::boolean:
                return passes<std::uint8_t>(*column, *arithmetic, *factors, *limits);
        }
        return {};
    });
}

Ref check(Positional arguments) {
    return global("FCplus"_py).attr("check_statistics"_py)(arguments);
}

}  // namespace

constinit const Definition check_statistics{
    .name = "check_statistics",
    .parameters =
        {{"dfc"}, {"mean_value"}, {"std_value"}, {"min_value"}, {"max_value"}, {"num_stds"}, {"unit_factors_list"}},
    .doc = R"(Says whether all values of a column fit a known statistic in some unit.

A value fits when, multiplied by the factor of the unit, it lies within `num_stds` standard deviations of the mean and
within the range, both ends included. NaN fits.

Parameters
----------
dfc : pandas.DataFrame or pandas.Series
mean_value, std_value : float
min_value, max_value : float
num_stds : float
unit_factors_list : list of float
    Factors to try, in this order.

Returns
-------
bool
    Whether there is a factor with which every value fits; False for no factor at all.

Raises
------
TypeError
    For values that cannot be compared with numbers.

Examples
--------
>>> import pandas as pd
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.check_statistics(pd.DataFrame({0: [170.0, 180.0]}), 66.4, 3.9, 21.5, 107.1, 3, [1, 1 / 2.54])
True
)",
    .has_native_route = true,
    .body = [](Object dfc, Object mean_value, Object std_value, Object min_value, Object max_value, Object num_stds,
               Object unit_factors_list) -> Ref {
        const Bounds bounds{mean_value, std_value, min_value, max_value, num_stds};
        const Ref X = dfc.attr("values"_py);
        if (Ref answer = native_check(X, bounds, unit_factors_list)) return answer;
        bool flag = false;
        const Ref factors = iterate(unit_factors_list);
        while (const Ref k = next(factors)) {
            flag = equal(X.attr("ndim"_py), 1) ? vector_passes(X, k, bounds) : matrix_passes(X, k, bounds);
            if (flag) break;
        }
        return Ref::truth(flag);
    },
};

constinit const Definition is_column_height{
    .name = "is_column_height",
    .parameters = {{"dfc"}},
    .doc = R"(Infers whether column represents height based on US statistics
Men: 69.1 inches mean and 2.9 inches std
Women: 63.7 inches and 2.7 inches std

Parameters
----------
dfc : pandas.DataFrame
    One column. Positional only.

Returns
-------
bool
    False for text.

Raises
------
IndexError
    For an empty frame and for a Series.

Examples
--------
>>> import pandas as pd
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_column_height(pd.DataFrame({"inches": [62.0, 66.5, 71.0]}))
True
)",
    .lookups = {"FCplus.check_statistics"},
    .body = [](Object dfc) -> Ref {
        if (first_cell_is_text(dfc)) return Ref::truth(false);
        // mean_value = (69.1 + 63.7) / 2, std_value = (2.9 ** 2 + 2.7 ** 2) / 4
        return check({dfc, 66.4, 3.9250000000000003, 21.49, 107.08, 3, list({1, 2.54})});
    },
};

constinit const Definition is_column_weight{
    .name = "is_column_weight",
    .parameters = {{"dfc"}},
    .doc = R"(Infers whether column represents weight based on US statistics

Parameters
----------
dfc : pandas.DataFrame
    One column. Positional only.

Returns
-------
bool
    False for text.

Raises
------
IndexError
    For an empty frame and for a Series.

Examples
--------
>>> import pandas as pd
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_column_weight(pd.DataFrame({"pounds": [125, 180, 240]}))
True
)",
    .lookups = {"FCplus.check_statistics"},
    .body = [](Object dfc) -> Ref {
        if (first_cell_is_text(dfc)) return Ref::truth(false);
        return check({dfc, 177.9, 40.9, 102, 300, 3, list({1, 0.453592})});
    },
};

constinit const Definition is_column_age{
    .name = "is_column_age",
    .parameters = {{"dfc"}, {"missing_values_reference_list", None}},
    .doc = R"(Infers whether column represents weight based on US statistics

The column is an age when its first row is integer and every value lies from 0 to 80.

Parameters
----------
dfc : pandas.DataFrame
    One column.
missing_values_reference_list : list, optional
    Values that count as missing; the module's list by default.

Returns
-------
bool
    False for text and for anything but integers.

Raises
------
IndexError
    For an empty frame and for a Series.

Examples
--------
>>> import pandas as pd
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_column_age(pd.DataFrame({"age": [18, 35, 62]}))
True
)",
    .lookups = {"setValueOrDefault", "numpy_whatis", "FCplus.check_statistics"},
    .body = [](Object dfc, Object missing_values_reference_list) -> Ref {
        const Ref l_missing_values_reference_list = markers_in_force(missing_values_reference_list);
        // Only the first row is classified.
        const auto [miss_values, dtype_str] =
            Classifier()(item(dfc.attr("values"_py), 0), l_missing_values_reference_list);
        if (first_cell_is_text(dfc) || truth(compare(dtype_str, Py_NE, "int_num"_py))) return Ref::truth(false);
        return check({dfc, 40, 20, 0, 100, 2, list({1})});
    },
};

}  // namespace quorin::features
