#include <cstring>
#include <optional>
#include <utility>
#include <vector>

#include "exportable_utils/references/matching_rows.hpp"
#include "exportable_utils/transform/object_table.hpp"
#include "exportable_utils/transform/transform.hpp"
#include "python/indexing.hpp"
#include "python/inputs/column_blocks.hpp"
#include "python/module_names.hpp"
#include "python/native_route.hpp"
#include "python/operations.hpp"

namespace quorin::transform {

namespace {

using references::References;

// Whether numpy puts the value into every place of the mask as it is. It would iterate over a sequence.
bool is_plain_filling(Object value) noexcept {
    return value.is_none() || PyUnicode_CheckExact(value.get()) || PyFloat_CheckExact(value.get()) ||
           PyLong_CheckExact(value.get()) || PyBool_Check(value.get());
}

bool is_mask_for(Object mask, Object X) noexcept {
    if (!is_exact_array(mask) || PyArray_TYPE(as_array(mask)) != NPY_BOOL) return false;
    PyArrayObject* array = as_array(X);
    return PyArray_NDIM(as_array(mask)) == PyArray_NDIM(array) &&
           PyArray_CompareLists(PyArray_DIMS(as_array(mask)), PyArray_DIMS(array), PyArray_NDIM(array)) != 0;
}

// astype() keeps the layout of X; the native route writes row by row.
bool keeps_row_order(Object X) noexcept {
    return PyArray_NDIM(as_array(X)) == 1 || PyArray_IS_C_CONTIGUOUS(as_array(X)) != 0;
}

// Calls work(table, first, last) for blocks of rows of X, and answers signals between them. Returns false if `work`
// does, or if X no longer is the table that `memory` describes.
template <class Work>
bool in_table_blocks(Object X, const TableMemory& memory, Work work) {
    const auto block = [&](std::size_t first, std::size_t last) {
        const std::optional<Table> table = open_table(X);
        return table && table->is_same_memory(memory) && work(*table, first, last);
    };
    return in_blocks(memory.first.rows, block, rows_in_block(memory));
}

std::optional<TableMemory> table_memory(Object X) noexcept {
    const std::optional<Table> table = open_table(X);
    if (!table) return std::nullopt;
    return table->memory();
}

Ref native_putmask(Object X, Object mask, Object filling) {
    return native_route([&]() -> Ref {
        if (!is_plain_filling(filling)) return {};
        const std::optional<TableMemory> memory = table_memory(X);
        if (!memory || !keeps_row_order(X) || !is_mask_for(mask, X)) return {};
        Ref Y = new_objects_like(X);
        const bool done =
            in_table_blocks(X, *memory, [&](const Table& table, std::size_t first, std::size_t last) {
                if (!is_mask_for(mask, X)) return false;
                PyArrayObject* array = as_array(mask);
                const npy_intp column_stride = table.width == 1 ? 0 : PyArray_STRIDE(array, 1);
                write_rows(table, {PyArray_BYTES(array), PyArray_STRIDE(array, 0), column_stride, false, filling}, Y,
                           first, last);
                return true;
            });
        return done ? std::move(Y) : Ref{};
    });
}

// The elements of a table that equal a reference value, a byte for each, column by column.
class TableMask {
  public:
    explicit TableMask(const TableMemory& memory) : memory_(memory), bytes_(memory.first.rows * memory.width) {}

    // `lists` is one list of reference values, or a list of such lists, one for each column. Returns false to give up.
    bool mark(Object X, Object lists) {
        const Object first = PyList_GET_ITEM(lists.get(), 0);
        if (!PyList_Check(first.get())) {
            const std::optional<References> references = read(lists);
            return references && mark_columns(X, [&](std::size_t /*j*/) { return &*references; });
        }
        std::optional<References> own;
        return mark_columns(X, [&](std::size_t j) -> const References* {
            // Read anew for each column: a signal handler may have changed the list.
            const auto index = static_cast<Py_ssize_t>(j);
            if (index >= PyList_GET_SIZE(lists.get())) return nullptr;
            own = read(PyList_GET_ITEM(lists.get(), index));
            return own ? &*own : nullptr;
        });
    }
    [[nodiscard]] bool holds(bool marked) const noexcept {
        return std::memchr(bytes_.data(), marked ? 1 : 0, bytes_.size()) != nullptr;
    }
    [[nodiscard]] Replacement replacement(bool inverted, Object filling) const noexcept {
        const auto* mask = reinterpret_cast<const char*>(bytes_.data());
        return {mask, 1, static_cast<std::ptrdiff_t>(memory_.first.rows), inverted, filling};
    }

  private:
    static std::optional<References> read(Object list) {
        if (!PyList_CheckExact(list.get())) return std::nullopt;
        std::optional<References> references = references::read_references(list);
        if (references && references->null_bits != 0 && !references::unchanged_by_asarray(*references)) {
            references.reset();
        }
        return references;
    }
    template <class ReferencesOf>
    bool mark_columns(Object X, ReferencesOf references_of) {
        std::size_t unanswered = 0;  // elements since signals were answered
        for (std::size_t j = 0; j < memory_.width; ++j, unanswered += memory_.first.rows) {
            if (unanswered >= rows_between_signals) {
                answer_signals();
                unanswered = 0;
            }
            const References* references = references_of(j);
            if (references == nullptr || !mark_column(X, j, *references)) return false;
        }
        return true;
    }
    bool mark_column(Object X, std::size_t j, const References& references) {
        std::uint8_t* out = bytes_.data() + j * memory_.first.rows;
        return in_blocks(memory_.first.rows, [&](std::size_t first, std::size_t last) {
            const std::optional<Table> table = open_table(X);
            return table && table->is_same_memory(memory_) &&
                   references::mark_members(rows_of(table->column(j), first, last), references, out + first);
        });
    }
    TableMemory memory_;
    std::vector<std::uint8_t> bytes_;
};

Ref native_replace_values(Object X, Object filling, Object lists, Object invert_flag) {
    return native_route([&]() -> Ref {
        if (!is_plain_filling(filling) || !PyBool_Check(invert_flag.get())) return {};
        if (!PyList_CheckExact(lists.get()) || PyList_GET_SIZE(lists.get()) == 0) return {};
        const bool inverted = invert_flag.is(Py_True);
        const std::optional<TableMemory> memory = table_memory(X);
        if (!memory) return {};
        TableMask mask(*memory);
        if (!mask.mark(X, lists)) return {};
        if (PyArray_NDIM(as_array(X)) == 1 && !mask.holds(!inverted)) return Ref::share(X);
        Ref Y = new_objects_like(X);
        const bool done = in_table_blocks(X, *memory, [&](const Table& table, std::size_t first, std::size_t last) {
            write_rows(table, mask.replacement(inverted, filling), Y, first, last);
            return true;
        });
        return done ? std::move(Y) : Ref{};
    });
}

Ref mask_of(Object Xcol, Object reference_values_list_col, Object invert_flag) {
    const bool invert = truth(invert_flag);
    Ref mask = global("numpy_isin"_py)({Xcol, reference_values_list_col});
    return invert ? inverted(mask) : std::move(mask);
}

}  // namespace

constinit const Definition numpy_putmask{
    .name = "numpy_putmask",
    .parameters = {{"X"}, {"replace_values_mask"}, {"filling_value"}},
    .doc = R"(Copies an array into an object array, with a value put where a mask is true.

Parameters
----------
X : numpy.ndarray
replace_values_mask : array_like of bool
filling_value : object
    A sequence is used element by element, as `numpy.putmask` does.

Returns
-------
numpy.ndarray of object
    Always new.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import numpy_putmask
>>> numpy_putmask(np.array([1, 2]), [True, False], "?")
array(['?', 2], dtype=object)
)",
    .has_native_route = true,
    .lookups = {"np.putmask"},
    .body = [](Object X, Object replace_values_mask, Object filling_value) -> Ref {
        if (Ref Y = native_putmask(X, replace_values_mask, filling_value)) return Y;
        Ref Y = X.attr("astype"_py)({&PyBaseObject_Type});
        global("np"_py).attr("putmask"_py)({Y, replace_values_mask, filling_value});
        return Y;
    },
};

constinit const Definition numpy_replace_values{
    .name = "numpy_replace_values",
    .parameters = {{"X"}, {"filling_value"}, {"reference_values_list"}, {"invert_flag", false}},
    .doc = R"(Puts a value in place of the entries that match reference values.

:param X: Input matrix
:param reference_values_list: reference list of lists of known values for each column. if it is a 1-dimensional list, then
it is applicable to each column
:param filling_value: special value assigned array entries that match the reference values
:param invert_flag: If True replace the values NOT in the reference values list. Default False

Parameters
----------
X : numpy.ndarray of shape (n, m) or (n,)
    Never written into.
filling_value : object
reference_values_list : list
    One list for all columns, or, where its first element is a list, one for each.
invert_flag : bool

Returns
-------
numpy.ndarray of object, shape (n, m) or (n,), or `X` itself
    `X` itself for an empty list, and for one dimension without a match.

Raises
------
IndexError
    For fewer lists than columns, and for one dimension without rows.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import numpy_replace_values
>>> numpy_replace_values(np.array([[1, 2], [3, 1]]), -1, [1])
array([[-1, 2],
       [3, -1]], dtype=object)
)",
    .has_native_route = true,
    .lookups = {"np.empty", "numpy_isin", "np.any", "numpy_putmask"},
    .body = [](Object X, Object filling_value, Object reference_values_list, Object invert_flag) -> Ref {
        if (Ref Y = native_replace_values(X, filling_value, reference_values_list, invert_flag)) return Y;
        if (!truth(reference_values_list)) return Ref::share(X);
        const bool list2_flag = is_instance(item(reference_values_list, 0), &PyList_Type);
        const Ref num_rows = row_count(X);
        const Ref num_columns = equal(X.attr("ndim"_py), 1) ? whole(1) : column_count(X);
        Ref Y = global("np"_py).attr("empty"_py)({tuple({num_rows, num_columns})}, {{"dtype"_py, &PyBaseObject_Type}});
        const Ref every_row = every();
        const Py_ssize_t columns = count(num_columns);
        for (Py_ssize_t j = 0; j < columns; ++j) {
            const bool flat = equal(X.attr("ndim"_py), 1);
            const Ref Xcol = flat ? Ref::share(X) : matrix_column(X, j);
            // Not used, but an array without rows fails here.
            const Ref Ycol = flat ? item(Y, j) : Ref::share(Y);
            const Ref reference_values_list_col =
                list2_flag ? item(reference_values_list, j) : Ref::share(reference_values_list);
            const Ref replace_values_mask = mask_of(Xcol, reference_values_list_col, invert_flag);
            const bool any = truth(global("np"_py).attr("any"_py)({replace_values_mask}));
            const bool whole_result = equal(X.attr("ndim"_py), 1);
            Ref column =
                any ? global("numpy_putmask"_py)({Xcol, replace_values_mask, filling_value}) : Ref::share(Xcol);
            if (whole_result) {
                Y = std::move(column);
            } else {
                set_item(Y, tuple({every_row, j}), column);
            }
        }
        return Y;
    },
};

}  // namespace quorin::transform
