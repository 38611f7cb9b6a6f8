#include <cmath>
#include <optional>
#include <vector>

#include "core/column.hpp"
#include "exportable_utils/classify/classify.hpp"
#include "exportable_utils/references/list_membership.hpp"
#include "python/indexing.hpp"
#include "python/module_names.hpp"
#include "python/native_route.hpp"
#include "python/new_text.hpp"
#include "python/operations.hpp"

namespace quorin::classify {

namespace {

using references::References;

// A visitor for visit_unlisted(): whether int() accepts every element that is not listed. Gives up if int() would raise
// an exception other than ValueError.
class IntegerTest {
  public:
    [[nodiscard]] bool passed() const noexcept { return passed_; }
    static bool on_listed(std::size_t /*row*/) noexcept { return true; }
    static bool on_integer(std::size_t /*row*/, PyObject* /*value*/) noexcept { return true; }
    bool on_float(std::size_t /*row*/, double value) noexcept {
        if (std::isnan(value)) passed_ = false;
        return !std::isinf(value);
    }
    // Always inlined, so that the view stays in registers; for the same reason keep_unsettled() takes its members.
    [[gnu::always_inline]] bool on_text(std::size_t /*row*/, core::TextView text) {
        switch (core::classify_text(text, character_tables)) {
            case core::TextClass::integer:
                break;
            case core::TextClass::unsettled:
                keep_unsettled(text.characters, text.size, text.width, text.encoding);
                break;
            case core::TextClass::real:
            case core::TextClass::plain:
                passed_ = false;
                break;
        }
        return true;
    }
    // Calls int() with the texts of TextClass::unsettled. Nothing may be borrowed: allocating an exception may start
    // garbage collection.
    void decide_unsettled() {
        foreign_code_may_run();
        for (const Ref& text : unsettled_) {
            if (Ref::adopt(PyLong_FromUnicodeObject(text.get(), 10))) continue;
            if (PyErr_ExceptionMatches(PyExc_ValueError) == 0) throw PythonError(Where::current());
            PyErr_Clear();
            passed_ = false;
        }
        unsettled_.clear();
    }

  private:
    [[gnu::noinline]] void keep_unsettled(const void* characters, std::size_t size, int width,
                                          core::Encoding encoding) {
        unsettled_.push_back(new_text({characters, size, width, encoding}));
    }

    bool passed_ = true;
    std::vector<Ref> unsettled_;
};

// Returns false to give up.
bool test_rows(const ArrayColumn& column, const References& missing, IntegerTest& test) {
    switch (column.storage) {
        case Storage::objects:
            return references::visit_unlisted(column, missing, test);
        case Storage::fixed_text:
            return references::visit_unlisted_texts(column, missing, test);
        case Storage::float64:
            for (std::size_t row = 0; row < column.rows; ++row) {
                const double value = core::load<double>(column, row);
                if (!references::is_listed(value, missing) && !test.on_float(row, value)) return false;
            }
            return true;
        case Storage::integer:
        case Storage::boolean:
            return true;
        case Storage::float32:
            break;
    }
    return false;
}

Ref native_isintstr(Object X, Object missing_values_reference_list) {
    const std::optional<ColumnSource> column = ColumnSource::flat(X);
    if (!column) return {};
    const std::optional<References> missing = references::read_references(missing_values_reference_list, *column);
    if (!missing) return {};
    IntegerTest test;
    const bool tested = in_blocks(column->rows(), [&](std::size_t first, std::size_t last) {
        {
            const std::optional<ArrayColumn> borrowed = column->borrow();
            if (!borrowed || !test_rows(rows_of(*borrowed, first, last), *missing, test)) return false;
        }
        test.decide_unsettled();
        return true;
    });
    return tested ? Ref::truth(test.passed()) : Ref();
}

}  // namespace

constinit const Definition numpy_isintstr{
    .name = "numpy_isintstr",
    .parameters = {{"X"}, {"missing_values_reference_list", None}},
    .doc = R"(Returns true if a 1-d numpy array consists of ints/floats or strings that represent ints/floats,
excluding the missing values.

:param X: 1-d numpy array of strings or ints/floats
:param missing_values_reference_list: list of missing values
:return: true or false

What counts as a number is `isint`'s to say. Every row is looked at, also behind the first that is none.

Parameters
----------
X : numpy.ndarray of shape (n,)
missing_values_reference_list : list, optional
    Values to pass over, matched by equality; none by default.

Returns
-------
bool

Raises
------
TypeError, OverflowError
    Whatever `isint` raises: for None, for an infinite float.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import numpy_isintstr
>>> numpy_isintstr(np.array(["1", "?", "30"], dtype=object), ["?"])
True
)",
    .has_native_route = true,
    .lookups = {"isint"},
    .body = [](Object X, Object missing_values_reference_list) -> Ref {
        if (Ref flag = native_route([&] { return native_isintstr(X, missing_values_reference_list); })) return flag;
        const Ref l_missing_values_reference_list = or_new_list(missing_values_reference_list);
        bool flag = true;
        const Py_ssize_t rows = count(row_count(X));
        for (Py_ssize_t i = 0; i < rows; ++i) {
            if (contains(l_missing_values_reference_list, item(X, i))) continue;
            if (!truth(global("isint"_py)({item(X, i)}))) flag = false;
        }
        return Ref::truth(flag);
    },
};

}  // namespace quorin::classify
